// Values in ascending order along a dimension.
#ifndef QUORVEX_ENGINE_SORTED_H
#define QUORVEX_ENGINE_SORTED_H

#include "quorvex/values.h"

namespace kn {

// Each slice of a full numeric value sorted along dimension d, 1 to 4: real numbers ascending with NaN last,
// complex ones by modulus and then angle, bytes ascending. x_M when memory is exhausted.
Mm sorted_along(const Mm &a, int d);

} // namespace kn

#endif
