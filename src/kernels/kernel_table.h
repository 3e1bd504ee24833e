// The kernels of the instruction set in use: one table, chosen once when the library is loaded.
//
// The best set that the processor has is taken. The environment variable QUORVEX_ISA names another one:
// baseline, avx2 (with FMA) or avx512; one that the processor lacks, or that does not exist, is not taken.
#ifndef QUORVEX_KERNELS_KERNEL_TABLE_H
#define QUORVEX_KERNELS_KERNEL_TABLE_H

#include "kernels/op_core.h"

namespace kn {

struct Moves;

struct KernelTable {
    const char *name;
    const Loops<double> *doubles;      // by op_t
    const Loops<unsigned char> *bytes; // by op_t
    const NumberFunctions *numbers;    // by op_t
    const Moves *moves;                // kernels/array_moves.h
};

// The tables that this processor can run, best first; the last is baseline, and null ends the list.
const KernelTable *const *available_kernels();

namespace detail {
extern const KernelTable *kernels_in_use;
}
inline const KernelTable &kernels() { return *detail::kernels_in_use; }
// For tests; returns what was in use.
const KernelTable &use_kernels(const KernelTable &table);

template <class T> const Loops<T> *loops_of();
template <> inline const Loops<double> *loops_of<double>() { return kernels().doubles; }
template <> inline const Loops<unsigned char> *loops_of<unsigned char>() { return kernels().bytes; }

} // namespace kn

#endif
