// Largest and smallest elements along a dimension, and their positions.
//
// The running best starts as the first element, or below (above) all numbers when that is NaN and the array
// has more than one element; an element replaces it that is strictly better. So NaN is skipped, the first of
// equal elements counts (+0 and -0 are equal), and all NaN gives -Inf (Inf), position 1.

#include "base/raw_numbers.h"
#include "kernels/loops/complex_math.h"
#include "kernels/loops/dimension_ops.h"
#include "kernels/loops/lanes.h"

namespace kn::inline KN_ISA::kernel {

namespace {

using byte = unsigned char;

struct Largest {
    static constexpr double none = -raw_inf;
    template <class T> static constexpr T worst = sizeof(T) == 1 ? T(0) : static_cast<T>(none);
    template <class V> static auto better(V x, V best) { return x > best; }
    // Of squared moduli: an unordered comparison counts.
    static bool complex_better(double m, double best) { return !(m <= best); }
};
struct Smallest {
    static constexpr double none = raw_inf;
    template <class T> static constexpr T worst = sizeof(T) == 1 ? T(255) : static_cast<T>(none);
    template <class V> static auto better(V x, V best) { return x < best; }
    static bool complex_better(double m, double best) { return !(m >= best); }
};

template <class Order>
constexpr auto keep = []<class T>(T best, T x) { return Order::better(x, best) ? x : best; };

// The initial best element of a slice with this first element.
template <class Order, class T> auto start(const Slices<T> &s) {
    return [several = s.len * s.stride * s.outer > 1](T x) {
        bool number = sizeof(T) == 1 || x == x;
        return several && !number ? Order::template worst<T> : x;
    };
}

// -- Slices of neighbours: the best of each part in lanes. Its first occurrence is searched for only where it
// matters: for a position, or for the sign of zero.

constexpr ptrdiff_t part = 1 << 13;

template <class T> struct Bests { T v[narrow]; };

// Whether one of these 8 rows equals v.
bool meets(const double *x, double v) {
    const Lanes<double> wanted = Lanes<double>::same(v);
    Lanes<double> met = Lanes<double>::same(raw_nan);
    for (ptrdiff_t l = 0; l < 8; ++l) {
        Lanes<double> row = Lanes<double>::at(x + l * lanes<double>);
        for (size_t j = 0; j < met.vectors; ++j) met.v[j] = row.v[j] == wanted.v[j] ? row.v[j] : met.v[j];
    }
    double any[lanes<double>];
    met.to(any);
    fold(any, std::integral_constant<ptrdiff_t, 1>(), [](double p, double q) { return q == q ? q : p; });
    return *any == v;
}
bool meets(const byte *, byte) { return true; }

// The first of n elements that equals v; there is one.
template <class T> ptrdiff_t find(const T *x, ptrdiff_t n, ptrdiff_t stride, T v) {
    constexpr ptrdiff_t block = 8 * lanes<T>;
    ptrdiff_t k = 0;
    if (stride == 1)
        while (k + block <= n && !meets(x + k, v)) k += block;
    while (!(x[k * stride] == v)) ++k;
    return k;
}

template <class Order, class T, class S> void best_of_part(T *out, const T *x, ptrdiff_t n, S stride) {
    T v[narrow * lanes<T>];
    over_lanes(v, x, n * stride, stride, Order::template worst<T>, keep<Order>);
    std::copy(v, v + stride, out);
}

template <class Order, class T, class S> void neighbours(const Slices<T> &s, ptrdiff_t o, S stride) {
    const ptrdiff_t len = s.len;
    const T *x = s.are + o * len * stride;
    T *out = s.re + o * stride;
    ptrdiff_t found[narrow]; // the part where the best is, -1: it is what it started as
    for (ptrdiff_t i = 0; i < stride; ++i) out[i] = start<Order>(s)(x[i]), found[i] = -1;
    auto merge = [=, &found](ptrdiff_t at, const Bests<T> &p) {
        for (ptrdiff_t i = 0; i < stride; ++i)
            if (Order::better(p.v[i], out[i])) out[i] = p.v[i], found[i] = at;
        return false;
    };
    auto f = [=](ptrdiff_t at, ptrdiff_t n, Bests<T> &p) {
        best_of_part<Order>(p.v, x + at * stride, n, stride);
    };
    if (len <= part) {
        Bests<T> p;
        f(0, len, p);
        merge(0, p);
    } else {
        in_parts<Bests<T>>(len, part, stride, 64, f, merge);
    }
    for (ptrdiff_t i = 0; i < stride; ++i) {
        ptrdiff_t at = 0;
        if (found[i] >= 0 && (s.position || out[i] == 0)) {
            at = found[i] + find(x + found[i] * stride + i, std::min(part, len - found[i]), stride, out[i]);
            out[i] = x[at * stride + i];
        }
        if (s.position) s.position[o * stride + i] = static_cast<double>(at + 1);
    }
}

// -- Others, with positions.

template <class Order, class T, class P> inline void meet(T &best, P &at, T x, P here) {
    bool replace = Order::better(x, best);
    best = replace ? x : best;
    at = replace ? here : at;
}

template <class Order, class T> void short_positions(const Slices<T> &s) {
    for_each_group(s, 1, at_once<T>, [&s]<int W>(ptrdiff_t at, ptrdiff_t to, ptrdiff_t pitch) {
        const T *c = s.are + at;
        T v[W];
        ptrdiff_t where[W];
        for (int w = 0; w < W; ++w) v[w] = start<Order>(s)(c[w * pitch]), where[w] = 0;
        for (ptrdiff_t k = 0; k < s.len; ++k)
            for (int w = 0; w < W; ++w) meet<Order>(v[w], where[w], c[w * pitch + k * s.stride], k);
        for (int w = 0; w < W; ++w) {
            s.re[to + w] = v[w];
            s.position[to + w] = static_cast<double>(where[w] + 1);
        }
    });
}

template <class Order, int R, class T>
void meet_rows(T *__restrict best, double *__restrict at, const T *__restrict row, ptrdiff_t stride,
               ptrdiff_t n, ptrdiff_t k) {
    for (ptrdiff_t l = 0; l < n; ++l) {
        T v = best[l];
        double where = at[l], here = static_cast<double>(k);
        for (int r = 0; r < R; ++r) meet<Order>(v, where, row[r * stride + l], here += 1);
        best[l] = v;
        at[l] = where;
    }
}

template <class Order, class T> void row_positions(const Slices<T> &s) {
    for_each_piece(s, 1, [&s](ptrdiff_t at, ptrdiff_t to, ptrdiff_t n) {
        const T *row = s.are + at;
        T *v = s.re + to;
        double *position = s.position + to;
        for (ptrdiff_t l = 0; l < n; ++l) v[l] = start<Order>(s)(row[l]);
        std::fill(position, position + n, 1.0);
        ptrdiff_t k = 0;
        for (; k + 4 <= s.len; k += 4) meet_rows<Order, 4>(v, position, row + k * s.stride, s.stride, n, k);
        for (; k < s.len; ++k) meet_rows<Order, 1>(v, position, row + k * s.stride, s.stride, n, k);
    });
}

// -- Complex numbers, by squared modulus.

template <class Order, class T> void complex_best(const Slices<T> &s) {
    for_each_piece(s, 1, [&s](ptrdiff_t at, ptrdiff_t to, ptrdiff_t n) {
        for (ptrdiff_t l = to; l < to + n; ++l) {
            s.re[l] = start<Order>(s)(s.are[at + l - to]);
            s.im[l] = s.aim[at + l - to];
            if (s.position) s.position[l] = 1;
        }
        for (ptrdiff_t k = 0; k < s.len; ++k, at += s.stride)
            for (ptrdiff_t l = 0; l < n; ++l) {
                T &re = s.re[to + l], &im = s.im[to + l];
                Z x = {static_cast<double>(s.are[at + l]), static_cast<double>(s.aim[at + l])};
                Z v = {static_cast<double>(re), static_cast<double>(im)};
                if (!Order::complex_better(squared_modulus(x), squared_modulus(v))) continue;
                re = static_cast<T>(x.re);
                im = static_cast<T>(x.im);
                if (s.position) s.position[to + l] = static_cast<double>(k + 1);
            }
    });
}

template <class Order, class T> void best(const Slices<T> &s) {
    int n = planes(s);
    if (n == 0 && s.position) std::fill(s.position, s.position + s.total, 0.0);
    if (n == 2) complex_best<Order>(s);
    if (n != 1) return;
    if (in_lanes(s, s.position ? 8 : 4))
        with_stride(s.stride, [&s](auto stride) {
            share(s.outer, s.len * stride, [&s, stride](ptrdiff_t o) { neighbours<Order>(s, o, stride); });
        });
    else if (!s.position)
        reduce(s.re, s.are, s, start<Order>(s), keep<Order>);
    else if (s.stride < few)
        short_positions<Order>(s);
    else
        row_positions<Order>(s);
}

} // namespace

KN_ALONG(Max1, best<Largest>)
KN_ALONG(Min1, best<Smallest>)

} // namespace kn::inline KN_ISA::kernel
