// Index values to positions, and masks as bits.
//
// A mask is read once, into bits; eight, four or one of them at a time then bring the wanted elements of a
// vector to its front. Whole vectors are stored; the next one overwrites the unwanted rest. Near the ends,
// where whole vectors would reach too far, elements move one by one, from one set bit to the next.

#include <bit>
#include <cstdint>
#include <cstring>

#include "kernels/loops/intrinsics.h"
#include "kernels/loops/tables.h"

namespace kn::inline KN_ISA {

namespace {

// ---- Copies ----

#if defined(__AVX2__)
using Chunk = __m256i;
inline Chunk chunk(const char *x) { return _mm256_loadu_si256(reinterpret_cast<const Chunk *>(x)); }
inline void put(char *to, Chunk x) { _mm256_storeu_si256(reinterpret_cast<Chunk *>(to), x); }
#elif defined(__SSE2__)
using Chunk = __m128i;
inline Chunk chunk(const char *x) { return _mm_loadu_si128(reinterpret_cast<const Chunk *>(x)); }
inline void put(char *to, Chunk x) { _mm_storeu_si128(reinterpret_cast<Chunk *>(to), x); }
#endif

void copy(void *to, const void *from, size_t n) {
#if defined(__SSE2__)
    constexpr size_t size = sizeof(Chunk);
    char *t = static_cast<char *>(to);
    const char *f = static_cast<const char *>(from);
    if (n >= size) {
        put(t, chunk(f));
        put(t + n - size, chunk(f + n - size));
        size_t k = size - reinterpret_cast<uintptr_t>(t) % size; // whole chunks of the result
        for (; k + 4 * size <= n; k += 4 * size) {
            Chunk a = chunk(f + k), b = chunk(f + k + size);
            Chunk c = chunk(f + k + 2 * size), d = chunk(f + k + 3 * size);
            put(t + k, a);
            put(t + k + size, b);
            put(t + k + 2 * size, c);
            put(t + k + 3 * size, d);
        }
        for (; k + size <= n; k += size) put(t + k, chunk(f + k));
        return;
    }
#endif
    std::memcpy(to, from, n);
}

void repeat(double *to, double x, ptrdiff_t n) {
    for (ptrdiff_t k = 0; k < n; ++k) to[k] = x;
}

// ---- Positions ----

// As kn::position.
inline ptrdiff_t position_of(double v) {
    constexpr double most = sizeof(ptrdiff_t) == 8 ? 0x1p53 : 0x1p31 - 1;
    return v > most ? after_all : v > -most ? static_cast<ptrdiff_t>(v - 1.0) : before_all;
}

// Positions of a multiple of 8 values. False when one is no whole number, or too large: the list is then
// wrong. Without a comparison or a conversion of each, which would cost more than the move: beside 2^52 the
// last bits of a double count ones.
#if defined(__AVX2__) && __SIZEOF_POINTER__ == 8

#if defined(__AVX512F__)
using Doubles = __m512d;
inline Doubles repeat_in_all(double x) { return _mm512_set1_pd(x); }
inline Doubles doubles(const double *x) { return _mm512_loadu_pd(x); }
inline Doubles smaller(Doubles x, Doubles y) { return _mm512_min_pd(x, y); }
inline Doubles larger(Doubles x, Doubles y) { return _mm512_max_pd(x, y); }
template <class Bits> void put_bits(ptrdiff_t *to, Bits x) { _mm512_storeu_si512(to, __m512i(x)); }
#else
using Doubles = __m256d;
inline Doubles repeat_in_all(double x) { return _mm256_set1_pd(x); }
inline Doubles doubles(const double *x) { return _mm256_loadu_pd(x); }
inline Doubles smaller(Doubles x, Doubles y) { return _mm256_min_pd(x, y); }
inline Doubles larger(Doubles x, Doubles y) { return _mm256_max_pd(x, y); }
template <class Bits> void put_bits(ptrdiff_t *to, Bits x) {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(to), __m256i(x));
}
#endif

// The range of whole numbers is that of the values. What is cut off in any of them, NaN too, stays in `cut`.
template <bool listed>
bool whole_positions(ptrdiff_t *list, const double *v, ptrdiff_t n, PositionRange &range) {
    if (n == 0) return true;
    constexpr ptrdiff_t width = sizeof(Doubles) / sizeof(double), ways = 8 / width;
    constexpr double shift = 0x1.8p52, most = 0x1p51;
    using Bits = decltype(Doubles() != Doubles());
    const Bits first = Bits(repeat_in_all(shift + 1));
    Doubles least[ways], largest[ways];
    Bits cut = {};
    for (ptrdiff_t w = 0; w < ways; ++w) least[w] = repeat_in_all(most), largest[w] = -least[w];
    for (ptrdiff_t k = 0; k < n; k += 8)
        for (ptrdiff_t w = 0; w < ways; ++w) {
            const Doubles x = doubles(v + k + w * width), shifted = x + shift;
            cut |= shifted - shift != x;
            least[w] = smaller(least[w], x);
            largest[w] = larger(largest[w], x);
            if (listed) put_bits(list + k + w * width, Bits(shifted) - first);
        }
    double low = most, high = -most;
    bool whole = true;
    for (ptrdiff_t w = 0; w < ways; ++w)
        for (ptrdiff_t k = 0; k < width; ++k) {
            whole = whole && !cut[k];
            low = least[w][k] < low ? least[w][k] : low;
            high = largest[w][k] > high ? largest[w][k] : high;
        }
    if (!whole || low <= -most || high >= most) return false;
    if (low - 1 < static_cast<double>(range.least)) range.least = static_cast<ptrdiff_t>(low) - 1;
    if (high - 1 > static_cast<double>(range.largest)) range.largest = static_cast<ptrdiff_t>(high) - 1;
    return true;
}

#else

// A value below 1 has a place beyond every other.
template <bool listed>
bool whole_positions(ptrdiff_t *list, const double *v, ptrdiff_t n, PositionRange &range) {
    constexpr double shift = 0x1p52;
    constexpr int bits = sizeof(ptrdiff_t) == 8 ? 52 : 31;
    uint64_t fault = 0;
    ptrdiff_t largest = range.largest;
    for (ptrdiff_t k = 0; k < n; ++k) {
        double x = v[k] - 1.0, shifted = x + shift;
        uint64_t at = std::bit_cast<uint64_t>(shifted) ^ std::bit_cast<uint64_t>(shift);
        fault |= std::bit_cast<uint64_t>(shifted - shift - x) | (at + 1) >> bits;
        ptrdiff_t position = static_cast<ptrdiff_t>(at);
        largest = position > largest ? position : largest;
        if (listed) list[k] = position;
    }
    if (fault) return false;
    range.largest = largest;
    if (range.least > 0) range.least = 0;
    return true;
}

#endif

template <bool listed> PositionRange positions(ptrdiff_t *list, const double *v, ptrdiff_t n) {
    constexpr ptrdiff_t block = 1024; // stays in the cache for a second try
    PositionRange range = {PTRDIFF_MAX, PTRDIFF_MIN, true};
    for (ptrdiff_t start = 0; start < n; start += block) {
        ptrdiff_t m = n - start < block ? n - start : block, whole = m & ~ptrdiff_t{7};
        ptrdiff_t *at = listed ? list + start : nullptr;
        const double *x = v + start;
        if (!whole_positions<listed>(at, x, whole, range)) whole = 0;
        for (ptrdiff_t k = whole; k < m; ++k) {
            ptrdiff_t p = position_of(x[k]);
            range.counts = range.counts && p >= 0 && p == x[k] - 1.0;
            if (p < range.least) range.least = p;
            if (p > range.largest) range.largest = p;
            if (listed) at[k] = p;
        }
    }
    range.counts = range.counts && range.least >= 0;
    return range;
}

PositionRange positions(ptrdiff_t *list, const double *v, ptrdiff_t n) {
    return list ? positions<true>(list, v, n) : positions<false>(list, v, n);
}

// ---- Masks ----

struct IsMask {
    static bool of(double x) { return (x > 0) | (x < 0); }
#if defined(__AVX2__)
    static constexpr int comparison = _CMP_NEQ_OQ;
#endif
};

struct IsNonzero {
    static bool of(double x) { return !(x == 0); }
#if defined(__AVX2__)
    static constexpr int comparison = _CMP_NEQ_UQ;
#endif
};

template <class Is> MaskWord word_of(const double *x, int n) {
    MaskWord word = 0;
    for (int k = 0; k < n; ++k) word |= MaskWord{Is::of(x[k])} << k;
    return word;
}

template <class Is> MaskWord whole_word_of(const double *x) {
#if defined(__AVX512F__)
    MaskWord word = 0;
    for (int k = 0; k < 8; ++k)
        word |= MaskWord{_mm512_cmp_pd_mask(_mm512_loadu_pd(x + 8 * k), _mm512_setzero_pd(), Is::comparison)}
                << 8 * k;
    return word;
#elif defined(__AVX2__)
    MaskWord word = 0;
    for (int k = 0; k < 16; ++k) {
        __m256d hit = _mm256_cmp_pd(_mm256_loadu_pd(x + 4 * k), _mm256_setzero_pd(), Is::comparison);
        word |= MaskWord(static_cast<unsigned>(_mm256_movemask_pd(hit))) << 4 * k;
    }
    return word;
#else
    return word_of<Is>(x, 64);
#endif
}

template <class Is> ptrdiff_t bits_of(MaskWord *bits, const double *x, ptrdiff_t n) {
    ptrdiff_t count = 0, k = 0;
    for (; k + 64 <= n; k += 64) {
        MaskWord word = whole_word_of<Is>(x + k);
        count += std::popcount(word);
        *bits++ = word;
    }
    if (k < n) {
        *bits = word_of<Is>(x + k, static_cast<int>(n - k));
        count += std::popcount(*bits);
    }
    return count;
}

ptrdiff_t byte_bits(MaskWord *bits, const unsigned char *x, ptrdiff_t n) {
    ptrdiff_t count = 0;
    for (ptrdiff_t k = 0; k < n; k += 64) {
        MaskWord word = 0;
#if defined(__AVX2__)
        if (k + 64 <= n) {
            for (int half = 0; half < 2; ++half) {
                __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(x + k + 32 * half));
                __m256i zero = _mm256_cmpeq_epi8(b, _mm256_setzero_si256());
                word |= MaskWord(~static_cast<unsigned>(_mm256_movemask_epi8(zero))) << 32 * half;
            }
        } else
#endif
            for (int l = 0; l < 64 && k + l < n; ++l) word |= MaskWord{x[k + l] != 0} << l;
        count += std::popcount(word);
        *bits++ = word;
    }
    return count;
}

