// Arithmetic and elementary functions on one complex number.
//
// The formulas, and the places where a zero imaginary part takes a short way, are part of what a program sees
// (signs of zero, NaN from infinite parts): std::complex has others. No formula scales against overflow but
// where it is said. Principal values: logarithm and angle in (-pi, pi], square root in the right half plane.
#ifndef QUORVEX_CORE_COMPLEX_MATH_H
#define QUORVEX_CORE_COMPLEX_MATH_H

#include <cmath>

#include "core/kernels/isa.h"
#include "core/scalar_kernels.h"

namespace kn::inline KN_ISA {

struct Z {
    double re, im;
};

inline constexpr Z z_i = {0, 1};

inline Z operator+(Z a, Z b) { return {a.re + b.re, a.im + b.im}; }
inline Z operator-(Z a, Z b) { return {a.re - b.re, a.im - b.im}; }
inline Z operator*(Z a, Z b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
inline Z operator*(double x, Z a) { return {x * a.re, x * a.im}; }

// Both parts divided by a real number, or by a real divisor that stands in a complex plane: there an
// imaginary part of 0 stays 0.
inline Z operator/(Z a, double x) { return {a.re / x, a.im / x}; }
inline Z operator/(Z a, Z d) {
    if (d.im == 0) return {a.re / d.re, a.im == 0 ? 0 : a.im / d.re};
    double m = d.re * d.re + d.im * d.im;
    return {(d.re * a.re + d.im * a.im) / m, (d.re * a.im - d.im * a.re) / m};
}

inline Z reciprocal(Z z) {
    if (z.im == 0) return {1 / z.re, 0};
    double m = z.re * z.re + z.im * z.im;
    return {z.re / m, -z.im / m};
}

inline Z square(Z z) { return z * z; }
inline Z times_i(Z z) { return {-z.im, z.re}; }
inline Z over_i(Z z) { return {z.im, -z.re}; }
inline double squared_modulus(Z z) { return z.re * z.re + z.im * z.im; }

// Scaled against overflow.
inline double modulus(Z z) {
    double u = std::fabs(z.re), v = std::fabs(z.im);
    if (u > v) return u * std::sqrt((v / u) * (v / u) + 1);
    if (v == 0 && u == u) return 0;
    return v * std::sqrt((u / v) * (u / v) + 1);
}

inline double angle_real(double x) { return x != x ? x : x < 0 ? raw_pi : 0; }
inline double angle(Z z) { return z.im == 0 ? angle_real(z.re) : std::atan2(z.im, z.re); }

inline Z complex_exp(Z z) {
    double r = std::exp(z.re);
    return {r * std::cos(z.im), r * std::sin(z.im)};
}

// An imaginary part of -0 counts as 0: the angle of a negative number is +pi.
inline Z complex_log(Z z) {
    double r = modulus(z);
    if (r == 0) return {-raw_inf, 0};
    return {std::log(r), z.im == 0 && z.re < 0 ? raw_pi : std::atan2(z.im, z.re)};
}

inline Z complex_sqrt(Z z) {
    double t = std::sqrt((modulus(z) + std::fabs(z.re)) / 2), u = z.im < 0 ? -t : t;
    if (z.re > 0) return {t, z.im / (2 * t)};
    if (z.re < 0) return {z.im / (2 * u), u};
    return {t, u};
}

inline double sin_real(double x) { return std::sin(reduced(x)); }
inline double cos_real(double x) { return std::cos(reduced(x)); }
inline double tan_real(double x) { return std::tan(reduced(x)); }

inline Z complex_cos(Z z) {
    if (z.im == 0) return {cos_real(z.re), 0};
    return {std::cos(z.re) * std::cosh(z.im), -std::sin(z.re) * std::sinh(z.im)};
}
inline Z complex_sin(Z z) {
    if (z.im == 0) return {sin_real(z.re), 0};
    return {std::sin(z.re) * std::cosh(z.im), std::cos(z.re) * std::sinh(z.im)};
}
inline Z complex_tan(Z z) {
    if (z.im == 0) return {tan_real(z.re), 0};
    return complex_sin(z) / complex_cos(z);
}
inline Z complex_cosh(Z z) {
    if (z.im == 0) return {std::cosh(z.re), 0};
    return {std::cosh(z.re) * std::cos(z.im), std::sinh(z.re) * std::sin(z.im)};
}
inline Z complex_sinh(Z z) {
    if (z.im == 0) return {std::sinh(z.re), 0};
    return {std::sinh(z.re) * std::cos(z.im), std::cosh(z.re) * std::sin(z.im)};
}
inline Z complex_tanh(Z z) {
    if (z.im == 0) return {std::tanh(z.re), 0};
    double t = std::tanh(z.re), u = std::tan(z.im);
    return Z{t, u} / Z{1, t * u};
}

// -- Inverse functions. Of a real number where the result is real ...

inline double asinh_real(double x) {
    constexpr double far = -262144; // -1 / sqrt(eps) / 256: there x + sqrt(x^2 + 1) cancels
    return x < far ? std::log(-0.5 / x) : std::log(x + std::sqrt(x * x + 1));
}
inline double acosh_real(double x) { return std::log(x + std::sqrt(x * x - 1)); }
inline double atanh_real(double x) { return x == 1 ? raw_inf : 0.5 * std::log((x + 1) / (1 - x)); }

// ... and in the complex plane, by logarithm and square root.

inline Z complex_acos(Z z) {
    Z s = complex_sqrt(Z{1, 0} - square(z));
    return over_i(complex_log(z + times_i(s)));
}
inline Z complex_asin(Z z) {
    Z s = complex_sqrt(Z{1, 0} - square(z));
    return over_i(complex_log(times_i(z) + s));
}
inline Z complex_atan(Z z) {
    if (z.im == 0) return {std::atan(z.re), 0};
    return 0.5 * times_i(complex_log((z_i + z) / (z_i - z)));
}
inline Z complex_atanh(Z z) { return 0.5 * complex_log((Z{1, 0} + z) / (Z{1, 0} - z)); }

// ln(z + sqrt(z^2 + c)) for c = 1 or -1, scaled by the largest of |re|, |im| and 1.
inline Z log_hyperbola(Z z, double c) {
    double t = std::fmax(std::fmax(std::fabs(z.re), std::fabs(z.im)), 1);
    Z w = square({z.re / t, z.im / t});
    return complex_log(z + t * complex_sqrt({w.re + c / (t * t), w.im}));
}
inline Z complex_asinh(Z z) { return log_hyperbola(z, 1); }
inline Z complex_acosh(Z z) {
    if (z.re == 0)
        return {std::log(std::fabs(z.im) + std::sqrt(z.im * z.im + 1)), z.im < 0 ? -raw_pi / 2 : raw_pi / 2};
    return log_hyperbola(z, -1);
}

// a to the b. A whole exponent from 0 on that fits an int goes by repeated squaring, all else by the
// logarithm.
inline Z complex_pow(Z a, Z b) {
    Z log_a;
    if (b.im == 0) {
        if (!std::isfinite(b.re)) return {real_pow(a.re, b.re), 0};
        if (b.re >= 0 && b.re <= 2147483647 && b.re == std::floor(b.re)) {
            Z p = {1, 0};
            for (int n = static_cast<int>(b.re); n > 0; n >>= 1, a = square(a))
                if (n & 1) p = p * a;
            return p;
        }
        if (a.im == 0 && a.re >= 0) return {real_pow(a.re, b.re), 0};
    }
    if (b.im == 0 && a.im == 0 && a.re < 0) {
        log_a = {std::log(-a.re), raw_pi};
    } else {
        if (std::isnan(a.re)) return {raw_nan, 0};
        if (a.re == 0 && a.im == 0) return {0, 0};
        log_a = complex_log(a);
    }
    // A zero imaginary part adds no term, so that no NaN comes from its product with an infinity.
    Z p = b.im == 0 ? b.re * log_a : log_a.im == 0 ? log_a.re * b : b * log_a;
    return complex_exp(p);
}

} // namespace kn::inline KN_ISA

#endif
