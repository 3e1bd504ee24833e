// Transposition in registers.
//
// Doubles go in tiles of 8 rows, as many columns wide as a vector, so that each column of a tile is a cache
// line of the result when that is aligned; bytes in tiles of 16 by 16. Tiles follow each other along strips
// of 256 columns: a strip's part of a row is read once, by lines, and its pages stay in the translation
// buffer. Streamed stores save reading the lines of a large result before they are overwritten.

#include <cstdint>

#include "kernels/loops/intrinsics.h"
#include "kernels/loops/tables.h"

namespace kn::inline KN_ISA {

namespace {

constexpr ptrdiff_t tile = 8, strip = 256;

inline ptrdiff_t least(ptrdiff_t a, ptrdiff_t b) { return a < b ? a : b; }

// Element by element.
template <class T, class F>
inline void part(const Transposition<T> &t, ptrdiff_t r0, ptrdiff_t r1, ptrdiff_t c0, ptrdiff_t c1, F f) {
    for (ptrdiff_t c = c0; c < c1; ++c)
        for (ptrdiff_t r = r0; r < r1; ++r) t.to[r + c * t.to_step] = f(t.from[r * t.from_step + c]);
}

// Tile<streamed>::move(to, to_step, from, from_step, sign) moves 8 rows of Tile::width columns and flips the
// bits of `sign` in each element.
#if defined(__AVX512F__)

template <bool streamed> struct Tile {
    static constexpr ptrdiff_t width = 8;
    using Sign = __m512i;
    static Sign sign(bool negated) { return _mm512_set1_epi64(negated ? INT64_MIN : 0); }

    static void put(double *to, __m512d x) {
        if constexpr (streamed)
            _mm512_stream_pd(to, x);
        else
            _mm512_storeu_pd(to, x);
    }
    // Pairs of rows by elements, then pairs of pairs by quarters, then both halves by quarters.
    static void turn(__m512d *x) {
        __m512d a[8], b[8];
        for (int k = 0; k < 8; k += 2) {
            a[k] = _mm512_unpacklo_pd(x[k], x[k + 1]);
            a[k + 1] = _mm512_unpackhi_pd(x[k], x[k + 1]);
        }
        for (int k = 0; k < 8; k += 4)
            for (int l = k; l < k + 2; ++l) {
                b[l] = _mm512_shuffle_f64x2(a[l], a[l + 2], 0x88);
                b[l + 2] = _mm512_shuffle_f64x2(a[l], a[l + 2], 0xdd);
            }
        for (int k = 0; k < 4; ++k) {
            x[k] = _mm512_shuffle_f64x2(b[k], b[k + 4], 0x88);
            x[k + 4] = _mm512_shuffle_f64x2(b[k], b[k + 4], 0xdd);
        }
    }
    static __m512d flipped(__m512d x, Sign s) {
        return _mm512_castsi512_pd(_mm512_xor_si512(_mm512_castpd_si512(x), s));
    }
    static void move(double *to, ptrdiff_t to_step, const double *from, ptrdiff_t from_step, Sign s) {
        __m512d x[8];
        for (int k = 0; k < 8; ++k) x[k] = flipped(_mm512_loadu_pd(from + k * from_step), s);
        turn(x);
        for (int k = 0; k < 8; ++k) put(to + k * to_step, x[k]);
    }
    // The first `rows` and `cols` of a tile.
    static void move_part(double *to, ptrdiff_t to_step, const double *from, ptrdiff_t from_step,
                          ptrdiff_t rows, ptrdiff_t cols, Sign s) {
        __mmask8 in = static_cast<__mmask8>((1u << cols) - 1), out = static_cast<__mmask8>((1u << rows) - 1);
        __m512d x[8];
        for (int k = 0; k < 8; ++k)
            x[k] =
                k < rows ? flipped(_mm512_maskz_loadu_pd(in, from + k * from_step), s) : _mm512_setzero_pd();
        turn(x);
        for (int k = 0; k < 8; ++k)
            if (k < cols) _mm512_mask_storeu_pd(to + k * to_step, out, x[k]);
    }
};

#elif defined(__AVX2__)

template <bool streamed> struct Tile {
    static constexpr ptrdiff_t width = 4;
    using Sign = __m256d;
    static Sign sign(bool negated) { return _mm256_set1_pd(negated ? -0.0 : 0.0); }

    static void put(double *to, __m256d x) {
        if constexpr (streamed)
            _mm256_stream_pd(to, x);
        else
            _mm256_storeu_pd(to, x);
    }
    static void move(double *to, ptrdiff_t to_step, const double *from, ptrdiff_t from_step, Sign s) {
        __m256d x[2][4];
        for (int h = 0; h < 2; ++h) {
            __m256d r[4];
            for (int k = 0; k < 4; ++k)
                r[k] = _mm256_xor_pd(_mm256_loadu_pd(from + (4 * h + k) * from_step), s);
            __m256d a = _mm256_unpacklo_pd(r[0], r[1]), b = _mm256_unpackhi_pd(r[0], r[1]);
            __m256d c = _mm256_unpacklo_pd(r[2], r[3]), d = _mm256_unpackhi_pd(r[2], r[3]);
            x[h][0] = _mm256_permute2f128_pd(a, c, 0x20);
            x[h][1] = _mm256_permute2f128_pd(b, d, 0x20);
            x[h][2] = _mm256_permute2f128_pd(a, c, 0x31);
            x[h][3] = _mm256_permute2f128_pd(b, d, 0x31);
        }
        for (int k = 0; k < 4; ++k)
            for (int h = 0; h < 2; ++h) put(to + k * to_step + 4 * h, x[h][k]);
    }
};

#elif defined(__SSE2__)

template <bool streamed> struct Tile {
    static constexpr ptrdiff_t width = 2;
    using Sign = __m128d;
    static Sign sign(bool negated) { return _mm_set1_pd(negated ? -0.0 : 0.0); }

    static void put(double *to, __m128d x) {
        if constexpr (streamed)
            _mm_stream_pd(to, x);
        else
            _mm_storeu_pd(to, x);
    }
    static void move(double *to, ptrdiff_t to_step, const double *from, ptrdiff_t from_step, Sign s) {
        __m128d x[8];
        for (int k = 0; k < 8; ++k) x[k] = _mm_xor_pd(_mm_loadu_pd(from + k * from_step), s);
        for (int k = 0; k < 8; k += 2) put(to + k, _mm_unpacklo_pd(x[k], x[k + 1]));
        for (int k = 0; k < 8; k += 2) put(to + to_step + k, _mm_unpackhi_pd(x[k], x[k + 1]));
    }
};

#else

template <bool streamed> struct Tile {
    static constexpr ptrdiff_t width = 1;
    using Sign = bool;
    static Sign sign(bool negated) { return negated; }
    static void move(double *to, ptrdiff_t, const double *from, ptrdiff_t from_step, Sign s) {
        for (int k = 0; k < 8; ++k) to[k] = s ? -from[k * from_step] : from[k * from_step];
    }
};

#endif

template <bool streamed> void transpose(const Transposition<double> &t, bool negated) {
    using Tile = Tile<streamed>;
    const typename Tile::Sign sign = Tile::sign(negated);
    const ptrdiff_t whole_rows = t.rows / tile * tile, whole_cols = t.cols / Tile::width * Tile::width;
    auto to = [&t](ptrdiff_t r, ptrdiff_t c) { return t.to + r + c * t.to_step; };
    auto from = [&t](ptrdiff_t r, ptrdiff_t c) { return t.from + r * t.from_step + c; };

    for (ptrdiff_t c0 = 0; c0 < whole_cols; c0 += strip)
        for (ptrdiff_t r = 0; r < whole_rows; r += tile)
            for (ptrdiff_t c = c0, end = least(c0 + strip, whole_cols); c < end; c += Tile::width)
                Tile::move(to(r, c), t.to_step, from(r, c), t.from_step, sign);

                // The last columns, and the last rows.
#if defined(__AVX512F__)
    if (whole_cols < t.cols)
        for (ptrdiff_t r = 0; r < t.rows; r += tile)
            Tile::move_part(to(r, whole_cols), t.to_step, from(r, whole_cols), t.from_step,
                            least(tile, t.rows - r), t.cols - whole_cols, sign);
    if (whole_rows < t.rows)
        for (ptrdiff_t c = 0; c < whole_cols; c += Tile::width)
            Tile::move_part(to(whole_rows, c), t.to_step, from(whole_rows, c), t.from_step,
                            t.rows - whole_rows, Tile::width, sign);
#else
    auto element = [negated](double x) { return negated ? -x : x; };
    for (ptrdiff_t r = 0; r < whole_rows; r += tile) part(t, r, r + tile, whole_cols, t.cols, element);
    for (ptrdiff_t c0 = 0; c0 < t.cols; c0 += tile)
        part(t, whole_rows, t.rows, c0, least(c0 + tile, t.cols), element);
#endif
#if defined(__SSE2__)
    if (streamed) _mm_sfence();
#endif
}

} // namespace

void transpose_doubles(const Transposition<double> &t, bool negated, bool streamed) {
    bool lines = reinterpret_cast<uintptr_t>(t.to) % 64 == 0 && t.to_step % tile == 0;
    if (streamed && lines)
        transpose<true>(t, negated);
    else
        transpose<false>(t, negated);
}

void transpose_bytes(const Transposition<unsigned char> &t) {
    auto same = [](unsigned char x) { return x; };
    constexpr ptrdiff_t block = 64; // a line of the result in each column
    for (ptrdiff_t c0 = 0; c0 < t.cols; c0 += block)
        for (ptrdiff_t r0 = 0; r0 < t.rows; r0 += block) {
            ptrdiff_t r1 = least(r0 + block, t.rows), c1 = least(c0 + block, t.cols);
            ptrdiff_t r = r0;
#if defined(__SSE2__)
            for (; r + 16 <= r1; r += 16) {
                ptrdiff_t c = c0;
                for (; c + 16 <= c1; c += 16) {
                    // Four times row k with row k + 8, byte by byte: the bits of the place of an element,
                    // row before column, turn by one each time.
                    __m128i x[16], y[16];
                    for (int k = 0; k < 16; ++k)
                        x[k] = _mm_loadu_si128(
                            reinterpret_cast<const __m128i *>(t.from + (r + k) * t.from_step + c));
                    for (int round = 0; round < 4; ++round) {
                        for (int k = 0; k < 8; ++k) {
                            y[2 * k] = _mm_unpacklo_epi8(x[k], x[k + 8]);
                            y[2 * k + 1] = _mm_unpackhi_epi8(x[k], x[k + 8]);
                        }
                        for (int k = 0; k < 16; ++k) x[k] = y[k];
                    }
                    for (int k = 0; k < 16; ++k)
                        _mm_storeu_si128(reinterpret_cast<__m128i *>(t.to + r + (c + k) * t.to_step), x[k]);
                }
                part(t, r, r + 16, c, c1, same);
            }
#endif
            part(t, r, r1, c0, c1, same);
        }
}

} // namespace kn::inline KN_ISA
