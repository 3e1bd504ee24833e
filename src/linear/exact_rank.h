// Whether a sparse matrix is singular exactly, as its numbers are stored.
#ifndef QUORVEX_LINEAR_EXACT_RANK_H
#define QUORVEX_LINEAR_EXACT_RANK_H

#include "linear/sparse_system.h"

namespace kn {

enum class Rank { full, deficient, unknown };

// Eliminates the columns of a square matrix of finite numbers modulo the prime 2^61 - 1. Every double is a
// whole number times a power of two, and so has a remainder; a matrix whose determinant is zero has
// dependent columns modulo the prime too, and another one only if the prime divides its determinant, scaled
// to a whole number, for which there is a chance of about one in 10^18.
//
// column_order and row_order give the position of each column in the elimination and that of its pivot's row,
// which keep the factors sparse; another row is chosen where that element is zero. Unknown after a report of
// exhausted memory or an interruption.
Rank exact_rank(const CompressedColumns &a, const int *column_order, const int *row_order);

} // namespace kn

#endif
