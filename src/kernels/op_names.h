// What the list of operations says of a code, as data.
#ifndef QUORVEX_KERNELS_OP_NAMES_H
#define QUORVEX_KERNELS_OP_NAMES_H

#include "quorvex/op_list.h"

namespace kn {

// What an operation does with the zeros of a sparse operand.
enum class SparseGroup { unary_zero, product, union_, unary_full, binary_full, reduction };
// When its language function asks for an imaginary plane; `logical`: never, and the result is logical.
enum class Rule {
    never,
    operand,
    negative,
    outside_one,
    outside_zero_one,
    inside_one,
    below_one,
    power_rule,
    logical
};

struct OpRow {
    const char *name;
    SparseGroup group;
    Rule rule;
};

inline constexpr OpRow op_rows[] = {
#define KN_ROW(name, group, rule, kernel) {#name, SparseGroup::group, Rule::rule},
    QUORVEX_OPERATIONS(KN_ROW)
#undef KN_ROW
};

inline constexpr bool is_op(int code) { return code >= 0 && code < op_count_; }

// "???" for a number that is no code.
inline constexpr const char *op_name(int code) { return is_op(code) ? op_rows[code].name : "???"; }

} // namespace kn

#endif
