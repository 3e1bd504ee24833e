// The language's operators and element functions: each decides whether the result needs an imaginary plane,
// runs the element engine, and marks logical results.
//
// Real full scalars, which are most of what programs compute with, do not enter the engine: the same kernel
// is applied at once, and the result has the same flags. An operand that is a temporary, and that nobody
// shares, gives its block to a result of the same type and shape.

#include <algorithm>
#include <utility>

#include "base/hooks.h"
#include "engine/element_engine.h"
#include "engine/multiply.h"
#include "engine/result_rules.h"
#include "engine/sorted.h"
#include "engine/sparse_plan.h"
#include "kernels/loops/dimension_ops.h"
#include "kernels/loops/element_kernels.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_block.h"

namespace kn {
namespace {

// -- The kernel and the rule of a code.

template <op_t> struct KernelOf;
#define KN_ROW(name, group, rule, K) \
    template <> struct KernelOf<op_##name> { using type = kernel::K; };
QUORVEX_OPERATIONS(KN_ROW)
#undef KN_ROW
template <op_t op> using Kernel = typename KernelOf<op>::type;
template <op_t op> constexpr Rule rule_of = op_rows[op].rule;
template <op_t op> constexpr bool is_logical = rule_of<op> == Rule::logical;

// The operation on numbers. What is exact in every instruction set is done at once, all else by the kernels
// in use, so that a number and an element have the same result.
constexpr bool is_exact(op_t op) {
    switch (op) {
    case op_plus:
    case op_minus:
    case op_times:
    case op_mtimes:
    case op_rdivide:
    case op_ldivide:
    case op_uminus:
    case op_lt:
    case op_gt:
    case op_le:
    case op_ge:
    case op_eq:
    case op_ne:
    case op_and:
    case op_or:
    case op_not:
    case op_abs:
    case op_ceil:
    case op_fix:
    case op_floor:
    case op_round:
    case op_sqrt: return true;
    default: return false;
    }
}
template <op_t op> double of_number(double x) {
    if constexpr (is_exact(op))
        return Kernel<op>::r(x);
    else
        return real_number(op, x);
}
template <op_t op> double of_numbers(double x, double y) {
    if constexpr (is_exact(op))
        return Kernel<op>::r(x, y);
    else
        return real_number(op, x, y);
}

// -- Operands. A temporary binds to Mm &&; its address is passed on as a place for the result.

bool is_plain(const Mm &a) {
    const M_types &f = a.getflags();
    return a.getnnz() > 0 && f.type == kn_double && !f.sparse && !a.isc();
}

Mm *place(const Mm &) { return nullptr; }
Mm *place(Mm &&a) { return &a; }

// The number x in the block of the first temporary that has one to give.
Mm scalar_in(const Mm &, double x, bool logical) { return Header::number(x, logical); }
Mm scalar_in(Mm &&a, double x, bool logical) { return Header::number_in(a, x, logical); }

// Whether the elements of a result can be written into the place: a full value of the result's type with its
// extents, which nobody shares.
bool can_take(const Mm *t, int complex_result) {
    return t && t->getnnz() > 0 && !t->dirty() && !t->getindex() && t->isc() == (complex_result != 0) &&
           (t->gettype() == kn_double || t->gettype() == kn_uint8);
}
bool can_take(const Mm *t, const Mm &other, int complex_result) {
    return can_take(t, complex_result) && other.gettype() == t->gettype() && !other.issparse() &&
           (other.getnnz() == 1 || std::equal(t->getdims(), t->getdims() + 4, other.getdims()));
}

// The engine's result, made in the place.
Mm taken(Mm &t, const Mm &a, const Mm &b, op_t op, bool logical) {
    if (!element_loops(t, a, b, op)) return x_M;
    t.getflags() = {0, 0, logical, 0, 0, 0, t.gettype()};
    return std::move(t);
}

// The engine's result.
Mm marked(int complex, const Mm &a, const Mm &b, const Mm &dim, int do_dim, op_t op, bool logical) {
    Mm out = element_operation(complex, a, b, dim, op, do_dim, l_M);
    if (logical) out.setlogical(1);
    return out;
}

// The same where the operands are real and full and fit, and so is the result, which looks like `like`.
Mm computed(const Mm &like, const Mm &a, const Mm &b, op_t op, bool logical) {
    Mm out = Header::real_like(like); // named by all returns, so that it is built where the caller wants it
    if (lacks(out, like.getnnz()) || !element_loops(out, a, b, op))
        out = x_M;
    else
        out.getflags().logical = logical;
    return out;
}

bool fit(const Mm &a, const Mm &b) {
    return a.getnnz() == 1 || b.getnnz() == 1 || std::equal(a.getdims(), a.getdims() + 4, b.getdims());
}

// In the place of a temporary, in a fresh value, or by the engine.
[[gnu::always_inline]] inline Mm elements(int complex, const Mm &a, const Mm &b, Mm *ta, Mm *tb, op_t op,
                                          bool logical) {
    if (can_take(ta, b, complex)) return taken(*ta, a, b, op, logical);
    if (can_take(tb, a, complex)) return taken(*tb, a, b, op, logical);
    if (!complex && is_plain(a) && is_plain(b) && fit(a, b))
        return computed(b.getnnz() == 1 ? a : b, a, b, op, logical);
    return marked(complex, a, b, nop_M, 0, op, logical);
}
Mm elements(int complex, const Mm &a, Mm *t, op_t op, bool logical) {
    if (can_take(t, complex)) return taken(*t, a, zero_M, op, logical);
    if (!complex && is_plain(a)) return computed(a, a, zero_M, op, logical);
    return marked(complex, a, zero_M, nop_M, 0, op, logical);
}

// -- The families.

template <op_t op> [[gnu::noinline]] Mm of_values(const Mm &a, Mm *t) {
    if (looks_at_elements(rule_of<op>) && !t && is_plain(a)) { // computes while it asks
        Mm out = Header::real_like(a);
        if (lacks(out, a.getnnz())) return x_M;
        const Realness found = real_elements(op, out.addr(), a.addr(), a.getnnz());
        if (found != Realness::left) return found == Realness::real ? out : x_M;
    }
    return elements(complex_result(op, a), a, t, op, is_logical<op>);
}

template <op_t op, class A> Mm unary(A &&a) {
    if (is_real_scalar(a)) {
        double x = *a.addr();
        if (!is_outside<rule_of<op>>(x))
            return scalar_in(std::forward<A>(a), of_number<op>(x), is_logical<op>);
    }
    return of_values<op>(a, place(std::forward<A>(a)));
}

template <op_t op>
constexpr bool compares =
    op == op_lt || op == op_gt || op == op_le || op == op_ge || op == op_eq || op == op_ne;

template <op_t op> [[gnu::noinline]] Mm of_values(const Mm &a, const Mm &b, Mm *ta, Mm *tb) {
    if (compares<op>) { // a comparison forgets imaginary planes of zeros first
        a.getreal(0);
        b.getreal(0);
    }
    return elements(complex_result(op, a, b), a, b, ta, tb, op, is_logical<op>);
}

template <op_t op> constexpr bool stays_real(double x, double y) {
    return op != op_power || !(x < 0) || y == 2;
}

template <op_t op, class A, class B> Mm binary(A &&a, B &&b) {
    if (is_real_scalar(a) && is_real_scalar(b)) {
        double x = *a.addr(), y = *b.addr();
        if (stays_real<op>(x, y)) {
            double v = of_numbers<op>(x, y);
            if constexpr (std::is_same_v<A, Mm>) return Header::number_in(a, v, is_logical<op>);
            return scalar_in(std::forward<B>(b), v, is_logical<op>);
        }
    }
    return of_values<op>(a, b, place(std::forward<A>(a)), place(std::forward<B>(b)));
}

// One operand is a plain number.
template <op_t op> [[gnu::noinline]] Mm of_values(const Mm &a, double y, Mm *ta) {
    return of_values<op>(a, Mm(y), ta, nullptr);
}
template <op_t op> [[gnu::noinline]] Mm of_values(double x, const Mm &b, Mm *tb) {
    return of_values<op>(Mm(x), b, nullptr, tb);
}
template <op_t op, class A> Mm with_number(A &&a, double y) {
    if (is_real_scalar(a) && stays_real<op>(*a.addr(), y))
        return scalar_in(std::forward<A>(a), of_numbers<op>(*a.addr(), y), is_logical<op>);
    return of_values<op>(a, y, place(std::forward<A>(a)));
}
template <op_t op, class B> Mm number_with(double x, B &&b) {
    if (is_real_scalar(b) && stays_real<op>(x, *b.addr()))
        return scalar_in(std::forward<B>(b), of_numbers<op>(x, *b.addr()), is_logical<op>);
    return of_values<op>(x, b, place(std::forward<B>(b)));
}

template <op_t op> Mm along(const Mm &a, const Mm &dim) {
    return marked(complex_result(op, a), a, zero_M, dim, 1, op, is_logical<op>);
}

// Largest or smallest; `extra` takes the positions.
template <op_t op> Mm best(const Mm &a, const Mm &dim, Mm &extra) {
    a.getreal(0);
    return element_operation(complex_result(op, a), a, zero_M, dim, op, 1, extra);
}

template <op_t op> Mm best_with_positions(const Mm &a, const Mm &dim, Mm &y, Mm &i) {
    Mm positions, values = best<op>(a, dim, positions);
    y = values;
    i = positions;
    return x_M;
}

// -- Arguments.

bool error_not_numeric(const Mm &a, const char *caller) {
    if (a.gettype() != kn_Mm) return false;
    error("%s: Operation can not be performed on non-numerical datatypes", caller);
    return true;
}

// The dimension that `dim` means for a in `median`: 0 for one that does not exist, which the engine reports.
int dimension_of(const Mm &a, const Mm &dim) {
    if (dim.size() < 1 || error_not_numeric(dim, "median")) return 0;
    Mm d = mdouble(dim);
    int n = d.getnnz() > 0 ? double_to_int(*d.addr()) : 0;
    if (n == 0) n = a.nsingleton();
    return n >= 1 && n <= 4 ? n : 0;
}

} // namespace
} // namespace kn

