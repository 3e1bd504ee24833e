// Joining two values along a dimension.
#ifndef QUORVEX_JOIN_CONCAT_H
#define QUORVEX_JOIN_CONCAT_H

#include "quorvex/values.h"

namespace kn {

// [a, b] along dimension `dim`, from 1; see cat in quorvex/concat.h.
Mm join(int dim, const Mm &a, const Mm &b);

} // namespace kn

#endif
