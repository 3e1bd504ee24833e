// Calling functions by name from within the library.
#ifndef QUORVEX_VALUE_CALL_BY_NAME_H
#define QUORVEX_VALUE_CALL_BY_NAME_H

#include "quorvex/evaluation.h"

namespace kn {

// The first result of the function named f with the elements of the cell `args`, by feval_func, which finds
// nargout() to be 1.
Mm feval_one(const Mm &f, const Mm &args);

} // namespace kn

#endif
