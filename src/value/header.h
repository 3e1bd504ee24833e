// The library's own access to the header of a value, and the small helpers with which kernels make results.
//
// A result is made in two steps: construct it (`Mm out(...)` or `fresh`), then ask `lacks(out, n)`. When
// memory ran out and the error handler returned, `out` is a valid empty value without room for n elements,
// and the function returns x_M.
#ifndef QUORVEX_VALUE_HEADER_H
#define QUORVEX_VALUE_HEADER_H

#include <algorithm>
#include <climits>
#include <cstdint>

#include "quorvex/values.h"

namespace kn {

struct StaticBlock; // value/number_block.h

struct Header {
    static void *&pr(const Mm &m) { return const_cast<Mm &>(m).pr; }
    static void *&pi(const Mm &m) { return const_cast<Mm &>(m).pi; }
    static kn_size *&index(const Mm &m) { return const_cast<Mm &>(m).index; }
    static unsigned *refcount(const Mm &m) { return m.refcount; }
    // Gives a value a name without telling the workspace.
    static void lend_name(Mm &m, const char *n) {
        m.name = n;
        m.level = -1;
    }
    static Mm *&shadow(const Mm &m) { return const_cast<Mm &>(m).shadow; }
    static int &level(const Mm &m) { return const_cast<Mm &>(m).level; }

    // A real full double with the extents of `like`; empty without memory.
    static Mm real_like(const Mm &like);

    // A row of n empty elements without spare ones, for the field values of a structure; empty without
    // memory.
    static Mm values(kn_size n);
    // The elements of `from`, which is unshared, become the first of `to`, so far empty ones. `from` is
    // left without elements.
    static void move_values(Mm &to, Mm &from);

    // Makes room for more elements in the block of an unshared full real array, which may move; false where
    // a new block has to be made.
    static bool extend(Mm &m, kn_size room);

    // A number, real or i times one, or an empty value on a block that lives as long as the library.
    static Mm constant(StaticBlock &block, kn_size nnz, bool complex);

    // Of numbers: value/number_block.h.
    static bool has_number_block(const Mm &m);
    static Mm number(double x, bool logical, bool scalar_only = false);
    static Mm number_slowly(double x, bool logical, bool scalar_only);
    static Mm number_in(Mm &temporary, double x, bool logical);
};

// Whether the value has no room for the n stored elements it was made for.
inline bool lacks(const Mm &m, kn_size n) { return m.getnnz() < n; }

// The element type of a C++ type.
template <class T> inline constexpr kn_matrix_types type_of = kn_double;
template <> inline constexpr kn_matrix_types type_of<unsigned char> = kn_uint8;
template <> inline constexpr kn_matrix_types type_of<Mm> = kn_Mm;

// Neither numbers nor a structure.
inline bool is_cell(const Mm &m) { return m.gettype() == kn_Mm && !m.isstruct(); }

inline bool same_size(const Mm &a, const Mm &b) {
    return std::equal(a.getdims(), a.getdims() + 4, b.getdims());
}

// Whether two headers refer to one block.
inline bool same_block(const Mm &a, const Mm &b) { return Header::refcount(a) == Header::refcount(b); }

// Whether the value can be changed in place. A shared one is copied first; false when memory
// was exhausted.
inline bool unshared(Mm &m) {
    if (m.dirty()) m.deepcopy(m, kn_none);
    return !m.dirty();
}

// Sorts the entries of a sparse value. False when memory was exhausted, which has been reported.
inline bool sort_entries(Mm &m) {
    m.sort();
    return std::is_sorted(m.getindex(), m.getindex() + m.getnnz());
}

// A full value of the extents of `like`.
inline Mm fresh_like(const Mm &like, int complex, kn_matrix_types t) {
    return Mm(complex, 0, 0, like.getndims(), like.getdims(), t);
}

inline constexpr kn_size size_max = PTRDIFF_MAX;
// The largest number that double_to_size gives.
inline constexpr kn_size largest_index = sizeof(kn_size) == 8 ? kn_size(int64_t{1} << 53) : INT_MAX;

// A sparse value with this many elements or more is not converted to a full one.
inline constexpr kn_size too_large_for_full = 100000000;

// Product of extents, or -1 when it does not fit.
kn_size product(kn_size ndims, const kn_size *dims);

// Asserts what holds for every value between operations: extents against nnz, ascending index, count, field
// list. Nothing in release builds.
#ifdef NDEBUG
inline void check(const Mm &) {}
#else
void check(const Mm &m);
#endif

} // namespace kn

#endif
