// What the loops of the operations take: the kernel tables (core/kernel_table.h) have a row of loops for each
// code, by element type.
//
// A loop is chosen once for an array; what it finds there is described by Elements (element by element) or
// Slices (along a dimension). Results are written completely: where an operation has nothing to write, as
// when a complex result was not asked for, zeros.
#ifndef QUORVEX_CORE_OP_CORE_H
#define QUORVEX_CORE_OP_CORE_H

#include <stddef.h>

#include <algorithm>

#include "core/kernels/isa.h"
#include "quorvex/op_list.h"

namespace kn {

// The elements of an operand. im is null for a real one. Step 0: one element, used for all.
template <class T> struct Operand {
    const T *re, *im;
    ptrdiff_t step;
};

// n results in re, and in im if that is not null. Operands do not overlap results.
template <class T> struct Elements {
    T *re, *im;
    ptrdiff_t n;
    Operand<T> a, b;
};

// outer times stride slices of len elements; the elements of a slice are stride apart. `total` results are
// there. b: coordinates or tolerance. position: where the index of each slice's best element goes, or null.
template <class T> struct Slices {
    T *re, *im;
    ptrdiff_t total;
    const T *are, *aim, *bre, *bim;
    ptrdiff_t len, stride, outer;
    double *position;
};

// One of the two is null.
template <class T> struct Loops {
    void (*elements)(const Elements<T> &);
    void (*along)(const Slices<T> &);
};

inline namespace KN_ISA {
template <class T> void clear(T *re, T *im, ptrdiff_t n) {
    if (re) std::fill(re, re + n, T(0));
    if (im) std::fill(im, im + n, T(0));
}
} // namespace KN_ISA

} // namespace kn

#endif
