// Sums and products along a dimension.
//
// prod, cumprod and cumsum take the elements in order. So does sum of up to 8 elements; more of them it takes
// by groups of 8, which it adds plainly. The sums of groups are added by TwoSum (the sum and its rounding
// error, both kept), so that the error hardly grows with the number of elements. In this order:
//
//   Many slices side by side (16 and more, or slices of fewer than 64 elements). Of each slice the elements
//   0 to 7, 8 to 15, ... are the groups, added up in order. The last group is what is left.
//
//   Neighbours, and fewer slices side by side. A slice has 8 lanes. Element k goes to lane k mod 8, but of
//   the last elements that don't fill a row of lanes the last one goes to lane 7, the one before it to lane
//   6, and so on. Each lane is summed as above; the incomplete row belongs to the last group. Then lanes are
//   added up by halves: l and l + 4, l and l + 2, l and l + 1. This makes the sum of up to 65536 elements;
//   the sums of the parts of a longer slice are added up in order. (Fewer than 64 elements are one group in
//   each lane, and the lanes are added plainly.)
//
// The result is the sum plus the sum of the errors, or just the sum when that is not finite: infinities and
// NaN give what they give in any plain sum. Where lanes overflow although all elements are finite, the
// elements are summed in order instead.
//
// No step depends on the instruction set or the number of threads, so neither does a result.

#include <cmath>

#include "kernels/loops/complex_math.h"
#include "kernels/loops/dimension_ops.h"
#include "kernels/loops/lanes.h"

