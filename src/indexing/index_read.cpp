// What a read selects, the shape it gives, and what the engines share.

#include "indexing/index_read.h"

#include <cstring>

#include "quorvex/sparse.h"

namespace kn {

bool reads_matrix(const Mm &base, const Subscripts &s) {
    if (!is_full_matrix(base) || base.isstruct() || s.n > 2) return false;
    for (int k = 0; k < s.n; ++k)
        if (s[k].getndims() != 2) return false;
    return true;
}

bool make_full(const Subscripts &s) {
    for (int k = 0; k < s.n; ++k) {
        if (!s[k].issparse()) continue;
        Mm scattered = full(s[k]);
        if (lacks(scattered, s[k].size())) return false;
        scattered.setlogical(s[k].islogical());
        const_cast<Mm &>(s[k]) = scattered;
    }
    return true;
}

bool select_from_matrix(Selection &sel, const Mm &base, const Subscripts &s, int strict, kn_size *dims) {
    auto outside = [&](int k, kn_size extent) { // only numbers are tested: a mask stops at the extent
        return s[k].islogical() ? -1 : sel[k].first_outside(extent);
    };
    if (s.n == 2) {
        for (int k = 0; k < 2; ++k) {
            kn_size extent = base.getdims()[k];
            if (!sel.add(s[k], extent, extent)) return false;
            dims[k] = sel[k].count();
        }
        if (kn_size k = outside(0, base.rows()); k >= 0) {
            if (strict) report_row_outside(base, s[0], s[1], sel[0][k]);
            return false;
        }
        if (kn_size k = outside(1, base.cols()); k >= 0) {
            if (strict) report_col_outside(base, s[0], s[1], sel[1][k]);
            return false;
        }
        return true;
    }

    const Mm &i = s[0];
    kn_size n = base.size();
    if (!sel.add_alone(i, n, n)) return false;
    if (kn_size k = outside(0, n); k >= 0) {
        if (strict) report_outside(base, i, sel[0][k]);
        return false;
    }
    kn_size count = sel[0].count();
    bool column = is_colon(i), row = false;
    if (i.islogical()) {
        row = base.rows() == 1 || (base.cols() != 1 && i.rows() == 1);
        column = !row;
    } else if (n > 1 && (i.rows() == 1 || i.cols() == 1)) {
        column |= base.cols() == 1;
        row = base.rows() == 1;
    }
    dims[0] = column ? count : row ? 1 : i.rows();
    dims[1] = column ? 1 : row ? count : i.cols();
    return true;
}

bool select_general(Selection &sel, const Mm &base, const Subscripts &s, int strict, kn_size *dims,
                    bool &outside) {
    kn_size total = kn_index_dims(base, s, base.getdims(), strict, dims);
    if (total < 0) return false;
    if (total == 0) {
        sel.next();
        std::fill_n(dims, 4, 0);
        return true;
    }
    for (int k = 0; k < s.n; ++k)
        if (!sel.add(s[k], dims[k])) return false;
    if (s.n == 1 && !is_colon(s[0])) {
        const Mm &i = s[0];
        int along_base = base.size() > 1 ? base.vectordim() : 0, along = i.vectordim();
        if (along) {
            dims[0] = 1;
            dims[(along_base ? along_base : along) - 1] = total;
        } else if (!i.islogical()) {
            std::copy_n(i.getdims(), 4, dims);
        }
    }
    outside = !sel.reaches(base, s, Selection::reading, strict);
    return !outside;
}

Mm read_selection(const Mm &base, const Subscripts &s, int strict) {
    return by_type(base, [&](auto t) { return read_selection<typename decltype(t)::type>(base, s, strict); });
}

Mm select(const Mm &base, const Selection &s, const kn_size *dims) {
    if (base.issparse()) return select_sparse(base, s, dims);
    return by_type(base, [&](auto t) { return select<typename decltype(t)::type>(base, s, dims); });
}

// -- What the engines share.

void replace_block(Mm &t, const Mm &fresh) {
    M_types flags = t.getflags();
    t = fresh;
    t.getflags() = flags;
}

bool make_empty(Mm &t) {
    Mm none(0, t.issparse(), 0, 0, 0, t.gettype());
    if (none.gettype() != t.gettype() || none.issparse() != t.issparse()) return false; // no memory
    replace_block(t, none);
    return true;
}

void set_extents(Mm &t, const kn_size *dims) {
    kn_size n = product(4, dims);
    for (int k = 0; k < 4; ++k) t.getdims()[k] = n > 0 ? dims[k] : 0;
    t.getndims() = n > 0 ? 4 : 2;
    t.collapse();
    if (!t.issparse()) t.getnnz() = n;
}

} // namespace kn
