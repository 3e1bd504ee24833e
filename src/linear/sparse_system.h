// Sparse systems in compressed columns: the matrices that are made of a sparse value before it is factored.
//
// They may be larger than a sparse value can be, whose positions fit an int.
#ifndef QUORVEX_LINEAR_SPARSE_SYSTEM_H
#define QUORVEX_LINEAR_SPARSE_SYSTEM_H

#include <stdint.h>

#include "base/scratch.h"
#include "quorvex/values.h"

namespace kn {

// Entries start[c] to start[c + 1] - 1 are those of column c, with their rows. Real and imaginary parts, the
// latter null for a real matrix. False when memory was exhausted, which has been reported.
class Columns {
  public:
    Columns(int64_t rows, int64_t cols, int64_t room, bool is_complex);
    // The first columns of a sparse value of doubles.
    Columns(const Mm &a, int cols);
    explicit operator bool() const { return start_ && row_ && re_ && im_; }

    int rows() const { return m_; }
    int cols() const { return n_; }
    int entries() const { return start_[n_]; }
    int *start() const { return start_.get(); }
    int *row() const { return row_.get(); }
    double *re() const { return re_.get(); }
    double *im() const { return is_complex_ ? im_.get() : nullptr; }

    // Adds an entry to the last column begun; zeros are left out, unless they are `kept`.
    void begin_column() {
        ++filled_;
        start_[filled_] = start_[filled_ - 1];
    }
    void add(int row, double re, double im, bool kept = false);

  private:
    int m_, n_, filled_ = 0;
    bool is_complex_;
    Scratch<int> start_, row_;
    Scratch<double> re_, im_;
};

// out = [re a, -im a; im a, re a]; room for 4 entries for each of a.
void embed_complex(const Columns &a, Columns &out);
// out = [s I, a; a', 0] of order m + n; room for 2 entries for each of a, and m more. False without memory.
bool augment(const Columns &a, double s, Columns &out);

// Whether the entries of a square matrix, by ascending rows, lie symmetrically, and all of the diagonal is
// among them. `next` has room for a number for each column.
bool symmetric_pattern(const Columns &a, int *next);

// A choice of entries, no two in one row or column, as many as there can be: row_of[c], -1 for a column
// without one. a is square. How many columns are without; -1 without memory.
int match_rows(const Columns &a, int *row_of);

} // namespace kn

#endif
