// The elementary functions of a real number that the kernels are built upon: of one double, and of a vector
// where the instruction set has them.
//
// In the baseline they are the C library's. In the other sets exponential, logarithm, sine, cosine and power
// are those of approximations.h, the rest those of SLEEF: both give a number the same bits alone and in
// vectors of any length, whatever its neighbours are. Where they are less accurate or special values begin,
// the C library's function is taken for that element. docs/numerics.md has the measured errors.
#ifndef QUORVEX_KERNELS_LOOPS_ELEMENTARY_H
#define QUORVEX_KERNELS_LOOPS_ELEMENTARY_H

#include <cmath>
#include <limits>

#include "base/instruction_set.h"
#include "kernels/loops/approximations.h"
#include "kernels/loops/vectors.h"
#include "special/scalar_kernels.h"

#ifdef KN_VECTOR_BYTES
#include <sleef.h>
#endif

namespace kn::inline KN_ISA::math {

using std::numeric_limits;
constexpr double smallest = numeric_limits<double>::min(), largest = numeric_limits<double>::max();

// The C library's functions. Close to their overflow sinh and cosh take wider numbers; tanh gives back what
// is so small that it would come out another number.
namespace library {
#define KN_LIBRARY(f) \
    inline double f(double x) { return std::f(x); }
KN_LIBRARY(exp)
KN_LIBRARY(log)
KN_LIBRARY(sin)
KN_LIBRARY(cos)
KN_LIBRARY(tan)
KN_LIBRARY(asin)
KN_LIBRARY(acos)
KN_LIBRARY(atan)
#undef KN_LIBRARY
inline double tanh(double x) { return abs(x) < 0x1p-50 ? x : std::tanh(x); }
using wide = long double;
inline double sinh(double x) {
    return abs(x) <= 708 ? std::sinh(x) : static_cast<double>(std::sinh(wide{x}));
}
inline double cosh(double x) {
    return abs(x) <= 708 ? std::cosh(x) : static_cast<double>(std::cosh(wide{x}));
}
} // namespace library

// The argument as sin, cos and tan take it.
inline double reduced(double x) { return abs(x) <= reduce_beyond ? x : range_reduce(x); }

#ifdef KN_VECTOR_BYTES

#if KN_VECTOR_BYTES == 64
#define KN_SLEEF(f) Sleef_finz_##f##d8_u10avx512f
#else
#define KN_SLEEF(f) Sleef_finz_##f##d4_u10avx2
#endif
#define KN_SLEEF_ONE(f) Sleef_finz_##f##d1_u10purecfma

// The lanes where y doesn't hold, by a function of doubles.
template <class F, class... X> [[gnu::noinline]] V mended(V y, Mask holds, F f, X... x) {
    for (ptrdiff_t k = 0; k < lanes; ++k)
        if (!holds[k]) y[k] = f(x[k]...);
    return y;
}
template <class F, class... X> V where_it_holds(V y, Mask holds, F f, X... x) {
    if (all(holds)) [[likely]]
        return y;
    return mended(y, holds, f, x...);
}
template <class F> double where_it_holds(double y, bool holds, F f, double x) { return holds ? y : f(x); }
template <class F> double where_it_holds(double y, bool holds, F f, double x, double z) {
    return holds ? y : f(x, z);
}

#define KN_ELEMENTARY(f, inside)                                                      \
    inline double f(double x) { return inside ? KN_SLEEF_ONE(f)(x) : library::f(x); } \
    inline V f(V x) { return where_it_holds(KN_SLEEF(f)(x), inside, library::f, x); }
#else
#define KN_ELEMENTARY(f, inside) \
    inline double f(double x) { return library::f(x); }
#endif

template <class T> auto between(double low, T x, double high) { return both(x >= low, x <= high); }

// SLEEF is far off in tan of subnormal numbers, an ulp off in sinh and tanh of small ones; exp, sinh and cosh
// give infinity a little early, tanh 1.
KN_ELEMENTARY(tan, between(smallest, abs(x), reduce_beyond))
KN_ELEMENTARY(sinh, between(0x1p-50, abs(x), 708))
KN_ELEMENTARY(cosh, abs(x) <= 708)
KN_ELEMENTARY(tanh, between(0x1p-50, abs(x), 18.5))
KN_ELEMENTARY(asin, abs(x) <= 1)
KN_ELEMENTARY(acos, abs(x) <= 1)
KN_ELEMENTARY(atan, abs(x) <= largest)
#undef KN_ELEMENTARY

#ifdef KN_VECTOR_BYTES

inline V reduced(V x) { return where_it_holds(x, abs(x) <= reduce_beyond, range_reduce, x); }

template <class T> T exp(T x) { return where_it_holds(exp_of(x), abs(x) <= 708, library::exp, x); }
template <class T> T log(T x) {
    return where_it_holds(log_of(x), between(smallest, x, largest), library::log, x);
}
template <class T> T sin(T x) {
    return where_it_holds(sine<false>(x), abs(x) <= reduce_beyond, library::sin, x);
}
template <class T> T cos(T x) {
    return where_it_holds(sine<true>(x), abs(x) <= reduce_beyond, library::cos, x);
}

// With the argument reduced, tested once.
template <class T> T sin_of_reduced(T x) {
    return where_it_holds(
        sine<false>(x), abs(x) <= reduce_beyond, [](double v) { return sin(reduced(v)); }, x);
}
template <class T> T cos_of_reduced(T x) {
    return where_it_holds(
        sine<true>(x), abs(x) <= reduce_beyond, [](double v) { return cos(reduced(v)); }, x);
}

template <class T> T atan2(T y, T x) {
    T angle;
    if constexpr (sizeof(T) == sizeof(double))
        angle = KN_SLEEF_ONE(atan2)(y, x);
    else
        angle = KN_SLEEF(atan2)(y, x);
    return where_it_holds(
        angle, both(abs(y) <= largest, abs(x) <= largest),
        [](double v, double u) { return std::atan2(v, u); }, y, x);
}

// -- Powers. Whole exponents and halves up to 1024 go by repeated squaring of a sum of two doubles, which is
// rounded once at the end: what is exact stays so, and 10^-5 is the double nearest to it.

template <class T> Sum<T> operator*(Sum<T> a, Sum<T> b) {
    T p = a.high * b.high;
    T rest = fused(a.high, b.high, -p) + (a.high * b.low + a.low * b.high);
    T high = p + rest;
    return {high, rest - (high - p)};
}

constexpr double largest_exponent_by_squaring = 1024;

// n is a whole number from 0 on.
template <class T> Sum<T> whole_power(Sum<T> x, T n) {
    T half = nearest(n * 0.5 - 0.25);
    auto odd = n != half + half;
    Sum<T> p = {odd ? x.high : same<T>(1), odd ? x.low : same<T>(0)};
    while (any(half != 0)) {
        x = x * x;
        n = half;
        half = nearest(n * 0.5 - 0.25);
        odd = n != half + half;
        Sum<T> q = p * x;
        p = {odd ? q.high : p.high, odd ? q.low : p.low};
    }
    return p;
}

// A power, and where it holds.
template <class T> struct Power {
    T value;
    decltype(T() < T()) holds;
};

// Of x above 0, or of any x where y is whole.
template <class T> Power<T> power_by_squaring(T x, T y) {
    auto whole = nearest(y) == y;
    T n = abs(y), zero = same<T>(0);
    Sum<T> base = {x, zero};
    if (!all(whole)) {
        T root = sqrt(x), rest = fused(-root, root, x) / (root + root);
        base = {whole ? x : root, whole ? zero : rest};
        n = whole ? n : n + n;
    }
    Sum<T> p = whole_power(base, n);
    if (any(y < 0)) {
        T r = 1.0 / p.high, error = fused(-r, p.high, same<T>(1)) - r * p.low;
        p.high = y < 0 ? fused(r, error, r) : p.high;
    }
    // Rests of products vanish in larger and smaller ones.
    return {p.high, both(abs(x) >= smallest, between(0x1p-900, abs(p.high), 0x1p900))};
}

// exp(y log x) of a normal x above 0, far from overflow.
template <class T> Power<T> power_by_logarithm(T x, T y) {
    const Sum<T> l = log_sum(x);
    const T high = y * l.high, low = fused(y, l.high, -high) + y * l.low;
    return {exp_of(high, low), both(between(smallest, x, largest), abs(high) <= 620)};
}

template <class T> T pow(T x, T y) {
    auto square = y == 2;
    auto whole_or_half = both(abs(y) <= largest_exponent_by_squaring, nearest(y + y) == y + y);
    auto squaring = both(whole_or_half, either(nearest(y) == y, x > 0));
    Power<T> p;
    if (all(squaring)) {
        p = power_by_squaring(x, y);
    } else {
        p = power_by_logarithm(x, y);
        if (any(squaring)) {
            Power<T> q = power_by_squaring(x, squaring ? y : same<T>(0));
            p = {squaring ? q.value : p.value, squaring ? q.holds : p.holds};
        }
    }
    return where_it_holds(
        square ? x * x : p.value, either(square, p.holds), [](double a, double b) { return std::pow(a, b); },
        x, y);
}

#else

using library::cos, library::exp, library::log, library::sin;
inline double sin_of_reduced(double x) { return sin(reduced(x)); }
inline double cos_of_reduced(double x) { return cos(reduced(x)); }
inline double atan2(double y, double x) { return std::atan2(y, x); }
inline double pow(double x, double y) { return y == 2 ? x * x : std::pow(x, y); }

#endif

// -- What the language makes of them, T being a double or a vector.

template <class T> T log2(T x) { return log(x) / raw_ln2; }
template <class T> T log10(T x) { return log(x) / raw_ln10; }

template <class T> T asinh(T x) {
    constexpr double far = -262144; // -1 / sqrt(eps) / 256: there x + sqrt(x^2 + 1) cancels
    return log(x < far ? -0.5 / x : x + sqrt(x * x + 1.0));
}
template <class T> T acosh(T x) { return log(x + sqrt(x * x - 1.0)); }
template <class T> T atanh(T x) { return x == 1 ? same<T>(raw_inf) : 0.5 * log((x + 1.0) / (1.0 - x)); }
template <class T> T sinc(T x) { return x == 0 ? same<T>(1) : sin(raw_pi * x) / (raw_pi * x); }

} // namespace kn::inline KN_ISA::math

#endif