// f(k) for each set bit k of words [first, last).
template <class F> inline void for_set(const MaskWord *bits, ptrdiff_t first, ptrdiff_t last, F f) {
    for (ptrdiff_t w = first; w < last; ++w)
        for (MaskWord word = bits[w]; word != 0; word &= word - 1) f(64 * w + std::countr_zero(word));
}

// Vectors with their elements in the order of bits: the set ones to the front, or the front ones to the set.
#if defined(__AVX512F__)

constexpr int width = 8;
using Vector = __m512d;
inline Vector load(const double *x) { return _mm512_loadu_pd(x); }
inline void store(double *to, Vector x) { _mm512_storeu_pd(to, x); }
inline Vector repeated(double x) { return _mm512_set1_pd(x); }
inline Vector counting(double first) {
    return _mm512_add_pd(_mm512_set1_pd(first), _mm512_setr_pd(0, 1, 2, 3, 4, 5, 6, 7));
}
inline Vector compressed(Vector x, unsigned bits) {
    return _mm512_maskz_compress_pd(static_cast<__mmask8>(bits), x);
}
inline Vector expanded(Vector old, Vector x, unsigned bits) {
    return _mm512_mask_expand_pd(old, static_cast<__mmask8>(bits), x);
}
inline Vector blended(Vector old, Vector x, unsigned bits) {
    return _mm512_mask_blend_pd(static_cast<__mmask8>(bits), old, x);
}

