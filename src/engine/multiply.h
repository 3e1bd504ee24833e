// The matrix product.
#ifndef QUORVEX_ENGINE_MULTIPLY_H
#define QUORVEX_ENGINE_MULTIPLY_H

#include "quorvex/values.h"

namespace kn {

// a times b, both with at least two elements: full or sparse, numbers of any kind. "*: wrong dimensions of:
// %s %dx%d, %s %dx%d", and x_M, when the inner extents differ.
Mm matrix_product(const Mm &a, const Mm &b);

// The same of a sparse and a full matrix of doubles that conform, not empty; the result is full.
Mm mixed_product(const Mm &a, const Mm &b);

// Whether both are matrices whose inner extents agree; else it is reported.
bool conform(const Mm &a, const Mm &b);

} // namespace kn

#endif
