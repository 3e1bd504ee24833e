// The rows of the element operations: everything that is made for each of them follows from here, but for the
// element functions themselves (kernels/loops/element_kernels.h).
//
//     OP(name, sparse group, result rule, kernel)
//
// name          as in the list of codes (quorvex/op_list.h), in the same order.
// sparse group  what the operation does with the zeros of a sparse operand (engine/sparse_plan.cpp):
//                 unary_zero   keeps zeros, one operand: works on the stored values
//                 product      zero where either operand is zero: merge of positions
//                 union_       zero where both operands are zero: merge of positions
//                 unary_full   does not keep zeros: works on the dense form
//                 binary_full  the same with two operands
//                 reduction    runs along a dimension: works on the dense form
// result rule   when the language function asks for an imaginary plane (engine/result_rules.cpp):
//                 never, operand (some operand is complex), negative (or an element is below 0), outside_one
//                 (below -1 or above 1), outside_zero_one (below 0 or above 1), inside_one (strictly between
//                 -1 and 1, or an unstored zero), below_one (or an unstored zero), power_rule; `logical` is
//                 `never` and the result is logical.
// kernel        the structure that holds the element functions.
#ifndef QUORVEX_KERNELS_OP_ROWS_H
#define QUORVEX_KERNELS_OP_ROWS_H

#include <string_view>

#include "quorvex/op_list.h"