#elif defined(__AVX2__)

constexpr int width = 4;
using Vector = __m256d;
inline Vector load(const double *x) { return _mm256_loadu_pd(x); }
inline void store(double *to, Vector x) { _mm256_storeu_pd(to, x); }
inline Vector repeated(double x) { return _mm256_set1_pd(x); }
inline Vector counting(double first) {
    return _mm256_add_pd(_mm256_set1_pd(first), _mm256_setr_pd(0, 1, 2, 3));
}

// For each four bits the halves of the elements in order, and a mask of the set ones.
struct Orders {
    alignas(32) int compress[16][8], expand[16][8], mask[16][8];
    constexpr Orders() : compress{}, expand{}, mask{} {
        for (int bits = 0; bits < 16; ++bits) {
            int count = 0;
            for (int k = 0; k < 4; ++k) {
                bool set = bits >> k & 1;
                for (int half = 0; half < 2; ++half) {
                    if (set) compress[bits][2 * count + half] = 2 * k + half;
                    expand[bits][2 * k + half] = 2 * count + half;
                    mask[bits][2 * k + half] = set ? -1 : 0;
                }
                count += set;
            }
        }
    }
};
constexpr Orders orders;

inline __m256i row_of(const int *row) { return _mm256_load_si256(reinterpret_cast<const __m256i *>(row)); }
inline Vector permuted(Vector x, const int *row) {
    return _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(x), row_of(row)));
}
inline Vector compressed(Vector x, unsigned bits) { return permuted(x, orders.compress[bits]); }
inline Vector blended(Vector old, Vector x, unsigned bits) {
    return _mm256_blendv_pd(old, x, _mm256_castsi256_pd(row_of(orders.mask[bits])));
}
inline Vector expanded(Vector old, Vector x, unsigned bits) {
    return blended(old, permuted(x, orders.expand[bits]), bits);
}

#else

