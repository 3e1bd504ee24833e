#include "bench/native.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include <benchmark/benchmark.h>

#if defined(BENCH_SLEEF) && defined(__AVX2__)
#include <immintrin.h>
#include <sleef.h>
#endif

namespace {

template <class F> void each(int n, const double *__restrict a, double *__restrict out, F f) {
    for (int k = 0; k < n; ++k) out[k] = f(a[k]);
}

template <class F>
void each(int n, const double *__restrict a, const double *__restrict b, double *__restrict out, F f) {
    for (int k = 0; k < n; ++k) out[k] = f(a[k], b[k]);
}

#if defined(BENCH_SLEEF) && defined(__AVX512F__)
using Vector = __m512d;
Vector load(const double *x) { return _mm512_loadu_pd(x); }
void store(double *out, Vector x) { _mm512_storeu_pd(out, x); }
#define SLEEF(f) Sleef_##f##d8_u10avx512f
#elif defined(BENCH_SLEEF) && defined(__AVX2__)
using Vector = __m256d;
Vector load(const double *x) { return _mm256_loadu_pd(x); }
void store(double *out, Vector x) { _mm256_storeu_pd(out, x); }
#define SLEEF(f) Sleef_##f##d4_u10avx2
#endif

// f of one or two arrays, a vector function of SLEEF or the one of the C library. The last elements,
// when they do not fill a vector, are copied into one first.
#ifdef SLEEF
#define ELEMENTARY(name, function) [](auto... x) { return SLEEF(name)(x...); }
template <class F, class... A> void each_elementary(int n, double *out, F f, A... a) {
    constexpr int lanes = sizeof(Vector) / sizeof(double);
    int k = 0;
    for (; k + lanes <= n; k += lanes) store(out + k, f(load(a + k)...));
    if (k == n) return;
    const std::size_t rest = static_cast<std::size_t>(n - k) * sizeof(double);
    auto part = [&](const double *x) {
        double last[lanes] = {};
        std::memcpy(last, x + k, rest);
        return load(last);
    };
    double last[lanes];
    store(last, f(part(a)...));
    std::memcpy(out + k, last, rest);
}
#else
#define ELEMENTARY(name, function) [](auto... x) { return function(x...); }
template <class F, class... A> void each_elementary(int n, double *out, F f, A... a) {
    for (int k = 0; k < n; ++k) out[k] = f(a[k]...);
}
#endif

} // namespace

namespace native {

void square_root(int n, const double *a, double *out) {
    each(n, a, out, [](double x) { return std::sqrt(x); });
}
void exponential(int n, const double *a, double *out) {
    each_elementary(n, out, ELEMENTARY(exp, std::exp), a);
}
void logarithm(int n, const double *a, double *out) { each_elementary(n, out, ELEMENTARY(log, std::log), a); }
void sine(int n, const double *a, double *out) { each_elementary(n, out, ELEMENTARY(sin, std::sin), a); }
void power(int n, const double *a, const double *b, double *out) {
    each_elementary(n, out, ELEMENTARY(pow, std::pow), a, b);
}
void square(int n, const double *a, double *out) {
    each(n, a, out, [](double x) { return x * x; });
}
void power_three_halves(int n, const double *a, double *out) {
    auto pow = ELEMENTARY(pow, std::pow);
    each_elementary(
        n, out, [=](auto x) { return pow(x, decltype(x)() + 1.5); }, a);
}

void add(int n, const double *a, const double *b, double *out) {
    each(n, a, b, out, [](double x, double y) { return x + y; });
}
void add_into_fresh(int n, const double *a, const double *b) {
    double *out = static_cast<double *>(std::malloc(static_cast<std::size_t>(n) * sizeof(double)));
    if (!out) std::abort();
    add(n, a, b, out);
    benchmark::DoNotOptimize(out);
    std::free(out);
}
void multiply(int n, const double *a, const double *b, double *out) {
    each(n, a, b, out, [](double x, double y) { return x * y; });
}
void divide(int n, const double *a, const double *b, double *out) {
    each(n, a, b, out, [](double x, double y) { return x / y; });
}
void less(int n, const double *a, const double *b, double *out) {
    each(n, a, b, out, [](double x, double y) { return x < y ? 1.0 : 0.0; });
}

void multiply_add(int n, const double *__restrict a, const double *__restrict b, const double *__restrict c,
                  double *__restrict out) {
    for (int k = 0; k < n; ++k) out[k] = a[k] * b[k] + c[k];
}

void complex_multiply(int n, Planes a, Planes b, Planes out) {
    double *__restrict re = out.re, *__restrict im = out.im;
    for (int k = 0; k < n; ++k) {
        re[k] = a.re[k] * b.re[k] - a.im[k] * b.im[k];
        im[k] = a.re[k] * b.im[k] + a.im[k] * b.re[k];
    }
}

// Scaled, so that it overflows only where the modulus does; far faster than the C library's hypot.
void complex_abs(int n, Planes a, double *out) {
    each(n, a.re, a.im, out, [](double x, double y) {
        double u = std::fabs(x), v = std::fabs(y), large = u > v ? u : v, ratio = (u > v ? v : u) / large;
        return large == 0 ? 0 : large * std::sqrt(ratio * ratio + 1);
    });
}

} // namespace native
