// The kernels that run along one dimension, each for doubles and for bytes: sums.cpp, extremes.cpp, truth.cpp
// and dimension_ops.cpp. How they walk, slices.h says; in which order sum adds, sums.cpp. Every other one
// takes the elements of a slice in order, or gives what that gives.
#ifndef QUORVEX_KERNELS_LOOPS_DIMENSION_OPS_H
#define QUORVEX_KERNELS_LOOPS_DIMENSION_OPS_H

#include "kernels/op_core.h"

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
