// Private parts that the kernels of the beta and the incomplete functions share.
//
// All of them work with the gamma function in Stirling's form, Gamma(z) = sqrt(2 pi / z) (z / e)^z
// exp(rest(z)): powers are compared as ratios before they are formed, so that nothing overflows and large
// arguments cancel on paper instead of in the machine. Exponents are kept in `wide`: an error of 2^-64 in an
// exponent of 700 still leaves double accuracy.

#pragma once

#include <array>
#include <limits>

namespace kn::special {

using wide = long double;

inline constexpr double inf = std::numeric_limits<double>::infinity();
inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();
inline constexpr wide two_pi = 6.283185307179586476925286766559L;

/// No probability above the smallest double is left where the exponent is larger than this.
inline constexpr wide exponent_limit = 760;

/// ln Gamma(z) - ((z - 1/2) ln z - z + ln(2 pi) / 2) for z > 0; falls to 0 as 1 / (12 z).
wide stirling_rest(wide z);

/// stirling_rest(z + s) - stirling_rest(z) for z >= 10 and 0 < s < 1, relatively exact as s goes to 0.
wide stirling_rest_step(wide z, wide s);

/// ln B(a, b) for finite a, b > 0. Largest error seen along the curve B = 1: 4e-19.
wide log_beta(wide a, wide b);

/// u - ln(1 + u) for u > -1, without cancellation. `ratio` is 1 + u as the caller knows it best.
wide log_excess(wide u, wide ratio);

/// The expansion by which the incomplete gamma and beta functions pass from 0 to 1 when their parameters are
/// large.
///
/// Both are F(t) = G sqrt(m / (2 pi)) * integral of exp(-m s^2 / 2) f(s) from the lower end to t, where f(s)
/// = s / w(s) and w, the scaled distance from the mean, obeys w w' = s (1 + p w - q w^2), w = s + ... Hence
///     F(t) = erfc(-t sqrt(m / 2)) / 2 - exp(-m t^2 / 2) S(t) / sqrt(2 pi m),    S' / m - t S = 1 - G f(t),
/// and the coefficients of S follow from those of f backwards. Gamma: m = a, p = 1, q = 0. Beta: see
/// special_betainc.cpp. N. M. Temme, A set of algorithms for the incomplete gamma functions, Probab. Engrg.
/// Inform. Sci. 8 (1994) 291-307; Incomplete Laplace integrals, SIAM J. Math. Anal. 18 (1987) 1638-1663.
class Transition {
    static constexpr int most = 26;
    int n;
    std::array<double, most> f{};

  public:
    /// `terms` of f, at most 26, for these p and q.
    constexpr Transition(int terms, double p, double q) : n(terms) {
        std::array<double, most + 2> w{}, square{};
        w[1] = square[2] = 1;
        for (int i = 3; i <= n + 1; ++i) {
            double s = square[i] = 2 * (p * w[i - 2] - q * square[i - 2]) / i;
            for (int j = 2; j <= i - 2; ++j) s -= w[j] * w[i - j];
            w[i - 1] = s / 2;
        }
        f[0] = 1;
        for (int i = 1; i < n; ++i)
            for (int j = 1; j <= i; ++j) f[i] -= w[j + 1] * f[i - j];
    }

    /// F where m t^2 / 2 = `exponent`, t < 0 if `below`; `g` is G.
    double operator()(double m, wide exponent, bool below, double g) const;
};

} // namespace kn::special
