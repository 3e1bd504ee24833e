// Deletion: what stays is a selection too, read into a new value, or moved together in the old block.
//
// Positions at or beyond the extent are passed over.

#include "indexing/index_move.h"
#include "quorvex/messages.h"

namespace kn {

namespace {

// Which positions of an extent stay.
class Keep {
  public:
    explicit Keep(kn_size extent) : extent_(extent), mask_(extent) {
        if (mask_) std::fill_n(mask_.get(), extent, static_cast<unsigned char>(1));
    }
    explicit operator bool() const { return bool(mask_); }
    // Those that a subscript selects go.
    void remove(const Positions &p) {
        auto drop = [this](kn_size at) {
            if (at >= 0 && at < extent_) mask_[at] = 0;
        };
        if (p.kind() == Positions::valued && p.inside(extent_))
            by_blocks(p, 0, p.count(), [this](ptrdiff_t, const kn_size *at, ptrdiff_t n) {
                unsigned char *mask = mask_.get();
                for (ptrdiff_t k = 0; k < n; ++k) mask[at[k]] = 0;
            });
        else
            for (kn_size k = 0; k < p.count(); ++k) drop(p[k]);
    }
    // Those that stay, `alone` as in Positions.
    bool positions(Positions &p, bool alone = false) const {
        return p.set_nonzero(mask_.get(), extent_, alone);
    }

  private:
    kn_size extent_;
    Scratch<unsigned char> mask_;
};

// What stays becomes the target, in the given extents.
bool retain(Mm &t, const Selection &kept, const kn_size *dims) {
    Mm rest = select(t, kept, dims);
    if (rest.gettype() != t.gettype()) return false; // no memory
    replace_block(t, rest);
    check(t);
    return true;
}

// Those of n positions that stay when others go.
bool stay(Positions &kept, const Positions &gone, kn_size n) {
    if (gone.kind() == Positions::masked || gone.is_run() || n <= 512) return kept.set_others(gone, n);
    Keep keep(n);
    if (!keep) return false;
    keep.remove(gone);
    return keep.positions(kept, true);
}

// Whether of n positions the last ones go, so that those that stay need not move.
bool are_last(const Positions &gone, kn_size n) {
    return gone.count() > 0 && gone.inside(n) && gone.largest() == n - 1 &&
           (gone.count() == 1 || gone.is_run());
}

// Deletes the last elements of an unshared full value.
void cut(Mm &t, const kn_size *dims) {
    kn_size n = t.getnnz();
    set_extents(t, dims);
    if (t.gettype() == kn_Mm) std::fill(re<Mm>(t) + t.getnnz(), re<Mm>(t) + n, Mm());
    check(t);
}

} // namespace

bool delete1(Mm &t, const Mm &i) {
    kn_size n = t.getnnz();
    if (n == 0) return true;
    Selection gone;
    if (!gone.add_alone(i, n, n)) return false;
    if (kn_size k = gone[0].first_outside(PTRDIFF_MAX); k >= 0) {
        error("%s(%td): index is non-positive", kn_display_name(t), gone[0][k] + 1);
        return false;
    }
    bool last = !t.dirty() && are_last(gone[0], n);
    Selection kept;
    if (!last && !stay(kept.next(), gone[0], n)) return false;
    kn_size m = last ? n - gone[0].count() : kept[0].count(), dims[4] = {1, m, 1, 1};
    if (m == n) return true;
    if (t.cols() == 1) std::swap(dims[0], dims[1]);
    if (last) {
        cut(t, dims);
        return true;
    }
    if (t.dirty() && m > 0) return retain(t, kept, dims);
    if (!t.dirty()) by_type(t, [&](auto type) { compact<typename decltype(type)::type>(t, kept); });
    set_extents(t, dims);
    check(t);
    return true;
}

bool delete2(Mm &t, const Mm &i, const Mm &j) {
    const Mm *const subscripts[] = {&i, &j};
    kn_size rows = t.rows(), cols = t.cols();
    Keep keep_rows(rows), keep_cols(cols);
    if (!keep_rows || !keep_cols) return false;
    Keep *const keep[] = {&keep_rows, &keep_cols};
    Selection kept;
    for (int k = 0; k < 2; ++k) {
        Selection gone;
        if (!gone.add(*subscripts[k], 0)) return false; // a colon removes nothing
        keep[k]->remove(gone[0]);
        if (!keep[k]->positions(kept.next())) return false;
    }
    kn_size newr = kept[0].count(), newc = kept[1].count();
    if (newr == rows && newc == cols) return true;
    kn_size dims[4] = {newr, newc, 1, 1};
    if (!is_colon(i) && !is_colon(j)) {
        dims[0] = 1;
        dims[1] = newr * newc;
    }
    return retain(t, kept, dims);
}

void shorten(kn_size *dims, const Mm &t, int d, kn_size left) {
    const int along = t.vectordim();
    std::copy_n(t.getdims(), 4, dims);
    if (d < 0) std::fill_n(dims, 4, 1);
    dims[d >= 0 ? d : along ? along - 1 : 1] = left;
}

bool vwcopy0(Mm &t, const Subscripts &s) {
    int d = -1;
    for (int k = 0; k < s.n; ++k) {
        if (is_colon(s[k])) continue;
        if (d >= 0) {
            error("While assigning empty matrix to the matrix '%s', there was more than one non-colon index",
                  kn_display_name(t));
            return false;
        }
        d = k;
    }
    if (d < 0) return make_empty(t);
    kn_size counts[4];
    kn_size total = kn_index_dims(t, s, t.getdims(), 1, counts);
    if (total <= 0) return total == 0;

    // Along d those that stay, along the other dimensions all. One subscript runs through all elements.
    bool one = s.n == 1;
    const kn_size extent = one ? t.size() : t.getdims()[d];
    Selection gone, kept;
    for (int k = 0; k < s.n; ++k)
        if (!gone.add(s[k], counts[k])) return false;
    if (!gone.reaches(t, s, Selection::growing, 1)) return false;
    const int along = t.vectordim(), reduced = one ? -1 : d;
    if (t.issparse()) return delete_sparse(t, gone[d], reduced);
    kn_size dims[4];
    if (along > 0 && (one || d == along - 1) && !t.dirty() && are_last(gone[d], extent)) {
        shorten(dims, t, reduced, extent - gone[d].count());
        cut(t, dims);
        return true;
    }
    Keep keep(extent);
    if (!keep) return false;
    keep.remove(gone[d]);
    for (int k = 0; k < (one ? 1 : 4); ++k) {
        Positions &p = kept.next();
        if (k != d)
            p.set_run(0, t.getdims()[k]);
        else if (!keep.positions(p))
            return false;
    }
    kn_size left = kept[d].count();
    if (left == extent) return true;
    shorten(dims, t, reduced, left);
    return retain(t, kept, dims);
}

} // namespace kn
