// Vectors of doubles of the instruction set, where the build has elementary functions for them
// (KN_VECTOR_BYTES; cmake/library.cmake). Code for one number and for a vector is written once, as a template
// over both: comparisons and ?: of vectors work lane by lane.
#ifndef QUORVEX_KERNELS_LOOPS_VECTORS_H
#define QUORVEX_KERNELS_LOOPS_VECTORS_H

#include <stddef.h>

#include <bit>
#include <cmath>
#include <cstdint>

#include "base/instruction_set.h"
#include "base/raw_numbers.h"
#include "kernels/loops/intrinsics.h"

#ifdef KN_VECTOR_BYTES
#if KN_VECTOR_BYTES == 64
#define KN_SIMD(f) _mm512_##f
#else
#define KN_SIMD(f) _mm256_##f
#endif
#endif

namespace kn::inline KN_ISA::math {

inline double abs(double x) { return std::fabs(x); }
inline double sqrt(double x) { return std::sqrt(x); }
inline bool all(bool on) { return on; }
inline bool any(bool on) { return on; }
inline bool both(bool x, bool y) { return x && y; }
inline bool either(bool x, bool y) { return x || y; }
template <class T> T same(double x) { return x; }
inline double load(const double *p, ptrdiff_t k) { return p[k]; }

// The sign of NaN, which display shows as one more blank, depends on the order of operands, and that is the
// compiler's: where many terms meet, NaN is made the positive one.
template <class T> T one_nan(T x) { return x == x ? x : same<T>(raw_nan); }

#ifdef KN_VECTOR_BYTES

typedef double V __attribute__((vector_size(KN_VECTOR_BYTES)));
using Mask = decltype(V() < V()); // all bits of a lane, or none
typedef uint64_t Word __attribute__((vector_size(KN_VECTOR_BYTES)));
constexpr ptrdiff_t lanes = KN_VECTOR_BYTES / sizeof(double);

template <> inline V same<V>(double x) { return KN_SIMD(set1_pd)(x); }

inline V abs(V x) { return KN_SIMD(andnot_pd)(same<V>(-0.0), x); }

// x * y + z, rounded once.
inline double fused(double x, double y, double z) { return std::fma(x, y, z); }
inline V fused(V x, V y, V z) { return KN_SIMD(fmadd_pd)(x, y, z); }

#if KN_VECTOR_BYTES == 64
inline V sqrt(V x) { return _mm512_sqrt_pd(x); }
inline unsigned bits(Mask m) { return _mm512_movepi64_mask(reinterpret_cast<__m512i>(m)); }
#else
inline V sqrt(V x) { return _mm256_sqrt_pd(x); }
inline unsigned bits(Mask m) {
    return static_cast<unsigned>(_mm256_movemask_pd(reinterpret_cast<__m256d>(m)));
}
#endif
inline bool all(Mask m) { return bits(m) == (1u << lanes) - 1; }
inline bool any(Mask m) { return bits(m) != 0; }
inline Mask both(Mask x, Mask y) { return x & y; }
inline Mask either(Mask x, Mask y) { return x | y; }

// A number as its bits, and back.
inline uint64_t word(double x) { return std::bit_cast<uint64_t>(x); }
inline Word word(V x) { return reinterpret_cast<Word>(x); }
inline double number_of(uint64_t w) { return std::bit_cast<double>(w); }
inline V number_of(Word w) { return reinterpret_cast<V>(w); }

// Which elements of an array: as many as there are lanes from k on, or n, which are fewer.
struct Whole {
    ptrdiff_t k;
};
struct Part {
    ptrdiff_t k, n;
};

inline V load(const double *p, Whole at) { return KN_SIMD(loadu_pd)(p + at.k); }
inline void store(double *p, Whole at, V x) { KN_SIMD(storeu_pd)(p + at.k, x); }

inline Mask first(ptrdiff_t n) {
    V place = {};
    for (int k = 0; k < lanes; ++k) place[k] = k;
    return place < static_cast<double>(n);
}

// The lanes after the last element repeat it.
#if KN_VECTOR_BYTES == 64
inline V load(const double *p, Part at) {
    return _mm512_mask_loadu_pd(same<V>(p[at.k + at.n - 1]), static_cast<__mmask8>(bits(first(at.n))),
                                p + at.k);
}
inline void store(double *p, Part at, V x) {
    _mm512_mask_storeu_pd(p + at.k, static_cast<__mmask8>(bits(first(at.n))), x);
}
#else
inline V load(const double *p, Part at) {
    Mask on = first(at.n);
    return on ? _mm256_maskload_pd(p + at.k, reinterpret_cast<__m256i>(on)) : same<V>(p[at.k + at.n - 1]);
}
inline void store(double *p, Part at, V x) {
    _mm256_maskstore_pd(p + at.k, reinterpret_cast<__m256i>(first(at.n)), x);
}
#endif

// f(Whole) and then f(Part) for n elements.
template <class F> void for_lanes(ptrdiff_t n, F f) {
    ptrdiff_t k = 0;
    for (; k + lanes <= n; k += lanes) f(Whole{k});
    if (k < n) f(Part{k, n - k});
}

#endif

} // namespace kn::inline KN_ISA::math

#endif
