// The kernels that run along one dimension, each for doubles and for bytes.
//
// Memory is walked in order whatever the dimension: where the elements of a slice are neighbours, slice by
// slice; where they are not, row by row through a group of slices, with the running values in the result. The
// order of the operations within a slice is that of its elements in both.
#ifndef QUORVEX_CORE_DIMENSION_OPS_H
#define QUORVEX_CORE_DIMENSION_OPS_H

#include "core/op_core.h"

namespace kn::inline KN_ISA::kernel {

#define KN_DIMENSION_KERNELS(ROW) \
    ROW(Diff)                     \
    ROW(Del2)                     \
    ROW(Gradient)                 \
    ROW(All)                      \
    ROW(Any)                      \
    ROW(Cumprod)                  \
    ROW(Cumsum)                   \
    ROW(Max1)                     \
    ROW(Median)                   \
    ROW(Min1)                     \
    ROW(Prod)                     \
    ROW(Sum)                      \
    ROW(Unwrap)
#define KN_KERNEL(Name)                                   \
    struct Name {                                         \
        static void along(const Slices<double> &);        \
        static void along(const Slices<unsigned char> &); \
    };
KN_DIMENSION_KERNELS(KN_KERNEL)
#undef KN_KERNEL

} // namespace kn::inline KN_ISA::kernel

#endif
