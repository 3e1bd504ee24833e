// The element operations in the order of their codes: OP(name). A name is what messages print, what class
// dispatch looks for, and, after "op_", the enumerator. New ones go to the end.
#ifndef QUORVEX_OP_LIST_H
#define QUORVEX_OP_LIST_H

// clang-format off
#define QUORVEX_OPERATIONS(OP) \
    OP(diff) OP(del2) OP(gradient) OP(all) OP(any) OP(cumprod) OP(cumsum) OP(max_1) OP(median) OP(min_1) \
    OP(prod) OP(sum) OP(unwrap) OP(abs) OP(acos) OP(acosh) OP(acot) OP(acoth) OP(acsc) OP(acsch) OP(and) \
    OP(angle) OP(asec) OP(asech) OP(asin) OP(asinh) OP(atan) OP(atan2) OP(atanh) OP(beta) OP(betaln) \
    OP(bitand) OP(bitcmp) OP(bitget) OP(bitor) OP(bitreset) OP(bitset) OP(bitshift) OP(bitxor) OP(ceil) \
    OP(conj) OP(cos) OP(cosh) OP(cot) OP(coth) OP(csc) OP(csch) OP(eq) OP(erfc) OP(erfcx) OP(erfinv) OP(erf) \
    OP(exp) OP(expint) OP(fix) OP(floor) OP(gamma) OP(gammainc) OP(gammaln) OP(ge) OP(gt) OP(imag) \
    OP(isfinite) OP(isinf) OP(isnan) OP(ldivide) OP(le) OP(log) OP(log10) OP(log2) OP(lt) OP(max_2) \
    OP(minus) OP(min_2) OP(mod) OP(mtimes) OP(ne) OP(not) OP(or) OP(plus) OP(pow2_1) OP(pow2_2) OP(power) \
    OP(rdivide) OP(rem) OP(round) OP(sec) OP(sech) OP(sign) OP(sin) OP(sinc) OP(sinh) OP(sqrt) OP(tan) \
    OP(tanh) OP(times) OP(uminus) OP(uplus) OP(xor)
// clang-format on

#define QUORVEX_OP_ENUMERATOR(name) op_##name,
// Codes 0 (`op_diff`) to 98 (`op_xor`); `op_diff` to `op_unwrap` run along one dimension.
enum op_t { QUORVEX_OPERATIONS(QUORVEX_OP_ENUMERATOR) op_count_ };
#undef QUORVEX_OP_ENUMERATOR

#endif
