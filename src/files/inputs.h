// Inputs that are one number.
#ifndef QUORVEX_FILES_INPUTS_H
#define QUORVEX_FILES_INPUTS_H

#include <algorithm>
#include <climits>

#include "quorvex/classes.h"

namespace kn {

// The real part of the first element; of an empty value, a cell or a structure, whose errors mdouble and r
// report, 0.
inline double number_in(const Mm &x) {
    const Mm number = mdouble(x);
    if (number.gettype() != kn_double || number.issparse()) return 0;
    const double &first = number.r();
    return number.size() > 0 ? first : 0;
}

// Truncated to 64 bits; beyond them, and of NaN, the last number.
inline long long offset_in(const Mm &x) {
    constexpr double limit = 0x1p63;
    const double n = number_in(x);
    return n < limit && n >= -limit ? static_cast<long long>(n) : n > 0 ? LLONG_MAX : LLONG_MIN;
}

// Rounded, negative ones 0.
inline int count_in(const Mm &x) { return std::max(0, double_to_int(number_in(x) + 0.5)); }

} // namespace kn

#endif
