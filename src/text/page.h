// One page of a value of three or four dimensions.
#ifndef QUORVEX_TEXT_PAGE_H
#define QUORVEX_TEXT_PAGE_H

#include "quorvex/values.h"

namespace kn {

// A copy of m(:,:,k,l), with the flags of m; k and l count from 1 and must exist. An empty value when memory
// is exhausted.
Mm page(const Mm &m, kn_size k, kn_size l);

} // namespace kn

#endif
