// The element operations, one row each, in the order of their codes:
//
//     OP(name, sparse group, result rule, kernel)
//
// name          the name in messages and in class dispatch, and, after "op_", the enumerator.
// sparse group  what the operation does with the zeros of a sparse operand (see engine/sparse_plan.cpp):
//                 unary_zero   keeps zeros, one operand: works on the stored values
//                 product      zero where either operand is zero: intersects the indices
//                 union_       zero where both operands are zero: merges the indices
//                 unary_full   does not keep zeros: works on the full form
//                 binary_full  the same with two operands
//                 reduction    runs along a dimension: works on the full form
// result rule   when a result has an imaginary plane (see engine/result_rules.cpp):
//                 never; operand: an operand is complex; and in addition, when an element is below 0
//                 (negative), below -1 or above 1 (outside_one), below 0 or above 1 (outside_zero_one),
//                 between -1 and 1 or an unstored zero (inside_one), below 1 or an unstored zero (below_one);
//                 power_rule for powers. `logical` is `never`, and the result is logical.
// kernel        the structure with the element functions (kernels/loops/element_kernels.h,
//               kernels/loops/dimension_ops.h).
//
// The enumeration, the names, the sparse plan, the result rules and the dispatch tables are all made from
// this list.
#ifndef QUORVEX_OP_LIST_H
#define QUORVEX_OP_LIST_H

