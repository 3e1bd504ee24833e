// Predicates, sizes, shapes, parts and statistics of arrays.
//
// Unless stated otherwise a function accepts every class of value (numbers, text, uint8, cells, structures,
// full and sparse, any number of dimensions), and its result has the class of its input. A dimension is 1 to
// 4.
#ifndef QUORVEX_ARRAYS_H
#define QUORVEX_ARRAYS_H

#include "quorvex/counts.h"

// -- Whether a value is of a kind: logical 1 or 0. Empty values count as any others.

QUORVEX_API Mm isstruct(const Mm &m); // a structure, not an object
QUORVEX_API Mm iscell(const Mm &m);
QUORVEX_API Mm islogical(const Mm &m); // has the logical flag, and no imaginary plane
QUORVEX_API Mm iscomplex(const Mm &m); // some imaginary part is not zero
QUORVEX_API Mm isvector(const Mm &m);  // not empty, at most one size above 1
QUORVEX_API Mm isreal(const Mm &m);    // numbers or text, not complex
QUORVEX_API Mm isnumeric(const Mm &m); // not text, cell or structure; logical values are numeric
QUORVEX_API Mm ischar(const Mm &m);

// Whether a value is true as a condition of if and while: not empty, and no element zero. NaN is true; a
// complex element is zero when both its parts are. A cell or structure is reported, and false.
QUORVEX_API int istrue(const Mm &x);

// Whether a value has no elements, logical.
QUORVEX_API Mm isempty(const Mm &m);

// Whether all inputs have the same size and contents, logical. Numbers compare by value in any class and
// storage, NaN is not equal to NaN; cells and structures compare element by element, fields in any order.
QUORVEX_API Mm isequal(const Mm &a, const Mm &b);
QUORVEX_API Mm isequal(const Mm &a, const Mm &b, const Mm &c);
QUORVEX_API Mm isequal(const Mm &a, const Mm &b, const Mm &c, const Mm &d);

// -- Sizes. Every size of an empty value is 0.

// The sizes of an array: size(x) as a 1 by ndims row, size(x, dim) along one dimension ("%s.size(dim): no
// such dimension=%d"), with dim 100 the row in reverse. [m, n, ...] = size(x): the last output is the product
// of the remaining sizes. numel is their product, ndims their number (at least 2).
QUORVEX_API Mm size(const Mm &x);
QUORVEX_API Mm size(const Mm &x, const Mm &dim);
QUORVEX_API Mm size(const Mm &x, i_o_t, Mm &m, Mm &n);
QUORVEX_API Mm size(const Mm &x, i_o_t, Mm &m, Mm &n, Mm &p);
QUORVEX_API Mm size(const Mm &x, i_o_t, Mm &m, Mm &n, Mm &p, Mm &q);
QUORVEX_API Mm length(const Mm &x); // the largest size; 0 for an empty x
QUORVEX_API Mm ndims(const Mm &x);
QUORVEX_API Mm numel(const Mm &x);

// -- Shapes.

// The elements of x in the same order, as an m by n (by p by q) array or with a size vector of at least two
// elements. One size may be [] and is computed from the others. Reported are "reshape: ..." messages when the
// product of the sizes is not numel(x).
QUORVEX_API Mm reshape(const Mm &x, const Mm &sizes);
QUORVEX_API Mm reshape(const Mm &x, const Mm &m, const Mm &n);
QUORVEX_API Mm reshape(const Mm &x, const Mm &m, const Mm &n, const Mm &p);
QUORVEX_API Mm reshape(const Mm &x, const Mm &m, const Mm &n, const Mm &p, const Mm &q);

// An array without its dimensions of size 1; a matrix is returned unchanged.
QUORVEX_API Mm squeeze(const Mm &x);

// An array with its dimensions in another order: dimension order(k) of x becomes dimension k. ipermute is the
// inverse. "%s: order must name each of the dimensions 1 to %d once".
QUORVEX_API Mm permute(const Mm &x, const Mm &order);
QUORVEX_API Mm ipermute(const Mm &x, const Mm &order);

