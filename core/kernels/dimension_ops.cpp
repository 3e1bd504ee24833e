// The kernels along a dimension. Where `stride` is 1 a slice is a run of `len` neighbours; else `stride`
// slices lie side by side, in rows.
//
// A complex result that was not asked for, and every complex array of bytes, gives zeros. A result plane that
// was asked for a real array is cleared.

#include "core/kernels/dimension_ops.h"

#include <algorithm>

#include "core/kernels/complex_math.h"
#include "core/kernels/element_kernels.h"
#include "core/scalar_kernels.h"

namespace kn::inline KN_ISA::kernel {

namespace {

// Planes of `a` that the operation works on: 1 or 2, or 0 when there is nothing to compute.
template <class T> int planes(const Slices<T> &s) {
    if (s.aim && (!s.im || sizeof(T) == 1)) {
        clear(s.re, s.im, s.total);
        return 0;
    }
    if (s.im && !s.aim) clear<T>(nullptr, s.im, s.total);
    return s.aim ? 2 : 1;
}

template <class T> struct Numbers; // arithmetic that stays in T
template <> struct Numbers<double> {
    static double narrow(double x) { return x; }
};
template <> struct Numbers<byte> {
    static byte narrow(double x) { return to_byte(x); }
};

// Fewer slices side by side than this are run one by one.
constexpr ptrdiff_t few = 8;

// Rows of many slices are worked on in pieces that stay in the first-level cache.
constexpr ptrdiff_t piece = 2048;

template <class F> void for_each_piece(ptrdiff_t stride, F f) {
    for (ptrdiff_t i = 0; i < stride; i += piece) f(i, std::min(piece, stride - i));
}

// W slices, each from c[w] on with elements `stride` apart, so that none waits for its own last step.
template <int W, class T, class Start, class Step>
void reduce_group(T *out, const T *const *c, ptrdiff_t len, ptrdiff_t stride, Start start, Step step) {
    T v[W];
    for (int w = 0; w < W; ++w) v[w] = start(*c[w]);
    for (ptrdiff_t k = 0; k < len; ++k)
        for (int w = 0; w < W; ++w) v[w] = step(v[w], c[w][k * stride]);
    for (int w = 0; w < W; ++w) out[w] = v[w];
}

// One and four rows of slices that lie side by side, the running values in v.
template <class T, class Step>
void reduce_row(T *__restrict v, const T *__restrict row, ptrdiff_t n, Step step) {
    for (ptrdiff_t l = 0; l < n; ++l) v[l] = step(v[l], row[l]);
}
template <class T, class Step>
void reduce_rows(T *__restrict v, const T *__restrict row, ptrdiff_t stride, ptrdiff_t n, Step step) {
    const T *__restrict r1 = row + stride, *__restrict r2 = r1 + stride, *__restrict r3 = r2 + stride;
    for (ptrdiff_t l = 0; l < n; ++l) v[l] = step(step(step(step(v[l], row[l]), r1[l]), r2[l]), r3[l]);
}

// One result for each slice: start(first element), then step(value, element) over all its elements.
template <class T, class Start, class Step>
void reduce(T *out, const T *x, const Slices<T> &s, Start start, Step step) {
    const ptrdiff_t len = s.len, stride = s.stride;
    if (stride < few) {
        const T *c[4];
        ptrdiff_t i = 0, slices = s.outer * stride;
        auto next = [&](int w) {
            for (int k = 0; k < w; ++k) {
                c[k] = x + i;
                if (++i == stride) x += len * stride, i = 0;
            }
        };
        for (; slices >= 4; slices -= 4, out += 4) next(4), reduce_group<4>(out, c, len, stride, start, step);
        if (slices >= 2) next(2), reduce_group<2>(out, c, len, stride, start, step), slices -= 2, out += 2;
        if (slices >= 1) next(1), reduce_group<1>(out, c, len, stride, start, step);
        return;
    }
    for (ptrdiff_t o = 0; o < s.outer; ++o)
        for_each_piece(stride, [&](ptrdiff_t i, ptrdiff_t n) {
            T *v = out + o * stride + i;
            const T *row = x + o * len * stride + i;
            for (ptrdiff_t l = 0; l < n; ++l) v[l] = start(row[l]);
            ptrdiff_t k = 0;
            for (; k + 4 <= len; k += 4) reduce_rows(v, row + k * stride, stride, n, step);
            for (; k < len; ++k) reduce_row(v, row + k * stride, n, step);
        });
}

// The start that does not look at the element.
template <class T> auto from(T start) {
    return [start](T) { return start; };
}

// The same, storing every step.
template <class T, class Step>
void accumulate(T *__restrict out, const T *__restrict x, const Slices<T> &s, T start, Step step) {
    const ptrdiff_t len = s.len, stride = s.stride;
    if (stride == 1) {
        for (ptrdiff_t o = 0; o < s.outer; ++o, out += len, x += len) {
            T v = start;
            for (ptrdiff_t k = 0; k < len; ++k) out[k] = v = step(v, x[k]);
        }
        return;
    }
    for (ptrdiff_t o = 0; o < s.outer; ++o, out += len * stride, x += len * stride) {
        for (ptrdiff_t l = 0; l < stride; ++l) out[l] = step(start, x[l]);
        for (ptrdiff_t k = 1; k < len; ++k) {
            T *__restrict to = out + k * stride;
            const T *last = to - stride, *row = x + k * stride;
            for (ptrdiff_t l = 0; l < stride; ++l) to[l] = step(last[l], row[l]);
        }
    }
}

// f(offset of the slice in the operand, offset of its first result) for each slice.
template <class T, class F> void for_each_slice(const Slices<T> &s, ptrdiff_t results, F f) {
    for (ptrdiff_t o = 0; o < s.outer; ++o)
        for (ptrdiff_t i = 0; i < s.stride; ++i) f(o * s.len * s.stride + i, o * results * s.stride + i);
}

constexpr auto add = []<class T>(T x, T y) { return static_cast<T>(x + y); };
constexpr auto multiply = []<class T>(T x, T y) { return static_cast<T>(x * y); };

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

// Rows of second differences over the width of the interval. The ends repeat the nearest inner numerator with
// the width there.
template <class T> void del2(const Slices<T> &s) {
    if (s.aim) return clear(s.re, s.im, s.total);
    planes(s);
    const ptrdiff_t n = s.len, w = s.stride;
    const T *x = s.bre;
    for (ptrdiff_t o = 0; o < s.outer; ++o)
        for (ptrdiff_t k = 0; k < n; ++k) {
            T *__restrict out = s.re + (o * n + k) * w;
            if (n < 3) {
                std::fill(out, out + w, T(0));
                continue;
            }
            ptrdiff_t m = std::clamp<ptrdiff_t>(k, 1, n - 2);
            const T *f = s.are + (o * n + m) * w;
            double width = static_cast<double>(x[m + 1]) - x[m - 1];
            // In the order in which each formula names its terms, from the nearest end.
            ptrdiff_t first = k == 0 ? -w : w;
            for (ptrdiff_t i = 0; i < w; ++i)
                out[i] = Numbers<T>::narrow((static_cast<double>(f[i + first]) - 2.0 * f[i] + f[i - first]) /
                                            width);
        }
}

// Central differences; one-sided ones at the ends.
template <class T> void gradient(const Slices<T> &s) {
    if (s.aim) return clear(s.re, s.im, s.total);
    planes(s);
    const ptrdiff_t n = s.len, w = s.stride;
    const T *x = s.bre;
    for (ptrdiff_t o = 0; o < s.outer; ++o)
        for (ptrdiff_t k = 0; k < n; ++k) {
            T *__restrict out = s.re + (o * n + k) * w;
            if (n < 2) {
                std::fill(out, out + w, T(0));
                continue;
            }
            ptrdiff_t before = std::max<ptrdiff_t>(k - 1, 0), after = std::min(k + 1, n - 1);
            const T *f0 = s.are + (o * n + before) * w, *f1 = s.are + (o * n + after) * w;
            double width = static_cast<double>(x[after]) - x[before];
            for (ptrdiff_t i = 0; i < w; ++i)
                out[i] = Numbers<T>::narrow((static_cast<double>(f1[i]) - f0[i]) / width);
        }
}

// -- Truth of all and any elements, of either part.

template <class T> void all(const Slices<T> &s) {
    if (s.aim && sizeof(T) == 1) return clear(s.re, s.im, s.total);
    if (s.im) clear<T>(nullptr, s.im, s.total);
    if (!s.aim) return reduce(s.re, s.are, s, from(T(1)), [](T v, T x) { return x == 0 ? T(0) : v; });
    for_each_slice(s, 1, [&](ptrdiff_t at, ptrdiff_t to) {
        bool v = true;
        for (ptrdiff_t k = 0; k < s.len; ++k, at += s.stride) v = v && (truth(s.are[at]) || truth(s.aim[at]));
        s.re[to] = v;
    });
}

template <class T> void any(const Slices<T> &s) {
    if (s.aim && sizeof(T) == 1) return clear(s.re, s.im, s.total);
    if (s.im) clear<T>(nullptr, s.im, s.total);
    if (!s.aim) return reduce(s.re, s.are, s, from(T(0)), [](T v, T x) { return x == 0 ? v : T(1); });
    for_each_slice(s, 1, [&](ptrdiff_t at, ptrdiff_t to) {
        bool v = false;
        for (ptrdiff_t k = 0; k < s.len; ++k, at += s.stride) v = v || truth(s.are[at]) || truth(s.aim[at]);
        s.re[to] = v;
    });
}

// -- Sums and products.

template <class T> void sum(const Slices<T> &s) {
    int n = planes(s);
    if (n > 0) reduce(s.re, s.are, s, from(T(0)), add);
    if (n > 1) reduce(s.im, s.aim, s, from(T(0)), add);
}

template <class T> void cumsum(const Slices<T> &s) {
    int n = planes(s);
    if (n > 0) accumulate(s.re, s.are, s, T(0), add);
    if (n > 1) accumulate(s.im, s.aim, s, T(0), add);
}

template <class T> void prod(const Slices<T> &s) {
    int n = planes(s);
    if (n == 1) reduce(s.re, s.are, s, from(T(1)), multiply);
    if (n < 2) return;
    for_each_slice(s, 1, [&](ptrdiff_t at, ptrdiff_t to) {
        Z v = {1, 0};
        for (ptrdiff_t k = 0; k < s.len; ++k, at += s.stride)
            v = v * Z{static_cast<double>(s.are[at]), static_cast<double>(s.aim[at])};
        s.re[to] = static_cast<T>(v.re);
        s.im[to] = static_cast<T>(v.im);
    });
}

template <class T> void cumprod(const Slices<T> &s) {
    int n = planes(s);
    if (n == 1) accumulate(s.re, s.are, s, T(1), multiply);
    if (n < 2) return;
    for_each_slice(s, s.len, [&](ptrdiff_t at, ptrdiff_t to) {
        Z v = {1, 0};
        for (ptrdiff_t k = 0; k < s.len; ++k, at += s.stride, to += s.stride) {
            v = v * Z{static_cast<double>(s.are[at]), static_cast<double>(s.aim[at])};
            s.re[to] = static_cast<T>(v.re);
            s.im[to] = static_cast<T>(v.im);
        }
    });
}

// -- Largest and smallest. The running best starts as the first element, or below (above) all numbers when
// that is NaN and the array has more than one element; so all NaN gives -Inf (Inf), position 1.

struct Largest {
    static constexpr double none = -raw_inf;
    template <class T> static bool better(T x, T best) { return x > best; }
    // Of squared moduli: an unordered comparison counts.
    static bool complex_better(double m, double best) { return !(m <= best); }
};
struct Smallest {
    static constexpr double none = raw_inf;
    template <class T> static bool better(T x, T best) { return x < best; }
    static bool complex_better(double m, double best) { return !(m >= best); }
};

template <class Order, class T> T first_best(const Slices<T> &s, T x) {
    if constexpr (sizeof(T) > 1)
        if (x != x && s.len * s.stride * s.outer > 1) return Order::none;
    return x;
}

template <class Order, class T>
void keep_better(T *__restrict v, double *__restrict at, const T *__restrict row, double here, ptrdiff_t n) {
    for (ptrdiff_t l = 0; l < n; ++l) {
        T x = row[l], best = v[l];
        double last = at[l];
        bool replace = Order::better(x, best);
        v[l] = replace ? x : best;
        at[l] = replace ? here : last;
    }
}

template <class Order, class T> void best_positions(const Slices<T> &s) {
    for (ptrdiff_t o = 0; o < s.outer; ++o)
        for_each_piece(s.stride, [&](ptrdiff_t i, ptrdiff_t n) {
            T *v = s.re + o * s.stride + i;
            double *at = s.position + o * s.stride + i;
            const T *row = s.are + o * s.len * s.stride + i;
            if (s.stride == 1) {
                T best = first_best<Order>(s, *row);
                ptrdiff_t where = 0;
                for (ptrdiff_t k = 0; k < s.len; ++k)
                    if (Order::better(row[k], best)) best = row[k], where = k;
                *v = best;
                *at = static_cast<double>(where + 1);
                return;
            }
            for (ptrdiff_t l = 0; l < n; ++l) v[l] = first_best<Order>(s, row[l]);
            for (ptrdiff_t l = 0; l < n; ++l) at[l] = 1;
            for (ptrdiff_t k = 0; k < s.len; ++k, row += s.stride)
                keep_better<Order>(v, at, row, static_cast<double>(k + 1), n);
        });
}

template <class Order, class T> void best(const Slices<T> &s) {
    int n = planes(s);
    if (n == 0 && s.position) std::fill(s.position, s.position + s.total, 0.0);
    if (n == 1 && s.position) best_positions<Order>(s);
    if (n == 1 && !s.position)
        reduce(
            s.re, s.are, s, [&s](T x) { return first_best<Order>(s, x); },
            [](T best, T x) { return Order::better(x, best) ? x : best; });
    if (n < 2) return;
    for_each_slice(s, 1, [&](ptrdiff_t at, ptrdiff_t to) {
        auto element = [&s, at](ptrdiff_t k) {
            ptrdiff_t e = at + k * s.stride;
            return Z{static_cast<double>(s.are[e]), static_cast<double>(s.aim[e])};
        };
        Z v = element(0);
        v.re = static_cast<double>(first_best<Order>(s, s.are[at]));
        double m = squared_modulus(v);
        ptrdiff_t where = 0;
        for (ptrdiff_t k = 0; k < s.len; ++k) {
            Z x = element(k);
            double mx = squared_modulus(x);
            if (Order::complex_better(mx, m)) v = x, m = mx, where = k;
        }
        s.re[to] = static_cast<T>(v.re);
        s.im[to] = static_cast<T>(v.im);
        if (s.position) s.position[to] = static_cast<double>(where + 1);
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

#define KN_ALONG(Name, f)                               \
    void Name::along(const Slices<double> &s) { f(s); } \
    void Name::along(const Slices<unsigned char> &s) { f(s); }
KN_ALONG(Diff, diff)
KN_ALONG(Del2, del2)
KN_ALONG(Gradient, gradient)
KN_ALONG(All, all)
KN_ALONG(Any, any)
KN_ALONG(Cumprod, cumprod)
KN_ALONG(Cumsum, cumsum)
KN_ALONG(Max1, best<Largest>)
KN_ALONG(Median, median)
KN_ALONG(Min1, best<Smallest>)
KN_ALONG(Prod, prod)
KN_ALONG(Sum, sum)
KN_ALONG(Unwrap, unwrap)
#undef KN_ALONG

} // namespace kn::inline KN_ISA::kernel
