// Where the functions of the operations are real.
#ifndef QUORVEX_KERNELS_REAL_DOMAINS_H
#define QUORVEX_KERNELS_REAL_DOMAINS_H

#include "kernels/op_rows.h"

namespace kn {

// Whether a real element leaves the domain in which the function is real. NaN never does.
template <Rule rule> constexpr bool is_outside(double x) {
    switch (rule) {
    case Rule::negative: return x < 0;
    case Rule::outside_one: return x < -1 || x > 1;
    case Rule::outside_zero_one: return x < 0 || x > 1;
    case Rule::inside_one: return x > -1 && x < 1;
    case Rule::below_one: return x < 1;
    case Rule::never:
    case Rule::operand:
    case Rule::power_rule:
    case Rule::logical: break;
    }
    return false;
}

// Whether the rule looks at the elements of a real operand.
constexpr bool looks_at_elements(Rule rule) {
    return rule == Rule::negative || rule == Rule::outside_one || rule == Rule::outside_zero_one ||
           rule == Rule::inside_one || rule == Rule::below_one;
}

} // namespace kn

#endif
