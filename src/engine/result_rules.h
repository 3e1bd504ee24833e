// When the language functions ask for a complex result, by code.
#ifndef QUORVEX_ENGINE_RESULT_RULES_H
#define QUORVEX_ENGINE_RESULT_RULES_H

#include "kernels/real_domains.h"
#include "quorvex/values.h"

namespace kn {

// Whether the result of the operation `op` has an imaginary plane. For powers this also depends on the values
// of `a`.
int complex_result(op_t op, const Mm &a);
int complex_result(op_t op, const Mm &a, const Mm &b);

} // namespace kn

#endif