// clang-format off
#define KN_OPERATIONS(OP) \
    OP(diff,     unary_full,  operand,          Diff) \
    OP(del2,     binary_full, never,            Del2) \
    OP(gradient, binary_full, never,            Gradient) \
    OP(all,      reduction,   logical,          All) \
    OP(any,      reduction,   logical,          Any) \
    OP(cumprod,  reduction,   operand,          Cumprod) \
    OP(cumsum,   reduction,   operand,          Cumsum) \
    OP(max_1,    reduction,   operand,          Max1) \
    OP(median,   reduction,   operand,          Median) \
    OP(min_1,    reduction,   operand,          Min1) \
    OP(prod,     reduction,   operand,          Prod) \
    OP(sum,      reduction,   operand,          Sum) \
    OP(unwrap,   reduction,   operand,          Unwrap) \
    OP(abs,      unary_zero,  never,            Abs) \
    OP(acos,     unary_full,  outside_one,      Acos) \
    OP(acosh,    unary_full,  below_one,        Acosh) \
    OP(acot,     unary_full,  operand,          Acot) \
    OP(acoth,    unary_full,  inside_one,       Acoth) \
    OP(acsc,     unary_full,  inside_one,       Acsc) \
    OP(acsch,    unary_full,  operand,          Acsch) \
    OP(and,      product,     logical,          And) \
    OP(angle,    unary_zero,  never,            Angle) \
    OP(asec,     unary_full,  inside_one,       Asec) \
    OP(asech,    unary_full,  outside_zero_one, Asech) \
    OP(asin,     unary_zero,  outside_one,      Asin) \
    OP(asinh,    unary_zero,  operand,          Asinh) \
    OP(atan,     unary_zero,  operand,          Atan) \
    OP(atan2,    union_,      never,            Atan2) \
    OP(atanh,    unary_zero,  outside_one,      Atanh) \
    OP(beta,     binary_full, never,            Beta) \
    OP(betaln,   binary_full, never,            Betaln) \
    OP(bitand,   product,     never,            Bitand) \
    OP(bitcmp,   binary_full, never,            Bitcmp) \
    OP(bitget,   unary_full,  never,            Bitget) \
    OP(bitor,    union_,      never,            Bitor) \
    OP(bitreset, unary_full,  never,            Bitreset) \
    OP(bitset,   unary_full,  never,            Bitset) \
    OP(bitshift, unary_full,  never,            Bitshift) \
    OP(bitxor,   union_,      never,            Bitxor) \
    OP(ceil,     unary_zero,  operand,          Ceil) \
    OP(conj,     unary_zero,  operand,          Conj) \
    OP(cos,      unary_full,  operand,          Cos) \
    OP(cosh,     unary_full,  operand,          Cosh) \
    OP(cot,      unary_full,  operand,          Cot) \
    OP(coth,     unary_full,  operand,          Coth) \
    OP(csc,      unary_full,  operand,          Csc) \
    OP(csch,     unary_full,  operand,          Csch) \
    OP(eq,       binary_full, logical,          Eq) \
    OP(erfc,     unary_full,  never,            Erfc) \
    OP(erfcx,    unary_full,  never,            Erfcx) \
    OP(erfinv,   unary_zero,  never,            Erfinv) \
    OP(erf,      unary_zero,  never,            Erf) \
    OP(exp,      unary_full,  operand,          Exp) \
    OP(expint,   unary_full,  never,            Expint) \
    OP(fix,      unary_zero,  operand,          Fix) \
    OP(floor,    unary_zero,  operand,          Floor) \
    OP(gamma,    unary_full,  never,            Gamma) \
    OP(gammainc, union_,      never,            Gammainc) \
    OP(gammaln,  unary_full,  never,            Gammaln) \
    OP(ge,       binary_full, logical,          Ge) \
    OP(gt,       union_,      logical,          Gt) \
    OP(imag,     unary_zero,  never,            Imag) \
    OP(isfinite, unary_full,  logical,          Isfinite) \
    OP(isinf,    unary_zero,  logical,          Isinf) \
    OP(isnan,    unary_zero,  logical,          Isnan) \
    OP(ldivide,  binary_full, operand,          Ldivide) \
    OP(le,       binary_full, logical,          Le) \
    OP(log,      unary_full,  negative,         Log) \
    OP(log10,    unary_full,  negative,         Log10) \
    OP(log2,     unary_full,  negative,         Log2) \
    OP(lt,       union_,      logical,          Lt) \
    OP(max_2,    union_,      operand,          Max2) \
    OP(minus,    union_,      operand,          Minus) \
    OP(min_2,    union_,      operand,          Min2) \
    OP(mod,      binary_full, never,            Mod) \
    OP(mtimes,   product,     operand,          Times) \
    OP(ne,       binary_full, logical,          Ne) \
    OP(not,      unary_full,  logical,          Not) \
    OP(or,       union_,      logical,          Or) \
    OP(plus,     union_,      operand,          Plus) \
    OP(pow2_1,   unary_full,  operand,          Pow2_1) \
    OP(pow2_2,   binary_full, never,            Pow2_2) \
    OP(power,    binary_full, power_rule,       Power) \
    OP(rdivide,  binary_full, operand,          Rdivide) \
    OP(rem,      binary_full, never,            Rem) \
    OP(round,    unary_zero,  operand,          Round) \
    OP(sec,      unary_full,  operand,          Sec) \
    OP(sech,     unary_full,  operand,          Sech) \
    OP(sign,     unary_zero,  operand,          Sign) \
    OP(sin,      unary_zero,  operand,          Sin) \
    OP(sinc,     unary_full,  operand,          Sinc) \
    OP(sinh,     unary_zero,  operand,          Sinh) \
    OP(sqrt,     unary_zero,  negative,         Sqrt) \
    OP(tan,      unary_zero,  operand,          Tan) \
    OP(tanh,     unary_zero,  operand,          Tanh) \
    OP(times,    product,     operand,          Times) \
    OP(uminus,   unary_zero,  operand,          Uminus) \
    OP(uplus,    unary_zero,  operand,          Uplus) \
    OP(xor,      union_,      logical,          Xor)
// clang-format on

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
    KN_OPERATIONS(KN_ROW)
#undef KN_ROW
};

#define KN_SAME(code) static_assert(std::string_view(op_rows[op_##code].name) == #code);
QUORVEX_OPERATIONS(KN_SAME)
#undef KN_SAME
static_assert(sizeof op_rows / sizeof *op_rows == op_count_);

inline constexpr bool is_op(int code) { return code >= 0 && code < op_count_; }

// "???" for a number that is no code.
inline constexpr const char *op_name(int code) { return is_op(code) ? op_rows[code].name : "???"; }

} // namespace kn

#endif
