// Values put together and rearranged, against blocked copies of std::vector<double> into an array of their
// own.

#include <algorithm>
#include <cstdlib>
#include <vector>

#include <quorvex.h>

#include "bench/ratio.h"

namespace {

std::vector<double> elements(const Mm &x) { return {x.addr(), x.addr() + x.size()}; }

using bench::into_fresh;

void concatenation_cases() {
    constexpr int m = 500;
    static const Mm a = randn(m, m), b = randn(m, m), c = randn(m, m), d = randn(m, m);
    static const std::vector<double> blocks[2][2] = {{elements(a), elements(b)}, {elements(c), elements(d)}};
    bench::compare(
        "[A B; C D] of 500x500", 1.3, [] { bench::keep(Mm((BR(a), b, semi, c, d))); },
        into_fresh(size_t(4) * m * m, [](double *out) {
            for (int r = 0; r < 2; ++r)
                for (int s = 0; s < 2; ++s)
                    for (int k = 0; k < m; ++k)
                        std::copy_n(&blocks[r][s][k * m], m, out + (s * m + k) * 2 * m + r * m);
        }));
}

void transpose_case() {
    static constexpr int m = 2000;
    static const Mm a = randn(m, m);
    static const std::vector<double> pa = elements(a);
    bench::compare(
        "transpose of 2000x2000", 1.3, [] { bench::keep(transpose(a)); },
        into_fresh(size_t(m) * m, [x = pa.data()](double *out) {
            constexpr int block = 16; // the best of 8 to 64
            for (int c0 = 0; c0 < m; c0 += block)
                for (int r0 = 0; r0 < m; r0 += block) {
                    int c1 = std::min(c0 + block, m), r1 = std::min(r0 + block, m);
                    for (int c = c0; c < c1; ++c)
                        for (int r = r0; r < r1; ++r) out[c * m + r] = x[r * m + c];
                }
        }));
}

// Tiles of rows by cols that fill 1000 by 1000.
template <int rows, int cols> void repmat_case(const char *name) {
    constexpr int m = 1000;
    static const Mm tile = randn(rows, cols);
    static const std::vector<double> ptile = elements(tile);
    bench::compare(
        name, 1.3, [] { bench::keep(repmat(tile, m / rows, m / cols)); },
        into_fresh(size_t(m) * m, [x = ptile.data()](double *out) {
            for (int c = 0; c < m; ++c)
                for (int r = 0; r < m; r += rows) std::copy_n(x + c % cols * rows, rows, out + c * m + r);
        }));
}

void add_cases() {
    concatenation_cases();
    transpose_case();
    repmat_case<100, 100>("repmat of 100x100 to 1000x1000");
    repmat_case<10, 10>("repmat of 10x10");
    repmat_case<1000, 1>("repmat of a column");
    repmat_case<1, 1000>("repmat of a row");
}

bench::Group group(add_cases);

} // namespace
