// Numbers: real full doubles of size 1, most of what programs compute with.
//
// A number's header is written at once, its block comes from the list of its size without a call
// (base/block_alloc.h), and a number that is no longer needed hands its block to the result.
#ifndef QUORVEX_VALUE_NUMBER_BLOCK_H
#define QUORVEX_VALUE_NUMBER_BLOCK_H

#include <climits>

#include "base/block_alloc.h"
#include "value/header.h"

namespace kn {

inline constexpr kn_size block_slack = 8; // spare elements of a numeric block
inline constexpr kn_size number_room = 1 + block_slack;
inline constexpr size_t number_bytes = (number_room + 1) * sizeof(double); // of its block, the count included

// The count of a block that is never counted, freed or written: of values without content and of constants.
// Threads can share it, and writers see it as shared.
inline constexpr unsigned uncounted = INT_MAX;

struct StaticBlock {
    double data[2 * number_room] = {}; // of a complex number at most
    unsigned count = uncounted;
};
extern StaticBlock empty_block; // of values without content

inline bool is_real_scalar(const Mm &a) {
    const M_types &f = a.getflags();
    return a.getnnz() == 1 && f.type == kn_double && !f.sparse && !a.isc();
}

inline unsigned *count_of_number(void *block) {
    return reinterpret_cast<unsigned *>(static_cast<double *>(block) + number_room);
}

} // namespace kn

// The header of a number and what its block holds.
inline Mm::Mm(const Number &n)
    : pr(n.block), pi(nullptr), nnz(1), p(kn::number_room),
      refcount(kn::count_of_number(n.block)), flags{0, 0, n.logical, n.scalar_only, 0, 0, kn_double},
      name(nullptr), ndims(2), dims{1, 1, 1, 1}, index(nullptr), fields(nullptr), nfields(0), classid(0),
      shadow(nullptr) {
    *refcount = 1;
    *addr() = n.value;
}

inline void Mm::hold_nothing() {
    ndims = 2;
    dims[0] = dims[1] = dims[2] = dims[3] = 0;
    p = 0;
    refcount = &kn::empty_block.count;
    pr = kn::empty_block.data;
    pi = nullptr;
    nnz = 0;
    index = nullptr;
    fields = nullptr;
    nfields = 0;
    classid = 0;
    flags.sparse = 0;
    flags.type = kn_double;
}

// The same for a number, where the other fields are so already.
inline void Mm::give_number() {
    dims[0] = dims[1] = dims[2] = dims[3] = 0;
    p = 0;
    refcount = &kn::empty_block.count;
    pr = kn::empty_block.data;
    nnz = 0;
}

// A real scalar in an unshared block, in which another number can replace it.
inline bool Mm::is_number() const {
    return p == kn::number_room && refcount == kn::count_of_number(pr) && *refcount == 1 &&
           kn::is_real_scalar(*this);
}

namespace kn {

// Whether the block of a value that holds no values is a number's.
inline bool Header::has_number_block(const Mm &m) {
    return m.p == number_room && m.refcount == count_of_number(m.pr) && !m.index;
}

inline Mm Header::number(double x, bool logical, bool scalar_only) {
    void *block = quick_alloc<number_bytes>();
    if (!block) return number_slowly(x, logical, scalar_only);
    return Mm(Mm::Number{block, x, logical, scalar_only});
}

// The same in the block of a temporary.
inline Mm Header::number_in(Mm &temporary, double x, bool logical) {
    if (!temporary.is_number() || temporary.index) return number(x, logical);
    void *block = temporary.pr;
    temporary.give_number();
    return Mm(Mm::Number{block, x, logical, false});
}

} // namespace kn

#endif
