// Numbers to text and back, beside to_chars and from_chars in one buffer.

#include <algorithm>
#include <charconv>
#include <string>
#include <vector>

#include "bench/ratio.h"

#include <quorvex.h>

namespace {

// Prints each number right-aligned in its field, followed by a blank.
void print_row(const char *format, std::chars_format kind, int precision, ptrdiff_t width, const Mm &x) {
    const int n = x.size();
    std::vector<char> out(static_cast<size_t>(n) * 32);
    const Mm fmt = TM(format), list = CL(x);
    bench::row(
        std::string("sprintf('") + format + "', x), 1e5 numbers", bench::times_native(1.5),
        [&] { bench::keep(sprintf(fmt, list)); },
        [&] {
            char *to = out.data(), *end = to + out.size();
            for (int k = 0; k < n; ++k) {
                char *stop = std::to_chars(to, end, x.addr()[k], kind, precision).ptr;
                const ptrdiff_t blanks = std::max<ptrdiff_t>(width - (stop - to), 0);
                std::copy_backward(to, stop, stop + blanks);
                std::fill_n(to, blanks, ' ');
                to = stop + blanks;
                *to++ = ' ';
            }
            bench::keep(to);
        });
}

void scan_row(const char *format, const Mm &x) {
    const Mm text = sprintf(TM("%g "), CL(x)), fmt = TM(format);
    std::string c(static_cast<size_t>(text.size()) + 1, '\0');
    Mstr_row(text, c.data(), static_cast<int>(c.size()));
    std::vector<double> out(static_cast<size_t>(x.size()));
    bench::row(
        std::string("sscanf(s, '") + format + "'), 1e5 numbers", bench::times_native(1.5),
        [&] { bench::keep(sscanf(text, fmt)); },
        [&] {
            const char *at = c.data(), *end = at + c.size();
            for (double &y : out) at = std::from_chars(at, end, y).ptr + 1;
            bench::keep(out);
        });
}

} // namespace

void bench::formatted_rows() {
    heading("Formatted text");
    const Mm x = randn(100000.0, 1.0), whole = round(x * 1000.0);
    print_row("%g ", std::chars_format::general, 6, 0, x);
    print_row("%.15g ", std::chars_format::general, 15, 0, x);
    print_row("%8.3f ", std::chars_format::fixed, 3, 8, x);
    scan_row("%g", x);
    scan_row("%f", whole);
}
