// Triangular factors of sparse matrices, by SuperLU (Demmel, Eisenstat, Gilbert, Li and Liu, A supernodal
// approach to sparse partial pivoting, SIAM J. Matrix Anal. Appl. 20, 1999).
#ifndef QUORVEX_LINEAR_SPARSE_LU_H
#define QUORVEX_LINEAR_SPARSE_LU_H

#include "linear/sparse_system.h"
#include "linear/superlu_memory.h"

namespace kn {

// The factors of a real square matrix, for solving systems. `order` gives the position of each column in the
// elimination; null: the natural order of a small matrix, else one that keeps the factors sparse. False after
// an error.
//
// A matrix is singular where elimination meets a pivot of zero, or a small one and the matrix is singular
// exactly, as its numbers are stored (exact_rank.h).
class SparseLu {
  public:
    SparseLu(const CompressedColumns &a, const int *order);
    explicit operator bool() const { return done_; }
    // x = a \ x, q columns of the order of a; NaN when a is singular. False after an error.
    bool solve(double *x, kn_size q);

  private:
    struct System;
    bool factor(const CompressedColumns &a, const int *order, int way);

    const int n_;
    Scratch<int> column_order_, row_order_;
    SuperluCall call_;
    Scratch<System> system_;
    bool done_ = false, singular_ = false;
};

// How many entries SuperLU takes: it begins with room for several times as many in the factors, and counts
// them in an int.
kn_size most_entries();

// a = l u of a real sparse square matrix that isn't empty, all sparse, p the interchanges of rows: l has the
// rows of a, or with `ordered` those of u, p a = l u. Columns are not interchanged. False after an error.
bool sparse_factors(const Mm &a, bool ordered, Mm &l, Mm &u, Mm &p);

} // namespace kn

#endif