using namespace kn;

// -- One operand.

#define KN_UNARY(name, op)                        \
    Mm name(const Mm &a) { return unary<op>(a); } \
    Mm name(Mm &&a) { return unary<op>(std::move(a)); }
KN_UNARY(abs, op_abs)
KN_UNARY(acos, op_acos)
KN_UNARY(acosh, op_acosh)
KN_UNARY(acot, op_acot)
KN_UNARY(acoth, op_acoth)
KN_UNARY(acsc, op_acsc)
KN_UNARY(acsch, op_acsch)
KN_UNARY(angle, op_angle)
KN_UNARY(arg, op_angle)
KN_UNARY(asec, op_asec)
KN_UNARY(asech, op_asech)
KN_UNARY(asin, op_asin)
KN_UNARY(asinh, op_asinh)
KN_UNARY(atan, op_atan)
KN_UNARY(atanh, op_atanh)
KN_UNARY(ceil, op_ceil)
KN_UNARY(cos, op_cos)
KN_UNARY(cosh, op_cosh)
KN_UNARY(cot, op_cot)
KN_UNARY(coth, op_coth)
KN_UNARY(csc, op_csc)
KN_UNARY(csch, op_csch)
KN_UNARY(erf, op_erf)
KN_UNARY(erfc, op_erfc)
KN_UNARY(erfcx, op_erfcx)
KN_UNARY(erfinv, op_erfinv)
KN_UNARY(exp, op_exp)
KN_UNARY(finite, op_isfinite)
KN_UNARY(fix, op_fix)
KN_UNARY(floor, op_floor)
KN_UNARY(gamma, op_gamma)
KN_UNARY(gammaln, op_gammaln)
KN_UNARY(imag, op_imag)
KN_UNARY(isfinite, op_isfinite)
KN_UNARY(isinf, op_isinf)
KN_UNARY(isnan, op_isnan)
KN_UNARY(kn_isnan, op_isnan)
KN_UNARY(log, op_log)
KN_UNARY(log10, op_log10)
KN_UNARY(log2, op_log2)
KN_UNARY(mnot, op_not)
KN_UNARY(msqrt, op_sqrt)
KN_UNARY(operator!, op_not)
KN_UNARY(operator-, op_uminus)
KN_UNARY(pow2, op_pow2_1)
KN_UNARY(round, op_round)
KN_UNARY(sec, op_sec)
KN_UNARY(sech, op_sech)
KN_UNARY(sign, op_sign)
KN_UNARY(sin, op_sin)
KN_UNARY(sinc, op_sinc)
KN_UNARY(sinh, op_sinh)
KN_UNARY(sqrt, op_sqrt)
KN_UNARY(tan, op_tan)
KN_UNARY(tanh, op_tanh)
KN_UNARY(uminus, op_uminus)
#undef KN_UNARY

