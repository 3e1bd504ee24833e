// Extents that a program gives.
#ifndef QUORVEX_VALUE_SIZE_ARGUMENTS_H
#define QUORVEX_VALUE_SIZE_ARGUMENTS_H

#include <initializer_list>

#include "quorvex/values.h"

namespace kn {

struct Extents {
    kn_size n;    // dimensions, at least 2
    kn_size d[4]; // 1 beyond n
};

// Up to four sizes, each truncated; or one size vector, its elements rounded, more than four cut with the
// warning "%s: too many dimensions"; one number alone is both sides of a square. What is below 1, and NaN,
// counts as 0.
Extents extents_of(const char *name, std::initializer_list<const Mm *> sizes);

} // namespace kn

#endif
