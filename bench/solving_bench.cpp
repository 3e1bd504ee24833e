// Linear solving against LAPACK and SuperLU on the same data, in their own layout.

#include <string>
#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

using bench::keep, bench::row, bench::times_native;

namespace {

std::vector<double> pairs(const Mm &z) {
    std::vector<double> out;
    for (int k = 0; k < z.size(); ++k) out.push_back(z.addr()[k]), out.push_back(z.addi()[k]);
    return out;
}

// The five-point Laplacian of an m by m grid, in compressed columns.
struct Laplacian {
    int n;
    std::vector<int> starts = {0}, rows;
    std::vector<double> values;

    explicit Laplacian(int m) : n(m * m) {
        for (int c = 0; c < n; ++c) {
            add(c >= m, c - m, -1);
            add(c % m != 0, c - 1, -1);
            add(true, c, 4);
            add(c % m != m - 1, c + 1, -1);
            add(c < n - m, c + m, -1);
            starts.push_back(static_cast<int>(rows.size()));
        }
    }
    void add(bool there, int row, double value) {
        if (there) rows.push_back(row), values.push_back(value);
    }
    Mm matrix() const {
        const int nnz = static_cast<int>(rows.size());
        Mm i = zeros(nnz, 1), j = zeros(nnz, 1), s = zeros(nnz, 1);
        for (int c = 0, k = 0; c < n; ++c)
            for (; k < starts[c + 1]; ++k)
                i.r(k + 1) = rows[k] + 1, j.r(k + 1) = c + 1, s.r(k + 1) = values[k];
        return sparse(i, j, s, n, n);
    }
};

void dense_rows() {
    constexpr int n = 1000;
    Mm a = randn(n, n), s = a + ctranspose(a), z = a + i * randn(n, n), b = randn(n, 1), zb = b + i * b;
    std::vector<double> work(size_t(2) * n * n), x(work), pz = pairs(z), pb = pairs(zb);
    row(
        "A\\b of 1000x1000", times_native(1.1), [&] { keep(mldivide(a, b)); },
        [&] { native::solve(n, a.addr(), b.addr(), work.data(), x.data()); });
    row(
        "symmetric A\\b", times_native(1.1), [&] { keep(mldivide(s, b)); },
        [&] { native::solve_symmetric(n, s.addr(), b.addr(), work.data(), x.data()); });
    row(
        "complex A\\b", times_native(1.1), [&] { keep(mldivide(z, zb)); },
        [&] { native::solve_complex(n, pz.data(), pb.data(), work.data(), x.data()); });
    row(
        "inv(A)", times_native(1.1), [&] { keep(inv(a)); }, [&] { native::invert(n, a.addr(), x.data()); });
    row(
        "complex inv(A)", times_native(1.1), [&] { keep(inv(z)); },
        [&] { native::invert_complex(n, pz.data(), x.data()); });
    row(
        "det(A)", times_native(1.1), [&] { keep(det(a)); },
        [&] { keep(native::determinant(n, a.addr(), work.data())); });
    Mm tall = randn(n, 200);
    row(
        "A\\b of 1000x200", times_native(1.1), [&] { keep(mldivide(tall, b)); },
        [&] { native::least_squares(n, 200, tall.addr(), b.addr(), work.data(), x.data()); });
    Mm small = randn(10, 10), small_b = randn(10, 1);
    row(
        "A\\b of 10x10", times_native(2), [&] { keep(mldivide(small, small_b)); },
        [&] { native::solve(10, small.addr(), small_b.addr(), work.data(), x.data()); });
}

void sparse_system_rows() {
    for (int m : {200, 500}) {
        Laplacian laplacian(m);
        Mm a = laplacian.matrix(), b = randn(m * m, 1);
        std::vector<double> x(size_t(m) * m);
        const std::string grid = std::to_string(m) + "x" + std::to_string(m);
        row(
            "sparse A\\b, grid of " + grid, times_native(1.2), [&] { keep(mldivide(a, b)); },
            [&] {
                native::solve_sparse(laplacian.n, laplacian.starts.data(), laplacian.rows.data(),
                                     laplacian.values.data(), b.addr(), x.data());
            });
    }
}

} // namespace

void bench::solving_rows() {
    heading("Linear solving / LAPACK, SuperLU");
    dense_rows();
    sparse_system_rows();
}
