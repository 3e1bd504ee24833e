// The scaled complementary error function exp(x^2) erfc(x).
//
// For x >= 0, (1 + 2 x) exp(x^2) erfc(x) goes smoothly from 1 to 2 / sqrt(pi), and t = (x - k) / (x + k) maps
// 0..Inf to -1..1: M. M. Shepherd, J. G. Laframboise, Chebyshev approximation of (1 + 2x) exp(x^2) erfc x in
// 0 <= x < Inf, Math. Comp. 36 (1981) 249-253. Here it is 1 + x / (x + k) q(t), exact at 0 and rounded where
// it is small. For x < 0 the reflection 2 exp(x^2) - erfcx(-x) does not cancel.

#include "special/special_functions.h"
#include "special/stirling.h"

#include <cmath>
#include <iterator>

namespace kn {

using namespace special;

namespace {

constexpr double inv_sqrt_pi = 0.5641895835477562869;

constexpr double k = 3.75;

/// q: the Chebyshev sum of degree 23 rearranged by powers of t, which loses nothing as the coefficients fall
/// fast; the truncation is below 6e-18 of the result.
constexpr double q[] = {
    0.4750252616756551557,     -0.7555064588467489947,     0.7626772898176788635,
    -0.5981238128373960051,    0.3805159525538501442,      -0.1959073102328987076,
    0.07852051305452389274,    -0.02179595821896885767,    0.00230279909424395006,
    0.001208452627265130684,   -0.0006210252467805015976,  0.00004071702168169514424,
    0.00006258099831788802359, -0.00001781235257832486688, -5.075517900056025582e-6,
    3.12811108475613789e-6,    3.744960509934087842e-7,    -4.886117230998323334e-7,
    -2.802655977379244828e-8,  7.432846203359867766e-8,    2.558837173813884273e-9,
    -9.957211272573114327e-9,  -2.142475261039233274e-10,  8.20874017401681022e-10,
};

/// From here on the function is 1 / (x sqrt(pi)) to the last bit.
constexpr double asymptotic_from = 1e8;

double erfcx_right(double x) {
    if (x > asymptotic_from) return inv_sqrt_pi / x;
    const double t = (x - k) / (x + k), y = t * t;
    double even = 0, odd = 0;
    for (int n = std::size(q) - 2; n >= 0; n -= 2) {
        even = even * y + q[n];
        odd = odd * y + q[n + 1];
    }
    return (1 + x / (x + k) * (even + t * odd)) / (1 + 2 * x);
}

} // namespace

double erfcx_real(double x) noexcept {
    if (std::isnan(x)) return x;
    if (x >= 0) return erfcx_right(x);
    if (x < -26.63) return inf;
    // An error in x^2 is a relative error of the exponential: put back what the rounding took.
    const double square = x * x, lost = std::fma(x, x, -square), e = std::exp(square);
    return 2 * (e + e * lost) - erfcx_right(-x);
}

} // namespace kn