// Transposed, reversed and rotated matrices; of an empty value empty. "%s: 2-d matrix expected, but matrix %s
// has %s dimensions".
QUORVEX_API Mm transpose(const Mm &x);  // rows become columns
QUORVEX_API Mm ctranspose(const Mm &x); // the same, with conjugate complex elements
QUORVEX_API Mm fliplr(const Mm &x);     // columns in reverse order
QUORVEX_API Mm flipud(const Mm &x);     // rows in reverse order
QUORVEX_API Mm rot90(const Mm &x);      // a quarter turn counter-clockwise
QUORVEX_API Mm rot90(const Mm &x, const Mm &quarters);

// An array of copies of x, m by n (by p by q) of them; m by m for one number; a size vector gives all counts.
QUORVEX_API Mm repmat(const Mm &x, const Mm &m);
QUORVEX_API Mm repmat(const Mm &x, const Mm &m, const Mm &n);
QUORVEX_API Mm repmat(const Mm &x, const Mm &m, const Mm &n, const Mm &p);
QUORVEX_API Mm repmat(const Mm &x, const Mm &m, const Mm &n, const Mm &p, const Mm &q);

// -- Parts of matrices of numbers or text. Diagonal k is k columns to the right of the main one.

// Diagonal k (default 0) of a matrix as a column; a vector of n elements instead gives the square matrix of
// order n + |k| that has it on diagonal k, zero elsewhere. [] where a matrix has no such diagonal.
QUORVEX_API Mm diag(const Mm &x);
QUORVEX_API Mm diag(const Mm &x, const Mm &k);

// The lower and the upper triangle of a matrix: its elements up to or from diagonal k (default 0), zero
// elsewhere.
QUORVEX_API Mm tril(const Mm &x); // zero above the diagonal
QUORVEX_API Mm tril(const Mm &x, const Mm &k);
QUORVEX_API Mm triu(const Mm &x); // zero below the diagonal
QUORVEX_API Mm triu(const Mm &x, const Mm &k);

// -- Grids and indices.

// The coordinates of all points of a grid over the given axes, one full array for each axis. In ndgrid axis k
// varies along dimension k; in meshgrid x varies along the columns, y along the rows. A single axis is used
// for all dimensions. With one output the coordinates of the first axis.
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

// Conversions between linear indices k and subscripts, both from 1, in an array of the given size. With fewer
// subscripts than dimensions the last one runs over the product of the remaining sizes. The results have the
// shape of the inputs. "ind2sub: index out of range", "sub2ind: subscript out of range", "%s: size vector
// must have at least two elements".
QUORVEX_API Mm ind2sub(const Mm &size, const Mm &k);
QUORVEX_API Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j);
QUORVEX_API Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j, Mm &l);
QUORVEX_API Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j, Mm &l, Mm &m);
QUORVEX_API Mm sub2ind(const Mm &size, const Mm &i);
QUORVEX_API Mm sub2ind(const Mm &size, const Mm &i, const Mm &j);
QUORVEX_API Mm sub2ind(const Mm &size, const Mm &i, const Mm &j, const Mm &l);
QUORVEX_API Mm sub2ind(const Mm &size, const Mm &i, const Mm &j, const Mm &l, const Mm &m);

// The linear indices of the nonzero elements (NaN is one) of numbers or text, ascending: a row for an x of
// one row, else a column. [i, j] are their rows and columns, v the elements, full. Cells and structures are
// reported.
QUORVEX_API Mm find(const Mm &x);
QUORVEX_API Mm find(const Mm &x, i_o_t, Mm &i, Mm &j);
QUORVEX_API Mm find(const Mm &x, i_o_t, Mm &i, Mm &j, Mm &v);

// -- Statistics of numbers, along dimension dim (default: the first one with a size above 1).

// The mean; the variance and the standard deviation (the language's `std`), with divisor n - 1 for flag 0
// (default) and n for flag 1; a single element has variance 0. They are NaN for [] and where an element is
// NaN, and variances of complex elements are real. "%s: flag must be 0 or 1".
QUORVEX_API Mm mean(const Mm &x);
QUORVEX_API Mm mean(const Mm &x, const Mm &dim);
QUORVEX_API Mm var(const Mm &x);
QUORVEX_API Mm var(const Mm &x, const Mm &flag);
QUORVEX_API Mm var(const Mm &x, const Mm &flag, const Mm &dim);
QUORVEX_API Mm stdM(const Mm &x);
QUORVEX_API Mm stdM(const Mm &x, const Mm &flag);
QUORVEX_API Mm stdM(const Mm &x, const Mm &flag, const Mm &dim);

