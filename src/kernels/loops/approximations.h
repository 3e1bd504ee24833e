// Exponential, logarithm, sine, cosine and power of normal arguments, for the instruction sets with a fused
// multiply-add: of one double and of a vector, by the same operations and so to the same bits.
//
// Each reduces its argument exactly to a short range, keeping what the leading double cannot hold in a second
// one, and adds a polynomial (minimax, found with Sollya) there:
//
//     exp        x = n ln 2 + r, |r| <= ln 2 / 2
//     log        x = 2^k z, z in [11/16, 11/8); r = z c - 1 exactly, with c = j / 128 near 1 / z;
//                log x = k ln 2 - log c + log(1 + r), |r| < 0.0094
//     sin, cos   x = n pi + r, |r| <= pi / 2
//     power      exp(y log x), the logarithm as a sum of two doubles, about 68 bits
//
// Reductions of this kind are described by W. J. Cody and W. Waite, Software Manual for the Elementary
// Functions, 1980, and P. T. P. Tang, Table-driven Implementation of the Logarithm Function in IEEE
// Floating-point Arithmetic, 1990. docs/numerics.md has the measured errors.
#ifndef QUORVEX_KERNELS_LOOPS_APPROXIMATIONS_H
#define QUORVEX_KERNELS_LOOPS_APPROXIMATIONS_H

#include "base/instruction_set.h"
#include "kernels/loops/vectors.h"

#ifdef KN_VECTOR_BYTES

namespace kn::inline KN_ISA::math {

template <class T> struct Sum { T high, low; };

// a + b, where a is 0 or the larger one.
template <class T> Sum<T> added(T a, T b) {
    T s = a + b;
    return {s, (a - s) + b};
}

// c0 + c1 x + ...; neighbours are paired, then the pairs, so that few operations wait for one another.
template <class T> T polynomial(T, double c) { return same<T>(c); }
template <class T> T polynomial(T x, double c0, double c1) { return fused(same<T>(c1), x, same<T>(c0)); }
template <class T, class... C> T polynomial(T x, double c0, double c1, double c2, C... more) {
    const T square = x * x;
    if constexpr (sizeof...(more) <= 1)
        return fused(polynomial(x, c2, more...), square, polynomial(x, c0, c1));
    else
        return [&]<class... D>(double c3, D... rest) {
            return fused(polynomial(x, rest...), square * square,
                         fused(polynomial(x, c2, c3), square, polynomial(x, c0, c1)));
        }(more...);
}

// To the nearest whole number, for |x| below 2^51. Added to 2^52 + 2^51 that number is in the last bits.
constexpr double to_whole = 0x1.8p52;
template <class T> T nearest(T x) { return (x + to_whole) - to_whole; }

// -- exp(x), or of x + low, within a normal result.
template <class T, class... Low> T exp_of(T x, Low... low) {
    const T shifted = fused(x, same<T>(0x1.71547652b82fep0), same<T>(to_whole));
    const T n = shifted - to_whole;
    const T first = fused(n, same<T>(-0x1.62e42fefa39efp-1), x);
    const T second = same<T>(-0x1.abc9e3b39803fp-56);
    const T more = (first + ... + low);
    const T r = fused(n, second, more), rest = (fused(n, second, more - r) + ... + ((first - more) + low));
    const T q =
        polynomial(r, 0.5, 0x1.5555555555557p-3, 0x1.5555555555552p-5, 0x1.1111111110053p-7,
                   0x1.6c16c16c18934p-10, 0x1.a01a01ac1cd44p-13, 0x1.a01a0197bc5dep-16, 0x1.71de01af9f21cp-19,
                   0x1.27e500deebb48p-22, 0x1.af4ec70880e19p-26, 0x1.1f32f4fc36859p-29);
    const Sum<T> one_and_r = added(same<T>(1), r);
    const T e = one_and_r.high + (one_and_r.low + fused(r * r, q, rest * one_and_r.high));
    return number_of(word(e) + (word(shifted) << 52));
}

// -- Logarithms. A row has c and -log c, the high part of that a multiple of 2^-43, as that of ln 2 is: k ln
// 2
// - log c is then exact.
struct LogarithmRow {
    double factor, high, low, unused;
};
struct LogarithmTable {
    static constexpr int rows = 128;
    alignas(64) LogarithmRow row[rows];

