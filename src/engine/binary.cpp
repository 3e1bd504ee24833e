// Functions and operators of two and three operands, element by element.

#include "engine/binary_overloads.h"
#include "quorvex/classes.h"
#include "quorvex/sparse.h"
#include "special/special_functions.h"

using namespace kn;

namespace {

// The operations of functions that are called otherwise.
constexpr op_t op_dot_div = op_rdivide, op_dot_invdiv = op_ldivide, op_dot_mul = op_times,
               op_dot_pow = op_power, op_mand = op_and, op_mor = op_or, op_mxor = op_xor,
               op_mbitand = op_bitand, op_mbitor = op_bitor;

} // namespace

#define KN_NAMED(name, ...) KN_BINARY(name, op_##name)
QUORVEX_BINARY_OPERATIONS(KN_NAMED)
#undef KN_NAMED
KN_BINARY(beta, op_beta)
KN_BINARY(max, op_max_2)
KN_BINARY(min, op_min_2)
KN_BINARY(pow2, op_pow2_2)

#define KN_OPERATOR(name, op) KN_BINARY(name, op) KN_NUMBER(name, op)
KN_OPERATOR(operator+, op_plus)
KN_OPERATOR(operator-, op_minus)
KN_OPERATOR(operator<, op_lt)
KN_OPERATOR(operator>, op_gt)
KN_OPERATOR(operator<=, op_le)
KN_OPERATOR(operator>=, op_ge)
KN_OPERATOR(operator==, op_eq)
KN_OPERATOR(operator!=, op_ne)
KN_OPERATOR(operator&&, op_and)
KN_OPERATOR(operator||, op_or)
#undef KN_OPERATOR

// Scalars are expanded; bytes compute as doubles, so that the result is not truncated to 0.
Mm betainc(const Mm &x, const Mm &a, const Mm &b) {
    const Mm *given[3] = {&x, &a, &b};
    Mm operands[3];
    const double *from[3];
    ptrdiff_t step[3];
    int like = 0, any_sparse = 0, any_empty = 0;
    for (int k = 0; k < 3; ++k) {
        const Mm &m = *given[k];
        m.warn_uninit();
        if (error_not_numeric(m, "betainc")) return x_M;
        any_sparse |= m.issparse();
        any_empty |= m.size() < 1;
        operands[k] = mdouble(m);
        if (operands[k].getnnz() != m.size()) return x_M;
        from[k] = operands[k].addr();
        step[k] = m.size() == 1 ? 0 : 1;
        if (given[like]->size() == 1) like = k;
    }
    if (any_empty) return Mm();
    const Mm &shape = operands[like];
    for (int k = 0; k < 3; ++k) {
        if (step[k] == 0 || same_size(shape, operands[k])) continue;
        report_incompatible("betainc", *given[like], *given[k]);
        return x_M;
    }
    Mm out = fresh_like(shape, 0, kn_double);
    if (lacks(out, shape.getnnz())) return x_M;
    for (ptrdiff_t k = 0; k < out.getnnz(); ++k)
        out.addr()[k] = betainc_real(from[0][k * step[0]], from[1][k * step[1]], from[2][k * step[2]]);
    return any_sparse ? sparse(out) : out;
}
Mm beta(const Mm &x, const Mm &a, const Mm &b) { return betainc(x, a, b); }
