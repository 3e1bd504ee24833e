// Linear solving: division by matrices, triangular factors, inverse, determinant, condition.
//
// Inputs are numbers of any class: bytes, characters and logical values count as doubles. A structure uses a
// method of its class where stated; cells and other structures are reported. Matrices have two dimensions:
// "%s: 2-d matrix expected, but matrix %s has %s dimensions", and are square where needed: "%s: square matrix
// expected, but matrix %s has %d rows and %d columns". An empty matrix gives nop_M unless stated otherwise.
//
// There is no warning for a singular or nearly singular matrix: the solution of a full system then has
// infinities and NaN where the substitution divides by zero. The solution of a sparse system is all NaN when
// the matrix, with its numbers as stored, is exactly singular, or when elimination meets a zero pivot.
#ifndef QUORVEX_SOLVING_H
#define QUORVEX_SOLVING_H

#include "quorvex/counts.h"

// The solution x of a * x = b, a \ b: n by k for an m by n a and an m by k b. For a scalar a, and for a
// scalar b with an a of more than two dimensions, it is the division of elements. "mldivide: a,b does not
// have the same number of rows". Structures: the class method "mldivide".
//
// A full square a is factored with row interchanges; a real double one for which ishermitian is true, with
// diagonal pivoting of its lower triangle (Bunch and Kaufman). A rectangular a has a QR factorisation with
// pivoting by column norms (Businger and Golub): the least-squares solution of an overdetermined system, a
// basic solution of an underdetermined system, with zeros in the rows of non-leading columns. The rank is not
// determined.
//
// With a sparse a the result is full for a full b and sparse for a sparse b. A square a is solved like
// lusolve, in a column order that keeps the factors sparse. With fewer rows than columns the leading square
// block is solved, and the last rows are zero. With more rows it is the least-squares solution, by the system
// [s I, a; a', 0], where s is a thousandth of the largest element.
QUORVEX_API Mm mldivide(const Mm &a, const Mm &b);
QUORVEX_API Mm invdiv(const Mm &a, const Mm &b);

// The solution a \ b for a sparse square a and a full b, by sparse triangular factors. p is a sparse
// permutation matrix; the row index in its column k is the step in which column k of a is eliminated
// ("lusolve: %s is not a permutation of %d columns"). Complex systems are solved as real ones of twice the
// order. NaN when a is singular. "getIr: sparse matrix expected, but matrix %s is full".
QUORVEX_API Mm lusolve(const Mm &a, const Mm &b, const Mm &p);

// The power a ^ b: power(a, b) for scalars; for a square matrix a and an integer b a product, of inv(a) for a
// negative b, and the identity for 0. Bytes give doubles, sparse matrices sparse ones. Other powers of a
// matrix, and a scalar to a matrix power, are reported: "mpower: only whole powers of a matrix are
// supported"; for two matrices "mpower: base or exponent must be a scalar". Structures: the class method
// "mpower".
QUORVEX_API Mm mpower(const Mm &a, const Mm &b);

// The triangular factors of a square matrix, by elimination with row interchanges; the pivot is the largest
// element of its column, by |re| + |im| for complex ones. One output: u, and below its diagonal the negated
// multipliers, in the rows that they had when their column was eliminated; full. Two outputs: a = l u, l with
// permuted rows. Three outputs: p a = l u, l lower triangular. For sparse matrices l and u are sparse, and
// columns are not reordered; "lu: Complex sparse not supported."
QUORVEX_API Mm lu(const Mm &a);
QUORVEX_API Mm lu(const Mm &a, i_o_t, Mm &l, Mm &u);
QUORVEX_API Mm lu(const Mm &a, i_o_t, Mm &l, Mm &u, Mm &p);
QUORVEX_API Mm lu_L(const Mm &a); // the first and the second of two outputs
QUORVEX_API Mm lu_U(const Mm &a);

// The inverse of a square matrix. For a real full matrix with a pivot of exactly zero it is the unfinished
// factorisation: u, with the multipliers below. For a sparse matrix it is a \ eye(n), sparse; "full: matrix
// too large" when it has more than 10^8 entries.
QUORVEX_API Mm inv(const Mm &a);

// The determinant of a square matrix: 1 for an empty one, rounded to an integer when all elements are
// integers. For a sparse matrix it is the product of the pivots, without the sign of the row interchanges.
QUORVEX_API Mm det(const Mm &a);

// An estimate of the reciprocal condition number in the 1-norm, 0 for a singular matrix. For a complex matrix
// moduli are |re| + |im|. Source: Cline, Moler, Stewart and Wilkinson, An estimate for the condition number
// of a matrix, SIAM J. Numer. Anal. 16, 1979.
QUORVEX_API Mm rcond(const Mm &a);

// Whether a equals its conjugate transpose: 1 when all elements of a - a' are below 10 eps in modulus (NaN is
// ignored unless all are NaN), otherwise 0. 0 for bytes and cells. "ishermitian: '%s' matrix not square".
QUORVEX_API Mm ishermitian(const Mm &a);

#define QUORVEX_SOLVING_COUNTS(ROW)                                   \
    ROW(mldivide, "matrix division from the left", 2)                 \
    ROW(invdiv, "matrix division from the left", 2)                   \
    ROW(lusolve, "solves a sparse system in a given column order", 3) \
    ROW(mpower, "power of a matrix", 2)                               \
    ROW(lu, "triangular factors", 1, 1_to_2, 1_to_3)                  \
    ROW(lu_L, "lower triangular factor", 1)                           \
    ROW(lu_U, "upper triangular factor", 1)                           \
    ROW(inv, "inverse matrix", 1)                                     \
    ROW(det, "determinant", 1)                                        \
    ROW(rcond, "estimate of the reciprocal condition number", 1)      \
    ROW(ishermitian, "whether a matrix equals its conjugate transpose", 1)
QUORVEX_SOLVING_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
