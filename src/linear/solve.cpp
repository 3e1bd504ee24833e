// Matrix division from the left: the choice of the method.
#include <algorithm>
#include <climits>
#include <cmath>

#include "linear/solvers.h"
#include "linear/sparse_lu.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/solving.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/constants.h"

namespace kn {
namespace {

// The largest modulus so far of the elements of a - a'. NaN is ignored unless all are NaN.
struct Asymmetry {
    double largest = -1;
    void see(double re, double im) { see(std::hypot(re, im)); }
    void see(double d) {
        if (d > largest) largest = d;
    }
    bool small() const { return largest < 10 * raw_eps; }
    bool none() const { return largest < 0 || !small(); }
};

bool full_hermitian(const Mm &a) {
    const kn_size n = a.rows();
    const double *re = a.addr(), *im = a.addi();
    constexpr kn_size block = 32; // of rows whose transposed elements stay in the cache
    Asymmetry d;
    for (kn_size j0 = 0; j0 < n; j0 += block)
        for (kn_size i0 = 0; i0 <= j0; i0 += block) {
            for (kn_size j = j0; j < std::min(j0 + block, n); ++j)
                for (kn_size i = i0; i <= std::min(i0 + block - 1, j); ++i) {
                    const kn_size k = i + j * n, t = j + i * n;
                    if (im)
                        d.see(re[k] - re[t], im[k] + im[t]);
                    else
                        d.see(std::fabs(re[k] - re[t]));
                }
            if (d.largest >= 0 && !d.small()) return false;
        }
    return !d.none();
}

bool sparse_hermitian(const Mm &a) {
    const kn_size n = a.rows();
    const double *re = a.addr(), *im = a.addi();
    Asymmetry d;
    if (a.getnnz() < a.size()) d.see(0); // an element that isn't stored, or whose transposed one isn't
    for (kn_size k = 0; k < a.getnnz(); ++k) {
        const kn_size row = a.getindex()[k] % n, column = a.getindex()[k] / n, t = a.search(column + row * n);
        double other = t < 0 ? 0 : re[t];
        if (im)
            d.see(re[k] - other, im[k] + (t < 0 ? 0 : im[t]));
        else
            d.see(std::fabs(re[k] - other));
    }
    return !d.none();
}

} // namespace

bool doubles_of(const Mm &x, const char *name, Mm &out) {
    if (error_numeric(x, name)) return false;
    if (std::max(x.rows(), x.cols()) > INT_MAX) {
        error("%s: matrix too large for LAPACK", name);
        return false;
    }
    out = full(x);
    if (out.gettype() == kn_uint8) out = mdouble(out);
    return x.size() == 0 || (out.gettype() == kn_double && out.getnnz() > 0);
}

bool sparse_doubles_of(const Mm &x, const char *name, Mm &out) {
    const bool tall = x.rows() > x.cols();
    const kn_size order = tall ? x.rows() + x.cols() : x.rows(),
                  entries = tall ? x.rows() + 2 * x.getnnz() : x.getnnz(), parts = x.isc() ? 2 : 1;
    if (parts * (order + parts * entries) >= INT_MAX || parts * parts * entries > most_entries()) {
        error("%s: matrix too large for SuperLU", name);
        return false;
    }
    out = x.gettype() == kn_uint8 ? sparse(mdouble(x)) : x;
    return out.issparse();
}

} // namespace kn

Mm ishermitian(const Mm &a) {
    a.warn_uninit();
    if (a.gettype() != kn_double) return 0.0;
    if (a.getndims() > 2 || a.rows() != a.cols()) {
        error("ishermitian: '%s' matrix not square", kn_display_name(a));
        return 0.0;
    }
    return a.issparse() ? kn::sparse_hermitian(a) : kn::full_hermitian(a);
}

Mm mldivide(const Mm &a, const Mm &b) {
    if (a.isstruct() || b.isstruct()) return call_class_function("mldivide", a, b);
    a.warn_uninit();
    b.warn_uninit();
    if (a.size() == 0 || b.size() == 0) return nop_M;
    if (a.size() == 1 || (b.size() == 1 && a.getndims() > 2)) return rdivide(b, a);
    if (a.rows() != b.rows()) {
        error("%s: a,b does not have the same number of rows", "mldivide");
        return x_M;
    }
    if (error_2d(a, "mldivide") || error_2d(b, "mldivide")) return x_M;
    Mm full_a, full_b;
    if (!kn::doubles_of(b, "mldivide", full_b) || error_numeric(a, "mldivide")) return x_M;
    Mm x;
    if (a.issparse()) {
        if (!kn::sparse_doubles_of(a, "mldivide", full_a)) return x_M;
        x = kn::solve_sparse(full_a, full_b);
    } else {
        if (!kn::doubles_of(a, "mldivide", full_a)) return x_M;
        if (a.rows() != a.cols())
            x = kn::solve_rectangular(full_a, full_b);
        else if (!full_a.isc() && !full_b.isc() && ishermitian(a).r() != 0)
            x = kn::solve_symmetric(full_a, full_b);
        else
            x = kn::solve_square(full_a, full_b);
    }
    return b.issparse() && x.size() != 0 ? sparse(x) : x;
}

Mm invdiv(const Mm &a, const Mm &b) { return mldivide(a, b); }

Mm kn::matrix_right_division(const Mm &a, const Mm &b) {
    a.warn_uninit();
    b.warn_uninit();
    return ctranspose(mldivide(ctranspose(b), ctranspose(a)));
}
