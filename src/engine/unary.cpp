// Functions and operators of one operand.

#include "engine/elementwise.h"
#include "engine/sparse_plan.h"
#include "quorvex/classes.h"
#include "quorvex/sparse.h"
#include "special/special_functions.h"

using namespace kn;

namespace {

// The operations of functions that are called otherwise.
constexpr op_t op_arg = op_angle, op_finite = op_isfinite, op_kn_isnan = op_isnan, op_mnot = op_not,
               op_msqrt = op_sqrt;

} // namespace

#define KN_UNARY(name, op)                        \
    Mm name(const Mm &a) { return unary<op>(a); } \
    Mm name(Mm &&a) { return unary<op>(std::move(a)); }
#define KN_NAMED(name, ...) KN_UNARY(name, op_##name)
QUORVEX_UNARY_OPERATIONS(KN_NAMED)
KN_UNARY(operator!, op_not)
KN_UNARY(operator-, op_uminus)
KN_UNARY(pow2, op_pow2_1)
#undef KN_NAMED
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
    kn_size n = a.getnnz();
    if (std::none_of(x, x + n, [](double v) { return v < 0; })) return out;
    out.getcomplex();
    if (!out.isc()) return x_M;
    for (kn_size k = 0; k < n; ++k)
        if (x[k] < 0) out.addi()[k] -= raw_pi;
    return out;
}

Mm expint(Mm &&a) { return expint(std::as_const(a)); }

// [f, e] = log2(x)
Mm log2(const Mm &x, i_o_t, Mm &f, Mm &e) {
    x.warn_uninit();
    if (error_not_numeric(x, "log2")) return x_M;
    Mm a = x.gettype() == kn_uint8 ? mdouble(x) : x;
    kn_size n = a.getnnz();
    Mm fraction(0, 0, 0, n, 1, kn_double), exponent(0, 0, 0, n, 1, kn_double);
    if (lacks(fraction, n) || lacks(exponent, n)) return x_M;
    for (kn_size k = 0; k < n; ++k) {
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
