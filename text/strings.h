// Reading the characters of a value, whatever its element type.
#ifndef QUORVEX_TEXT_STRINGS_H
#define QUORVEX_TEXT_STRINGS_H

#include <cstddef>

#include "quorvex/values.h"

namespace kn {

// The character codes of a value as full doubles, column by column: its own elements, or a converted copy for
// bytes and sparse values. False when there is none ("Can not convert %s into a numeric matrix" for cells).
// The pages of a value of more dimensions stand side by side.
class Codes {
  public:
    explicit Codes(const Mm &m);

    explicit operator bool() const { return data_ != nullptr; }
    int rows() const { return rows_; }
    int cols() const { return cols_; }
    ptrdiff_t size() const { return static_cast<ptrdiff_t>(rows_) * cols_; }
    const double *data() const { return data_; }

  private:
    Mm copy_; // shares the block of the value, or holds the converted one
    int rows_ = 0, cols_ = 0;
    const double *data_ = nullptr;
};

} // namespace kn

#endif