// clang-format off
#define QUORVEX_OPERATIONS(OP)                          \
    OP(diff,      unary_full,  operand,   Diff)         \
    OP(del2,      binary_full, never,     Del2)         \
    OP(gradient,  binary_full, never,     Gradient)     \
    OP(all,       reduction,   logical,   All)          \
    OP(any,       reduction,   logical,   Any)          \
    OP(cumprod,   reduction,   operand,   Cumprod)      \
    OP(cumsum,    reduction,   operand,   Cumsum)       \
    OP(max_1,     reduction,   operand,   Max1)         \
    OP(median,    reduction,   operand,   Median)       \
    OP(min_1,     reduction,   operand,   Min1)         \
    OP(prod,      reduction,   operand,   Prod)         \
    OP(sum,       reduction,   operand,   Sum)          \
    OP(unwrap,    reduction,   operand,   Unwrap)       \
    OP(abs,       unary_zero,  never,     Abs)          \
    OP(acos,      unary_full,  outside_one, Acos)       \
    OP(acosh,     unary_full,  below_one, Acosh)        \
    OP(acot,      unary_full,  operand,   Acot)         \
    OP(acoth,     unary_full,  inside_one, Acoth)       \
    OP(acsc,      unary_full,  inside_one, Acsc)        \
    OP(acsch,     unary_full,  operand,   Acsch)        \
    OP(and,       product,     logical,   And)          \
    OP(angle,     unary_zero,  never,     Angle)        \
    OP(asec,      unary_full,  inside_one, Asec)        \
    OP(asech,     unary_full,  outside_zero_one, Asech) \
    OP(asin,      unary_zero,  outside_one, Asin)       \
    OP(asinh,     unary_zero,  operand,   Asinh)        \
    OP(atan,      unary_zero,  operand,   Atan)         \
    OP(atan2,     union_,      never,     Atan2)        \
    OP(atanh,     unary_zero,  outside_one, Atanh)      \
    OP(beta,      binary_full, never,     Beta)         \
    OP(betaln,    binary_full, never,     Betaln)       \
    OP(bitand,    product,     never,     Bitand)       \
    OP(bitcmp,    binary_full, never,     Bitcmp)       \
    OP(bitget,    unary_full,  never,     Bitget)       \
    OP(bitor,     union_,      never,     Bitor)        \
    OP(bitreset,  unary_full,  never,     Bitreset)     \
    OP(bitset,    unary_full,  never,     Bitset)       \
    OP(bitshift,  unary_full,  never,     Bitshift)     \
    OP(bitxor,    union_,      never,     Bitxor)       \
    OP(ceil,      unary_zero,  operand,   Ceil)         \
    OP(conj,      unary_zero,  operand,   Conj)         \
    OP(cos,       unary_full,  operand,   Cos)          \
    OP(cosh,      unary_full,  operand,   Cosh)         \
    OP(cot,       unary_full,  operand,   Cot)          \
    OP(coth,      unary_full,  operand,   Coth)         \
    OP(csc,       unary_full,  operand,   Csc)          \
    OP(csch,      unary_full,  operand,   Csch)         \
    OP(eq,        binary_full, logical,   Eq)           \
    OP(erfc,      unary_full,  never,     Erfc)         \
    OP(erfcx,     unary_full,  never,     Erfcx)        \
    OP(erfinv,    unary_zero,  never,     Erfinv)       \
    OP(erf,       unary_zero,  never,     Erf)          \
    OP(exp,       unary_full,  operand,   Exp)          \
    OP(expint,    unary_full,  never,     Expint)       \
    OP(fix,       unary_zero,  operand,   Fix)          \
    OP(floor,     unary_zero,  operand,   Floor)        \
    OP(gamma,     unary_full,  never,     Gamma)        \
    OP(gammainc,  union_,      never,     Gammainc)     \
    OP(gammaln,   unary_full,  never,     Gammaln)      \
    OP(ge,        binary_full, logical,   Ge)           \
    OP(gt,        union_,      logical,   Gt)           \
    OP(imag,      unary_zero,  never,     Imag)         \
    OP(isfinite,  unary_full,  logical,   Isfinite)     \
    OP(isinf,     unary_zero,  logical,   Isinf)        \
    OP(isnan,     unary_zero,  logical,   Isnan)        \
    OP(ldivide,   binary_full, operand,   Ldivide)      \
    OP(le,        binary_full, logical,   Le)           \
    OP(log,       unary_full,  negative,  Log)          \
    OP(log10,     unary_full,  negative,  Log10)        \
    OP(log2,      unary_full,  negative,  Log2)         \
    OP(lt,        union_,      logical,   Lt)           \
    OP(max_2,     union_,      operand,   Max2)         \
    OP(minus,     union_,      operand,   Minus)        \
    OP(min_2,     union_,      operand,   Min2)         \
    OP(mod,       binary_full, never,     Mod)          \
    OP(mtimes,    product,     operand,   Times)        \
    OP(ne,        binary_full, logical,   Ne)           \
    OP(not,       unary_full,  logical,   Not)          \
    OP(or,        union_,      logical,   Or)           \
    OP(plus,      union_,      operand,   Plus)         \
    OP(pow2_1,    unary_full,  operand,   Pow2_1)       \
    OP(pow2_2,    binary_full, never,     Pow2_2)       \
    OP(power,     binary_full, power_rule, Power)       \
    OP(rdivide,   binary_full, operand,   Rdivide)      \
    OP(rem,       binary_full, never,     Rem)          \
    OP(round,     unary_zero,  operand,   Round)        \
    OP(sec,       unary_full,  operand,   Sec)          \
    OP(sech,      unary_full,  operand,   Sech)         \
    OP(sign,      unary_zero,  operand,   Sign)         \
    OP(sin,       unary_zero,  operand,   Sin)          \
    OP(sinc,      unary_full,  operand,   Sinc)         \
    OP(sinh,      unary_zero,  operand,   Sinh)         \
    OP(sqrt,      unary_zero,  negative,  Sqrt)         \
    OP(tan,       unary_zero,  operand,   Tan)          \
    OP(tanh,      unary_zero,  operand,   Tanh)         \
    OP(times,     product,     operand,   Times)        \
    OP(uminus,    unary_zero,  operand,   Uminus)       \
    OP(uplus,     unary_zero,  operand,   Uplus)        \
    OP(xor,       union_,      logical,   Xor)
// clang-format on

#define QUORVEX_OP_ENUMERATOR(name, group, rule, kernel) op_##name,
// Codes 0 (`op_diff`) to 98 (`op_xor`); `op_diff` to `op_unwrap` run along one dimension.
enum op_t { QUORVEX_OPERATIONS(QUORVEX_OP_ENUMERATOR) op_count_ };
#undef QUORVEX_OP_ENUMERATOR

#endif
