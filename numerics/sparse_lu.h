// Triangular factors of sparse matrices, by SuperLU (Demmel, Eisenstat, Gilbert, Li and Liu, A supernodal
// approach to sparse partial pivoting, SIAM J. Matrix Anal. Appl. 20, 1999).
#ifndef QUORVEX_NUMERICS_SPARSE_LU_H
#define QUORVEX_NUMERICS_SPARSE_LU_H

#include "numerics/sparse_system.h"

namespace kn {

// x = a \ x: a real square matrix, x with columns of its order that nobody shares, NaN when a is singular.
// `order` gives the position of each column in the elimination; null: one that keeps the factors sparse.
// False after an error.
bool sparse_lu_solve(const Columns &a, Mm &x, const int *order);

// a = l u of a real sparse square matrix that isn't empty, all sparse, p the interchanges of rows: l has the
// rows of a, or with `ordered` those of u, p a = l u. Columns aren't interchanged. False after an error.
bool sparse_factors(const Mm &a, bool ordered, Mm &l, Mm &u, Mm &p);

} // namespace kn

#endif
