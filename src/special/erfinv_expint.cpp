// erfinv and expint: the rational approximations of Boost.Math, in plain double, where they stay within a few
// units in the last place. This is the only file that includes Boost.Math, as it takes long to compile. Every
// error of it is ignored: it answers Inf or NaN and never throws.

#include "special/special_functions.h"
#include "special/stirling.h"

#include <boost/math/special_functions/erf.hpp>
#include <boost/math/special_functions/expint.hpp>

#include <cmath>

namespace kn {

using namespace special;

namespace {

using namespace boost::math::policies;

using Quiet =
    policy<domain_error<ignore_error>, pole_error<ignore_error>, overflow_error<ignore_error>,
           underflow_error<ignore_error>, denorm_error<ignore_error>, rounding_error<ignore_error>,
           evaluation_error<ignore_error>, indeterminate_result_error<ignore_error>, promote_double<false>>;

/// From here on E1(x) may be subnormal, and the rational approximation would round twice or answer 0.
constexpr double expint_far = 700;

/// exp(-x) / x (1 - 1/x (1 - 2/x (1 - 3/x ...))), DLMF 6.12.1.
double expint_tail(double x) {
    wide s = 1;
    for (int n = 8; n >= 1; --n) s = 1 - n * s / x;
    return std::exp(-wide{x}) * s / x;
}

} // namespace

double erfinv_real(double x) noexcept {
    if (std::isnan(x)) return x;
    if (std::fabs(x) > 1) return nan;
    if (std::fabs(x) == 1) return x * inf;
    if (x == 0) return x;
    return boost::math::erf_inv(x, Quiet());
}

double expint_real(double x) noexcept {
    if (std::isnan(x)) return x;
    if (x == 0) return inf;
    if (x == -inf) return -inf;
    if (x > expint_far) return expint_tail(x);
    return x > 0 ? boost::math::expint(1, x, Quiet()) : -boost::math::expint(-x, Quiet());
}

} // namespace kn
