// Linear solving: division by matrices, triangular factors, inverse, determinant, condition.
//
// Inputs are numbers of any kind: bytes, characters and logical values count as doubles. A structure goes to
// the methods of its class where that is said; a cell, or another structure, is reported. Matrices have two
// dimensions: "%s: 2-d matrix expected, but matrix %s has %s dimensions". "%s: square matrix expected, but
// matrix %s has %d rows and %d columns" where one is needed. An empty matrix gives nop_M but where it is
// said.
//
// Nothing warns about a matrix that is singular, or close to it: a full system then has infinities and NaN
// where the substitution divides by zero. A sparse one is NaN everywhere, when the matrix is singular
// exactly, as its numbers are stored, or when elimination meets a pivot of zero.
#ifndef QUORVEX_SOLVING_H
#define QUORVEX_SOLVING_H

#include "quorvex/counts.h"

// a \ b. By a scalar a, and where b is a scalar and a has more than two dimensions, the element division.
// "mldivide: a,b does not have the same number of rows". Structures: the class method "mldivide".
//
// A full square a is factored with row interchanges; a real double one for which ishermitian holds by
// diagonal pivoting of its lower triangle (Bunch and Kaufman). A rectangular one goes through the QR
// factorisation with pivoting by column norms (Businger and Golub): the least-squares solution of an
// overdetermined system, a basic one of an underdetermined system, with zeros in the rows of the columns that
// did not lead. The rank isn't looked at.
//
// A sparse a gives a full result, a sparse b a sparse one. A square one: lusolve in an order of columns that
// keeps the factors sparse. With fewer rows than columns the leading square block
// is solved, and the last rows are zero. With more, least squares by the system [s I, a; a', 0], where s is a
// thousandth of the largest element.
QUORVEX_API Mm mldivide(const Mm &a, const Mm &b);
QUORVEX_API Mm invdiv(const Mm &a, const Mm &b);

// a \ b of a sparse square a and a full b by sparse triangular factors. p is a sparse permutation matrix
// whose row indices, column by column, are the positions that the columns of a take in the elimination
// ("lusolve: %s is not a permutation of %d columns"). Complex systems are solved as real ones of twice the
// order. NaN when a is singular. "getIr: sparse matrix expected, but matrix %s is full".
QUORVEX_API Mm lusolve(const Mm &a, const Mm &b, const Mm &p);

// a ^ b. Of scalars power(a, b). A square matrix to a whole power: products, of inv(a) where b is negative;
// the identity for 0. Bytes give doubles, sparse matrices sparse ones. Other powers of a matrix, and powers
// of a scalar to a matrix, are reported: "mpower: only whole powers of a matrix are supported"; of two
// matrices "mpower: base or exponent must be a scalar". Structures: the class method "mpower".
QUORVEX_API Mm mpower(const Mm &a, const Mm &b);

// The triangular factors of a square matrix, by elimination with row interchanges; the pivot is the largest
// element of its column, of a complex one by |re| + |im|. One output: u, and below its diagonal the negated
// multipliers, in each column in the rows they had when it was eliminated; full. Two: a = l u, l with
// permuted rows. Three: p a = l u, l lower triangular. Of sparse matrices the two are sparse, without
// reordering of columns; "lu: Complex sparse not supported."
QUORVEX_API Mm lu(const Mm &a);
QUORVEX_API Mm lu(const Mm &a, i_o_t, Mm &l, Mm &u);
QUORVEX_API Mm lu(const Mm &a, i_o_t, Mm &l, Mm &u, Mm &p);
QUORVEX_API Mm lu_L(const Mm &a); // the first and the second of two outputs
QUORVEX_API Mm lu_U(const Mm &a);

// The inverse. Of a real matrix with an exactly zero pivot it is what the factorisation left: u, and the
// multipliers below. Of a sparse matrix: a \ eye(n), sparse; "full:
// matrix too large" when that has more than 10^8 entries.
QUORVEX_API Mm inv(const Mm &a);

// The determinant; 1 for an empty matrix, rounded where all elements are whole numbers. Of a sparse matrix
// the product of the pivots, without the sign of the row interchanges.
QUORVEX_API Mm det(const Mm &a);

// An estimate of the reciprocal condition in the 1-norm, 0 for a singular matrix (Cline, Moler, Stewart and
// Wilkinson, An estimate for the condition number of a matrix, SIAM J. Numer. Anal. 16, 1979). Of a complex
// matrix moduli are |re| + |im|.
QUORVEX_API Mm rcond(const Mm &a);

// Whether no element of a - a', in modulus, reaches 10 eps (NaN ones don't count, but where all are): 1 or 0.
// 0 for bytes and cells. "ishermitian: '%s' matrix not square".
QUORVEX_API Mm ishermitian(const Mm &a);

#define QUORVEX_SOLVING_COUNTS(ROW)                                       \
    ROW(mldivide, "matrix division from the left", 2)                     \
    ROW(invdiv, "matrix division from the left", 2)                       \
    ROW(lusolve, "solves a sparse system in a given order of columns", 3) \
    ROW(mpower, "power of a matrix", 2)                                   \
    ROW(lu, "triangular factors", 1, 1_to_2, 1_to_3)                      \
    ROW(lu_L, "lower triangular factor", 1)                               \
    ROW(lu_U, "upper triangular factor", 1)                               \
    ROW(inv, "inverse matrix", 1)                                         \
    ROW(det, "determinant", 1)                                            \
    ROW(rcond, "estimate of the reciprocal condition", 1)                 \
    ROW(ishermitian, "whether a matrix equals its conjugate transpose", 1)
QUORVEX_SOLVING_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
