// Arguments that count as one number.
#ifndef QUORVEX_VALUE_NUMBER_ARGUMENT_H
#define QUORVEX_VALUE_NUMBER_ARGUMENT_H

#include <algorithm>
#include <climits>

#include "quorvex/classes.h"

namespace kn {

// The real part of the first element. An empty value, a cell and a structure are reported as by Mm::r, and
// give 0.
inline double first_number(const Mm &x) {
    if (x.gettype() == kn_uint8 && !x.issparse()) return x.ur(1);
    if (!x.issparse()) return x.r();
    return x.getnnz() > 0 && x.getindex()[0] == 0 ? x.addr()[0] : 0;
}

// The same after conversion to double, which reports cells and calls the method of a class.
inline double number_argument(const Mm &x) {
    const Mm number = mdouble(x);
    return number.gettype() == kn_double && !number.issparse() ? first_number(number) : 0;
}

// Truncated to 64 bits; the nearest 64-bit number where it is larger or NaN, which counts as the least.
inline long long offset_argument(const Mm &x) {
    constexpr double limit = 0x1p63;
    const double n = number_argument(x);
    return n < limit && n >= -limit ? static_cast<long long>(n) : n > 0 ? LLONG_MAX : LLONG_MIN;
}

// Rounded to the nearest integer; negative numbers count as 0.
inline kn_size count_argument(const Mm &x) {
    return std::max<kn_size>(0, double_to_size(number_argument(x) + 0.5));
}

} // namespace kn

#endif
