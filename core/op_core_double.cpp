// The loops for doubles: one row for each operation.

#include "core/element_kernels.h"
#include "core/op_loops.h"

namespace kn {

const Loops<double> double_loops[op_count_] = {
#define KN_ROW(name, group, rule, K) loops_for<double, DoubleLoops, kernel::K>(),
    QUORVEX_OPERATIONS(KN_ROW)
#undef KN_ROW
};

} // namespace kn
