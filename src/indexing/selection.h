// What subscripts select.
//
// Along its dimension a subscript selects positions, counted from 0: the colon (known by its name) all of
// them, a logical value those of its nonzero elements (NaN is none), a sparse logical value those of its
// entries, any other value trunc(v - 1) for each element v, so that fractions are cut and 0.5 is the first
// position. Positions are worked out once, before anything moves: a run or a list, and the smallest and
// largest of them. Reading, assignment and deletion all go by a Selection, the positions of one to four
// subscripts.
#ifndef QUORVEX_INDEXING_SELECTION_H
#define QUORVEX_INDEXING_SELECTION_H

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

#include "base/scratch.h"
#include "kernels/array_moves.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {

// The subscripts of one reference. Each is a double.
struct Subscripts {
    int n = 0;
    const Mm *at[4] = {};
    const Mm &operator[](int k) const { return *at[k]; }
};

inline bool is_colon(const Mm &s) { return s.issamename(kn_colon_name); }
inline bool selects(double mask) { return (mask > 0) | (mask < 0); }
inline kn_size count_true(const double *mask, kn_size n) {
    kn_size count = 0;
    for (kn_size k = 0; k < n; ++k) count += selects(mask[k]);
    return count;
}

// Position of an index value. Beyond 2^53, where doubles are no longer all whole numbers, it is outside all
// extents.
inline kn_size position(double v) {
    constexpr double most = sizeof(kn_size) == 8 ? 0x1p53 : 0x1p31 - 1;
    return v > most ? after_all : v > -most ? static_cast<kn_size>(v - 1.0) : before_all;
}

// Full, and a matrix.
inline bool is_full_matrix(const Mm &m) { return !m.issparse() && m.getndims() == 2; }
// A full numeric scalar, which selects the one position(*s.addr()).
inline bool is_scalar_subscript(const Mm &s) {
    return s.getnnz() == 1 && is_full_matrix(s) && !s.islogical() && s.gettype() == kn_double && !is_colon(s);
}

// The positions of one subscript: a run, a list, or, of the only subscript of a reference, what the list
// would be made from: index values, or the bits of a mask.
class Positions {
  public:
    enum Kind { run, listed, valued, masked };

    Positions() = default;
    Positions(const Positions &) = delete;
    Positions &operator=(const Positions &) = delete;

    // Each replaces the positions; false when memory was exhausted. A colon selects `extent` positions, a
    // full mask none at or beyond `mask_end`. `alone` allows all kinds; the subscript must then last as long
    // as the positions.
    bool set(const Mm &s, kn_size extent, kn_size mask_end, bool alone = false);
    void set_run(kn_size first, kn_size count);
    // Those of the bytes that are not 0; of the elements of a full double that are not 0; of n positions
    // those that are not `gone`, which takes long for a long list.
    bool set_nonzero(const unsigned char *x, kn_size n, bool alone);
    bool set_nonzero(const Mm &x);
    bool set_others(const Positions &gone, kn_size n);

    Kind kind() const { return kind_; }
    kn_size count() const { return count_; }
    bool is_run() const { return kind_ == run; }
    kn_size first() const { return first_; }
    const kn_size *list() const { return list_; }
    const double *values() const { return values_; }
    const MaskWord *bits() const { return bits_; } // as many as reach the largest
    kn_size operator[](kn_size k) const {
        return kind_ == listed ? list_[k] : kind_ == run ? first_ + k : found(k);
    }
    ptrdiff_t largest() const { return largest_; } // -1 for none
    // None of them lies outside.
    bool inside(ptrdiff_t extent) const { return count_ == 0 || (least_ >= 0 && largest_ < extent); }
    // Whether they are known to come from whole numbers, none below 1.
    bool are_counts() const { return counts_; }
    // Which of them is the first outside [0, extent); -1 for none.
    kn_size first_outside(ptrdiff_t extent) const;

  private:
    Kind kind_ = run;
    bool counts_ = false;
    kn_size count_ = 0, first_ = 0, largest_ = -1;
    kn_size least_ = 0; // none is smaller
    const kn_size *list_ = nullptr;
    const double *values_ = nullptr;
    MaskWord *bits_ = nullptr;
    union {
        kn_size list[16];
        MaskWord bits[8];
    } near_;
    std::optional<Scratch<MaskWord>> far_;

    kn_size *list_of(kn_size n);
    MaskWord *bits_of(kn_size n);
    kn_size found(kn_size k) const;
    bool set_values(const double *v, kn_size n, bool alone);
    bool settle(kn_size *list, kn_size n);
    bool settle(MaskWord *bits, ptrdiff_t n, ptrdiff_t count);
};

class Selection {
  public:
    int n() const { return n_; }
    const Positions &operator[](int k) const { return at_[k]; }
    Positions &next() { return at_[n_++]; }
    bool add(const Mm &s, kn_size extent, kn_size mask_end = size_max) {
        return next().set(s, extent, mask_end);
    }
    // The only subscript.
    bool add_alone(const Mm &s, kn_size extent, kn_size mask_end = size_max) {
        return next().set(s, extent, mask_end, true);
    }
    // Elements of the selection; -1 when it is too large.
    kn_size total() const;

    // Tests every position as a walk through the selection would meet it: first those of the first element,
    // from the last subscript down, then each subscript's others. False after reporting (when strict) the
    // first one that is not positive or lies outside. Growing, only one subscript of a value that is no
    // vector has an upper end.
    enum Mode { reading, growing };
    bool reaches(const Mm &base, const Subscripts &s, Mode mode, int strict) const;

  private:
    int n_ = 0;
    Positions at_[4];
};

// How many positions each subscript selects, 1 beyond the last. Returns their product, or -1: for a sparse
// numeric subscript with zeros, reported when strict, and after "Out of memory!" when that is too large. A
// colon counts the base's size when alone, else extents[k].
kn_size kn_index_dims(const Mm &base, const Subscripts &s, const kn_size *extents, int strict, kn_size *dims);

// The largest of index values rounded to the nearest whole number; 0 when one of them is not positive (NaN is
// none). `p` holds their positions.
kn_size largest_rounded(const Mm &s, const Positions &p);

} // namespace kn

#endif
