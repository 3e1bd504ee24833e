// Many elements at once: reads, assignments and deletions with ranges, lists and masks.

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

namespace {

using bench::keep;
using bench::row;
using Doubles = std::vector<double>;

constexpr int n = 1000000;
constexpr int m = 1000; // n is the size of an m by m matrix
const bench::Limit limit = bench::times_native(1.2);

// The first `taken` of the numbers 1 to count in a random order.
Doubles shuffled(int count, int taken) {
    Doubles v(count);
    std::iota(v.begin(), v.end(), 1.0);
    std::shuffle(v.begin(), v.end(), std::mt19937(1));
    v.resize(taken);
    return v;
}

Doubles sorted(Doubles v) {
    std::sort(v.begin(), v.end());
    return v;
}

Mm row_of(const Doubles &v) {
    Mm out(0, 0, 0, 1, static_cast<int>(v.size()), kn_double);
    std::copy(v.begin(), v.end(), out.addr());
    return out;
}

void matrix_rows() {
    Mm a = randn(m, m), y(i_o, "y", 0), idx = row_of(shuffled(m, m)), few = row_of(shuffled(m, m / 10));
    Doubles out(n);
    std::vector<char> marks(m);
    row(
        "A(2:end-1,:) of 1000x1000", limit, [&] { keep(Mm(a(colon(2.0, a.rows() - 1.0), c_p))); },
        [&] { native::rows(m, m, a.addr(), 2, m - 1, out.data()); });
    row(
        "A(:,idx)", limit, [&] { keep(Mm(a(c_p, idx))); },
        [&] { native::columns(m, m, a.addr(), idx.addr(), out.data()); });
    row(
        "B = A; B(:,idx) = [], a tenth", limit, [&] { y = a, y(c_p, few) = nop_M; },
        [&] {
            keep(native::erase_columns(m, m, a.addr(), few.size(), few.addr(), marks.data(), out.data()));
        });
}

void mask_rows() {
    Mm x(i_o, "x", 0), mask(i_o, "mask", 0);
    x = randn(1.0, n), mask = x > 0.0;
    Mm v = randn(1.0, scalar(sum(mask)) + 1), taken = v(colon(1.0, v.size() - 1.0));
    Doubles px(x.addr(), x.addr() + n), out(n + 1);
    row(
        "x(mask) of 1e6", limit, [&] { keep(Mm(x(mask))); },
        [&] { keep(native::pick(n, px.data(), mask.addr(), out.data())); });
    row(
        "x(mask) = scalar", limit, [&] { x(mask) = 2.0; },
        [&] { native::fill_where(n, px.data(), mask.addr(), 2); });
    row(
        "x(mask) = vector", limit, [&] { x(mask) = taken; },
        [&] { native::put_where(n, px.data(), mask.addr(), v.addr()); });
}

void list_rows() {
    Mm x(i_o, "x", 0), y(i_o, "y", 0);
    x = randn(1.0, n);
    Doubles px(x.addr(), x.addr() + n), out(n + 1);
    std::vector<char> marks(n);
    auto assignment = [&](const char *name, const Doubles &list) {
        Mm idx = row_of(list), v = randn(1.0, double(list.size()));
        row(
            name, limit, [&] { x(idx) = v; },
            [&] { native::put_at(idx.size(), px.data(), idx.addr(), v.addr()); });
    };
    assignment("x(idx) = v of 1e6, shuffled", shuffled(n, n));
    assignment("x(idx) = v of 5e5, ascending", sorted(shuffled(n, n / 2)));
    Mm idx = row_of(sorted(shuffled(n, n / 10)));
    row(
        "y = x; y(idx) = [], a tenth of 1e6", limit, [&] { y = x, y(idx) = nop_M; },
        [&] { keep(native::erase(n, px.data(), idx.size(), idx.addr(), marks.data(), out.data())); });
}

} // namespace

void bench::selection_rows() {
    heading("Many elements at once");
    matrix_rows();
    mask_rows();
    list_rows();
}
