// The texts of index_messages.h, each once.

#include "indexing/index_messages.h"

#include <algorithm>

#include "quorvex/messages.h"
#include "value/header.h"

namespace kn {

namespace {
const char *name(const Mm &m) { return kn_display_name(m); }
kn_size index_at(kn_size position) { return std::clamp(position, -largest_index - 1, largest_index - 1) + 1; }
} // namespace

void report_outside(const Mm &base, const Mm &i, kn_size at) {
    error("%s(%s) : Index out of matrix. Index value was %td however the indexed matrix has %td elements.",
          name(base), name(i), index_at(at), base.size());
}

void report_row_outside(const Mm &base, const Mm &i, const Mm &j, kn_size at) {
    error("%s(%s,%s): row index out of matrix. Index was %td but indexed matrix has %td rows.", name(base),
          name(i), name(j), index_at(at), base.rows());
}

void report_col_outside(const Mm &base, const Mm &i, const Mm &j, kn_size at) {
    error("%s(%s,%s): col index out of matrix. Index was %td but indexed matrix has %td columns.", name(base),
          name(i), name(j), index_at(at), base.cols());
}

void report_not_positive(const Mm &s, const Mm &base, kn_size at) {
    error("index %s out of matrix %s. Index value was %td which is not positive.", name(s), name(base),
          index_at(at));
}

void report_outside_matrix(const Mm &s, const Mm &base, kn_size at) {
    error("Index %s out of matrix %s. Index value was %td however the indexed matrix has only %td elements.",
          name(s), name(base), index_at(at), base.size());
}

void report_outside_vector(const Mm &s, const Mm &base, kn_size at) {
    error("Index %s out of vector %s. Index value was %td however the indexed vector has only %td elements.",
          name(s), name(base), index_at(at), base.size());
}

void report_outside_dimension(const Mm &s, const Mm &base, kn_size at, kn_size extent) {
    error(
        "Index %s out of matrix %s. Index value was %td however the indexed matrix has %td elements in this "
        "dimension.",
        name(s), name(base), index_at(at), extent);
}

void report_sparse_zero(const Mm &s, const Mm &base) {
    error("Sparse index %s out of matrix %s. Index value was 0.", name(s), name(base));
}

} // namespace kn
