// The bridges between character values and plain strings.

#include "value/strings.h"

#include <algorithm>
#include <cstring>

#include "base/scratch.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "quorvex/text.h"
#include "special/scalar_kernels.h"
#include "value/header.h"

namespace kn {

Codes::Codes(const Mm &m) : copy_(m) {
    bool plain = (m.gettype() == kn_double || m.gettype() == kn_none) && !m.issparse();
    if (!plain) {
        copy_ = Mm();
        copy_.deepcopy(0, 0, m, kn_double);
        if (m.gettype() == kn_Mm || lacks(copy_, m.size())) return;
    }
    data_ = copy_.addr();
    if (m.size() == 0) return;
    rows_ = m.rows();
    cols_ = m.size() / rows_;
}

bool error_text(const Mm &x, const char *caller) {
    x.warn_uninit();
    if (is_text(x)) return false;
    error("%s: input is not a string", caller);
    return true;
}

bool error_text_row(const Mm &x, const char *caller) {
    if (error_text(x, caller)) return true;
    if (x.rows() <= 1 && x.getndims() == 2) return false;
    error("%s: input must be one row", caller);
    return true;
}

const Mm *shape_of_cells(const char *caller, std::initializer_list<const Mm *> values) {
    const Mm *shape = nullptr;
    for (const Mm *x : values) {
        if (!is_cell(*x)) continue;
        if (!shape || (shape->size() == 1 && x->size() != 1)) shape = x;
    }
    for (const Mm *x : values) {
        if (!is_cell(*x) || x->size() == 1 || same_size(*x, *shape)) continue;
        error("%s: cell arrays must be of same size", caller);
        return nullptr;
    }
    return shape;
}

Mm row_of_text(const double *codes, kn_size n) {
    Mm out(0, 0, 0, 1, n, kn_double);
    if (lacks(out, n)) return x_M;
    std::copy_n(codes, n, out.addr());
    out.setstr(1);
    return out;
}

} // namespace kn

using namespace kn;

Mm TM(const char *s) {
    size_t n = s ? std::strlen(s) : 0;
    kn_size cols = static_cast<kn_size>(n);
    Mm out(0, 0, 0, 1, cols, kn_double);
    if (lacks(out, cols)) return x_M;
    std::transform(s, s + n, out.addr(), [](char c) { return static_cast<unsigned char>(c); });
    out.setstr(1);
    return out;
}

void Mstr(const double *data, kn_size rows, kn_size cols, char *buf, kn_size size) {
    if (size > 0) *buf = '\0';
    if (rows < 1 || cols < 0) return;
    if (size <= cols || rows > size / (cols + 1)) {
        warning("Mstr: buffer too small - chopped");
        return;
    }
    for (kn_size r = 0; r < rows; ++r) {
        if (r > 0) *buf++ = '\n';
        for (kn_size c = 0; c < cols; ++c) *buf++ = static_cast<char>(to_byte(data[r + c * rows]));
    }
    *buf = '\0';
}

void Mstr(const Mm &m, char *buf, kn_size size) {
    Codes codes(m);
    Mstr(codes.data(), codes ? m.rows() : 0, m.cols(), buf, size);
}

void Mstr_row(const Mm &m, char *buf, kn_size size) {
    Codes codes(m);
    Mstr(codes.data(), 1, static_cast<kn_size>(codes.size()), buf, size);
}

kn_size Mstr_size(const Mm &m) {
    if (m.size() == 0) return 1;
    return m.size() + m.rows();
}

Mm setstr(const Mm &m) {
    Mm out = m;
    out.setstr(1);
    return out;
}
