// Moves of many doubles: what each instruction set provides (kernels/loops/moves.cpp, transpose.cpp).
#ifndef QUORVEX_KERNELS_ARRAY_MOVES_H
#define QUORVEX_KERNELS_ARRAY_MOVES_H

#include <stddef.h>

#include <cstdint>

namespace kn {

// A mask as bits: element k is bit k % 64 of word k / 64; the bits after the last element are 0.
using MaskWord = uint64_t;
inline ptrdiff_t words_of(ptrdiff_t n) { return (n + 63) / 64; }

// Positions before and after all others: of index values whose amount is more than 2^53 (of those that no int
// holds on a 32-bit system), and of NaN.
inline constexpr ptrdiff_t before_all = sizeof(ptrdiff_t) == 8 ? -(ptrdiff_t{1} << 53) : PTRDIFF_MIN;
inline constexpr ptrdiff_t after_all = sizeof(ptrdiff_t) == 8 ? ptrdiff_t{1} << 62 : PTRDIFF_MAX;

// What lies among positions: bounds that none exceeds, and whether all are known to come from whole numbers,
// none below 1.
struct PositionRange {
    ptrdiff_t least, largest;
    bool counts;
};

// A plane of `rows` by `cols` elements: element (r, c) goes from from[r * from_step + c] to
// to[r + c * to_step].
template <class T> struct Transposition {
    T *to;
    ptrdiff_t to_step;
    const T *from;
    ptrdiff_t from_step;
    ptrdiff_t rows, cols;
};

struct Moves {
    // Bytes that don't overlap; for many of them. (The C library's function is ten times slower where the
    // result begins a little after the source within its page.)
    void (*copy)(void *to, const void *from, size_t n);

    void (*repeat)(double *to, double x, ptrdiff_t n);

    // Positions of index values (selection.h); `list` null: only what lies among them.
    PositionRange (*positions)(ptrdiff_t *list, const double *v, ptrdiff_t n);

    // Masks as bits; how many are set. Elements above or below 0; elements that are not 0, NaN among them;
    // bytes that are not 0.
    ptrdiff_t (*mask_bits)(MaskWord *bits, const double *mask, ptrdiff_t n);
    ptrdiff_t (*nonzero_bits)(MaskWord *bits, const double *x, ptrdiff_t n);
    ptrdiff_t (*byte_bits)(MaskWord *bits, const unsigned char *x, ptrdiff_t n);

    // Of n elements those with their bit set, which are `count`: into a row, also to the front of the same
    // array; from a row; all the same; their numbers from 1.
    void (*compress)(double *to, ptrdiff_t count, const double *from, const MaskWord *bits, ptrdiff_t n);
    void (*expand)(double *to, const MaskWord *bits, ptrdiff_t n, const double *from, ptrdiff_t count);
    void (*fill)(double *to, const MaskWord *bits, ptrdiff_t n, double x);
    void (*numbers)(double *to, ptrdiff_t count, const MaskWord *bits, ptrdiff_t n);

    // The first k below n with a[k] == x and b[k] == y, or n.
    ptrdiff_t (*find_pair)(const double *a, const double *b, ptrdiff_t n, double x, double y);

    // `negated`: -x of each element. With `streamed` the result goes past the caches, where it can.
    void (*transpose)(const Transposition<double> &t, bool negated, bool streamed);
    void (*transpose_bytes)(const Transposition<unsigned char> &t);
};

} // namespace kn

#endif