// The covariance matrix: n by n for the n columns of x, the variance for a vector, 2 by 2 for the elements of
// x and y as two columns; NaN for []. A second input of one element, with an x of several, is the flag of
// var. "cov: x and y must have the same number of elements".
QUORVEX_API Mm cov(const Mm &x);
QUORVEX_API Mm cov(const Mm &x, const Mm &y_or_flag);
QUORVEX_API Mm cov(const Mm &x, const Mm &y, const Mm &flag);

// The scalar product sum(conj(a) .* b) along a dimension, where vectors may have different directions: "dot:
// a and b must be same size". The vector product along the first dimension of size 3, or along dim: "cross: a
// and b must be same size", "cross: a and b must have 3 elements in the dimension".
QUORVEX_API Mm dot(const Mm &a, const Mm &b);
QUORVEX_API Mm dot(const Mm &a, const Mm &b, const Mm &dim);
QUORVEX_API Mm cross(const Mm &a, const Mm &b);
QUORVEX_API Mm cross(const Mm &a, const Mm &b, const Mm &dim);

// The integral of y over x by the trapezoidal rule; cumtrapz gives its running value, with the size of y. x
// is a vector as long as the dimension, or has the size of y; without x the step is 1. "%s: length of x must
// equal the size of y in the dimension".
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
    ROW(iscomplex, "whether a value has a nonzero imaginary part", 1)                                       \
    ROW(isvector, "whether a value is a row or a column", 1)                                                \
    ROW(isreal, "whether a value holds real numbers or text", 1)                                            \
    ROW(isnumeric, "whether a value holds numbers", 1)                                                      \
    ROW(ischar, "whether a value is text", 1)                                                               \
    ROW(isempty, "whether a value has no elements", 1)                                                      \
    ROW(isequal, "whether all values are the same", 2, 3, 4)                                                \
    ROW(size, "sizes of an array", 1, 2, 1_to_2, 1_to_3, 1_to_4)                                            \
    ROW(length, "largest size of an array", 1)                                                              \
    ROW(ndims, "number of dimensions", 1)                                                                   \
    ROW(numel, "number of elements", 1)                                                                     \
    ROW(reshape, "the same elements in another shape", 2, 3, 4, 5)                                          \
    ROW(squeeze, "removes dimensions of size 1", 1)                                                         \
    ROW(permute, "dimensions in another order", 2)                                                          \
    ROW(ipermute, "the inverse of permute", 2)                                                              \
    ROW(transpose, "rows become columns", 1)                                                                \
    ROW(ctranspose, "conjugate transpose", 1)                                                               \
    ROW(fliplr, "columns in reverse order", 1)                                                              \
    ROW(flipud, "rows in reverse order", 1)                                                                 \
    ROW(rot90, "matrix rotated by quarter turns", 1, 2)                                                     \
    ROW(repmat, "copies of an array side by side", 2, 3, 4, 5)                                              \
    ROW(diag, "diagonal of a matrix, or a diagonal matrix", 1, 2)                                           \
    ROW(tril, "lower triangle", 1, 2)                                                                       \
    ROW(triu, "upper triangle", 1, 2)                                                                       \
    ROW(meshgrid, "coordinates of a grid, x along the columns", 1, 2, 3, 1_to_2, 2_to_2, 1_to_3, 3_to_3)    \
    ROW(ndgrid, "coordinates of a grid, axis k along dimension k", 1, 2, 3, 1_to_2, 2_to_2, 1_to_3, 3_to_3) \
    ROW(ind2sub, "linear indices to subscripts", 2, 2_to_2, 2_to_3, 2_to_4)                                 \
    ROW(sub2ind, "subscripts to linear indices", 2, 3, 4, 5)                                                \
    ROW(find, "indices of the nonzero elements", 1, 1_to_2, 1_to_3)                                         \
    ROW(mean, "mean", 1, 2)                                                                                 \
    ROW(var, "variance", 1, 2, 3)                                                                           \
    ROW(stdM, "standard deviation", 1, 2, 3)                                                                \
    ROW(cov, "covariance matrix", 1, 2, 3)                                                                  \
    ROW(dot, "scalar product", 2, 3)                                                                        \
    ROW(cross, "vector product", 2, 3)                                                                      \
    ROW(trapz, "integral by the trapezoidal rule", 1, 2, 3)                                                 \
    ROW(cumtrapz, "running integral by the trapezoidal rule", 1, 2, 3)
QUORVEX_ARRAY_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
