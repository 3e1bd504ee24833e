// Sparse systems of any shape as square real ones.
#include "numerics/solvers.h"

#include <algorithm>
#include <cmath>

#include "core/columns.h"
#include "core/header.h"
#include "core/planes.h"
#include "core/scratch.h"
#include "numerics/sparse_lu.h"
#include "quorvex/solving.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

// Columns of n elements, m of which come from `from`, beginning at `first`; the rest are zero.
void copy_columns(double *to, int n, const double *from, int rows, int first, int m, int q) {
    for (ptrdiff_t j = 0; j < q; ++j) {
        double *end = std::copy_n(from + j * rows + first, m, to + j * n);
        std::fill(end, to + (j + 1) * n, 0.0);
    }
}

// The rows of b from `first` on, m of them, and zeros below up to n rows.
Mm padded(const Mm &b, int first, int m, int n) {
    Mm out(b.isc(), 0, 0, n, b.cols(), kn_double);
    if (out.getnnz() == 0) return out;
    copy_columns(out.addr(), n, b.addr(), b.rows(), first, m, b.cols());
    if (b.isc()) copy_columns(out.addi(), n, b.addi(), b.rows(), first, m, b.cols());
    return out;
}

// A value of its own, of n rows, that holds both planes of b: one below the other where the matrix is
// complex, side by side where it is real.
Mm planes_of_b(const Mm &b, bool below) {
    const int n = b.rows(), q = b.cols();
    const ptrdiff_t size = static_cast<ptrdiff_t>(n) * q;
    if (below) {
        Mm out = padded(b, 0, n, 2 * n);
        out.getreal(1);
        if (!b.isc() || out.getnnz() == 0) return out;
        for (ptrdiff_t j = 0; j < q; ++j) std::copy_n(b.addi() + j * n, n, out.addr() + (2 * j + 1) * n);
        return out;
    }
    Mm out(0, 0, 0, n, b.isc() ? 2 * q : q, kn_double);
    if (out.getnnz() == 0) return out;
    copy_run(out.addr(), b.addr(), size);
    if (b.isc()) copy_run(out.addr() + size, b.addi(), size);
    return out;
}

Mm complex_of_planes(const Mm &x, int n, int q, bool below) {
    Mm out(1, 0, 0, n, q, kn_double);
    if (out.getnnz() == 0) return x_M;
    const ptrdiff_t step = below ? 2 * static_cast<ptrdiff_t>(n) : n;
    const ptrdiff_t imaginary = below ? n : static_cast<ptrdiff_t>(n) * q;
    for (ptrdiff_t j = 0; j < q; ++j) {
        std::copy_n(x.addr() + j * step, n, out.addr() + j * n);
        std::copy_n(x.addr() + j * step + imaginary, n, out.addi() + j * n);
    }
    return out;
}

// A thousandth of the largest modulus.
double augmentation(const Mm &a) {
    double largest = 0;
    for (int k = 0; k < a.getnnz(); ++k)
        largest = std::fmax(largest, a.isc() ? std::hypot(a.addr()[k], a.addi()[k]) : std::fabs(a.addr()[k]));
    return largest / 1000;
}

// a \ b of a square matrix. The order of a complex one is that of its columns.
Mm solve_columns(const Columns &a, const Mm &b, const int *order) {
    const int n = a.cols(), q = b.cols();
    const bool below = a.im() != nullptr;
    if (below && n > INT32_MAX / 2) return out_of_memory(), x_M;
    Mm x = planes_of_b(b, below);
    if (x.getnnz() == 0) return x_M;
    bool done;
    if (below) {
        const int64_t order_of_system = 2 * static_cast<int64_t>(n);
        Columns real_a(order_of_system, order_of_system, 4 * static_cast<int64_t>(a.entries()), false);
        Scratch<int> in_order(order ? order_of_system : 0);
        if (!real_a || !in_order) return x_M;
        embed_complex(a, real_a);
        for (int k = 0; order && k < 2 * n; ++k) in_order[k] = k;
        done = sparse_lu_solve(real_a, x, order ? in_order.get() : nullptr);
    } else {
        done = sparse_lu_solve(a, x, order);
    }
    if (!done) return x_M;
    return below || b.isc() ? complex_of_planes(x, n, q, below) : x;
}

Mm solve_overdetermined(const Mm &a, const Mm &b) {
    const int m = a.rows(), n = a.cols();
    Columns columns(a, n);
    if (!columns) return x_M;
    const int64_t order = static_cast<int64_t>(m) + n;
    Columns system(order, order, m + 2 * static_cast<int64_t>(columns.entries()), a.isc());
    if (!system || !augment(columns, augmentation(a), system)) return x_M;
    Mm x = padded(b, 0, m, m + n);
    if (x.getnnz() == 0) return x_M;
    x = solve_columns(system, x, nullptr);
    return x.getnnz() == 0 ? x_M : padded(x, m, n, n);
}

// The rows of the entries of p, one in each column and each row; else it is reported.
bool permutation_of(const Mm &p, int n, int *order) {
    Scratch<char> taken(n);
    if (!taken) return false;
    std::fill_n(taken.get(), n, 0);
    bool fits = p.rows() == n && p.cols() == n && p.getnnz() == n;
    ColumnWalk walk(n);
    for (int k = 0; fits && k < n; ++k) {
        order[k] = walk.row(p.getindex()[k]);
        fits = walk.column() == k && !taken[order[k]];
        taken[order[k]] = 1;
    }
    if (!fits) error("lusolve: %s is not a permutation of %d columns", kn_display_name(p), n);
    return fits;
}

} // namespace

Mm solve_sparse(const Mm &a, const Mm &b) {
    const int m = a.rows(), n = a.cols();
    if (m > n) return solve_overdetermined(a, b);
    Columns leading(a, m);
    if (!leading) return x_M;
    Mm x = solve_columns(leading, b, nullptr);
    return m == n || x.getnnz() == 0 ? x : padded(x, 0, m, n);
}

} // namespace kn

Mm lusolve(const Mm &a, const Mm &b, const Mm &p) {
    a.warn_uninit();
    b.warn_uninit();
    p.warn_uninit();
    if (error_numeric(a, "lusolve") || error_sparse(a, "getIr") || error_square(a, "lusolve")) return x_M;
    if (error_numeric(p, "lusolve") || error_sparse(p, "getIr")) return x_M;
    Mm x, full_b;
    if (!kn::sparse_doubles_of(a, x) || !kn::doubles_of(b, "lusolve", full_b)) return x_M;
    if (error_2d(full_b, "lusolve")) return x_M;
    if (a.size() == 0 || b.size() == 0) return nop_M;
    const int n = a.rows();
    if (b.rows() != n) {
        error("%s: a,b does not have the same number of rows", "lusolve");
        return x_M;
    }
    kn::Columns columns(x, n);
    kn::Scratch<int> order(n);
    if (!columns || !order || !kn::permutation_of(p, n, order.get())) return x_M;
    return kn::solve_columns(columns, full_b, order.get());
}
