// Whole powers of square matrices: the squares of the base that the binary digits of the exponent select.
#include <cmath>

#include "base/number_tests.h"
#include "linear/solvers.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/solving.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/constants.h"

namespace kn {
namespace {

// The value of a scalar that is a whole number; else NaN.
double whole_number(const Mm &x) {
    const Mm y = mdouble(x);
    if (y.size() != 1 || (y.isc() && *y.addi() != 0)) return raw_nan;
    const double e = *y.addr();
    return is_finite(e) && e == std::floor(e) ? e : raw_nan;
}

Mm whole_power(const Mm &a, double e) {
    const kn_size n = a.rows();
    if (e == 0) return a.issparse() ? speye(n) : eye(n);
    Mm square = e < 0 ? inv(a) : +a, x;
    for (e = std::fabs(e);; square = square * square) {
        if (square.size() != a.size()) return x_M; // after a report
        if (std::fmod(e, 2) == 1) x = x.size() == 0 ? square : x * square;
        if (e = std::floor(e / 2); e == 0) return x;
    }
}

} // namespace
} // namespace kn

Mm mpower(const Mm &a, const Mm &b) {
    if (a.isstruct() || b.isstruct()) return call_class_function("mpower", a, b);
    a.warn_uninit();
    b.warn_uninit();
    if (a.size() == 0 || b.size() == 0) return nop_M;
    if (error_numeric(a, "mpower") || error_numeric(b, "mpower")) return x_M;
    if (a.size() == 1 && b.size() == 1) return power(a, b);
    if (a.size() != 1 && b.size() != 1) {
        error("mpower: base or exponent must be a scalar");
        return x_M;
    }
    if (error_square(a.size() == 1 ? b : a, "mpower")) return x_M;
    const double e = a.size() == 1 ? kn::raw_nan : kn::whole_number(b);
    if (std::isnan(e)) {
        error("mpower: only whole powers of a matrix are supported");
        return x_M;
    }
    Mm base;
    if (!a.issparse())
        base = mdouble(a);
    else if (!kn::sparse_doubles_of(a, "mpower", base))
        return x_M;
    return base.size() == a.size() ? kn::whole_power(base, e) : x_M;
}
