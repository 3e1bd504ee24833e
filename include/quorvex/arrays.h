// Questions about and rearrangements of arrays.
//
// Unless it says otherwise a function takes every class of value (numbers, text, uint8, cells, structures,
// full and sparse, any number of dimensions) and keeps it. A dimension is 1 to 4.
#ifndef QUORVEX_ARRAYS_H
#define QUORVEX_ARRAYS_H

#include "quorvex/counts.h"

// -- Questions.

QUORVEX_API Mm isstruct(const Mm &m); // a structure, and no object
QUORVEX_API Mm iscell(const Mm &m);
QUORVEX_API Mm islogical(const Mm &m); // flagged logical and real
QUORVEX_API Mm iscomplex(const Mm &m); // has an imaginary part that is not all zero
QUORVEX_API Mm isvector(const Mm &m);  // not empty, and at most one extent above 1
QUORVEX_API Mm isreal(const Mm &m);    // numbers or text, and not complex
QUORVEX_API Mm isnumeric(const Mm &m); // neither text nor cell nor structure; logical values count
QUORVEX_API Mm ischar(const Mm &m);

// What if and while take for true: not empty, and no element 0 (NaN is true; of a complex element either part
// counts).
QUORVEX_API int istrue(const Mm &x);
QUORVEX_API Mm isempty(const Mm &m);

// Whether all values have the same extents and contents. Numbers compare by value whatever their class and
// storage, NaN equals nothing; cells and structures element by element, fields in any order.
QUORVEX_API Mm isequal(const Mm &a, const Mm &b);
QUORVEX_API Mm isequal(const Mm &a, const Mm &b, const Mm &c);
QUORVEX_API Mm isequal(const Mm &a, const Mm &b, const Mm &c, const Mm &d);

// -- Sizes. Every extent of an empty value is 0.

// The extents as a row; one extent ("%s.size(dim): no such dimension=%d"); dim 100: the extents backwards.
// [m, n, ...] = size(x): the last output is the product of the extents that are left.
QUORVEX_API Mm size(const Mm &x);
QUORVEX_API Mm size(const Mm &x, const Mm &dim);
QUORVEX_API Mm size(const Mm &x, i_o_t, Mm &m, Mm &n);
QUORVEX_API Mm size(const Mm &x, i_o_t, Mm &m, Mm &n, Mm &p);
QUORVEX_API Mm size(const Mm &x, i_o_t, Mm &m, Mm &n, Mm &p, Mm &q);
QUORVEX_API Mm length(const Mm &x); // the largest extent; 0 if any is 0
QUORVEX_API Mm ndims(const Mm &x);
QUORVEX_API Mm numel(const Mm &x);

// -- Shapes.

// The same elements, in their order, with other extents: up to four, one of which may be [] and follows from
// the others, or a size vector. "reshape: ..." when the product is not numel(x).
QUORVEX_API Mm reshape(const Mm &x, const Mm &sizes);
QUORVEX_API Mm reshape(const Mm &x, const Mm &m, const Mm &n);
QUORVEX_API Mm reshape(const Mm &x, const Mm &m, const Mm &n, const Mm &p);
QUORVEX_API Mm reshape(const Mm &x, const Mm &m, const Mm &n, const Mm &p, const Mm &q);
QUORVEX_API Mm squeeze(const Mm &x); // without the extents of 1, beyond two dimensions

// Dimension order(k) of x becomes dimension k; ipermute is its inverse. "permute: order must name each of the
// dimensions 1 to %d once".
QUORVEX_API Mm permute(const Mm &x, const Mm &order);
QUORVEX_API Mm ipermute(const Mm &x, const Mm &order);

QUORVEX_API Mm transpose(const Mm &x);  // of a matrix
QUORVEX_API Mm ctranspose(const Mm &x); // conjugates a complex one
QUORVEX_API Mm fliplr(const Mm &x);     // of a matrix: columns in reverse order
QUORVEX_API Mm flipud(const Mm &x);     // rows
QUORVEX_API Mm rot90(const Mm &x);      // of a matrix: a quarter turn counter-clockwise
QUORVEX_API Mm rot90(const Mm &x, const Mm &quarters);

// x laid m by n (by p by q) times: m by m for one number, or the counts of a size vector.
QUORVEX_API Mm repmat(const Mm &x, const Mm &m);
QUORVEX_API Mm repmat(const Mm &x, const Mm &m, const Mm &n);
QUORVEX_API Mm repmat(const Mm &x, const Mm &m, const Mm &n, const Mm &p);
QUORVEX_API Mm repmat(const Mm &x, const Mm &m, const Mm &n, const Mm &p, const Mm &q);

// -- Parts of matrices of numbers or text. Diagonal k lies k columns to the right of the main one.

