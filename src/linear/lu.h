// The triangular factors as determinant, inverse and condition use them.
#ifndef QUORVEX_LINEAR_LU_H
#define QUORVEX_LINEAR_LU_H

#include "linear/lapack.h"

namespace kn {

// LAPACK's factors in the packed form of LINPACK: below the diagonal the negated multipliers, those of each
// column without the later interchanges.
template <class T> void pack_multipliers(const Matrix<T> &f, const Pivots &p);

// The diagonal of u of a sparse square matrix that isn't empty; false after an error.
bool sparse_pivots(const Mm &a, Scratch<double> &pivots);

} // namespace kn

#endif
