// The call of one form of a function.
#ifndef QUORVEX_HOST_FORM_CALL_H
#define QUORVEX_HOST_FORM_CALL_H

#include "quorvex/values.h"

namespace kn {

// Calls one form. With several outputs each is stored in y; otherwise the value, or x_M, is returned.
using Call = Mm (*)(const Mm *x, Mm *y);

} // namespace kn

#endif
