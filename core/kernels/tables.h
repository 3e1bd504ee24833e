// What the sources of one instruction set make together.
#ifndef QUORVEX_CORE_KERNELS_TABLES_H
#define QUORVEX_CORE_KERNELS_TABLES_H

#include "core/kernel_table.h"
#include "core/kernels/isa.h"
#include "core/moves.h"

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