constexpr int width = 1; // one by one, without a branch
using Vector = double;
inline Vector load(const double *x) { return *x; }
inline void store(double *to, Vector x) { *to = x; }
inline Vector repeated(double x) { return x; }
inline Vector counting(double first) { return first; }
inline Vector compressed(Vector x, unsigned) { return x; }
inline Vector blended(Vector old, Vector x, unsigned bits) {
    uint64_t keep = uint64_t{bits} - 1, a = std::bit_cast<uint64_t>(old), b = std::bit_cast<uint64_t>(x);
    return std::bit_cast<double>((a & keep) | (b & ~keep));
}
inline Vector expanded(Vector old, Vector x, unsigned bits) { return blended(old, x, bits); }

#endif

// step(k, bits) for each vector of the whole words, as long as more(); returns the words done.
template <class More, class Step>
inline ptrdiff_t by_vectors(const MaskWord *bits, ptrdiff_t n, More more, Step step) {
    ptrdiff_t w = 0;
    for (; w < n / 64 && more(); ++w) {
        MaskWord word = bits[w];
        if (word == 0) continue;
        for (int k = 0; k < 64; k += width, word >>= width)
            step(64 * w + k, static_cast<unsigned>(word & ((1u << width) - 1)));
    }
    return w;
}

// From a source that gives the vector, or the element, at k.
template <class Source>
inline void compress(double *to, ptrdiff_t count, Source source, const MaskWord *bits, ptrdiff_t n) {
    double *const end = to + count;
    ptrdiff_t done = by_vectors(
        bits, n, [&] { return end - to >= 64 + width; },
        [&](ptrdiff_t k, unsigned set) {
            store(to, compressed(source.vector(k), set));
            to += std::popcount(set);
        });
    for_set(bits, done, words_of(n), [&](ptrdiff_t k) { *to++ = source.element(k); });
}

struct ElementSource {
    const double *x;
    Vector vector(ptrdiff_t k) const { return load(x + k); }
    double element(ptrdiff_t k) const { return x[k]; }
};

struct NumberSource {
    Vector vector(ptrdiff_t k) const { return counting(static_cast<double>(k + 1)); }
    double element(ptrdiff_t k) const { return static_cast<double>(k + 1); }
};

void compress(double *to, ptrdiff_t count, const double *from, const MaskWord *bits, ptrdiff_t n) {
    compress(to, count, ElementSource{from}, bits, n);
}

void numbers(double *to, ptrdiff_t count, const MaskWord *bits, ptrdiff_t n) {
    compress(to, count, NumberSource{}, bits, n);
}

void expand(double *to, const MaskWord *bits, ptrdiff_t n, const double *from, ptrdiff_t count) {
    const double *const end = from + count;
    ptrdiff_t done = by_vectors(
        bits, n, [&] { return end - from >= 64 + width; },
        [&](ptrdiff_t k, unsigned set) {
            store(to + k, expanded(load(to + k), load(from), set));
            from += std::popcount(set);
        });
    for_set(bits, done, words_of(n), [&](ptrdiff_t k) { to[k] = *from++; });
}

void fill(double *to, const MaskWord *bits, ptrdiff_t n, double x) {
    const Vector all = repeated(x);
    ptrdiff_t done = by_vectors(
        bits, n, [] { return true; },
        [&](ptrdiff_t k, unsigned set) { store(to + k, blended(load(to + k), all, set)); });
    for_set(bits, done, words_of(n), [&](ptrdiff_t k) { to[k] = x; });
}

ptrdiff_t find_pair(const double *a, const double *b, ptrdiff_t n, double x, double y) {
    ptrdiff_t k = 0;
#if defined(__AVX2__)
    const Vector xs = repeated(x), ys = repeated(y);
    for (; k + width <= n; k += width) {
#if defined(__AVX512F__)
        const auto there = static_cast<unsigned>(_mm512_mask_cmp_pd_mask(
            _mm512_cmp_pd_mask(load(a + k), xs, _CMP_EQ_OQ), load(b + k), ys, _CMP_EQ_OQ));
#else
        const auto there = static_cast<unsigned>(_mm256_movemask_pd(_mm256_and_pd(
            _mm256_cmp_pd(load(a + k), xs, _CMP_EQ_OQ), _mm256_cmp_pd(load(b + k), ys, _CMP_EQ_OQ))));
#endif
        if (there) return k + std::countr_zero(there);
    }
#endif
    while (k < n && !(a[k] == x && b[k] == y)) ++k;
    return k;
}

} // namespace

extern const Moves moves = {
    copy,   repeat, positions, bits_of<IsMask>, bits_of<IsNonzero>, byte_bits,       compress,
    expand, fill,   numbers,   find_pair,       transpose_doubles,  transpose_bytes,
};

} // namespace kn::inline KN_ISA
