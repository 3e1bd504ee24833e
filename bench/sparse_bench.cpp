// Sparse matrices against plain C++ on compressed columns: the matrix of the Laplacian on a square grid,
// which has five entries a column, and triplets in random order.

#include <random>
#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

namespace {

// The Laplacian on m by m points, with a random term on the diagonal.
Mm grid_matrix(int m) {
    const int n = m * m;
    std::vector<double> i, j, s;
    auto entry = [&](int r, int c, double x) { i.push_back(r + 1), j.push_back(c + 1), s.push_back(x); };
    for (int c = 0; c < n; ++c) {
        entry(c, c, 4 + randM());
        if (c % m > 0) entry(c - 1, c, -1);
        if (c % m < m - 1) entry(c + 1, c, -1);
        if (c >= m) entry(c - m, c, -1);
        if (c < n - m) entry(c + m, c, -1);
    }
    auto list = [](const std::vector<double> &x) {
        Mm out = zeros(static_cast<double>(x.size()), 1.0);
        std::copy(x.begin(), x.end(), out.addr());
        return out;
    };
    return sparse(list(i), list(j), list(s), n, n);
}

// A column of random whole numbers from 1 to n.
Mm random_indices(int count, unsigned n) {
    static std::mt19937 engine(1);
    Mm out = zeros(count, 1.0);
    for (int k = 0; k < count; ++k) out.addr()[k] = static_cast<double>(engine() % n + 1);
    return out;
}

// A copy of a matrix as compressed columns.
struct Compressed {
    std::vector<int> start, row;
    std::vector<double> value;
    int rows, cols;

    explicit Compressed(const Mm &a)
        : value(a.addr(), a.addr() + a.getnnz()), rows(static_cast<int>(a.rows())),
          cols(static_cast<int>(a.cols())) {
        kn_size *ir = getIr(a), *jc = getJc(a);
        row.assign(ir, ir + a.getnnz());
        start.assign(jc, jc + cols + 1);
        freeIrJc(ir, jc);
    }
    Compressed(int m, int n, size_t room) : start(size_t(n) + 1), row(room), value(room), rows(m), cols(n) {}
    native::Csc view() { return {rows, cols, start.data(), row.data(), value.data()}; }
};

} // namespace

void bench::sparse_rows() {
    heading("Sparse matrices / plain C++");
    constexpr int million = 1000000;
    Mm s = randn(million, 1.0);
    {
        constexpr int n = 20000;
        Mm i = random_indices(million, n), j = random_indices(million, n);
        Compressed by_rows(n, n + 1, million), out(n, n, million);
        row(
            "sparse(i,j,s,m,n) of 1e6 / counting passes", times_native(2),
            [&] { keep(sparse(i, j, s, n, n)); },
            [&] {
                native::from_triplets(million, i.addr(), j.addr(), s.addr(), by_rows.view(), out.view());
            });
    }
    {
        constexpr int n = 30000;
        Mm i = random_indices(million, n), j = random_indices(million, n);
        Mm wide_i = random_indices(million, million), wide_j = random_indices(million, million);
        row(
            "sparse of 1e6, order 1e6 / order 3e4", times_native(1.1),
            [&] { keep(sparse(wide_i, wide_j, s, million, million)); }, [&] { keep(sparse(i, j, s, n, n)); });
    }

    constexpr int m = 215, n = m * m;
    Mm a = grid_matrix(m), b = grid_matrix(m), x = randn(n, 1.0), block = randn(n, 8.0), wide = randn(1.0, n);
    Compressed ca(a), cb(b), out(n, n, 4 * size_t(a.getnnz())), square(n, n, 30 * size_t(n));
    std::vector<double> y(8 * size_t(n)), sum(n);
    std::vector<int> mark(n);
    row(
        "A*x", times_native(1.3), [&] { keep(a * x); },
        [&] { native::multiply(ca.view(), x.addr(), y.data()); });
    row(
        "A*X of 8 columns", times_native(1.3), [&] { keep(a * block); },
        [&] {
            for (int c = 0; c < 8; ++c) native::multiply(ca.view(), block.addr() + c * n, y.data() + c * n);
        });
    row(
        "x'*A", times_native(2), [&] { keep(wide * a); },
        [&] { native::multiply_transposed(ca.view(), wide.addr(), y.data()); });
    row(
        "A + B", times_native(2), [&] { keep(a + b); },
        [&] { native::add(ca.view(), cb.view(), out.view()); });
    row(
        "A .* B / A + B", times_native(2), [&] { keep(times(a, b)); },
        [&] { native::add(ca.view(), cb.view(), out.view()); });
    row(
        "A*B", times_native(1.5), [&] { keep(a * b); },
        [&] { native::product(ca.view(), cb.view(), square.view(), mark.data(), sum.data()); });
    row(
        "A'", times_native(2), [&] { keep(transpose(a)); },
        [&] { native::transpose(ca.view(), out.view()); });
}
