// Out-of-range messages. `at` counts from 0, the texts from 1.
#ifndef QUORVEX_INDEXING_INDEX_MESSAGES_H
#define QUORVEX_INDEXING_INDEX_MESSAGES_H

#include "quorvex/values.h"

namespace kn {

// Reports for full matrices with one and two subscripts.
void report_outside(const Mm &base, const Mm &i, kn_size at);
void report_row_outside(const Mm &base, const Mm &i, const Mm &j, kn_size at);
void report_col_outside(const Mm &base, const Mm &i, const Mm &j, kn_size at);

// Reports for everything else.
void report_not_positive(const Mm &s, const Mm &base, kn_size at);
void report_outside_matrix(const Mm &s, const Mm &base, kn_size at);
void report_outside_vector(const Mm &s, const Mm &base, kn_size at);
void report_outside_dimension(const Mm &s, const Mm &base, kn_size at, kn_size extent);
void report_sparse_zero(const Mm &s, const Mm &base);

} // namespace kn

#endif
