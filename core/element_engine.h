// The element engine as a function, for callers inside the library: what the constructor of Mm builds,
// without a second header.
#ifndef QUORVEX_CORE_ELEMENT_ENGINE_H
#define QUORVEX_CORE_ELEMENT_ENGINE_H

#include "quorvex/values.h"

namespace kn {

Mm element_operation(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim,
                     Mm &extra);

} // namespace kn

#endif
