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
    explicit ColumnWalk(kn_size rows) : rows_(static_cast<size_t>(rows)) {}

    kn_size row(kn_size position) {
        const size_t r = static_cast<size_t>(position) - begin_;
        if (r < rows_) return static_cast<kn_size>(r);
        if (r - rows_ < rows_) {
            ++column_;
            begin_ += rows_;
        } else {
            column_ = static_cast<size_t>(position) / rows_;
            begin_ = column_ * rows_;
        }
        return static_cast<kn_size>(static_cast<size_t>(position) - begin_);
    }
    kn_size column() const { return static_cast<kn_size>(column_); } // of the last one asked for
    kn_size begin() const { return static_cast<kn_size>(begin_); }   // position of its first row
    kn_size end() const { return static_cast<kn_size>(begin_ + rows_); }

  private:
    size_t rows_, begin_ = 0, column_ = 0;
};

// The columns of all pages.
inline kn_size column_count(const Mm &a) {
    const kn_size *d = a.getdims();
    kn_size n = d[1];
    for (int k = 2; k < a.getndims(); ++k) n *= d[k];
    return n;
}

// f(slot, row, column) for the first n entries of a sparse value, column after column.
template <class F> void for_entries(const Mm &a, kn_size n, F f) {
    const kn_size *index = a.getindex();
    ColumnWalk walk(a.rows());
    for (kn_size k = 0; k < n;) {
        walk.row(index[k]);
        const kn_size begin = walk.begin(), end = walk.end(), column = walk.column();
        for (; k < n && index[k] < end; ++k) f(k, index[k] - begin, column);
    }
}

template <class F> void for_entries(const Mm &a, F f) { for_entries(a, a.getnnz(), f); }

} // namespace kn

#endif
