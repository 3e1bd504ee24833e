// The methods of solving a linear system, from which mldivide chooses.
//
// All accept a of m by n and b of m by q, not empty, of doubles; the result is n by q, complex if an operand
// is, or x_M when memory was exhausted.
#ifndef QUORVEX_LINEAR_SOLVERS_H
#define QUORVEX_LINEAR_SOLVERS_H

#include "quorvex/values.h"

namespace kn {

// A full value of doubles, sparse and byte ones converted. False after error_numeric for cells and
// structures, and after "%s: matrix too large for LAPACK", whose sizes are ints.
bool doubles_of(const Mm &x, const char *name, Mm &out);
// The same for a sparse value, which stays sparse: the system that SuperLU is given for it has no more rows
// and entries than ints count.
bool sparse_doubles_of(const Mm &x, const char *name, Mm &out);

// a full and square; b full.
Mm solve_square(const Mm &a, const Mm &b);
// The same from the lower triangle of a real symmetric a.
Mm solve_symmetric(const Mm &a, const Mm &b);
// a and b full: the least-squares or a basic solution.
Mm solve_rectangular(const Mm &a, const Mm &b);
// a sparse, of any shape; b full.
Mm solve_sparse(const Mm &a, const Mm &b);

// a times the inverse of b, b being no scalar: (b' \ a')' by mldivide.
Mm matrix_right_division(const Mm &a, const Mm &b);

// The inverse of a square sparse matrix of doubles, sparse. "full: matrix too large" when it has more than
// 10^8 entries.
Mm sparse_inverse(const Mm &a);

} // namespace kn

#endif
