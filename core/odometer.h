// The walk through a selection: the first subscript runs fastest.
//
// Elements are visited line by line. A line is all that the first subscript selects while the others stand
// still; the odometer counts the others and gives the place where each line begins.
#ifndef QUORVEX_CORE_ODOMETER_H
#define QUORVEX_CORE_ODOMETER_H

#include "core/selection.h"

namespace kn {

class Odometer {
  public:
    // Of a value with these four extents, inside which the selection lies.
    Odometer(const Selection &s, const int *extents);

    // Linear position of the next line, -1 after the last.
    ptrdiff_t kn_next_index();

  private:
    const Selection &s_;
    ptrdiff_t stride_[4];
    int counter_[4] = {};
    ptrdiff_t next_;
};

} // namespace kn

#endif
