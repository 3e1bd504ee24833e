// What all subscripts of a reference select, and the tests against the extents.

#include "indexing/selection.h"

#include "indexing/index_messages.h"
#include "special/scalar_kernels.h"

namespace kn {

namespace {

// Stored elements of a subscript that is no colon.
kn_size count_selected(const Mm &s) {
    bool mask = s.islogical() && !s.issparse();
    return mask ? count_true(s.addr(), s.getnnz()) : s.getnnz();
}

} // namespace

kn_size Selection::total() const {
    kn_size counts[4] = {1, 1, 1, 1};
    for (int k = 0; k < n_; ++k) counts[k] = at_[k].count();
    return product(4, counts);
}

bool Selection::reaches(const Mm &base, const Subscripts &s, Mode mode, int strict) const {
    const kn_size *dims = base.getdims();
    bool vector = base.vectordim() != 0;
    auto extent = [&](int k) -> ptrdiff_t {
        if (n_ == 1 && !vector) return base.size();
        if (mode == growing) return after_all;
        return n_ == 1 ? base.size() : dims[k];
    };
    int bad = -1;
    kn_size element = 0;
    for (int k = 0; k < n_; ++k) {
        kn_size e = at_[k].first_outside(extent(k));
        if (e == 0 || (e > 0 && bad < 0)) {
            bad = k;
            element = e;
        }
    }
    if (bad < 0) return true;
    if (!strict) return false;

    kn_size at = at_[bad][element];
    if (at < 0)
        report_not_positive(s[bad], base, at);
    else if (extent(bad) == after_all) // no value reaches so far
        out_of_memory();
    else if (n_ > 1)
        report_outside_dimension(s[bad], base, at, dims[bad]);
    else if (vector)
        report_outside_vector(s[bad], base, at);
    else
        report_outside_matrix(s[bad], base, at);
    return false;
}

kn_size kn_index_dims(const Mm &base, const Subscripts &s, const kn_size *extents, int strict,
                      kn_size *dims) {
    std::fill_n(dims, 4, 1);
    for (int k = 0; k < s.n; ++k) {
        if (is_colon(s[k])) {
            dims[k] = s.n == 1 ? base.size() : extents[k];
            continue;
        }
        dims[k] = count_selected(s[k]);
        if (s[k].issparse() && !s[k].islogical() && dims[k] < s[k].size()) {
            if (strict) report_sparse_zero(s[k], base);
            return -1;
        }
    }
    kn_size total = product(4, dims);
    if (total < 0) out_of_memory();
    return total;
}

kn_size largest_rounded(const Mm &s, const Positions &p) {
    if (p.are_counts()) return p.largest() + 1;
    const double *v = s.addr();
    kn_size n = s.getnnz();
    double largest = 0;
    for (kn_size k = 0; k < n; ++k) {
        if (!(v[k] >= 0.5)) return 0;
        largest = std::max(largest, v[k]);
    }
    return static_cast<kn_size>(std::min(round_half_away(largest), 0x1p62));
}

} // namespace kn