// A vector becomes the diagonal of a square matrix; of a matrix, the diagonal as a column.
QUORVEX_API Mm diag(const Mm &x);
QUORVEX_API Mm diag(const Mm &x, const Mm &k);
QUORVEX_API Mm tril(const Mm &x); // zero above diagonal k
QUORVEX_API Mm tril(const Mm &x, const Mm &k);
QUORVEX_API Mm triu(const Mm &x); // zero below diagonal k
QUORVEX_API Mm triu(const Mm &x, const Mm &k);

// -- Grids and positions.

// [x1, x2, ...] = ndgrid(...): the coordinates of the grid over these axes, axis k along dimension k; one
// axis stands for all. meshgrid is the same with x along the columns and y along the rows.
QUORVEX_API Mm meshgrid(const Mm &x);
QUORVEX_API Mm meshgrid(const Mm &x, const Mm &y);
QUORVEX_API Mm meshgrid(const Mm &x, const Mm &y, const Mm &z);
QUORVEX_API Mm meshgrid(const Mm &x, i_o_t, Mm &gx, Mm &gy);
QUORVEX_API Mm meshgrid(const Mm &x, const Mm &y, i_o_t, Mm &gx, Mm &gy);
QUORVEX_API Mm meshgrid(const Mm &x, i_o_t, Mm &gx, Mm &gy, Mm &gz);
QUORVEX_API Mm meshgrid(const Mm &x, const Mm &y, const Mm &z, i_o_t, Mm &gx, Mm &gy, Mm &gz);
QUORVEX_API Mm ndgrid(const Mm &x);
QUORVEX_API Mm ndgrid(const Mm &x1, const Mm &x2);
QUORVEX_API Mm ndgrid(const Mm &x1, const Mm &x2, const Mm &x3);
QUORVEX_API Mm ndgrid(const Mm &x, i_o_t, Mm &g1, Mm &g2);
QUORVEX_API Mm ndgrid(const Mm &x1, const Mm &x2, i_o_t, Mm &g1, Mm &g2);
QUORVEX_API Mm ndgrid(const Mm &x, i_o_t, Mm &g1, Mm &g2, Mm &g3);
QUORVEX_API Mm ndgrid(const Mm &x1, const Mm &x2, const Mm &x3, i_o_t, Mm &g1, Mm &g2, Mm &g3);

// Between positions and subscripts in an array of the given size. When fewer subscripts than extents are
// asked for or given, the last one runs over the product of the rest. "ind2sub: index out of range",
// "sub2ind: subscript out of range".
QUORVEX_API Mm ind2sub(const Mm &size, const Mm &k);
QUORVEX_API Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j);
QUORVEX_API Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j, Mm &l);
QUORVEX_API Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j, Mm &l, Mm &m);
QUORVEX_API Mm sub2ind(const Mm &size, const Mm &i);
QUORVEX_API Mm sub2ind(const Mm &size, const Mm &i, const Mm &j);
QUORVEX_API Mm sub2ind(const Mm &size, const Mm &i, const Mm &j, const Mm &l);
QUORVEX_API Mm sub2ind(const Mm &size, const Mm &i, const Mm &j, const Mm &l, const Mm &m);

// Positions of the nonzero elements (NaN is one) of numbers or text: a row for an x of one row, else a
// column. [i, j] their rows and columns, v the elements, full.
QUORVEX_API Mm find(const Mm &x);
QUORVEX_API Mm find(const Mm &x, i_o_t, Mm &i, Mm &j);
QUORVEX_API Mm find(const Mm &x, i_o_t, Mm &i, Mm &j, Mm &v);

// -- Sums of numbers, along dimension dim or else the first one above 1.

// Mean; variance and standard deviation (the language's `std`), by n - 1 for flag 0 and by n for flag 1. Of
// [] they are NaN. "%s: flag must be 0 or 1".
QUORVEX_API Mm mean(const Mm &x);
QUORVEX_API Mm mean(const Mm &x, const Mm &dim);
QUORVEX_API Mm var(const Mm &x);
QUORVEX_API Mm var(const Mm &x, const Mm &flag);
QUORVEX_API Mm var(const Mm &x, const Mm &flag, const Mm &dim);
QUORVEX_API Mm stdM(const Mm &x);
QUORVEX_API Mm stdM(const Mm &x, const Mm &flag);
QUORVEX_API Mm stdM(const Mm &x, const Mm &flag, const Mm &dim);

// The covariance matrix of the columns of x; of a vector the variance; of x and y that of their elements, as
// two columns. A last input of one element beside an x of several is the flag. "cov: x and y must have the
// same number of elements".
QUORVEX_API Mm cov(const Mm &x);
QUORVEX_API Mm cov(const Mm &x, const Mm &y_or_flag);
QUORVEX_API Mm cov(const Mm &x, const Mm &y, const Mm &flag);

