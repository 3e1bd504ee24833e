// Deletion: what stays is a selection too, read into a new value, or moved together in the old block.
//
// Positions at or beyond the extent are passed over.

#include "core/index_move.h"
#include "quorvex/messages.h"

namespace kn {

namespace {

// Which positions of an extent stay.
class Keep {
  public:
    explicit Keep(int extent) : extent_(extent), kept_(extent), mask_(extent) {
        if (mask_) std::fill_n(mask_.get(), extent, char{1});
    }
    explicit operator bool() const { return bool(mask_); }
    // Those that a subscript selects go.
    void remove(const Positions &p) {
        for (int k = 0; k < p.count(); ++k) {
            int at = p[k];
            if (at < 0 || at >= extent_) continue;
            kept_ -= mask_[at];
            mask_[at] = 0;
        }
    }
    int kept() const { return kept_; }
    bool removes() const { return kept_ < extent_; }
    bool positions(Positions &p) const { return p.set_nonzero(mask_.get(), extent_); }

  private:
    int extent_, kept_;
    Scratch<char> mask_;
};

// What stays becomes the target, in the given extents.
bool retain(Mm &t, const Selection &kept, const int *dims) {
    Mm rest = select(t, kept, dims);
    if (rest.gettype() != t.gettype()) return false; // no memory
    take(t, rest);
    check(t);
    return true;
}

} // namespace

bool delete1(Mm &t, const Mm &i) {
    int n = t.getnnz();
    if (n == 0) return true;
    Selection gone;
    if (!gone.add(i, n, n)) return false;
    if (int k = gone[0].first_outside(INT_MAX); k >= 0) {
        error("%s(%d): index is non-positive", kn_display_name(t), gone[0][k] + 1);
        return false;
    }
    Keep keep(n);
    if (!keep) return false;
    keep.remove(gone[0]);
    if (!keep.removes()) return true;

    int m = keep.kept(), dims[4] = {1, m, 1, 1};
    if (t.cols() == 1) std::swap(dims[0], dims[1]);
    Selection kept;
    if (!keep.positions(kept.next())) return false;
    if (t.dirty() && m > 0) return retain(t, kept, dims);
    if (!t.dirty()) by_type(t, [&](auto type) { compact<typename decltype(type)::type>(t, kept); });
    set_extents(t, dims);
    check(t);
    return true;
}

bool delete2(Mm &t, const Mm &i, const Mm &j) {
    const Mm *const subscripts[] = {&i, &j};
    int rows = t.rows(), cols = t.cols();
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
    int newr = keep_rows.kept(), newc = keep_cols.kept();
    if (!keep_rows.removes() && !keep_cols.removes()) return true;
    int dims[4] = {newr, newc, 1, 1};
    if (!is_colon(i) && !is_colon(j)) {
        dims[0] = 1;
        dims[1] = newr * newc;
    }
    return retain(t, kept, dims);
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
    int counts[4];
    int total = kn_index_dims(t, s, t.getdims(), 1, counts);
    if (total <= 0) return total == 0;

    // Along d those that stay, along the other dimensions all. One subscript runs through all elements.
    bool one = s.n == 1;
    int dims[4];
    std::copy_n(t.getdims(), 4, dims);
    int extent = one ? t.size() : dims[d];
    Selection gone, kept;
    for (int k = 0; k < s.n; ++k)
        if (!gone.add(s[k], counts[k])) return false;
    if (!gone.reaches(t, s, Selection::growing, 1)) return false;
    Keep keep(extent);
    if (!keep) return false;
    keep.remove(gone[d]);
    if (!keep.removes()) return true;
    if (one) {
        int along = t.vectordim();
        std::fill_n(dims, 4, 1);
        dims[along ? along - 1 : 1] = keep.kept();
    } else {
        dims[d] = keep.kept();
    }
    for (int k = 0; k < (one ? 1 : 4); ++k) {
        Positions &p = kept.next();
        if (k != d)
            p.set_run(0, t.getdims()[k]);
        else if (!keep.positions(p))
            return false;
    }
    return retain(t, kept, dims);
}

} // namespace kn
