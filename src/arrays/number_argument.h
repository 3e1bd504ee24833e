// Arguments that count as one number.
#ifndef QUORVEX_ARRAYS_NUMBER_ARGUMENT_H
#define QUORVEX_ARRAYS_NUMBER_ARGUMENT_H

#include "quorvex/values.h"

namespace kn {

// The real part of the first element. An empty value, a cell and a structure are reported as by Mm::r.
inline double first(const Mm &x) {
    if (x.gettype() == kn_uint8 && !x.issparse()) return x.ur(1);
    if (!x.issparse()) return x.r();
    return x.getnnz() > 0 && x.getindex()[0] == 0 ? x.addr()[0] : 0;
}

} // namespace kn

#endif
