// Transposition of planes of any elements, shared among threads where that pays.
#ifndef QUORVEX_KERNELS_TRANSPOSE_PLANES_H
#define QUORVEX_KERNELS_TRANSPOSE_PLANES_H

#include "base/parallel.h"
#include "kernels/array_moves.h"
#include "kernels/kernel_table.h"
#include "quorvex/values.h"

namespace kn {

inline void transpose_part(const Transposition<double> &t, bool negated, bool streamed) {
    kernels().moves->transpose(t, negated, streamed);
}

inline void transpose_part(const Transposition<unsigned char> &t, bool, bool) {
    kernels().moves->transpose_bytes(t);
}

template <class T> void transpose_elements(const Transposition<T> &t) {
    for (ptrdiff_t c = 0; c < t.cols; ++c)
        for (ptrdiff_t r = 0; r < t.rows; ++r) t.to[r + c * t.to_step] = t.from[r * t.from_step + c];
}

// `negated`, of doubles: -x of each element.
template <class T> void transpose_plane(const Transposition<T> &t, bool negated) {
    if (!negated && t.rows * t.cols < 64) return transpose_elements(t); // quicker than the call
    constexpr ptrdiff_t grain = 1 << 17;                                // elements worth waking a thread for
    constexpr ptrdiff_t large = 4 << 20; // bytes that would push everything else out of the cache
    const bool streamed = t.rows * t.cols * static_cast<ptrdiff_t>(sizeof(T)) >= large;
    const bool by_rows = t.rows >= t.cols;
    const ptrdiff_t n = by_rows ? t.rows : t.cols, others = by_rows ? t.cols : t.rows;
    const ptrdiff_t lines = (grain / (others + 1) + 64) / 64 * 64; // whole tiles
    parallel_for(n, lines, [&](ptrdiff_t begin, ptrdiff_t end) {
        Transposition<T> part = t;
        part.to += by_rows ? begin : begin * t.to_step;
        part.from += by_rows ? begin * t.from_step : begin;
        (by_rows ? part.rows : part.cols) = end - begin;
        transpose_part(part, negated, streamed);
    });
}

// Values are counted, by one thread.
inline void transpose_plane(const Transposition<Mm> &t, bool) { transpose_elements(t); }

} // namespace kn

#endif