// These leave a real value as it is.
Mm operator+(const Mm &a) { return a; }
Mm operator+(Mm &&a) { return std::move(a); }
Mm uplus(const Mm &a) { return a; }
Mm uplus(Mm &&a) { return std::move(a); }
Mm conj(const Mm &a) { return a.isc() ? of_values<op_conj>(a, nullptr) : a; }
Mm conj(Mm &&a) { return a.isc() ? of_values<op_conj>(a, &a) : std::move(a); }
Mm real(const Mm &a) {
    if (!a.isc()) return a;
    Mm out;
    out.deepcopy(0, a, kn_none);
    return out;
}
Mm real(Mm &&a) { return a.isc() ? real(std::as_const(a)) : std::move(a); }

// These stay real below 0.
#define KN_REAL(name, op)                                                               \
    Mm name(const Mm &a) { return element_operation(0, a, zero_M, nop_M, op, 0, l_M); } \
    Mm name(Mm &&a) { return can_take(&a, 0) ? taken(a, a, zero_M, op, 0) : name(std::as_const(a)); }
KN_REAL(reallog, op_log)
KN_REAL(realsqrt, op_sqrt)
#undef KN_REAL

// The kernel gives the real part; below 0 the imaginary part is -pi.
Mm expint(const Mm &a) {
    if (is_real_scalar(a) && !(*a.addr() < 0)) return Header::number(expint_real(*a.addr()), 0);
    if (a.issparse()) return sparse(expint(full(a)));
    Mm out = element_operation(0, a, zero_M, nop_M, op_expint, 0, l_M);
    if (out.gettype() != kn_double || out.getnnz() != a.getnnz() || a.gettype() != kn_double) return out;
    const double *x = a.addr();
    int n = a.getnnz();
    if (std::none_of(x, x + n, [](double v) { return v < 0; })) return out;
    out.getcomplex();
    if (!out.isc()) return x_M;
    for (int k = 0; k < n; ++k)
        if (x[k] < 0) out.addi()[k] -= raw_pi;
    return out;
}

