// Sparse values: lists of entries in ascending order of their column-major index.
//
// Entries may be zero: spalloc, sums that cancel and products leave such entries. They are included in
// "stored" values. Unless stated otherwise inputs are real or complex numbers of any class, full or sparse;
// text counts as its character codes, and cells and structures are reported by error_numeric. rows times
// columns must be less than 2^63 ("Out of memory!").
#ifndef QUORVEX_SPARSE_H
#define QUORVEX_SPARSE_H

#include "quorvex/counts.h"

// -- Full and sparse.

// The full value with the same elements and size; a full value is returned unchanged. "full: matrix too
// large".
QUORVEX_API Mm full(const Mm &a);

// A sparse matrix. sparse(a) has the nonzero elements of a (NaN is one); a sparse a is returned unchanged.
// sparse(m, n) is m by n without entries. sparse(i, j, s, m, n) is m by n with s(k) at row i(k), column j(k);
// a scalar applies to all k. Zeros are dropped, then values with equal indices are added in their order; a
// zero sum remains stored. Indices and sizes are rounded; m and n are by default the largest indices, and
// without entries the result is a 1 by 1 zero. nzmax is ignored.
//     "sparse: i,j and v must be same size", "sparse: non-positive row index encountered",
//     "sparse: out of bounds row index encountered", and the same of column indices
QUORVEX_API Mm sparse(const Mm &a);
QUORVEX_API Mm sparse(const Mm &m, const Mm &n);
QUORVEX_API Mm sparse(const Mm &i, const Mm &j, const Mm &s);
QUORVEX_API Mm sparse(const Mm &i, const Mm &j, const Mm &s, const Mm &m, const Mm &n);
QUORVEX_API Mm sparse(const Mm &i, const Mm &j, const Mm &s, const Mm &m, const Mm &n, const Mm &nzmax);

// The sparse matrix whose entries are the rows [i j s] or [i j re im] of d, s real or complex; its size is
// given by the largest indices. [] gives 0 by 0. "spconvert: matrix '%s' must have 3 or 4 columns".
QUORVEX_API Mm spconvert(const Mm &d);

// -- New matrices. Sizes are those of `eye` (builders.h); an empty size gives 0 by 0.

// Sparse identity matrices and matrices without entries, n by n or m by n.
QUORVEX_API Mm speye(); // 1 by 1
QUORVEX_API Mm speye(const Mm &n);
QUORVEX_API Mm speye(const Mm &m, const Mm &n);
QUORVEX_API Mm spzeros(const Mm &n); // no entries
QUORVEX_API Mm spzeros(const Mm &m, const Mm &n);
// An m by n matrix with nz stored zeros at its first indices. Fewer inputs are reported by the number of
// those missing: "spalloc does not accept 2 inputs" for one, "spalloc does not accept 1 input" for two.
QUORVEX_API Mm spalloc(const Mm &m);
QUORVEX_API Mm spalloc(const Mm &m, const Mm &n);
QUORVEX_API Mm spalloc(const Mm &m, const Mm &n, const Mm &nz);

// Sparse random matrices, uniform (sprand) or normal (sprandn): with the entries of a replaced; or m by n
// with entries at d * m * n random indices (d is 0.1 by default), fewer where indices coincide. The values
// are drawn by rows, then columns.
QUORVEX_API Mm sprand(const Mm &a);
QUORVEX_API Mm sprand(const Mm &m, const Mm &n);
QUORVEX_API Mm sprand(const Mm &m, const Mm &n, const Mm &d);
QUORVEX_API Mm sprandn(const Mm &a);
QUORVEX_API Mm sprandn(const Mm &m, const Mm &n);
QUORVEX_API Mm sprandn(const Mm &m, const Mm &n, const Mm &d);

// A sparse matrix of the size of a with 1 for each stored value of a.
QUORVEX_API Mm spones(const Mm &a);

// Replaces the nonzero elements of s, a column v, by those of feval(f, v); the result is sparse.
QUORVEX_API Mm spfun(const Mm &f, const Mm &s);

// Reports the error "sparsfun called".
QUORVEX_API Mm sparsfun(const Mm &a, const Mm &b);

// -- Entries. find is in arrays.h.

// The number of nonzero or stored elements, and the nonzero elements; NaN is not zero.
QUORVEX_API Mm nnz(const Mm &x);      // the number of nonzero elements
QUORVEX_API Mm nzmax(const Mm &x);    // the number of elements; for a sparse x of stored ones, plus 1
QUORVEX_API Mm nonzeros(const Mm &x); // the nonzero elements as a full column

// -- Permutations of 1 to n as rows.

QUORVEX_API Mm colperm(const Mm &a);  // columns by ascending number of entries, equal ones in their order
QUORVEX_API Mm colmmd(const Mm &a);   // the same
QUORVEX_API Mm randperm(const Mm &n); // a random permutation of 1 to n

// -- Compressed columns, 0-based.

// Arrays of the compressed-column form: getIr gives the row of each entry, column after column; getJc gives
// for each column the number of its first entry, then the number of entries, then -1. The columns of a value
// of three or four dimensions are those of all its pages in order. The arrays are on the C heap and owned by
// the caller; null after a report. A full value is reported by error_sparse.
QUORVEX_API kn_size *getIr(const Mm &a);
QUORVEX_API kn_size *getJc(const Mm &a);
QUORVEX_API void freeIrJc(kn_size *ir, kn_size *jc); // null is accepted
// Sets the indices of the entries of a from such arrays; a already has its size and number of entries. "IrJc:
// entry outside of matrix %s".
QUORVEX_API void setIrJc(Mm &a, const kn_size *ir, const kn_size *jc);
// The same as getJc, and the smallest and largest row and column with an entry; the largest kn_size and -1 if
// there is none.
QUORVEX_API kn_size *sparse_bounds(const Mm &a, kn_size &least_row, kn_size &largest_row, kn_size &least_col,
                                   kn_size &largest_col);

// -- Products.

QUORVEX_API void sparse_match(Mm &a, Mm &b); // converts a full input to sparse

// The matrix product of sparse values, sparse; sums that cancel remain stored zeros. "*: wrong dimensions of:
// %s %dx%d, %s %dx%d". Source: Gustavson, ACM Trans. Math. Software 4 (1978) 250-269.
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
    ROW(spones, "ones at the stored values", 1)                                         \
    ROW(spfun, "function of the nonzero elements", 2)                                   \
    ROW(sparsfun, "reports that it was called", 2)                                      \
    ROW(nnz, "number of nonzero elements", 1)                                           \
    ROW(nzmax, "number of elements that can be stored", 1)                              \
    ROW(nonzeros, "nonzero elements as a column", 1)                                    \
    ROW(colperm, "column ordering by number of entries", 1)                             \
    ROW(colmmd, "the same as colperm", 1)                                               \
    ROW(randperm, "random permutation", 1)                                              \
    ROW(sparse_product, "product of sparse matrices", 2)
QUORVEX_SPARSE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
