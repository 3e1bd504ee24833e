// The regularized incomplete beta function I_x(a, b).
//
// With y = 1 - x, r = a + b and the mean x0 = a / r, y0 = b / r, let E = -a ln(x / x0) - b ln(y / y0) >= 0.
// Then x^a y^b / B(a, b) is sqrt(a b / (2 pi r)) exp(rest(r) - rest(a) - rest(b) - E), and I below the mean,
// 1 - I above it, is at most exp(-E). Large parameters near the mean go by Temme's expansion, in the scaled
// distance w = (x - x0) / (x0 y0), with m = a b / r, p = y0 - x0 and q = x0 y0; all else by a continued
// fraction, on that side of the mean where it is short. A parameter below 1 makes that fraction long near its
// end of 0..1, and 1 - I cancel: there, a power series of ln I.

#include "special/special_functions.h"
#include "special/stirling.h"

#include <algorithm>
#include <cmath>

namespace kn {

using namespace special;

namespace {

constexpr double temme_from = 400;

/// b x - a (1 - x) without the rounding of the products: near the mean they cancel, and large parameters
/// magnify what is lost.
wide distance_from_mean(double x, double a, double b) {
    const double ax = a * x, bx = b * x;
    const wide lost = static_cast<wide>(std::fma(a, x, -ax)) + std::fma(b, x, -bx);
    return (static_cast<wide>(std::max(ax, bx)) - a) + std::min(ax, bx) + lost;
}

/// B(a, b) I_x(a, b) / (x^a y^b) for a >= 1 and x below the mean, where d = b x - a y. The even part of
/// DLMF 8.17.22: A. R. DiDonato, A. H. Morris, Algorithm 708, ACM Trans. Math. Softw. 18 (1992) 360-373, by
/// Steed's method.
wide continued_fraction(wide x, wide y, wide a, wide b, wide d) {
    wide behind = 1 / (a + 1), inverse = 1 / (a * behind * (1 - d)), step = inverse, sum = inverse;
    for (wide n = 1; std::fabs(step) > sum * 0x1p-60L; ++n) {
        const wide before = behind, s = n * (b - n) * x * before;
        behind = 1 / (a + 2 * n + 1);
        const wide numerator = (a + n - 1) * before * (a + b + n - 1) * x * s;
        const wide denominator = n + s + (a + n) * behind * (1 - d + n * (1 + y));
        inverse = 1 / (denominator + numerator * inverse);
        step *= denominator * inverse - 1;
        sum += step;
    }
    return sum;
}

/// ln(Gamma(z + s) / Gamma(z)) for 0 < s < 1, relatively exact as s goes to 0.
wide log_gamma_step(wide z, wide s) {
    wide grown = 0; // (1 + s / z) (1 + s / (z + 1)) ... - 1
    for (; z < 10; ++z) grown += (1 + grown) * (s / z);
    return (z - 0.5L) * std::log1p(s / z) + s * std::log(z + s) - s + stirling_rest_step(z, s) -
           std::log1p(grown);
}

/// ln I_x(a, b) for a < 1 and small x and b x, DLMF 8.17.7: relatively exact even where I is all but 1.
wide log_power_series(wide x, wide a, wide b) {
    wide sum = 0, term = 1, step = 1;
    for (wide n = 1; std::fabs(step) > 0x1p-64L; ++n) {
        term *= (n - b) * x / n;
        sum += step = term / (a + n);
    }
    return a * std::log(x) + log_gamma_step(b, a) - log_gamma_step(1, a) + std::log1p(a * sum);
}

} // namespace

double betainc_real(double x, double a, double b) noexcept {
    if (std::isnan(x) || std::isnan(a) || std::isnan(b)) return nan;
    if (x < 0 || x > 1 || a < 0 || b < 0) return nan;
    if (x == 0 || x == 1) return x;
    if (a == b && (a == 0 || a == inf)) return nan;
    if (a == 0 || b == inf) return 1;
    if (b == 0 || a == inf) return 0;

    const wide wx = x, wa = a, wb = b, y = 1 - wx, r = wa + wb;
    const wide d = distance_from_mean(x, a, b), m = wa * (wb / r);
    if (a < 1 && x <= 0.5 && b * x <= 2) return std::exp(log_power_series(wx, wa, wb));
    if (b < 1 && y <= 0.5L && wa * y <= 2) return -std::expm1(log_power_series(y, wb, wa));

    const wide exponent = wa * log_excess(d / wa, wx * (r / wa)) + wb * log_excess(-d / wb, y * (r / wb));
    if (exponent > exponent_limit) return d < 0 ? 0 : 1;
    const wide rests = stirling_rest(r) - stirling_rest(wa) - stirling_rest(wb);
    if (m >= temme_from && exponent <= m / 8) {
        const double x0 = wa / r, y0 = wb / r;
        return Transition(16, y0 - x0, x0 * y0)(m, exponent, d < 0, std::exp(static_cast<double>(rests)));
    }
    const wide factor = std::sqrt(m / two_pi) * std::exp(rests - exponent);
    return d <= 0 ? factor * continued_fraction(wx, y, wa, wb, d)
                  : 1 - factor * continued_fraction(y, wx, wb, wa, -d);
}

} // namespace kn