Mm expint(Mm &&a) { return expint(std::as_const(a)); }

// -- Two operands.

#define KN_BINARY(name, op)                                              \
    Mm name(const Mm &a, const Mm &b) { return binary<op>(a, b); }       \
    Mm name(Mm &&a, const Mm &b) { return binary<op>(std::move(a), b); } \
    Mm name(const Mm &a, Mm &&b) { return binary<op>(a, std::move(b)); } \
    Mm name(Mm &&a, Mm &&b) { return binary<op>(std::move(a), std::move(b)); }
#define KN_NUMBER(name, op)                                                \
    Mm name(const Mm &a, double b) { return with_number<op>(a, b); }       \
    Mm name(Mm &&a, double b) { return with_number<op>(std::move(a), b); } \
    Mm name(double a, const Mm &b) { return number_with<op>(a, b); }       \
    Mm name(double a, Mm &&b) { return number_with<op>(a, std::move(b)); }
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
KN_BINARY(atan2, op_atan2)
KN_BINARY(beta, op_beta)
KN_BINARY(betaln, op_betaln)
KN_BINARY(bitcmp, op_bitcmp)
KN_BINARY(bitget, op_bitget)
KN_BINARY(bitreset, op_bitreset)
KN_BINARY(bitset, op_bitset)
KN_BINARY(bitshift, op_bitshift)
KN_BINARY(bitxor, op_bitxor)
KN_BINARY(dot_div, op_rdivide)
KN_BINARY(dot_invdiv, op_ldivide)
KN_BINARY(dot_mul, op_times)
KN_BINARY(dot_pow, op_power)
KN_BINARY(eq, op_eq)
KN_BINARY(gammainc, op_gammainc)
KN_BINARY(ge, op_ge)
KN_BINARY(gt, op_gt)
KN_BINARY(ldivide, op_ldivide)
KN_BINARY(le, op_le)
KN_BINARY(lt, op_lt)
KN_BINARY(mand, op_and)
KN_BINARY(max, op_max_2)
KN_BINARY(mbitand, op_bitand)
KN_BINARY(mbitor, op_bitor)
KN_BINARY(min, op_min_2)
KN_BINARY(minus, op_minus)
KN_BINARY(mod, op_mod)
KN_BINARY(mor, op_or)
KN_BINARY(mxor, op_xor)
KN_BINARY(ne, op_ne)
KN_BINARY(plus, op_plus)
KN_BINARY(pow2, op_pow2_2)
KN_BINARY(power, op_power)
KN_BINARY(rdivide, op_rdivide)
KN_BINARY(rem, op_rem)
KN_BINARY(times, op_times)
// Matrices of numbers have the matrix product; scalars, and what the engine reports or passes on, the
// elements'.
namespace kn {
namespace {

template <class A, class B> Mm product_of(A &&a, B &&b) {
    bool matrices = a.size() > 1 && b.size() > 1 && a.gettype() != kn_Mm && b.gettype() != kn_Mm;
    return matrices ? matrix_product(a, b) : binary<op_mtimes>(std::forward<A>(a), std::forward<B>(b));
}

template <class A, class B> Mm quotient_of(A &&a, B &&b) {
    if (a.isstruct() || b.isstruct()) return call_class_function("mrdivide", a, b);
    return b.size() == 1 ? binary<op_rdivide>(std::forward<A>(a), std::forward<B>(b))
                         : matrix_hooks.right_division(a, b);
}

} // namespace
} // namespace kn

