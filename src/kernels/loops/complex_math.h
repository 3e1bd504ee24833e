// Arithmetic and elementary functions on one complex number.
//
// The formulas, and the places where a zero imaginary part takes a short way, are part of what a program sees
// (signs of zero, NaN from infinite parts): std::complex has others. No formula scales against overflow but
// where it is said. Principal values: logarithm and angle in (-pi, pi], square root in the right half plane.
#ifndef QUORVEX_KERNELS_LOOPS_COMPLEX_MATH_H
#define QUORVEX_KERNELS_LOOPS_COMPLEX_MATH_H

#include <cmath>

#include "base/instruction_set.h"
#include "kernels/loops/elementary.h"
#include "special/scalar_kernels.h"

namespace kn::inline KN_ISA {

// T is a double, or a vector of them.
template <class T> struct Complex { T re, im; };
using Z = Complex<double>;

template <class T> Complex<T> operator+(Complex<T> a, Complex<T> b) { return {a.re + b.re, a.im + b.im}; }
template <class T> Complex<T> operator-(Complex<T> a, Complex<T> b) { return {a.re - b.re, a.im - b.im}; }
template <class T> Complex<T> operator*(Complex<T> a, Complex<T> b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
template <class T> Complex<T> operator*(double x, Complex<T> a) { return {x * a.re, x * a.im}; }
template <class T> Complex<T> operator/(Complex<T> a, double x) { return {a.re / x, a.im / x}; }

// When the imaginary part of the divisor is 0, both parts are divided by its real part, so an imaginary part
// of 0 remains 0.
template <class T> Complex<T> operator/(Complex<T> a, Complex<T> d) {
    auto real = d.im == 0;
    T by = real ? d.re : d.re * d.re + d.im * d.im;
    T re = (real ? a.re : d.re * a.re + d.im * a.im) / by;
    T im = (real ? a.im : d.re * a.im - d.im * a.re) / by;
    return {re, math::both(real, a.im == 0) ? math::same<T>(0) : im};
}

template <class T> Complex<T> reciprocal(Complex<T> z) {
    auto real = z.im == 0;
    T by = real ? z.re : z.re * z.re + z.im * z.im;
    return {(real ? math::same<T>(1) : z.re) / by, real ? math::same<T>(0) : -z.im / by};
}

template <class T> Complex<T> number(double re, double im = 0) {
    return {math::same<T>(re), math::same<T>(im)};
}
template <class T> Complex<T> one_nan(Complex<T> z) { return {math::one_nan(z.re), math::one_nan(z.im)}; }
template <class T> Complex<T> square(Complex<T> z) { return z * z; }
template <class T> Complex<T> times_i(Complex<T> z) { return {-z.im, z.re}; }
template <class T> Complex<T> over_i(Complex<T> z) { return {z.im, -z.re}; }
template <class T> T squared_modulus(Complex<T> z) { return z.re * z.re + z.im * z.im; }

// Scaled against overflow.
template <class T> T modulus(Complex<T> z) {
    T u = math::abs(z.re), v = math::abs(z.im);
    T most = u > v ? u : v, q = (u > v ? v : u) / most;
    T m = most * math::sqrt(q * q + 1.0);
    return math::both(most == 0, u == u) ? math::same<T>(0) : m;
}

inline double angle_real(double x) { return x != x ? x : x < 0 ? raw_pi : 0; }
template <class T> T angle(Complex<T> z) {
    T of_real = z.re < 0 ? math::same<T>(raw_pi) : z.re != z.re ? z.re : math::same<T>(0);
    auto real = z.im == 0;
    return math::all(real) ? of_real : real ? of_real : math::atan2(z.im, z.re);
}

template <class T> Complex<T> complex_exp(Complex<T> z) {
    T r = math::exp(z.re);
    return {r * math::cos(z.im), r * math::sin(z.im)};
}

// An imaginary part of -0 counts as 0: the angle of a negative number is +pi.
template <class T> Complex<T> complex_log(Complex<T> z) {
    T r = modulus(z), angle = math::atan2(z.im, z.re);
    angle = math::both(z.im == 0, z.re < 0) ? math::same<T>(raw_pi) : angle;
    return {math::log(r), r == 0 ? math::same<T>(0) : angle};
}

template <class T> Complex<T> complex_sqrt(Complex<T> z) {
    T t = math::sqrt((modulus(z) + math::abs(z.re)) / 2.0), u = z.im < 0 ? -t : t;
    T q = z.im / (2.0 * (z.re < 0 ? u : t));
    return {z.re < 0 ? q : t, z.re > 0 ? q : u};
}

// -- Functions with a short way for an imaginary part of 0: the real function, and 0.

template <class T> Complex<T> complex_cos(Complex<T> z) {
    auto real = z.im == 0;
    T x = real ? math::reduced(z.re) : z.re, zero = math::same<T>(0);
    if (math::all(real)) return {math::cos(x), zero};
    return {math::cos(x) * math::cosh(z.im), real ? zero : -math::sin(x) * math::sinh(z.im)};
}
template <class T> Complex<T> complex_sin(Complex<T> z) {
    auto real = z.im == 0;
    T x = real ? math::reduced(z.re) : z.re, zero = math::same<T>(0);
    if (math::all(real)) return {math::sin(x), zero};
    return {math::sin(x) * math::cosh(z.im), real ? zero : math::cos(x) * math::sinh(z.im)};
}
template <class T> Complex<T> complex_cosh(Complex<T> z) {
    auto real = z.im == 0;
    T zero = math::same<T>(0);
    if (math::all(real)) return {math::cosh(z.re), zero};
    return {math::cosh(z.re) * math::cos(z.im), real ? zero : math::sinh(z.re) * math::sin(z.im)};
}
template <class T> Complex<T> complex_sinh(Complex<T> z) {
    auto real = z.im == 0;
    T zero = math::same<T>(0);
    if (math::all(real)) return {math::sinh(z.re), zero};
    return {math::sinh(z.re) * math::cos(z.im), real ? zero : math::cosh(z.re) * math::sin(z.im)};
}

// f of real numbers where the imaginary part is 0, g of complex ones elsewhere.
template <class T, class F, class G> Complex<T> by_part(Complex<T> z, F f, G g) {
    auto real = z.im == 0;
    T zero = math::same<T>(0);
    if (math::all(real)) return {f(z.re), zero};
    Complex<T> w = g(z);
    if (math::any(real)) w = {real ? f(z.re) : w.re, real ? zero : w.im};
    return w;
}

template <class T> Complex<T> complex_tan(Complex<T> z) {
    return by_part(
        z, [](T x) { return math::tan(math::reduced(x)); },
        [](Complex<T> w) { return complex_sin(w) / complex_cos(w); });
}
template <class T> Complex<T> complex_tanh(Complex<T> z) {
    return by_part(
        z, [](T x) { return math::tanh(x); },
        [](Complex<T> w) {
            T t = math::tanh(w.re), u = math::tan(w.im);
            return Complex<T>{t, u} / Complex<T>{math::same<T>(1), t * u};
        });
}
template <class T> Complex<T> complex_atan(Complex<T> z) {
    return by_part(
        z, [](T x) { return math::atan(x); },
        [](Complex<T> w) {
            const auto i = number<T>(0, 1);
            return 0.5 * times_i(complex_log((i + w) / (i - w)));
        });
}

template <class T> Complex<T> complex_sinc(Complex<T> z) {
    Complex<T> pz = raw_pi * z, w = complex_sin(pz) / pz;
    auto none = math::both(z.re == 0, z.im == 0);
    return {none ? math::same<T>(1) : w.re, none ? math::same<T>(0) : w.im};
}

// -- Inverse functions, by logarithm and square root.

template <class T> Complex<T> complex_acos(Complex<T> z) {
    Complex<T> s = complex_sqrt(number<T>(1) - square(z));
    return over_i(complex_log(z + times_i(s)));
}
template <class T> Complex<T> complex_asin(Complex<T> z) {
    Complex<T> s = complex_sqrt(number<T>(1) - square(z));
    return over_i(complex_log(times_i(z) + s));
}
template <class T> Complex<T> complex_atanh(Complex<T> z) {
    return 0.5 * complex_log((number<T>(1) + z) / (number<T>(1) - z));
}

// ln(z + sqrt(z^2 + c)) for c = 1 or -1, scaled by the largest of |re|, |im| and 1.
template <class T> Complex<T> log_hyperbola(Complex<T> z, double c) {
    T u = math::abs(z.re), v = math::abs(z.im), t = math::same<T>(1);
    t = u > t ? u : t;
    t = v > t ? v : t;
    Complex<T> w = square(Complex<T>{z.re / t, z.im / t});
    Complex<T> s = complex_sqrt(Complex<T>{w.re + c / (t * t), w.im});
    return complex_log(z + Complex<T>{t * s.re, t * s.im});
}
template <class T> Complex<T> complex_asinh(Complex<T> z) { return log_hyperbola(z, 1); }
template <class T> Complex<T> complex_acosh(Complex<T> z) {
    auto imaginary = z.re == 0;
    Complex<T> w = log_hyperbola(z, -1);
    if (!math::any(imaginary)) return w;
    T re = math::log(math::abs(z.im) + math::sqrt(z.im * z.im + 1.0));
    T im = z.im < 0 ? math::same<T>(-raw_pi / 2) : math::same<T>(raw_pi / 2);
    return {imaginary ? re : w.re, imaginary ? im : w.im};
}

// a to the b. A whole exponent from 0 on that fits an int goes by repeated squaring, all else by the
// logarithm.

// A zero imaginary part adds no term, so that no NaN comes from its product with an infinity.
template <class T> Complex<T> complex_power_by_logarithm(Complex<T> a, Complex<T> b) {
    Complex<T> log_a = complex_log(a), p = b * log_a;
    p = {log_a.im == 0 ? log_a.re * b.re : p.re, log_a.im == 0 ? log_a.re * b.im : p.im};
    p = {b.im == 0 ? b.re * log_a.re : p.re, b.im == 0 ? b.re * log_a.im : p.im};
    return complex_exp(p);
}

inline Z complex_pow(Z a, Z b) {
    if (b.im == 0) {
        if (!std::isfinite(b.re)) return {math::pow(a.re, b.re), 0};
        if (b.re >= 0 && b.re <= 2147483647 && b.re == std::floor(b.re)) {
            Z p = {1, 0};
            for (int n = static_cast<int>(b.re); n > 0; n >>= 1, a = square(a))
                if (n & 1) p = p * a;
            return p;
        }
        if (a.im == 0 && a.re >= 0) return {math::pow(a.re, b.re), 0};
    }
    if (std::isnan(a.re)) return {raw_nan, 0};
    if (a.re == 0 && a.im == 0) return {0, 0};
    return complex_power_by_logarithm(a, b);
}

#ifdef KN_VECTOR_BYTES
// Lanes that take no logarithm, or perhaps none, go one by one.
inline Complex<math::V> complex_pow(Complex<math::V> a, Complex<math::V> b) {
    math::Mask whole = (b.im == 0) & (b.re >= 0) & (math::nearest(b.re) == b.re);
    math::Mask easy = (b.im == 0) & (a.im == 0) & (a.re >= 0);
    math::Mask none = (a.re != a.re) | ((a.re == 0) & (a.im == 0)) | !(math::abs(b.re) < 0x1p51);
    math::Mask alone = whole | easy | none;
    Complex<math::V> p = {};
    if (!math::all(alone)) p = complex_power_by_logarithm(a, b);
    if (math::any(alone))
        for (ptrdiff_t k = 0; k < math::lanes; ++k) {
            if (!alone[k]) continue;
            Z one = complex_pow(Z{a.re[k], a.im[k]}, Z{b.re[k], b.im[k]});
            p.re[k] = one.re;
            p.im[k] = one.im;
        }
    return p;
}
#endif

} // namespace kn::inline KN_ISA

#endif
