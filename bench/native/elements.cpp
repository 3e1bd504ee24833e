#include "bench/native.h"

#include <cmath>

namespace {

template <class F> void each(int n, const double *__restrict a, double *__restrict out, F f) {
    for (int k = 0; k < n; ++k) out[k] = f(a[k]);
}

template <class F>
void each(int n, const double *__restrict a, const double *__restrict b, double *__restrict out, F f) {
    for (int k = 0; k < n; ++k) out[k] = f(a[k], b[k]);
}

} // namespace

namespace native {

void square_root(int n, const double *a, double *out) {
    each(n, a, out, [](double x) { return std::sqrt(x); });
}
void exponential(int n, const double *a, double *out) {
    each(n, a, out, [](double x) { return std::exp(x); });
}
void logarithm(int n, const double *a, double *out) {
    each(n, a, out, [](double x) { return std::log(x); });
}
void sine(int n, const double *a, double *out) {
    each(n, a, out, [](double x) { return std::sin(x); });
}
void square(int n, const double *a, double *out) {
    each(n, a, out, [](double x) { return x * x; });
}
void power_three_halves(int n, const double *a, double *out) {
    each(n, a, out, [](double x) { return std::pow(x, 1.5); });
}

void add(int n, const double *a, const double *b, double *out) {
    each(n, a, b, out, [](double x, double y) { return x + y; });
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
