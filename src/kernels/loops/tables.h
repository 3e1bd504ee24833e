// What the sources of one instruction set make together.
#ifndef QUORVEX_KERNELS_LOOPS_TABLES_H
#define QUORVEX_KERNELS_LOOPS_TABLES_H

#include "base/instruction_set.h"
#include "kernels/array_moves.h"
#include "kernels/kernel_table.h"

namespace kn::inline KN_ISA {

extern const Loops<double> double_loops[op_count_];
extern const Loops<unsigned char> byte_loops[op_count_];
extern const NumberFunctions number_functions[op_count_];
extern const Moves moves;
void transpose_doubles(const Transposition<double> &t, bool negated, bool streamed);
void transpose_bytes(const Transposition<unsigned char> &t);
extern const KernelTable kernel_table;

} // namespace kn::inline KN_ISA

#endif