namespace kn::inline KN_ISA::kernel {

namespace {

using byte = unsigned char;

constexpr auto add = []<class T>(T x, T y) { return static_cast<T>(x + y); };
constexpr auto multiply = []<class T>(T x, T y) { return static_cast<T>(x * y); };

// -- Compensated sums.

constexpr ptrdiff_t group = 8;
constexpr ptrdiff_t part = 1 << 16;

template <class V> inline void two_sum(V &hi, V &lo, V x) {
    V s = hi + x, t = s - hi;
    lo += (hi - (s - t)) + (x - t);
    hi = s;
}

inline bool finite(double x) { return std::fabs(x) < raw_inf; }
inline double total(double hi, double lo) { return finite(hi + lo) ? hi + lo : hi; }

// Adds R rows of w elements.
template <int R>
inline void add_rows(double *__restrict hi, double *__restrict lo, const double *__restrict x,
                     ptrdiff_t stride, ptrdiff_t w) {
    for (ptrdiff_t l = 0; l < w; ++l) two_sum(hi[l], lo[l], over<R - 1>(x[l], x + l + stride, stride, add));
}

using Row = Lanes<double>;
constexpr ptrdiff_t eight = lanes<double>;
constexpr double lane_numbers[] = {0, 1, 2, 3, 4, 5, 6, 7};

// The sum of R rows, w elements apart.
template <int R> inline Row rows_sum(const double *x, ptrdiff_t w) {
    return [=]<size_t... k>(std::index_sequence<k...>) {
        Row sum = Row::at(x);
        ((sum = zip(sum, Row::at(x + static_cast<ptrdiff_t>(k + 1) * w), add)), ...);
        return sum;
    }
    (std::make_index_sequence<R - 1>());
}

// The j-th eight lanes of the last n elements of `stride` slices: R - 1 whole rows and what is left.
template <int R, class S> inline Row last_rows(const double *end, ptrdiff_t n, S stride, ptrdiff_t j) {
    const ptrdiff_t w = eight * stride;
    const Row from = Row::same(static_cast<double>(R * w - n - j * eight));
    Row rest = Row::at(end - w + j * eight), lane = Row::at(lane_numbers);
    for (size_t k = 0; k < Row::vectors; ++k) rest.v[k] = lane.v[k] >= from.v[k] ? rest.v[k] : Row::V();
    if constexpr (R > 1) rest = zip(rows_sum<R - 1>(end - n + j * eight, w), rest, add);
    return rest;
}

// hi and lo of slices: n elements of memory, with at least a row before their end.
template <class S> inline void sum_lanes(double *hi, double *lo, const double *x, ptrdiff_t n, S stride) {
    const ptrdiff_t w = eight * stride;
    const double *end = x + n;
    Row sum[narrow], error[narrow];
    auto add_row = [&](ptrdiff_t j, const Row &g) {
        for (size_t k = 0; k < Row::vectors; ++k) two_sum(sum[j].v[k], error[j].v[k], g.v[k]);
    };
    for (ptrdiff_t j = 0; j < stride; ++j) sum[j] = error[j] = Row::same(0);
    for (; end - x >= group * w; x += group * w)
        for (ptrdiff_t j = 0; j < stride; ++j) add_row(j, rows_sum<group>(x + j * eight, w));
    if (x < end)
        with_width<group>((end - x) / w + 1, [&]<int R>() {
            for (ptrdiff_t j = 0; j < stride; ++j) add_row(j, last_rows<R>(end, end - x, stride, j));
        });
    for (ptrdiff_t j = 0; j < stride; ++j) sum[j].to(hi + j * eight), error[j].to(lo + j * eight);
    for (ptrdiff_t h = eight / 2; h > 0; h /= 2)
        for (ptrdiff_t l = 0; l < h * stride; ++l) {
            lo[l] += lo[l + h * stride];
            two_sum(hi[l], lo[l], hi[l + h * stride]);
        }
}

// The sum of a slice whose lanes gave v, which is not finite.
[[gnu::noinline]] double in_order(double v, const double *x, ptrdiff_t len, ptrdiff_t stride) {
    double sum = 0;
    for (ptrdiff_t k = 0; k < len; ++k) {
        if (!finite(x[k * stride])) return v;
        sum += x[k * stride];
    }
    return sum;
}

struct Sums {
    double hi[narrow], lo[narrow];
};

template <class S> void sum_long(double *out, const double *x, ptrdiff_t len, S stride) {
    double hi[narrow * eight], lo[narrow * eight];
    sum_lanes(hi, lo, x, len * stride, stride);
    for (ptrdiff_t i = 0; i < stride; ++i) out[i] = total(hi[i], lo[i]);
}

template <class S> void sum_parts(double *out, const double *x, ptrdiff_t len, S stride) {
    Sums t;
    for (ptrdiff_t i = 0; i < stride; ++i) t.hi[i] = t.lo[i] = 0;
    in_parts<Sums>(
        len, part, stride, 64,
        [=](ptrdiff_t at, ptrdiff_t n, Sums &p) {
            double hi[narrow * eight], lo[narrow * eight];
            sum_lanes(hi, lo, x + at * stride, n * stride, stride);
            for (ptrdiff_t i = 0; i < stride; ++i) p.hi[i] = hi[i], p.lo[i] = lo[i];
        },
        [&](ptrdiff_t, const Sums &p) {
            for (ptrdiff_t i = 0; i < stride; ++i) {
                t.lo[i] += p.lo[i];
                two_sum(t.hi[i], t.lo[i], p.hi[i]);
            }
            return false;
        });
    for (ptrdiff_t i = 0; i < stride; ++i) out[i] = total(t.hi[i], t.lo[i]);
}

void sum_neighbours(double *out, const double *x, const Slices<double> &s) {
    with_stride(s.stride, [=, outer = s.outer, len = s.len](auto stride) {
        share(outer, len * stride, [=](ptrdiff_t o) {
            double *to = out + o * stride;
            const double *c = x + o * len * stride;
            if (len <= part)
                sum_long(to, c, len, stride);
            else
                sum_parts(to, c, len, stride);
            for (ptrdiff_t i = 0; i < stride; ++i)
                if (!finite(to[i])) to[i] = in_order(to[i], c + i, len, stride);
        });
    });
}

// Neighbours of fewer than 8 rows.
void sum_short(double *out, const double *x, const Slices<double> &s) {
    with_width<group>(s.len / eight + 1, [=, outer = s.outer, len = s.len]<int R>() {
        share(outer, len, [=](ptrdiff_t o) {
            const double *c = x + o * len;
            double v[eight];
            std::integral_constant<ptrdiff_t, 1> stride;
            last_rows<R>(c + len, len, stride, 0).to(v);
            fold(v, stride, add);
            out[o] = finite(*v) ? *v : in_order(*v, c, len, 1);
        });
    });
}

void sum_rows(double *out, const double *x, const Slices<double> &s) {
    const ptrdiff_t len = s.len, stride = s.stride;
    for_each_piece(s, 1, [=](ptrdiff_t at, ptrdiff_t to, ptrdiff_t n) {
        alignas(64) double hi[piece], lo[piece];
        const double *row = x + at;
        for (ptrdiff_t l = 0; l < n; ++l) hi[l] = lo[l] = 0;
        for (ptrdiff_t k = 0; k < len; k += group, row += group * stride) {
            with_width<group>(std::min(group, len - k),
                              [&]<int R>() { add_rows<R>(hi, lo, row, stride, n); });
        }
        for (ptrdiff_t l = 0; l < n; ++l) out[to + l] = total(hi[l], lo[l]);
    });
}

void sum_plane(double *out, const double *x, const Slices<double> &s) {
    if (s.len <= group)
        reduce(out, x, s, from(0.0), add);
    else if (s.stride == 1 && s.len < group * eight)
        sum_short(out, x, s);
    else if (in_lanes(s, 1))
        sum_neighbours(out, x, s);
    else
        sum_rows(out, x, s);
}

void sum_plane(byte *out, const byte *x, const Slices<byte> &s) { reduce(out, x, s, from(byte(0)), add); }

template <class T> void sum(const Slices<T> &s) {
    int n = planes(s);
    if (n > 0) sum_plane(s.re, s.are, s);
    if (n > 1) sum_plane(s.im, s.aim, s);
}

// -- Running sums, and products.

template <class T> void cumsum(const Slices<T> &s) {
    int n = planes(s);
    if (n > 0) accumulate(s.re, s.are, s, T(0), add);
    if (n > 1) accumulate(s.im, s.aim, s, T(0), add);
}

// Products of complex slices: all steps, or the last.
template <bool all, class T> void complex_products(const Slices<T> &s) {
    const ptrdiff_t len = s.len, stride = s.stride;
    auto x = [&s](ptrdiff_t k) { return Z{static_cast<double>(s.are[k]), static_cast<double>(s.aim[k])}; };
    auto store = [&s](ptrdiff_t k, Z v) {
        s.re[k] = static_cast<T>(v.re);
        s.im[k] = static_cast<T>(v.im);
    };
    if (stride == 1)
        return share(s.outer, len, [=](ptrdiff_t o) {
            Z v = {1, 0};
            for (ptrdiff_t k = 0; k < len; ++k) {
                v = v * x(o * len + k);
                if (all || k == len - 1) store(all ? o * len + k : o, v);
            }
        });
    for_each_piece(s, all ? len : 1, [=, &s](ptrdiff_t at, ptrdiff_t to, ptrdiff_t n) {
        for (ptrdiff_t l = 0; l < n; ++l) store(to + l, Z{1, 0} * x(at + l));
        for (ptrdiff_t k = 1; k < len; ++k) {
            ptrdiff_t last = to;
            if (all) to += stride;
            for (ptrdiff_t l = 0; l < n; ++l) {
                Z v = {static_cast<double>(s.re[last + l]), static_cast<double>(s.im[last + l])};
                store(to + l, v * x(at + k * stride + l));
            }
        }
    });
}

template <class T> void prod(const Slices<T> &s) {
    int n = planes(s);
    if (n == 1) reduce(s.re, s.are, s, from(T(1)), multiply);
    if (n == 2) complex_products<false>(s);
}

template <class T> void cumprod(const Slices<T> &s) {
    int n = planes(s);
    if (n == 1) accumulate(s.re, s.are, s, T(1), multiply);
    if (n == 2) complex_products<true>(s);
}

} // namespace

KN_ALONG(Sum, sum)
KN_ALONG(Cumsum, cumsum)
KN_ALONG(Prod, prod)
KN_ALONG(Cumprod, cumprod)

} // namespace kn::inline KN_ISA::kernel
