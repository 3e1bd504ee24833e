// Kernels that move elements without looking at them: the result they fill, and their planes by element type.
#ifndef QUORVEX_VALUE_PLANES_H
#define QUORVEX_VALUE_PLANES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "kernels/array_moves.h"
#include "kernels/kernel_table.h"
#include "value/header.h"

namespace kn {

// Makes `out` a full value of x's kind (element type, imaginary plane, flags, field names, class) with other
// extents; its elements are not cleared. False when there is no memory for it: `out` is then not to be used.
bool make_like(Mm &out, const Mm &x, int ndims, const kn_size *dims);

// Consecutive elements, few enough to be moved for less than a call would cost.
template <class T> void copy_few(T *to, const T *from, ptrdiff_t n) {
    for (ptrdiff_t k = 0; k < n; ++k) to[k] = from[k];
}

// Consecutive elements; `to` may lie before `from` in the same array.
template <class T> void copy_run(T *to, const T *from, ptrdiff_t n) {
    if (n <= 8) return copy_few(to, from, n);
    if constexpr (!std::is_same_v<T, Mm>) {
        const size_t bytes = static_cast<size_t>(n) * sizeof(T);
        const size_t ahead = reinterpret_cast<uintptr_t>(from) - reinterpret_cast<uintptr_t>(to);
        if (bytes >= 2048 && ahead >= bytes) return kernels().moves->copy(to, from, bytes);
    }
    std::copy_n(from, n, to);
}

template <class T> void fill_run(T *to, const T &x, ptrdiff_t n) {
    if constexpr (std::is_same_v<T, double>)
        if (n > 16) return kernels().moves->repeat(to, x, n);
    std::fill_n(to, n, x);
}

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
