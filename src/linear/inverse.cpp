// Inverse and determinant.
#include <algorithm>
#include <cmath>

#include "base/number_tests.h"
#include "linear/blocked_lu.h"
#include "linear/lapack.h"
#include "linear/lu.h"
#include "linear/solvers.h"
#include "quorvex/builders.h"
#include "quorvex/operations.h"
#include "quorvex/solving.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

// LAPACK's inverse leaves factors with a zero pivot unchanged. So does this one for real numbers; complex
// ones are divided by the pivots nevertheless.
template <class T> Mm inverse(const Mm &a) {
    const kn_size n = a.rows();
    Matrix<T> x(a);
    if (!x) return x_M;
    Pivots p(n);
    int zero_pivot;
    if (!p || !factor(x, p, zero_pivot)) return x_M;
    if (zero_pivot == 0) return invert(x, p) ? x.value() : x_M;
    if (!a.isc()) return x.value();
    Matrix<T> columns(ceye(1, n, n));
    return columns && substitute(x, p, columns) ? columns.value() : x_M;
}

// The product of the pivots, with the sign of the interchanges.
Mm determinant(const Matrix<double> &f, const Pivots &p) {
    double d = 1;
    for (int i = 0; i < f.rows(); ++i) d *= p[i] == i + 1 ? f(i, i) : -f(i, i);
    return d;
}

// The same as a mantissa, whose modulus is at least 1 and below 10, times a power of ten.
Mm determinant(const Matrix<complex> &f, const Pivots &p) {
    complex d = 1;
    double exponent = 0;
    for (int i = 0; i < f.rows(); ++i) {
        d *= p[i] == i + 1 ? f(i, i) : -f(i, i);
        if (modulus(d) == 0 || !is_finite(modulus(d))) break;
        for (; modulus(d) < 1; d *= 10) --exponent;
        for (; modulus(d) >= 10; d /= 10) ++exponent;
    }
    Mm out(1, 0, 0, 1, 1, kn_double);
    if (lacks(out, 1)) return x_M;
    *out.addr() = d.real();
    *out.addi() = d.imag();
    return out * power(10.0, exponent);
}

Mm full_determinant(const Mm &a) {
    return by_number(a.isc(), [&]<class T>(T) {
        Matrix<T> f(a);
        if (!f) return x_M;
        Pivots p(a.rows());
        return p && factor(f, p) ? determinant(f, p) : x_M;
    });
}

// l has ones on its diagonal, so the pivots are those of u.
Mm sparse_determinant(const Mm &a) {
    Scratch<double> pivots(a.rows());
    if (!pivots || !sparse_pivots(a, pivots)) return x_M;
    double d = 1;
    for (kn_size k = 0; k < a.rows(); ++k) d *= pivots[k];
    return d;
}

bool all_whole(const Mm &a) {
    auto whole = [n = a.getnnz()](const double *x) {
        return std::all_of(x, x + n, [](double e) { return e == std::floor(e); });
    };
    return a.gettype() == kn_uint8 || (whole(a.addr()) && (!a.isc() || whole(a.addi())));
}

} // namespace
} // namespace kn

Mm inv(const Mm &a) {
    a.warn_uninit();
    if (error_numeric(a, "inv") || error_square(a, "inv")) return x_M;
    if (a.size() == 0) return nop_M;
    Mm x;
    if (a.issparse() && a.size() == 1) return sparse(rdivide(1.0, a));
    if (a.issparse()) return kn::sparse_doubles_of(a, "inv", x) ? kn::sparse_inverse(x) : x_M;
    if (!kn::doubles_of(a, "inv", x)) return x_M;
    if (x.size() == 1) return rdivide(1.0, x);
    return x.isc() ? kn::inverse<kn::complex>(x) : kn::inverse<double>(x);
}

Mm det(const Mm &a) {
    a.warn_uninit();
    if (error_numeric(a, "det")) return x_M;
    if (a.size() == 0) return 1.0;
    if (error_square(a, "det")) return x_M;
    Mm x, d;
    if (a.issparse())
        d = kn::sparse_doubles_of(a, "det", x) ? kn::sparse_determinant(x) : x_M;
    else if (kn::doubles_of(a, "det", x))
        d = kn::full_determinant(x);
    return d.size() == 1 && kn::all_whole(a) ? round(d) : d;
}
