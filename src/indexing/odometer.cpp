#include "indexing/odometer.h"

namespace kn {

Odometer::Odometer(const Selection &s, const kn_size *extents, int axis) : s_(s), axis_(axis) {
    if (axis < 0)
        for (axis_ = 0; axis_ + 1 < s.n() && s[axis_].count() == 1;) ++axis_;
    kn_size stride = 1;
    for (int k = 0; k < s.n(); ++k) {
        stride_[k] = stride;
        stride *= extents[k];
        if (s[k].count() == 0) {
            next_ = -1;
            return;
        }
        if (k != axis_) next_ += s[k][0] * stride_[k];
    }
}

void Odometer::skip_to(kn_size n) {
    if (next_ < 0) return;
    for (int k = axis_ + 1; k < s_.n(); ++k) {
        const Positions &p = s_[k];
        next_ -= p[counter_[k]] * stride_[k];
        counter_[k] = n % p.count();
        next_ += p[counter_[k]] * stride_[k];
        n /= p.count();
    }
}

kn_size Odometer::kn_next_index() {
    kn_size line = next_;
    if (line < 0) return line;
    for (int k = axis_ + 1; k < s_.n(); ++k) {
        const Positions &p = s_[k];
        next_ -= p[counter_[k]] * stride_[k];
        if (++counter_[k] == p.count()) counter_[k] = 0;
        next_ += p[counter_[k]] * stride_[k];
        if (counter_[k] != 0) return line;
    }
    next_ = -1;
    return line;
}

} // namespace kn
