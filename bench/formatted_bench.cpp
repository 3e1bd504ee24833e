// Numbers to text and back, beside the C library's calls into one buffer.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/ratio.h"

#include <quorvex.h>

namespace {

void print_row(const char *format, const Mm &x) {
    const int n = x.size();
    std::vector<char> out(static_cast<size_t>(n) * 32);
    const Mm fmt = TM(format), list = CL(x);
    bench::row(
        std::string("sprintf('") + format + "', x), 1e5 numbers", bench::times_native(1.5),
        [&] { bench::keep(sprintf(fmt, list)); },
        [&] {
            char *to = out.data(), *end = to + out.size();
            for (int k = 0; k < n; ++k)
                to += std::snprintf(to, static_cast<size_t>(end - to), format, x.addr()[k]);
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
            const char *at = c.c_str();
            char *end;
            for (double &y : out) y = std::strtod(at, &end), at = end;
            bench::keep(out);
        });
}

} // namespace

void bench::formatted_rows() {
    heading("Formatted text");
    const Mm x = randn(100000.0, 1.0), whole = round(x * 1000.0);
    print_row("%g ", x);
    print_row("%.15g ", x);
    print_row("%8.3f ", x);
    scan_row("%g", x);
    scan_row("%f", whole);
}
