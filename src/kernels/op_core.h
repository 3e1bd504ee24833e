// What the loops of the operations take: the kernel tables (kernels/kernel_table.h) have a row of loops for
// each code, by element type.
//
// A loop is chosen once for an array; what it finds there is described by Elements (element by element) or
// Slices (along a dimension). Results are written completely: where an operation has nothing to write, as
// when a complex result was not asked for, zeros.
#ifndef QUORVEX_KERNELS_OP_CORE_H
#define QUORVEX_KERNELS_OP_CORE_H

#include <stddef.h>

#include <algorithm>

#include "base/instruction_set.h"
#include "quorvex/op_list.h"

namespace kn {

// The elements of an operand. im is null for a real one. Step 0: one element, used for all.
template <class T> struct Operand {
    const T *re, *im;
    ptrdiff_t step;
};

// n results in re, and in im if that is not null. An operand may be the result itself, element for element;
// else they lie apart. The element of a step of 0 is read before anything is written.
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

// The elements from `begin` to `end`.
template <class T> Elements<T> part(const Elements<T> &e, ptrdiff_t begin, ptrdiff_t end) {
    auto from = [begin](auto *p) { return p ? p + begin : p; };
    auto of = [&](const Operand<T> &o) { return o.step ? Operand<T>{from(o.re), from(o.im), o.step} : o; };
    return {from(e.re), from(e.im), end - begin, of(e.a), of(e.b)};
}

// One of the two is null.
template <class T> struct Loops {
    void (*elements)(const Elements<T> &);
    void (*along)(const Slices<T> &);
    int cost[2]; // of an element, real and complex, in about a quarter of a nanosecond
};

// An operation on real numbers, bit for bit as the loops have it; null for other operations.
struct NumberFunctions {
    double (*unary)(double);
    double (*binary)(double, double);
    // Where the result rule looks at the elements: n of them, if they all lie where the function is real.
    // False soon after the first that doesn't; then `out` holds nothing of use.
    bool (*within)(double *out, const double *x, ptrdiff_t n);
};

inline namespace KN_ISA {
template <class T> void clear(T *re, T *im, ptrdiff_t n) {
    if (re) std::fill(re, re + n, T(0));
    if (im) std::fill(im, im + n, T(0));
}
} // namespace KN_ISA

} // namespace kn

#endif