#define KN_MATRIX(name, f)                                      \
    Mm name(const Mm &a, const Mm &b) { return f(a, b); }       \
    Mm name(Mm &&a, const Mm &b) { return f(std::move(a), b); } \
    Mm name(const Mm &a, Mm &&b) { return f(a, std::move(b)); } \
    Mm name(Mm &&a, Mm &&b) { return f(std::move(a), std::move(b)); }
KN_MATRIX(operator*, product_of)
KN_MATRIX(mtimes, product_of)
KN_MATRIX(operator/, quotient_of)
KN_MATRIX(mrdivide, quotient_of)
KN_NUMBER(operator*, op_mtimes)
Mm operator/(const Mm &a, double b) {
    return a.isstruct() ? quotient_of(a, Mm(b)) : with_number<op_rdivide>(a, b);
}
Mm operator/(Mm &&a, double b) {
    return a.isstruct() ? quotient_of(a, Mm(b)) : with_number<op_rdivide>(std::move(a), b);
}
Mm operator/(double a, const Mm &b) {
    return is_real_scalar(b) ? number_with<op_rdivide>(a, b) : quotient_of(Mm(a), b);
}
Mm operator/(double a, Mm &&b) {
    return is_real_scalar(b) ? number_with<op_rdivide>(a, std::move(b)) : quotient_of(Mm(a), std::move(b));
}
#undef KN_MATRIX
#undef KN_NUMBER
#undef KN_OPERATOR
#undef KN_BINARY

// [f, e] = log2(x)
Mm log2(const Mm &x, i_o_t, Mm &f, Mm &e) {
    x.warn_uninit();
    if (error_not_numeric(x, "log2")) return x_M;
    Mm a = x.gettype() == kn_uint8 ? mdouble(x) : x;
    int n = a.getnnz();
    Mm fraction(0, 0, 0, n, 1, kn_double), exponent(0, 0, 0, n, 1, kn_double);
    if (lacks(fraction, n) || lacks(exponent, n)) return x_M;
    for (int k = 0; k < n; ++k) {
        double v = a.addr()[k];
        int whole = 0;
        fraction.addr()[k] = std::isfinite(v) ? std::frexp(v, &whole) : v;
        exponent.addr()[k] = whole;
    }
    if (a.issparse()) {
        f = sparse_entries(fraction, a.getindex(), a);
        e = sparse_entries(exponent, a.getindex(), a);
        return x_M;
    }
    fraction.reshape(a.getndims(), a.getdims());
    exponent.reshape(a.getndims(), a.getdims());
    f = fraction;
    e = exponent;
    return x_M;
}

