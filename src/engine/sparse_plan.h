// Element operations on sparse values.
#ifndef QUORVEX_ENGINE_SPARSE_PLAN_H
#define QUORVEX_ENGINE_SPARSE_PLAN_H

#include "quorvex/values.h"

namespace kn {

// The operation of the engine, at least one of the operands being sparse.
Mm sparse_operation(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim,
                    Mm &extra);

// A sparse double value of the extents of `like` with the elements of `values` at these positions, ascending;
// zeros are dropped. Complex when `values` is.
Mm sparse_entries(const Mm &values, const kn_size *positions, const Mm &like);

} // namespace kn

#endif
