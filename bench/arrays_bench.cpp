// Values put together and rearranged.

#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

namespace {

using bench::keep;
using bench::row;

const bench::Limit limit = bench::times_native(1.2);
std::vector<double> out;

void transpose_row() {
    constexpr int m = 2000;
    Mm a = randn(m, m);
    row(
        "transpose of 2000x2000", limit, [&] { keep(transpose(a)); },
        [&] { native::transpose(m, a.addr(), out.data()); });
}

void concatenation_row() {
    constexpr int m = 500;
    Mm a = randn(m, m), b = randn(m, m), c = randn(m, m), d = randn(m, m);
    const double *const blocks[2][2] = {{a.addr(), b.addr()}, {c.addr(), d.addr()}};
    row(
        "[A B; C D] of 500x500", limit, [&] { keep(Mm((BR(a), b, semi, c, d))); },
        [&] { native::join(m, blocks, out.data()); });
}

void repmat_row(int rows, int cols) {
    constexpr int m = 1000;
    Mm tile = randn(rows, cols), down(m / rows), across(m / cols);
    row(
        "repmat of " + std::to_string(rows) + "x" + std::to_string(cols) + " to 1000x1000", limit,
        [&] { keep(repmat(tile, down, across)); },
        [&] { native::repeat(rows, cols, tile.addr(), m, out.data()); });
}

} // namespace

void bench::array_rows() {
    heading("Arrays rearranged");
    out.resize(4000000);
    transpose_row();
    concatenation_row();
    repmat_row(100, 100);
    repmat_row(10, 10);
    repmat_row(1000, 1);
    repmat_row(1, 1000);
    out = {};
}
