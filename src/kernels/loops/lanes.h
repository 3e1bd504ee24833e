// Slices in lanes: element k of a slice goes to the slice's lane k mod `lanes`. A row, one element of each
// lane of all slices side by side, is one run of memory, which vectors take as it comes.
#ifndef QUORVEX_KERNELS_LOOPS_LANES_H
#define QUORVEX_KERNELS_LOOPS_LANES_H

#include <type_traits>

#include "kernels/loops/slices.h"

namespace kn::inline KN_ISA::kernel {

// The lanes of a slice are 64 bytes, as vectors of the instruction set: V in registers, InMemory where it is
// stored. For bytes the compiler's own vectors are fast enough.
template <class T> struct VectorOf {
    using V = T;
    using InMemory = T;
};
#if defined(__GNUC__)
#if defined(__AVX512F__)
#define KN_LANE_BYTES 64
#elif defined(__AVX2__)
#define KN_LANE_BYTES 32
#else
#define KN_LANE_BYTES 16
#endif
template <> struct VectorOf<double> {
    typedef double V __attribute__((vector_size(KN_LANE_BYTES)));
    typedef double InMemory __attribute__((vector_size(KN_LANE_BYTES), aligned(alignof(double)), may_alias));
};
#undef KN_LANE_BYTES
#endif
template <class T> constexpr ptrdiff_t lanes = 64 / sizeof(T);

// 64 bytes of elements.
template <class T> struct Lanes {
    using V = typename VectorOf<T>::V;
    using InMemory = typename VectorOf<T>::InMemory;
    static constexpr size_t vectors = 64 / sizeof(V);
    V v[vectors];

    static Lanes same(T x) {
        Lanes y;
        for (V &v : y.v) v = V() + x;
        return y;
    }
    static Lanes at(const T *x) {
        Lanes y;
        for (size_t k = 0; k < vectors; ++k) y.v[k] = reinterpret_cast<const InMemory *>(x)[k];
        return y;
    }
    void to(T *x) const {
        for (size_t k = 0; k < vectors; ++k) reinterpret_cast<InMemory *>(x)[k] = v[k];
    }
};
template <class T, class F> inline Lanes<T> zip(Lanes<T> a, const Lanes<T> &b, F f) {
    for (size_t k = 0; k < Lanes<T>::vectors; ++k) a.v[k] = f(a.v[k], b.v[k]);
    return a;
}

// More slices side by side than these have a lane each: their rows are long enough.
constexpr ptrdiff_t narrow = 16;

// Whether it is worth it: for neighbours of more than `rows` rows.
template <class T> bool in_lanes(const Slices<T> &s, ptrdiff_t rows) {
    return s.stride == 1 ? s.len > rows * lanes<T> : s.stride < narrow && s.len >= 8 * lanes<T>;
}

// f(stride), as a constant for neighbours.
template <class F> void with_stride(ptrdiff_t stride, F f) {
    if (stride == 1)
        f(std::integral_constant<ptrdiff_t, 1>());
    else
        f(stride);
}

// Folds the lanes v of `stride` slices by halves: l and l + 4, l and l + 2, l and l + 1. v[0 to stride) get
// the results.
template <class S, class T, class Step> inline void fold(T *v, S stride, Step step) {
    for (ptrdiff_t h = lanes<T> / 2; h > 0; h /= 2)
        for (ptrdiff_t l = 0; l < h * stride; ++l) v[l] = step(v[l], v[l + h * stride]);
}

// Steps over n elements of memory, and folds. At least a row lies before their end: elements that do not fill
// one are met in the last lanes, some others again with them. Only for what does not mind that.
template <class S, class T, class Step>
inline void over_lanes(T *v, const T *x, ptrdiff_t n, S stride, T start, Step step) {
    using Row = Lanes<T>;
    const ptrdiff_t w = lanes<T> * stride;
    const T *end = x + n;
    Row lane[narrow];
    for (ptrdiff_t j = 0; j < stride; ++j) lane[j] = Row::same(start);
    auto rows = [&]<int R>(const T *from) {
        for (ptrdiff_t j = 0; j < stride; ++j) {
            const T *c = from + j * lanes<T>;
            Row r = Row::same(start);
            [&]<size_t... k>(std::index_sequence<k...>) {
                ((r = zip(r, Row::at(c + static_cast<ptrdiff_t>(k) * w), step)), ...);
            }
            (std::make_index_sequence<R>());
            lane[j] = zip(lane[j], r, step);
        }
    };
    for (; end - x >= 8 * w; x += 8 * w) rows.template operator()<8>(x);
    for (; end - x >= w; x += w) rows.template operator()<1>(x);
    if (x < end) rows.template operator()<1>(end - w);
    for (ptrdiff_t j = 0; j < stride; ++j) lane[j].to(v + j * lanes<T>);
    fold(v, stride, step);
}

} // namespace kn::inline KN_ISA::kernel

#endif