// -- Three operands.

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
        if (step[k] == 0 || std::equal(shape.getdims(), shape.getdims() + 4, operands[k].getdims())) continue;
        error("%s: incompatible dimensions of: %s, %s", "betainc", kn_display_name(*given[like]),
              kn_display_name(*given[k]));
        return x_M;
    }
    Mm out = fresh_like(shape, 0, kn_double);
    if (lacks(out, shape.getnnz())) return x_M;
    for (ptrdiff_t k = 0; k < out.getnnz(); ++k)
        out.addr()[k] = betainc_real(from[0][k * step[0]], from[1][k * step[1]], from[2][k * step[2]]);
    return any_sparse ? sparse(out) : out;
}
Mm beta(const Mm &x, const Mm &a, const Mm &b) { return betainc(x, a, b); }

// -- Along a dimension.

#define KN_ALONG(name)                               \
    Mm name(const Mm &a) { return name(a, zero_M); } \
    Mm name(const Mm &a, const Mm &dim)
KN_ALONG(all) { return along<op_all>(a, dim); }
KN_ALONG(any) { return along<op_any>(a, dim); }
KN_ALONG(cumprod) { return along<op_cumprod>(a, dim); }
KN_ALONG(cumsum) { return along<op_cumsum>(a, dim); }
KN_ALONG(prod) { return along<op_prod>(a, dim); }
KN_ALONG(sum) { // does not wrap at 256
    if (a.gettype() != kn_uint8) return along<op_sum>(a, dim);
    return element_operation(0, mdouble(a), zero_M, dim, op_sum, 1, l_M);
}
KN_ALONG(sumabs) { return sum(abs(a), dim); }
KN_ALONG(median) {
    int d = dimension_of(a, dim);
    bool numbers = a.gettype() == kn_double || a.gettype() == kn_uint8;
    if (d == 0 || !numbers || a.size() < 1) return along<op_median>(a, dim);
    Mm in_order = sorted_along(full(a), d);
    if (same_block(in_order, x_M)) return x_M;
    Mm middle = along<op_median>(in_order, static_cast<double>(d));
    return a.issparse() ? sparse(middle) : middle;
}
#undef KN_ALONG

Mm max(const Mm &a) { return best<op_max_1>(a, zero_M, l_M); }
Mm max(const Mm &a, const Mm &, const Mm &dim) { return best<op_max_1>(a, dim, l_M); }
Mm max(const Mm &a, i_o_t, Mm &y, Mm &i) { return best_with_positions<op_max_1>(a, zero_M, y, i); }
Mm max(const Mm &a, const Mm &, const Mm &dim, i_o_t, Mm &y, Mm &i) {
    return best_with_positions<op_max_1>(a, dim, y, i);
}
Mm min(const Mm &a) { return best<op_min_1>(a, zero_M, l_M); }
Mm min(const Mm &a, const Mm &, const Mm &dim) { return best<op_min_1>(a, dim, l_M); }
Mm min(const Mm &a, i_o_t, Mm &y, Mm &i) { return best_with_positions<op_min_1>(a, zero_M, y, i); }
Mm min(const Mm &a, const Mm &, const Mm &dim, i_o_t, Mm &y, Mm &i) {
    return best_with_positions<op_min_1>(a, dim, y, i);
}

// -- Differences.

Mm diff(const Mm &a) { return along<op_diff>(a, zero_M); }
Mm diff(const Mm &a, const Mm &n) { return diff(a, n, zero_M); }
Mm diff(const Mm &a, const Mm &n, const Mm &dim) {
    int times = n.size() > 0 ? double_to_int(scalar(mdouble(n))) : 1;
    Mm out = a;
    for (int k = 0; k < times && (k == 0 || out.size() > 0); ++k) out = along<op_diff>(out, dim);
    return out;
}

Mm unwrap(const Mm &a) { return unwrap(a, raw_pi, zero_M); }
Mm unwrap(const Mm &a, const Mm &tol) { return unwrap(a, tol, zero_M); }
Mm unwrap(const Mm &a, const Mm &tol, const Mm &dim) {
    Mm limit = tol.size() > 0 ? tol : raw_pi;
    if (a.isc() && !limit.isc() && limit.getnnz() > 0 && limit.gettype() == kn_double) {
        limit.getcomplex(); // the same for both planes
        if (limit.isc()) std::copy(limit.addr(), limit.addr() + limit.getnnz(), limit.addi());
    }
    return element_operation(complex_result(op_unwrap, a), a, limit, dim, op_unwrap, 1, l_M);
}
