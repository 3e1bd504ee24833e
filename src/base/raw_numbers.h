// Values of the language's constants as plain doubles.
#ifndef QUORVEX_BASE_RAW_NUMBERS_H
#define QUORVEX_BASE_RAW_NUMBERS_H

#include <bit>
#include <cstdint>

namespace kn {

inline constexpr double raw_inf = std::bit_cast<double>(uint64_t{0x7FF0000000000000});
inline constexpr double raw_nan =
    std::bit_cast<double>(uint64_t{0x7FFFFFFFFFFFFFFF}); // all mantissa bits set
inline constexpr double raw_eps = 0x1p-52;
inline constexpr double raw_realmin = 0x1p-1022;
inline constexpr double raw_realmax = (2.0 - raw_eps) * 0x1p1023;

} // namespace kn

#endif
