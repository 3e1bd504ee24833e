// Compressed columns: column starts and row indices of sparse entries, and matrices stored that way.
#ifndef QUORVEX_SPARSE_COMPRESSED_COLUMNS_H
#define QUORVEX_SPARSE_COMPRESSED_COLUMNS_H

#include "base/scratch.h"
#include "quorvex/values.h"

namespace kn {

// Entries starts[c] to starts[c + 1] - 1 of a sparse value are those of column c, for the first `cols`
// columns of all pages: cols + 1 numbers.
void column_starts(const Mm &a, kn_size cols, kn_size *starts);

// The rows of the first n entries.
void row_indices(const Mm &a, kn_size n, kn_size *rows);

// A matrix of doubles, counted in ints as SuperLU does. The imaginary parts are null for a real matrix. False
// when memory was exhausted, which has been reported.
class CompressedColumns {
  public:
    CompressedColumns(int rows, int cols, int room, bool is_complex);
    // The first columns of a sparse value; what they hold fits ints.
    CompressedColumns(const Mm &a, kn_size cols);
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

} // namespace kn

#endif
