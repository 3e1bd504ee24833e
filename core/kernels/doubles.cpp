// The loops for doubles: one row for each operation.

#include "core/kernels/element_kernels.h"
#include "core/kernels/op_loops.h"
#include "core/kernels/tables.h"

namespace kn::inline KN_ISA {

const Loops<double> double_loops[op_count_] = {
#define KN_ROW(name, group, rule, K) loops_for<double, DoubleLoops, kernel::K>(),
    QUORVEX_OPERATIONS(KN_ROW)
#undef KN_ROW
};

} // namespace kn::inline KN_ISA
