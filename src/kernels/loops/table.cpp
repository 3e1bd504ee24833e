// The table of this instruction set.

#include "kernels/loops/tables.h"

#define KN_TEXT_OF(x) #x
#define KN_TEXT(x) KN_TEXT_OF(x)

namespace kn::inline KN_ISA {
constinit const KernelTable kernel_table = {KN_TEXT(KN_ISA), double_loops, byte_loops, number_functions,
                                            &moves};
} // namespace kn::inline KN_ISA
