// Reductions of sparse values that are too large to become full.
#ifndef QUORVEX_ENGINE_SPARSE_REDUCTIONS_H
#define QUORVEX_ENGINE_SPARSE_REDUCTIONS_H

#include "quorvex/values.h"

namespace kn {

// Whether the operation along a dimension can be formed from the entries alone.
bool reduces_entries(op_t op);

// The operation along a dimension (0: the first one above 1; below 5) of a sparse double; sparse. `extra`
// receives the positions of max and min, full, unless it is l_M. x_M when memory was exhausted.
Mm reduce_entries(int complex_result, const Mm &a, int dim, op_t op, Mm &extra);

} // namespace kn

#endif
