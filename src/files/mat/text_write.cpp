// Saving values as text: "%23.13g" for each real part, a line for each row, page after page.

#include "files/mat/matfile.h"
#include "quorvex/classes.h"
#include "quorvex/conversions.h"
#include "quorvex/messages.h"
#include "quorvex/sparse.h"
#include "text/number_text.h"
#include "value/header.h"

namespace kn {

bool text_save(std::FILE *stream, const char *name, const Mm &x) {
    constexpr size_t block_bytes = 1 << 16;
    const NumberFormat format{Digits(13), 23, 0};
    x.warn_uninit();
    if (error_numeric(x, "saveascii")) return true;
    const Mm m = full(mdouble(x));
    if (lacks(m, x.size())) return false;
    const kn_size rows = m.rows(), cols = rows > 0 ? m.size() / rows : 0, width = m.cols();
    TextBuffer out;
    auto flush = [&] {
        const size_t n = out.size();
        const bool written = out && io::write(out.data(), 1, n, stream) == n;
        if (out && !written) error("could not write %s", name);
        out.clear();
        return written;
    };
    for (kn_size page = 0; page < cols; page += width)
        for (kn_size r = 0; r < rows; ++r) {
            for (kn_size c = page; c < page + width; ++c) append_number(out, m.addr()[r + c * rows], format);
            out.append('\n');
            if (out.size() >= block_bytes && !flush()) return false;
        }
    return out.size() == 0 || flush();
}

} // namespace kn
