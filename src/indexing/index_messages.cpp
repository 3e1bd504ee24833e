// The texts of index_messages.h, each once.

#include "indexing/index_messages.h"

#include <climits>

#include "quorvex/messages.h"

namespace kn {

namespace {
const char *name(const Mm &m) { return kn_display_name(m); }
int index_at(int position) { return position == INT_MAX ? position : position + 1; }
} // namespace

void report_outside(const Mm &base, const Mm &i, int at) {
    error("%s(%s) : Index out of matrix. Index value was %d however the indexed matrix has %d elements.",
          name(base), name(i), index_at(at), base.size());
}

void report_row_outside(const Mm &base, const Mm &i, const Mm &j, int at) {
    error("%s(%s,%s): row index out of matrix. Index was %d but indexed matrix has %d rows.", name(base),
          name(i), name(j), index_at(at), base.rows());
}

void report_col_outside(const Mm &base, const Mm &i, const Mm &j, int at) {
    error("%s(%s,%s): col index out of matrix. Index was %d but indexed matrix has %d columns.", name(base),
          name(i), name(j), index_at(at), base.cols());
}

void report_not_positive(const Mm &s, const Mm &base, int at) {
    error("index %s out of matrix %s. Index value was %d which is not positive.", name(s), name(base),
          index_at(at));
}

void report_outside_matrix(const Mm &s, const Mm &base, int at) {
    error("Index %s out of matrix %s. Index value was %d however the indexed matrix has only %d elements.",
          name(s), name(base), index_at(at), base.size());
}

void report_outside_vector(const Mm &s, const Mm &base, int at) {
    error("Index %s out of vector %s. Index value was %d however the indexed vector has only %d elements.",
          name(s), name(base), index_at(at), base.size());
}

void report_outside_dimension(const Mm &s, const Mm &base, int at, int extent) {
    error("Index %s out of matrix %s. Index value was %d however the indexed matrix has %d elements in this "
          "dimension.",
          name(s), name(base), index_at(at), extent);
}

void report_sparse_zero(const Mm &s, const Mm &base) {
    error("Sparse index %s out of matrix %s. Index value was 0.", name(s), name(base));
}

} // namespace kn