// sum(conj(a) .* b); vectors may lie in different directions. "dot: a and b must be same size". The vector
// product along the first dimension of extent 3, or along dim: "cross: a and b must be same size", "cross: a
// and b must have 3 elements in the dimension".
QUORVEX_API Mm dot(const Mm &a, const Mm &b);
QUORVEX_API Mm dot(const Mm &a, const Mm &b, const Mm &dim);
QUORVEX_API Mm cross(const Mm &a, const Mm &b);
QUORVEX_API Mm cross(const Mm &a, const Mm &b, const Mm &dim);

// The integral of y over x by trapezoids, and its running value. x is a vector as long as the dimension, or
// of the extents of y; without it the step is 1. "%s: length of x must equal the size of y in the dimension".
QUORVEX_API Mm trapz(const Mm &y);
QUORVEX_API Mm trapz(const Mm &x, const Mm &y);
QUORVEX_API Mm trapz(const Mm &x, const Mm &y, const Mm &dim);
QUORVEX_API Mm cumtrapz(const Mm &y);
QUORVEX_API Mm cumtrapz(const Mm &x, const Mm &y);
QUORVEX_API Mm cumtrapz(const Mm &x, const Mm &y, const Mm &dim);

#define QUORVEX_ARRAY_COUNTS(ROW)                                                                           \
    ROW(isstruct, "whether a value is a structure", 1)                                                      \
    ROW(iscell, "whether a value is a cell", 1)                                                             \
    ROW(islogical, "whether a value is logical", 1)                                                         \
    ROW(iscomplex, "whether a value has an imaginary part", 1)                                              \
    ROW(isvector, "whether a value is a row or a column", 1)                                                \
    ROW(isreal, "whether a value is real numbers or text", 1)                                               \
    ROW(isnumeric, "whether a value is numbers", 1)                                                         \
    ROW(ischar, "whether a value is text", 1)                                                               \
    ROW(isempty, "whether a value has no elements", 1)                                                      \
    ROW(isequal, "whether all values are the same", 2, 3, 4)                                                \
    ROW(size, "extents of an array", 1, 2, 1_to_2, 1_to_3, 1_to_4)                                          \
    ROW(length, "largest extent of an array", 1)                                                            \
    ROW(ndims, "number of dimensions", 1)                                                                   \
    ROW(numel, "number of elements", 1)                                                                     \
    ROW(reshape, "the same elements in another shape", 2, 3, 4, 5)                                          \
    ROW(squeeze, "without extents of 1 beyond two dimensions", 1)                                           \
    ROW(permute, "dimensions in another order", 2)                                                          \
    ROW(ipermute, "the inverse of permute", 2)                                                              \
    ROW(transpose, "rows become columns", 1)                                                                \
    ROW(ctranspose, "conjugate transpose", 1)                                                               \
    ROW(fliplr, "columns in reverse order", 1)                                                              \
    ROW(flipud, "rows in reverse order", 1)                                                                 \
    ROW(rot90, "matrix turned by quarters", 1, 2)                                                           \
    ROW(repmat, "an array laid side by side", 2, 3, 4, 5)                                                   \
    ROW(diag, "diagonal of a matrix, or a diagonal matrix", 1, 2)                                           \
    ROW(tril, "lower triangle", 1, 2)                                                                       \
    ROW(triu, "upper triangle", 1, 2)                                                                       \
    ROW(meshgrid, "coordinates of a grid, x along the columns", 1, 2, 3, 1_to_2, 2_to_2, 1_to_3, 3_to_3)    \
    ROW(ndgrid, "coordinates of a grid, axis k along dimension k", 1, 2, 3, 1_to_2, 2_to_2, 1_to_3, 3_to_3) \
    ROW(ind2sub, "positions to subscripts", 2, 2_to_2, 2_to_3, 2_to_4)                                      \
    ROW(sub2ind, "subscripts to positions", 2, 3, 4, 5)                                                     \
    ROW(find, "positions of the nonzero elements", 1, 1_to_2, 1_to_3)                                       \
    ROW(mean, "mean", 1, 2)                                                                                 \
    ROW(var, "variance", 1, 2, 3)                                                                           \
    ROW(stdM, "standard deviation", 1, 2, 3)                                                                \
    ROW(cov, "covariance matrix", 1, 2, 3)                                                                  \
    ROW(dot, "scalar product", 2, 3)                                                                        \
    ROW(cross, "vector product", 2, 3)                                                                      \
    ROW(trapz, "integral by trapezoids", 1, 2, 3)                                                           \
    ROW(cumtrapz, "running integral by trapezoids", 1, 2, 3)
QUORVEX_ARRAY_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