    __extension__ typedef __float128 Wide;
    static constexpr Wide logarithm(Wide x) { // 2 atanh((x - 1) / (x + 1)), for x near 1
        const Wide s = (x - 1) / (x + 1), square = s * s;
        Wide sum = 0;
        for (int k = 41; k > 0; k -= 2) sum = sum * square + Wide(1) / k;
        return 2 * s * sum;
    }
    constexpr LogarithmTable() : row{} {
        for (int k = 0; k < rows; ++k) {
            // The middle of the numbers that have row k: 80 rows below 1, 48 from there on.
            const double middle = k < 80 ? (353 + 2 * k) / 512.0 : (257 + 2 * (k - 80)) / 256.0;
            const double c = static_cast<int>(128 / middle + 0.5) / 128.0;
            const Wide log = -logarithm(c);
            const double shift = 0x1.8p9; // added to it a double keeps 43 bits after the point
            const double high = (static_cast<double>(log) + shift) - shift;
            row[k] = {c, high, static_cast<double>(log - high), 0};
        }
    }
};
inline constexpr LogarithmTable logarithm_table;

template <class T> struct Row { T factor, high, low; };

inline Row<double> row_of(uint64_t k) {
    const LogarithmRow &r = logarithm_table.row[k];
    return {r.factor, r.high, r.low};
}

// Whole rows, transposed in registers.
inline Row<V> row_of(Word k) {
    auto quarter = [&](ptrdiff_t lane) { return _mm256_load_pd(&logarithm_table.row[k[lane]].factor); };
#if KN_VECTOR_BYTES == 64
    auto half = [&](int lane) {
        return _mm512_insertf64x4(_mm512_castpd256_pd512(quarter(lane)), quarter(lane + 4), 1);
    };
    const V a = half(0), b = half(1), c = half(2), d = half(3);
    const V ab = _mm512_unpacklo_pd(a, b), cd = _mm512_unpacklo_pd(c, d);
    const V high_ab = _mm512_unpackhi_pd(a, b), high_cd = _mm512_unpackhi_pd(c, d);
    return {__builtin_shufflevector(ab, cd, 0, 1, 8, 9, 4, 5, 12, 13),
            __builtin_shufflevector(high_ab, high_cd, 0, 1, 8, 9, 4, 5, 12, 13),
            __builtin_shufflevector(ab, cd, 2, 3, 10, 11, 6, 7, 14, 15)};
#else
    const V a = quarter(0), b = quarter(1), c = quarter(2), d = quarter(3);
    const V ab = _mm256_unpacklo_pd(a, b), cd = _mm256_unpacklo_pd(c, d);
    return {_mm256_permute2f128_pd(ab, cd, 0x20),
            _mm256_permute2f128_pd(_mm256_unpackhi_pd(a, b), _mm256_unpackhi_pd(c, d), 0x20),
            _mm256_permute2f128_pd(ab, cd, 0x31)};
#endif
}

// log x as high + low + log(1 + r).
template <class T> struct Logarithm { T high, low, r; };

template <class T> Logarithm<T> reduced_logarithm(T x) {
    constexpr uint64_t least = std::bit_cast<uint64_t>(0.6875);
    constexpr uint64_t bias = 1024, exponent = 52;
    const auto offset = word(x) - least + (bias << exponent); // its exponent is k + bias
    const auto biased = offset >> exponent;
    const T k = number_of(biased | std::bit_cast<uint64_t>(0x1p52)) - (0x1p52 + bias);
    const T z = number_of(word(x) - ((biased - bias) << exponent));
    const Row<T> row = row_of((offset >> 45) & (LogarithmTable::rows - 1));
    return {fused(k, same<T>(0x1.62e42fefa38p-1), row.high), fused(k, same<T>(0x1.ef35793c7673p-45), row.low),
            fused(z, row.factor, same<T>(-1))};
}

template <class T> T log_of(T x) {
    const Logarithm<T> l = reduced_logarithm(x);
    const T q = polynomial(l.r, -0.5, 0x1.55555555555ecp-2, -0x1.000000000014ap-2, 0x1.9999997f8aca2p-3,
                           -0x1.55555530738ddp-3, 0x1.249b4a8770656p-3, -0x1.0009c2f527564p-3);
    const Sum<T> s = added(l.high, l.r);
    return s.high + (s.low + fused(l.r * l.r, q, l.low));
}

template <class T> Sum<T> log_sum(T x) {
    const Logarithm<T> l = reduced_logarithm(x);
    const T half = -0.5 * l.r, square = half * l.r, cube = square * l.r;
    const T q =
        polynomial(l.r, 0x1.5555555555555p-2, -0x1.0000000000088p-2, 0x1.99999999a87b9p-3,
                   -0x1.5555553dda85ep-3, 0x1.249243ec1d5b2p-3, -0x1.00081bb90f50bp-3, 0x1.c82f5656ae65ap-4);
    const Sum<T> s = added(l.high, l.r), t = added(s.high, square);
    const T rest = fused(half, l.r, -square) + (t.low + (s.low + l.low));
    return added(t.high, fused(-2.0 * cube, q, rest));
}

// -- sin and cos, for |x| up to 1e9. cos x is the sine of x + pi / 2; n is whole in one and a half more in
// the other.
template <bool cosine, class T> T sine(T x) {
    const T size = abs(x), per_pi = same<T>(0x1.45f306dc9c883p-2);
    const T shifted =
        cosine ? fused(size, per_pi, same<T>(0.5)) + to_whole : fused(size, per_pi, same<T>(to_whole));
    const T n = cosine ? (shifted - to_whole) - 0.5 : shifted - to_whole;

    // pi in three parts. n times the first is subtracted exactly, except in the cosine of small x; the
    // difference has few bits, so the rounding errors of the next steps can be computed from their results.
    const T part = same<T>(0x1.921fb54442d18p1), first = fused(-n, part, size);
    const T second = n * 0x1.1a62633145c07p-53, below = fused(n, same<T>(0x1.1a62633145c07p-53), -second);
    const T r = first - second;
    T rest = fused(n, same<T>(0x1.f1976b7ed8fbcp-109), ((first - r) - second) - below);
    if (cosine) rest = rest + (size - fused(n, part, first));

    // r - r^3 / 6 + ... in two doubles, for it loses half of r; and cos(r) times the rest, roughly.
    const T z = r * r, cube = z * r, below_cube = fused(r, fused(r, r, -z), fused(z, r, -cube));
    const T sixth = same<T>(-0x1.5555555555555p-3);
    const T high = fused(cube, sixth, r), low = fused(cube, sixth, r - high);
    const T seventh = polynomial(z, -0x1.a01a01a014e0ap-13, 0x1.71de3a52a5db4p-19, -0x1.ae6454d7281ap-26,
                                 0x1.6123cdc607af3p-33, -0x1.ae43b9a75ba29p-41, 0x1.883892845f17fp-49);
    const T more = z * fused(z, seventh, same<T>(0x1.11111111110c8p-7)),
            of_rest = fused(rest, polynomial(z, 1, -0.4967, 0.03705), low);
    const T y = high + fused(cube, more, fused(below_cube, sixth + more, of_rest));
    const auto odd = word(shifted) << 63;
    return number_of(word(y) ^ (cosine ? odd : odd ^ (word(x) & word(same<T>(-0.0)))));
}

} // namespace kn::inline KN_ISA::math

#endif

#endif
