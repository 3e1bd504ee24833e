// Sparse values: a list of entries by ascending column-major position.
#ifndef QUORVEX_SPARSE_H
#define QUORVEX_SPARSE_H

#include "quorvex/counts.h"

QUORVEX_API Mm full(const Mm &a);   // a copy of a full value; else the scattered matrix
QUORVEX_API Mm sparse(const Mm &a); // the nonzero elements (NaN is one); a sparse value comes back as it is

#define QUORVEX_SPARSE_COUNTS(ROW)              \
    ROW(full, "full matrix of a sparse one", 1) \
    ROW(sparse, "sparse matrix of the nonzero elements", 1)
QUORVEX_SPARSE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
