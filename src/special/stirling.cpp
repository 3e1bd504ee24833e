// Stirling's rest, the logarithm of the beta function, and the transition of the incomplete functions.

#include "special/stirling.h"
#include "special/special_functions.h"

#include <cmath>
#include <iterator>
#include <utility>

namespace kn::special {

namespace {

constexpr wide half_log_two_pi = 0.918938533204672741780329736405618L;

/// From here on the series of the rest is accurate to 2^-64.
constexpr wide stirling_from = 10;

/// B(2n) / (2n (2n - 1)), NIST Digital Library of Mathematical Functions (DLMF), 5.11.1.
constexpr wide stirling[] = {1.0L / 12,         -1.0L / 360,         1.0L / 1260,    -1.0L / 1680,
                             1.0L / 1188,       -691.0L / 360360,    1.0L / 156,     -3617.0L / 122400,
                             43867.0L / 244188, -174611.0L / 125400, 77683.0L / 5796};

/// 1/3, 1/5, 1/7, ...: enough for |v| <= 1/3 in log_excess.
constexpr auto odd_inverses = [] {
    std::array<wide, 20> c{};
    for (int i = 0; i < 20; ++i) c[i] = 1.0L / (2 * i + 3);
    return c;
}();

} // namespace

wide stirling_rest(wide z) {
    // std::lgamma also writes the C library's `signgam`, which nothing here reads.
    if (z < stirling_from) return std::lgamma(z) - ((z - 0.5L) * std::log(z) - z + half_log_two_pi);
    const wide y = 1 / (z * z);
    wide sum = 0;
    for (int n = std::size(stirling) - 1; n >= 0; --n) sum = sum * y + stirling[n];
    return sum / z;
}

wide stirling_rest_step(wide z, wide s) {
    const wide y = 1 / (z * z), h = -s / (z + s), q = 1 + h;  // q = z / (z + s)
    wide sum = 0, power = 1 / z, q_power = q, difference = h; // z^-k, q^k, q^k - 1 for k = 1, 3, 5, ...
    for (wide c : stirling) {
        sum += c * power * difference;
        difference += q_power * h * (1 + q);
        q_power *= q * q;
        power *= y;
    }
    return sum;
}

wide log_beta(wide a, wide b) {
    if (a > b) std::swap(a, b);
    const wide r = a + b;
    if (b < stirling_from) return std::lgamma(a) + std::lgamma(b) - std::lgamma(r);
    const wide rests = stirling_rest(a) + stirling_rest(b) - stirling_rest(r);
    return half_log_two_pi - 0.5L * std::log(a) - a * std::log(r / a) - (b - 0.5L) * std::log1p(a / b) +
           rests;
}

wide log_excess(wide u, wide ratio) {
    if (std::fabs(u) >= 0.5L) return u - std::log(ratio);

    // ln(1 + u) = 2 artanh(v) with v = u / (2 + u), and u - 2 v = u v.
    const wide v = u / (2 + u), y = v * v;
    wide s = 0;
    for (int i = std::size(odd_inverses) - 1; i >= 0; --i) s = s * y + odd_inverses[i];
    return v * (u - 2 * y * s);
}

double Transition::operator()(double m, wide exponent, bool below, double g) const {
    const double half = static_cast<double>(exponent);
    const double t = (below ? -1 : 1) * std::sqrt(2 * half / m);

    // S = sum of c[i] t^i, where c[i - 1] = g f[i] + (i + 1) c[i + 1] / m.
    double s = 0, c = 0, c_next = 0;
    for (int i = n - 1; i >= 1; --i) {
        const double c_before = g * f[i] + (i + 1) * c_next / m;
        s = s * t + c_before;
        c_next = c;
        c = c_before;
    }

    const double decay = static_cast<double>(std::exp(-exponent)), normal = erfcx_real(std::sqrt(half)) / 2;
    s /= std::sqrt(static_cast<double>(two_pi)) * std::sqrt(m);
    return below ? decay * (normal - s) : 1 - decay * (normal + s);
}

} // namespace kn::special
