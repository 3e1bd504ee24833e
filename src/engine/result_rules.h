// When the language functions ask for a complex result, by code.
#ifndef QUORVEX_ENGINE_RESULT_RULES_H
#define QUORVEX_ENGINE_RESULT_RULES_H

#include "kernels/real_domains.h"
#include "quorvex/values.h"

namespace kn {

// complex_result of the function with code `op`. Of two operands that is settled by both for arithmetic, and
// by the values of `a` too for powers.
int complex_result(op_t op, const Mm &a);
int complex_result(op_t op, const Mm &a, const Mm &b);

} // namespace kn

#endif
