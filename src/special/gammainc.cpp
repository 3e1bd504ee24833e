// The regularized lower incomplete gamma function P(a, x).
//
// With E = x - a - a ln(x / a) >= 0, the factor x^a e^-x / Gamma(a + 1) is exp(-E - rest(a)) / sqrt(2 pi a),
// and P below the mean, 1 - P above it, is at most exp(-E). Three ways, each where it is short and does not
// cancel: large a near the mean: Temme's expansion; otherwise below a + 1: the power series; above: the
// continued fraction of 1 - P.

#include "special/special_functions.h"
#include "special/stirling.h"

#include <cmath>

namespace kn {

using namespace special;

namespace {

constexpr double temme_from = 20;
constexpr Transition temme(26, 1, 0);

/// 1 + x / (a + 1) + x^2 / ((a + 1) (a + 2)) + ..., DLMF 8.11.4.
wide power_series(wide x, wide a) {
    wide sum = 1, term = 1;
    for (wide n = a + 1; term > sum * 0x1p-60L; ++n) sum += term *= x / n;
    return sum;
}

/// a Gamma(a, x) e^x / x^a by Steed's method, DLMF 8.9.2 contracted.
wide continued_fraction(wide x, wide a) {
    wide b = x + 1 - a, d = 1 / b, step = d, sum = d;
    for (wide n = 1; std::fabs(step) > sum * 0x1p-60L; ++n) {
        const wide c = n * (a - n);
        b += 2;
        d = 1 / (b + c * d);
        step *= b * d - 1;
        sum += step;
    }
    return a * sum;
}

} // namespace

double gammainc_real(double x, double a) noexcept {
    if (std::isnan(x) || std::isnan(a)) return x + a;
    if (x < 0 || a < 0 || (x == inf && a == inf)) return nan;
    if (x == 0 || a == inf) return 0;
    if (a == 0 || x == inf) return 1;

    const wide wx = x, wa = a;
    const wide exponent = wa * log_excess((wx - wa) / wa, wx / wa);
    if (exponent > exponent_limit) return x < a ? 0 : 1;
    const wide rest = stirling_rest(wa);
    if (a >= temme_from && exponent <= wa / 4)
        return temme(a, exponent, x < a, std::exp(static_cast<double>(-rest)));
    const wide factor = std::exp(-exponent - rest) / std::sqrt(two_pi * wa);
    return x < a + 1 ? factor * power_series(wx, wa) : 1 - factor * continued_fraction(wx, wa);
}

} // namespace kn
