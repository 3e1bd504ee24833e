// Kernels on one real number: rounding, sign, remainders, powers, bit operations, conversions to integers,
// and the reduction of large angles.
//
// The element loops, the fast paths for scalars and the overloads on plain doubles all call these, so that
// they agree bit for bit. What a loop should vectorise is inline and free of branches.
#ifndef QUORVEX_SPECIAL_SCALAR_KERNELS_H
#define QUORVEX_SPECIAL_SCALAR_KERNELS_H

#include <cmath>
#include <cstdint>

#include "base/instruction_set.h"
#include "base/raw_numbers.h"

namespace kn {

inline constexpr double raw_pi = 3.141592653589793;
inline constexpr double raw_ln2 = 0.6931471805599453;
inline constexpr double raw_ln10 = 2.302585092994046;

// The remainder of x / y with the sign of x (rem) or y (mod). NaN when y is 0 or either is not finite. A
// quotient within rounding error of the next whole number counts as that number, and the remainder is 0; in
// rem not for negative quotients.
double rem_real(double x, double y);
double mod_real(double x, double y);

// f times 2 to the e. For an infinite e: Inf when e > 0, else -Inf, whatever f is.
double pow2_2(double f, double e);

// x minus a multiple of 2 pi, for large x: the sum of (2^k mod 2 pi) over the bits of x. Not finite: NaN.
double range_reduce(double x);
inline constexpr double reduce_beyond = 1e9;

// Bit operations on whole numbers, as two words of 32 bits each. Bits are counted from 1.
enum class Bits { and_, or_, xor_ };
double bit_logic(double a, double b, Bits kind);
double bit_complement(double a, double n);
double bit_get(double a, double k);
double bit_set(double a, double k);
double bit_reset(double a, double k);
double bit_shift(double a, double n);

// -- What loops inline.

inline namespace KN_ISA {

// Truncation, low byte kept; 0 for what does not fit 64 bits.
inline unsigned char to_byte(double x) {
    return std::fabs(x) < 0x1p63 ? static_cast<unsigned char>(static_cast<int64_t>(x)) : 0;
}

inline double fix_real(double x) { return std::trunc(x); }

// To the nearest whole number, halves away from zero.
inline double round_half_away(double x) { return x <= 0 ? std::ceil(x - 0.5) : std::floor(x + 0.5); }

// -1 for NaN: not above and not equal to 0.
inline double sign_real(double x) { return static_cast<double>(x > 0) - static_cast<double>(!(x >= 0)); }

// The larger or smaller one; y when they are equal. NaN loses against any number.
inline double max2_real(double x, double y) { return x > y || y != y ? x : y; }
inline double min2_real(double x, double y) { return x < y || y != y ? x : y; }

} // namespace KN_ISA
} // namespace kn

#endif
