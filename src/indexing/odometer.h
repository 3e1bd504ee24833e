// The walk through a selection: the first subscript runs fastest.
//
// Elements are visited line by line. A line is all that one subscript selects while the others keep theirs:
// the first subscript that selects more than one position, since those before it never move. The odometer
// counts the subscripts after it and gives the index at which each line begins.
#ifndef QUORVEX_INDEXING_ODOMETER_H
#define QUORVEX_INDEXING_ODOMETER_H

#include "indexing/selection.h"

namespace kn {

class Odometer {
  public:
    // Of a value with these four extents, inside which the selection lies. Lines along `axis` when it is
    // given.
    Odometer(const Selection &s, const kn_size *extents, int axis = -1);

    // Goes on with the n-th line, counted from 0; there is one.
    void skip_to(kn_size n);
    // Linear index of the next line, -1 after the last. Its elements are at position times stride
    // after it.
    kn_size kn_next_index();
    const Positions &line() const { return s_[axis_]; }
    kn_size stride() const { return stride_[axis_]; }

  private:
    const Selection &s_;
    int axis_;
    kn_size stride_[4] = {};
    kn_size counter_[4] = {};
    kn_size next_ = 0;
};

} // namespace kn

#endif
