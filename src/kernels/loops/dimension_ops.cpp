// Differences, slopes, medians and unwrapped angles along a dimension.

#include "kernels/loops/dimension_ops.h"

#include <algorithm>

#include "kernels/loops/slices.h"
#include "special/scalar_kernels.h"

namespace kn::inline KN_ISA::kernel {

namespace {

using byte = unsigned char;

template <class T> struct Numbers; // arithmetic that stays in T
template <> struct Numbers<double> {
    static double narrow(double x) { return x; }
};
template <> struct Numbers<byte> {
    static byte narrow(double x) { return to_byte(x); }
};

// -- Differences.

template <class T> void diff(const Slices<T> &s) {
    int n = planes(s);
    ptrdiff_t run = (s.len - 1) * s.stride;
    for (int p = 0; p < n; ++p) {
        T *__restrict out = p ? s.im : s.re;
        const T *__restrict x = p ? s.aim : s.are;
        for (ptrdiff_t o = 0; o < s.outer; ++o, out += run, x += run + s.stride)
            for (ptrdiff_t k = 0; k < run; ++k) out[k] = static_cast<T>(x[k + s.stride] - x[k]);
    }
}

// -- Slopes: f(row of results, first row of its slices, its number) for each row. Slices of fewer elements
// than the formula needs give zeros.

template <class T, class F> void slope_rows(const Slices<T> &s, ptrdiff_t needed, F f) {
    if (s.aim || s.len < needed) return clear(s.re, s.im, s.total);
    planes(s);
    for (ptrdiff_t o = 0; o < s.outer; ++o)
        for (ptrdiff_t k = 0, slice = o * s.len * s.stride; k < s.len; ++k)
            f(s.re + slice + k * s.stride, s.are + slice, k);
}

// Second differences over the width of the interval. The ends repeat the nearest inner numerator with the
// width there.
template <class T> void del2(const Slices<T> &s) {
    slope_rows(s, 3, [n = s.len, w = s.stride, x = s.bre](T *__restrict out, const T *slice, ptrdiff_t k) {
        ptrdiff_t m = std::clamp<ptrdiff_t>(k, 1, n - 2);
        const T *f = slice + m * w;
        double width = static_cast<double>(x[m + 1]) - x[m - 1];
        // In the order in which each formula names its terms, from the nearest end.
        ptrdiff_t first = k == 0 ? -w : w;
        for (ptrdiff_t i = 0; i < w; ++i)
            out[i] =
                Numbers<T>::narrow((static_cast<double>(f[i + first]) - 2.0 * f[i] + f[i - first]) / width);
    });
}

// Central differences; one-sided ones at the ends.
template <class T> void gradient(const Slices<T> &s) {
    slope_rows(s, 2, [n = s.len, w = s.stride, x = s.bre](T *__restrict out, const T *slice, ptrdiff_t k) {
        ptrdiff_t before = std::max<ptrdiff_t>(k - 1, 0), after = std::min(k + 1, n - 1);
        const T *f0 = slice + before * w, *f1 = slice + after * w;
        double width = static_cast<double>(x[after]) - x[before];
        for (ptrdiff_t i = 0; i < w; ++i)
            out[i] = Numbers<T>::narrow((static_cast<double>(f1[i]) - f0[i]) / width);
    });
}

// -- The middle of sorted slices, and the mean of the two middle ones of an even count.

template <class T> void median(const Slices<T> &s) {
    int n = planes(s);
    if (n == 0) return;
    for_each_slice(s, 1, [&](ptrdiff_t at, ptrdiff_t to) {
        bool nan = false;
        for (int p = 0; p < n; ++p)
            for (ptrdiff_t k = 0; k < s.len; ++k) {
                T x = (p ? s.aim : s.are)[at + k * s.stride];
                nan |= x != x;
            }
        for (int p = 0; p < n; ++p) {
            const T *x = (p ? s.aim : s.are) + at;
            T &out = (p ? s.im : s.re)[to];
            if (nan)
                out = Numbers<T>::narrow(raw_nan);
            else if (s.len % 2)
                out = x[(s.len - 1) * s.stride / 2];
            else
                out = Numbers<T>::narrow((x[(s.len / 2 - 1) * s.stride] + x[s.len / 2 * s.stride]) * 0.5);
        }
    });
}

// -- A running sum of the steps, each reduced by 2 pi and turned back when it exceeds the tolerance.

template <class T> void unwrap(const Slices<T> &s) {
    int n = planes(s);
    constexpr double turn = 2 * raw_pi;
    for (int p = 0; p < n; ++p) {
        const T *a = p ? s.aim : s.are;
        T *out = p ? s.im : s.re;
        double tolerance = p ? (s.bim ? *s.bim : 0) : *s.bre;
        for_each_slice(s, s.len, [&](ptrdiff_t at, ptrdiff_t) {
            const T *x = a + at;
            T *y = out + at;
            y[0] = Numbers<T>::narrow(rem_real(x[0], turn));
            for (ptrdiff_t k = s.stride; k < s.len * s.stride; k += s.stride) {
                double d = rem_real(x[k] - x[k - s.stride], turn);
                if (d > tolerance) d -= turn;
                if (d < -tolerance) d += turn;
                y[k] = Numbers<T>::narrow(y[k - s.stride] + d);
            }
        });
    }
}

} // namespace

KN_ALONG(Diff, diff)
KN_ALONG(Del2, del2)
KN_ALONG(Gradient, gradient)
KN_ALONG(Median, median)
KN_ALONG(Unwrap, unwrap)

} // namespace kn::inline KN_ISA::kernel
