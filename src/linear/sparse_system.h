// Sparse systems: the matrices that are built from a sparse value before it is factored.
#ifndef QUORVEX_LINEAR_SPARSE_SYSTEM_H
#define QUORVEX_LINEAR_SPARSE_SYSTEM_H

#include "sparse/compressed_columns.h"

namespace kn {

// out = [re a, -im a; im a, re a]; room for 4 entries for each of a.
void embed_complex(const CompressedColumns &a, CompressedColumns &out);
// out = [s I, a; a', 0] of order m + n; room for 2 entries for each of a, and m more. False without memory.
bool augment(const CompressedColumns &a, double s, CompressedColumns &out);

// Whether the pattern of a square matrix, with ascending rows, is symmetric and includes the whole diagonal.
// `next` has room for a number for each column.
bool symmetric_pattern(const CompressedColumns &a, int *next);

// Chooses as many entries as possible, no two in one row or column: row_of[c], -1 for a column without one. a
// is square. Returns the number of columns without one; -1 when memory is exhausted.
int match_rows(const CompressedColumns &a, int *row_of);

} // namespace kn

#endif
