// The factorisation of large matrices, which a host can interrupt.
//
// Without a host's hook (base/poll.h), and for work that BLAS does between two safe points, these are calls
// of LAPACK. Larger work is halved until it is small enough: a factorisation by columns (Toledo, Locality of
// reference in LU decomposition with partial pivoting, SIAM J. Matrix Anal. Appl. 18, 1997), a substitution
// by the right-hand sides or by the triangle, whichever is larger, so that nearly all of it is products.
//
// Each returns false, with undefined matrices, after a report of an interruption or of exhausted memory.
#ifndef QUORVEX_LINEAR_BLOCKED_LU_H
#define QUORVEX_LINEAR_BLOCKED_LU_H

#include "linear/lapack.h"

namespace kn {

// p a = l u with row interchanges, in place of a. `zero_pivot` is the 1-based position of the first one, or
// 0.
template <class T> bool factor(const Matrix<T> &a, const Pivots &p, int &zero_pivot);
template <class T> bool factor(const Matrix<T> &a, const Pivots &p) {
    int zero_pivot;
    return factor(a, p, zero_pivot);
}

// b = a \ b from these factors.
template <class T> bool substitute(const Matrix<T> &factors, const Pivots &p, const Matrix<T> &b);

// The first k rows of b = r \ b, r upper triangular in the first k rows and columns of a.
template <class T> bool substitute_upper(const Matrix<T> &a, int k, const Matrix<T> &b);

// The inverse in place of these factors, none of whose pivots is zero.
template <class T> bool invert(const Matrix<T> &factors, const Pivots &p);

} // namespace kn

#endif
