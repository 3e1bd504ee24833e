// Truth of all and of any elements, of either part, along a dimension. Reading stops where the rest can't
// change the result.

#include "kernels/loops/dimension_ops.h"
#include "kernels/loops/lanes.h"

namespace kn::inline KN_ISA::kernel {

namespace {

// What holds until an element decides the slice, and what then.
struct OfAll {
    template <class T> static constexpr T start = 1;
    static constexpr auto step = []<class V>(V v, V x) { return x == V() ? V() : v; };
};
struct OfAny {
    template <class T> static constexpr T start = 0;
    static constexpr auto step = []<class V>(V v, V x) { return x == V() ? v : static_cast<V>(V() + 1); };
};

constexpr ptrdiff_t part = 1 << 16;

template <class K, class T> bool decided(const T *v, ptrdiff_t n) {
    T undecided = 0;
    for (ptrdiff_t l = 0; l < n; ++l) undecided = v[l] == K::template start<T> ? T(1) : undecided;
    return undecided == 0;
}

template <class T> struct Truths { T v[narrow]; };

// Folds `from` into v; whether all are decided.
template <class K, class T> bool merge(T *v, const T *from, ptrdiff_t n) {
    for (ptrdiff_t i = 0; i < n; ++i) v[i] = K::step(v[i], from[i]); // 0 and 1 are their own truth
    return decided<K>(v, n);
}

// `stride` results for n elements of each slice, in growing blocks.
template <class K, class T, class S> void in_blocks(T *out, const T *x, ptrdiff_t n, S stride) {
    T v[narrow * lanes<T>];
    std::fill(out, out + stride, K::template start<T>);
    for (ptrdiff_t k = 0, block = 8 * lanes<T>; k < n;
         k += block, block = std::min<ptrdiff_t>(2 * block, 2048)) {
        over_lanes(v, x + k * stride, std::min(block, n - k) * stride, stride, K::template start<T>, K::step);
        if (merge<K>(out, v, stride)) return;
    }
}

template <class K, class T, class S> void neighbours(T *out, const T *x, ptrdiff_t len, S stride) {
    for (ptrdiff_t k = 0; stride == 1 && k < 8; ++k) // at the first sight
        if (K::step(K::template start<T>, x[k]) != K::template start<T>) {
            *out = static_cast<T>(1 - K::template start<T>);
            return;
        }
    if (len <= part) return in_blocks<K>(out, x, len, stride);
    std::fill(out, out + stride, K::template start<T>);
    in_parts<Truths<T>>(
        len, part, stride, 1,
        [=](ptrdiff_t at, ptrdiff_t n, Truths<T> &p) { in_blocks<K>(p.v, x + at * stride, n, stride); },
        [=](ptrdiff_t, const Truths<T> &p) { return merge<K>(out, p.v, stride); });
}

template <class K, class T> void rows(const Slices<T> &s) {
    for_each_piece(s, 1, [&s](ptrdiff_t at, ptrdiff_t to, ptrdiff_t n) {
        T *v = s.re + to;
        std::fill(v, v + n, K::template start<T>);
        const T *x = s.are + at;
        ptrdiff_t k = 0, test = 8;
        for (; k + 4 <= s.len; k += 4) {
            over_rows<4>(v, x + k * s.stride, s.stride, n, K::step);
            if (k + 4 < test) continue;
            if (decided<K>(v, n)) return;
            test += std::min<ptrdiff_t>(test, 128);
        }
        for (; k < s.len; ++k) over_rows<1>(v, x + k * s.stride, s.stride, n, K::step);
    });
}

template <class K, class T> void of_parts(const Slices<T> &s) {
    for_each_piece(s, 1, [&s](ptrdiff_t at, ptrdiff_t to, ptrdiff_t n) {
        T *v = s.re + to;
        std::fill(v, v + n, K::template start<T>);
        for (ptrdiff_t k = 0; k < s.len; ++k, at += s.stride) {
            for (ptrdiff_t l = 0; l < n; ++l)
                v[l] = K::step(v[l], static_cast<T>(s.are[at + l] == 0 ? s.aim[at + l] != 0 : 1));
            if (k % 8 == 0 && decided<K>(v, n)) return;
        }
    });
}

template <class K, class T> void truth(const Slices<T> &s) {
    if (s.aim && sizeof(T) == 1) return clear(s.re, s.im, s.total);
    if (s.im) clear<T>(nullptr, s.im, s.total);
    if (s.aim)
        of_parts<K>(s);
    else if (in_lanes(s, 1))
        with_stride(s.stride, [&](auto stride) {
            share(s.outer, s.len * stride, [=, x = s.are, out = s.re, len = s.len](ptrdiff_t o) {
                neighbours<K>(out + o * stride, x + o * len * stride, len, stride);
            });
        });
    else if (s.stride < few)
        reduce(s.re, s.are, s, from(K::template start<T>), K::step);
    else
        rows<K>(s);
}

} // namespace

KN_ALONG(All, truth<OfAll>)
KN_ALONG(Any, truth<OfAny>)

} // namespace kn::inline KN_ISA::kernel
