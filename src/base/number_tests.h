// Tests of numbers against zero and infinity.
#ifndef QUORVEX_BASE_NUMBER_TESTS_H
#define QUORVEX_BASE_NUMBER_TESTS_H

#include <cmath>
#include <cstddef>

#include "base/raw_numbers.h"

namespace kn {

inline bool is_finite(double x) { return std::fabs(x) <= raw_realmax; }

// NaN is nonzero, and -0 is zero. The second form tests element k of two planes; `im` is null for real ones.
inline bool is_nonzero(double x) { return !(x == 0); }
template <class T> bool is_nonzero(const T *re, const T *im, std::ptrdiff_t k) {
    return is_nonzero(re[k]) || (im && is_nonzero(im[k]));
}

} // namespace kn

#endif
