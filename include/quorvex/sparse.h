// Sparse values: a list of entries by ascending column-major position.
//
// Stored values may be zero: spalloc, sums that cancel and products leave such entries. What is said of
// "stored" values includes them. Unless it is said otherwise inputs are numbers of any class, full or sparse,
// complex ones too, and text counts as its character codes; for a cell or structure error_numeric speaks.
// rows times columns must fit an int ("Out of memory!").
#ifndef QUORVEX_SPARSE_H
#define QUORVEX_SPARSE_H

#include "quorvex/counts.h"

// -- Full and sparse.

QUORVEX_API Mm
full(const Mm &a); // a copy of a full value; else the scattered matrix: "full: matrix too large"

// The nonzero elements (NaN is one); a sparse value comes back as it is. sparse(m, n): no entries.
// sparse(i, j, s, m, n): entry s(k) at row i(k), column j(k); a scalar stands for all k. Values of equal
// positions are added in their order, zeros among them are dropped first, a sum that is zero stays. Indices
// and sizes are rounded; m and n are by default the largest indices, and the result is the 1 by 1 zero when
// they are empty. nzmax is not looked at.
//     "sparse: i,j and v must be same size", "sparse: non-positive row index encountered",
//     "sparse: out of bounds row index encountered", and the same of column indices
QUORVEX_API Mm sparse(const Mm &a);
QUORVEX_API Mm sparse(const Mm &m, const Mm &n);
QUORVEX_API Mm sparse(const Mm &i, const Mm &j, const Mm &s);
QUORVEX_API Mm sparse(const Mm &i, const Mm &j, const Mm &s, const Mm &m, const Mm &n);
QUORVEX_API Mm sparse(const Mm &i, const Mm &j, const Mm &s, const Mm &m, const Mm &n, const Mm &nzmax);

// Rows [i j s] or [i j re im] as entries; complex rows [i j s] too. The largest indices are the extents. []
// gives a 0 by 0. "spconvert: matrix '%s' must have 3 or 4 columns".
QUORVEX_API Mm spconvert(const Mm &d);

// -- Builders. Sizes as of `eye` (builders.h); an empty one gives 0 by 0.

QUORVEX_API Mm speye(); // 1 by 1
QUORVEX_API Mm speye(const Mm &n);
QUORVEX_API Mm speye(const Mm &m, const Mm &n);
QUORVEX_API Mm spzeros(const Mm &n); // no entries
QUORVEX_API Mm spzeros(const Mm &m, const Mm &n);
// nz stored zeros at the first positions; with fewer inputs a report ("spalloc does not accept ...").
QUORVEX_API Mm spalloc(const Mm &m);
QUORVEX_API Mm spalloc(const Mm &m, const Mm &n);
QUORVEX_API Mm spalloc(const Mm &m, const Mm &n, const Mm &nz);

// Random values, uniform or normal, in place of the stored ones of a; or at about d * m * n (d 0.1) random
// positions, fewer where positions meet. They are drawn in the order of rows, then columns.
QUORVEX_API Mm sprand(const Mm &a);
QUORVEX_API Mm sprand(const Mm &m, const Mm &n);
QUORVEX_API Mm sprand(const Mm &m, const Mm &n, const Mm &d);
QUORVEX_API Mm sprandn(const Mm &a);
QUORVEX_API Mm sprandn(const Mm &m, const Mm &n);
QUORVEX_API Mm sprandn(const Mm &m, const Mm &n, const Mm &d);

QUORVEX_API Mm spones(const Mm &a);                // 1 for each stored value, real
QUORVEX_API Mm spfun(const Mm &f, const Mm &s);    // feval(f, v) in place of the nonzero elements v, a column
QUORVEX_API Mm sparsfun(const Mm &a, const Mm &b); // error "sparsfun called"

// -- Readers. (find: arrays.h.)

QUORVEX_API Mm nnz(const Mm &x);      // elements that are not zero
QUORVEX_API Mm nzmax(const Mm &x);    // elements; of a sparse value one more than are stored
QUORVEX_API Mm nonzeros(const Mm &x); // elements that are not zero, as a full column

// -- Orderings, as rows.

QUORVEX_API Mm colperm(const Mm &a);  // columns by their number of entries, equal ones in their order
QUORVEX_API Mm colmmd(const Mm &a);   // the same
QUORVEX_API Mm randperm(const Mm &n); // a random permutation of 1 to n

// -- The compressed-column view, 0-based: the row of each entry, column after column; and for each column the
// slot of its first entry, then the number of entries, then -1. The columns of a value of three or four
// dimensions are those of all its pages, page after page. The arrays come from the C heap and belong to the
// caller; null after a report. Both begin with error_sparse.

QUORVEX_API int *getIr(const Mm &a);
QUORVEX_API int *getJc(const Mm &a);
QUORVEX_API void freeIrJc(int *ir, int *jc); // null is accepted
// The positions of a's entries from such a view; a has the room and the number of entries already. "IrJc:
// entry outside of matrix %s".
QUORVEX_API void setIrJc(Mm &a, const int *ir, const int *jc);
// getJc, and the smallest and largest row and column with an entry; 2147483647 and -1 when there is none.
QUORVEX_API int *sparse_bounds(const Mm &a, int &least_row, int &largest_row, int &least_col,
                               int &largest_col);

// -- The matrix product, as a sparse value; entries that cancel stay as stored zeros. "*: wrong dimensions
// of: %s %dx%d, %s %dx%d". sparse_match makes sparse whichever of the two isn't.

QUORVEX_API void sparse_match(Mm &a, Mm &b);
QUORVEX_API Mm sparse_product(const Mm &a, const Mm &b);

#define QUORVEX_SPARSE_COUNTS(ROW)                                                      \
    ROW(full, "full matrix of a sparse one", 1)                                         \
    ROW(sparse, "sparse matrix of the nonzero elements, or of triplets", 1, 2, 3, 5, 6) \
    ROW(spconvert, "sparse matrix of rows [i j s]", 1)                                  \
    ROW(speye, "sparse identity matrix", 0, 1, 2)                                       \
    ROW(spzeros, "sparse matrix without entries", 1, 2)                                 \
    ROW(spalloc, "sparse matrix with room for entries", 1, 2, 3)                        \
    ROW(sprand, "sparse uniform random matrix", 1, 2, 3)                                \
    ROW(sprandn, "sparse normal random matrix", 1, 2, 3)                                \
    ROW(spones, "ones in place of the stored values", 1)                                \
    ROW(spfun, "function of the nonzero elements", 2)                                   \
    ROW(sparsfun, "reports that it was called", 2)                                      \
    ROW(nnz, "number of nonzero elements", 1)                                           \
    ROW(nzmax, "room for nonzero elements", 1)                                          \
    ROW(nonzeros, "nonzero elements as a column", 1)                                    \
    ROW(colperm, "column ordering by number of entries", 1)                             \
    ROW(colmmd, "the same as colperm", 1)                                               \
    ROW(randperm, "random permutation", 1)                                              \
    ROW(sparse_product, "product of sparse matrices", 2)
QUORVEX_SPARSE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
