// Kernels that move elements without looking at them: the result they fill, and their planes by element type.
#ifndef QUORVEX_CORE_PLANES_H
#define QUORVEX_CORE_PLANES_H

#include <cstddef>

#include "core/header.h"

namespace kn {

// Makes `out` a full value of x's kind (element type, imaginary plane, flags, field names, class) with other
// extents; its elements are not cleared. False when there is no memory for it: `out` is then not to be used.
bool make_like(Mm &out, const Mm &x, int ndims, const int *dims);

template <class T, class F> void planes_of(const Mm &to, const Mm &from, F f) {
    T *tag = nullptr;
    f(to.getpr(tag), static_cast<const T *>(from.getpr(tag)));
    if (to.isc() && from.isc()) f(to.getpi(tag), static_cast<const T *>(from.getpi(tag)));
}

// f(to, from) with the typed planes of two values of one element type: once, or twice for complex ones.
template <class F> void for_planes(const Mm &to, const Mm &from, F f) {
    switch (from.gettype()) {
    case kn_none: break;
    case kn_double: planes_of<double>(to, from, f); break;
    case kn_uint8: planes_of<unsigned char>(to, from, f); break;
    case kn_Mm: planes_of<Mm>(to, from, f); break;
    }
}

} // namespace kn

#endif
