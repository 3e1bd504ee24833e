// The loops for bytes: one row for each operation.

#include "kernels/loops/element_kernels.h"
#include "kernels/loops/op_loops.h"
#include "kernels/loops/tables.h"
#include "kernels/op_rows.h"

namespace kn::inline KN_ISA {

const Loops<unsigned char> byte_loops[op_count_] = {
#define KN_ROW(name, group, rule, K) loops_for<unsigned char, ByteLoops, kernel::K>(),
    KN_OPERATIONS(KN_ROW)
#undef KN_ROW
};

} // namespace kn::inline KN_ISA
