// Sparse systems of any shape as square real ones.
#include "linear/solvers.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/number_tests.h"
#include "base/scratch.h"
#include "linear/sparse_lu.h"
#include "quorvex/builders.h"
#include "quorvex/solving.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/planes.h"
#include "value/sparse_walk.h"

namespace kn {
namespace {

// Columns of n elements: m from `from`, beginning at `first`, and zeros.
void copy_columns(double *to, kn_size n, const double *from, kn_size rows, kn_size first, kn_size m,
                  kn_size q) {
    for (ptrdiff_t j = 0; j < q; ++j) {
        double *end = std::copy_n(from + j * rows + first, m, to + j * n);
        std::fill(end, to + (j + 1) * n, 0.0);
    }
}

// The m rows of b from `first` on, padded with zero rows to n rows.
Mm padded(const Mm &b, kn_size first, kn_size m, kn_size n) {
    Mm out(b.isc(), 0, 0, n, b.cols(), kn_double);
    if (out.getnnz() == 0) return out;
    copy_columns(out.addr(), n, b.addr(), b.rows(), first, m, b.cols());
    if (b.isc()) copy_columns(out.addi(), n, b.addi(), b.rows(), first, m, b.cols());
    return out;
}

// A new value, of n rows, that holds both planes of b: one below the other if the matrix is complex, side by
// side if it is real.
Mm planes_of_b(const Mm &b, bool below) {
    const kn_size n = b.rows(), q = b.cols(), size = n * q;
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

Mm complex_of_planes(const Mm &x, kn_size n, kn_size q, bool below) {
    Mm out(1, 0, 0, n, q, kn_double);
    if (out.getnnz() == 0) return x_M;
    const kn_size step = below ? 2 * n : n, imaginary = below ? n : n * q;
    for (ptrdiff_t j = 0; j < q; ++j) {
        std::copy_n(x.addr() + j * step, n, out.addr() + j * n);
        std::copy_n(x.addr() + j * step + imaginary, n, out.addi() + j * n);
    }
    return out;
}

// A thousandth of the largest modulus.
double augmentation(const Mm &a) {
    double largest = 0;
    for (kn_size k = 0; k < a.getnnz(); ++k)
        largest = std::fmax(largest, a.isc() ? std::hypot(a.addr()[k], a.addi()[k]) : std::fabs(a.addr()[k]));
    return largest / 1000;
}

// The systems of a square matrix. A complex one is factored as a real one of twice the order, in the order of
// its columns: the first halves, then the others.
class SparseSystem {
  public:
    SparseSystem(const CompressedColumns &a, const int *order)
        : n_(a.cols()), embedded_(a.im() != nullptr), twice_(embedded_ ? 2 * n_ : 0),
          real_(twice_, twice_, embedded_ ? 4 * a.entries() : 0, false), in_order_(order ? twice_ : 0) {
        if (!real_ || !in_order_) return;
        if (!embedded_) {
            lu_.emplace(a, order);
            return;
        }
        embed_complex(a, real_);
        for (int k = 0; order && k < twice_; ++k) in_order_[k] = k;
        lu_.emplace(real_, order ? in_order_.get() : nullptr);
    }
    explicit operator bool() const { return lu_ && *lu_; }

    // a \ b; x_M after an error.
    Mm solve(const Mm &b) {
        Mm x = planes_of_b(b, embedded_);
        if (x.getnnz() == 0 || !lu_->solve(x.addr(), x.cols())) return x_M;
        return embedded_ || b.isc() ? complex_of_planes(x, n_, b.cols(), embedded_) : x;
    }

  private:
    const int n_;
    const bool embedded_;
    const int twice_;
    CompressedColumns real_;
    Scratch<int> in_order_;
    std::optional<SparseLu> lu_;
};

Mm solve_columns(const CompressedColumns &a, const Mm &b, const int *order) {
    SparseSystem system(a, order);
    return system ? system.solve(b) : x_M;
}

Mm solve_overdetermined(const Mm &a, const Mm &b) {
    const int m = static_cast<int>(a.rows()), n = static_cast<int>(a.cols()), order = m + n;
    CompressedColumns columns(a, n);
    if (!columns) return x_M;
    CompressedColumns system(order, order, m + 2 * columns.entries(), a.isc());
    if (!system || !augment(columns, augmentation(a), system)) return x_M;
    Mm x = padded(b, 0, m, m + n);
    if (x.getnnz() == 0) return x_M;
    x = solve_columns(system, x, nullptr);
    return x.getnnz() == 0 ? x_M : padded(x, m, n, n);
}

// The rows of the entries of p, exactly one in each column and row; otherwise reports an error.
bool permutation_of(const Mm &p, int n, int *order) {
    Scratch<char> taken(n);
    if (!taken) return false;
    std::fill_n(taken.get(), n, 0);
    bool fits = p.rows() == n && p.cols() == n && p.getnnz() == n;
    ColumnWalk walk(n);
    for (int k = 0; fits && k < n; ++k) {
        order[k] = static_cast<int>(walk.row(p.getindex()[k]));
        fits = walk.column() == k && !taken[order[k]];
        taken[order[k]] = 1;
    }
    if (!fits) error("lusolve: %s is not a permutation of %d columns", kn_display_name(p), n);
    return fits;
}

// Appends the nonzero elements of x to the entries of a sparse value; x has as many rows, and its
// first column is `column` of the value. False after an error.
bool append(Mm &out, const Mm &x, kn_size column) {
    auto stored = [re = x.addr(), im = x.addi()](kn_size k) { return is_nonzero(re, im, k); };
    kn_size e = out.getnnz(), count = e;
    for (kn_size k = 0; k < x.getnnz(); ++k) count += stored(k);
    if (count > too_large_for_full) {
        error("full: matrix too large");
        return false;
    }
    if (count > out.getp()) {
        out.extend_nnz(std::max<kn_size>(count, 2 * out.getp()));
        if (lacks(out, count)) return false;
    }
    out.getnnz() = count;
    const kn_size first = column * x.rows();
    for (kn_size k = 0; k < x.getnnz(); ++k) {
        if (!stored(k)) continue;
        out.getindex()[e] = first + k;
        out.addr()[e] = x.addr()[k];
        if (out.isc()) out.addi()[e] = x.addi()[k];
        ++e;
    }
    return true;
}

} // namespace

// A few columns at a time, so that no full matrix of this order is made.
Mm sparse_inverse(const Mm &a) {
    const kn_size n = a.rows(), most = std::max<kn_size>(1, (1 << 20) / n);
    CompressedColumns columns(a, n);
    if (!columns) return x_M;
    SparseSystem system(columns, nullptr);
    Mm out(a.isc(), 1, a.getnnz(), n, n, kn_double);
    if (!system || !out.issparse()) return x_M;
    out.getnnz() = 0;
    for (kn_size j = 0; j < n; j += most) {
        const kn_size q = std::min(most, n - j);
        Mm b = zeros(n, q);
        if (lacks(b, n * q)) return x_M;
        for (kn_size k = 0; k < q; ++k) *b.addr(j + k + 1, k + 1) = 1;
        const Mm x = system.solve(b);
        if (x.getnnz() == 0 || !append(out, x, j)) return x_M;
    }
    check(out);
    return out;
}

Mm solve_sparse(const Mm &a, const Mm &b) {
    const kn_size m = a.rows(), n = a.cols();
    if (m > n) return solve_overdetermined(a, b);
    CompressedColumns leading(a, m);
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
    if (!kn::sparse_doubles_of(a, "lusolve", x) || !kn::doubles_of(b, "lusolve", full_b)) return x_M;
    if (error_2d(full_b, "lusolve")) return x_M;
    if (a.size() == 0 || b.size() == 0) return nop_M;
    const int n = static_cast<int>(a.rows());
    if (b.rows() != n) {
        error("%s: a,b does not have the same number of rows", "lusolve");
        return x_M;
    }
    kn::CompressedColumns columns(x, n);
    kn::Scratch<int> order(n);
    if (!columns || !order || !kn::permutation_of(p, n, order.get())) return x_M;
    return kn::solve_columns(columns, full_b, order.get());
}
