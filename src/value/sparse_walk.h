// Walks through the columns of sparse entries. Indices ascend, so the entries of a column are consecutive. A
// value of more than two dimensions counts as the matrix of all its columns, page after page.
#ifndef QUORVEX_VALUE_SPARSE_WALK_H
#define QUORVEX_VALUE_SPARSE_WALK_H

#include "quorvex/values.h"

namespace kn {

// Rows and columns of positions of a matrix, asked for one after the other. What lies in the column of the
// position before it, or in the next one, is found without a division.
class ColumnWalk {
  public:
    explicit ColumnWalk(int rows) : rows_(static_cast<unsigned>(rows)) {}

    int row(int position) {
        unsigned r = static_cast<unsigned>(position) - begin_;
        if (r < rows_) return static_cast<int>(r);
        if (r - rows_ < rows_) {
            ++column_;
            begin_ += rows_;
        } else {
            column_ = static_cast<unsigned>(position) / rows_;
            begin_ = column_ * rows_;
        }
        return static_cast<int>(static_cast<unsigned>(position) - begin_);
    }
    int column() const { return static_cast<int>(column_); } // of the last one asked for
    int begin() const { return static_cast<int>(begin_); }   // position of its first row
    long long end() const { return static_cast<long long>(begin_) + rows_; }

  private:
    unsigned rows_, begin_ = 0, column_ = 0;
};

// The columns of all pages.
inline ptrdiff_t column_count(const Mm &a) {
    const int *d = a.getdims();
    ptrdiff_t n = d[1];
    for (int k = 2; k < a.getndims(); ++k) n *= d[k];
    return n;
}

// f(slot, row, column) for the first n entries of a sparse value, column after column.
template <class F> void for_entries(const Mm &a, int n, F f) {
    const int *index = a.getindex();
    ColumnWalk walk(a.rows());
    for (int k = 0; k < n;) {
        walk.row(index[k]);
        const int begin = walk.begin(), column = walk.column();
        const long long end = walk.end();
        for (; k < n && index[k] < end; ++k) f(k, index[k] - begin, column);
    }
}

template <class F> void for_entries(const Mm &a, F f) { for_entries(a, a.getnnz(), f); }

} // namespace kn

#endif
