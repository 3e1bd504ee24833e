// Questions about and rearrangements of arrays.
#ifndef QUORVEX_ARRAYS_H
#define QUORVEX_ARRAYS_H

#include "quorvex/counts.h"

QUORVEX_API Mm isstruct(const Mm &m); // a structure, and no object
QUORVEX_API Mm iscell(const Mm &m);
QUORVEX_API Mm islogical(const Mm &m); // flagged logical and real
QUORVEX_API Mm iscomplex(const Mm &m); // has an imaginary part that is not all zero
QUORVEX_API Mm isvector(const Mm &m);  // not empty, and at most one extent above 1

#define QUORVEX_ARRAY_COUNTS(ROW) \
    ROW(isstruct, 1)              \
    ROW(iscell, 1)                \
    ROW(islogical, 1)             \
    ROW(iscomplex, 1)             \
    ROW(isvector, 1)
QUORVEX_ARRAY_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
