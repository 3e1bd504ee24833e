// What the language's operators and element functions have in common: each decides whether the result needs
// an imaginary plane, runs the element engine, and marks logical results.
//
// Real full scalars, which are most of what programs compute with, do not enter the engine: the same kernel
// is applied at once, and the result has the same flags. An unshared temporary operand gives its block to
// a result of the same type and shape.
#ifndef QUORVEX_ENGINE_ELEMENTWISE_H
#define QUORVEX_ENGINE_ELEMENTWISE_H

#include <algorithm>
#include <utility>

#include "engine/element_engine.h"
#include "engine/result_rules.h"
#include "kernels/loops/dimension_ops.h"
#include "kernels/loops/element_kernels.h"
#include "kernels/op_rows.h"
#include "quorvex/operations.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_block.h"

namespace kn {

// -- The kernel and the rule of a code.

template <op_t> struct KernelOf;
#define KN_ROW(name, group, rule, K) \
    template <> struct KernelOf<op_##name> { using type = kernel::K; };
KN_OPERATIONS(KN_ROW)
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

inline bool is_plain(const Mm &a) {
    const M_types &f = a.getflags();
    return a.getnnz() > 0 && f.type == kn_double && !f.sparse && !a.isc();
}

inline Mm *place(const Mm &) { return nullptr; }
inline Mm *place(Mm &&a) { return &a; }

// The number x in the block of the first temporary that has one to give.
inline Mm scalar_in(const Mm &, double x, bool logical) { return Header::number(x, logical); }
inline Mm scalar_in(Mm &&a, double x, bool logical) { return Header::number_in(a, x, logical); }

// Whether the elements of a result can be written into the temporary t: an unshared full value that is
// complex when the result is.
inline bool can_take(const Mm *t, int complex_result) {
    return t && t->getnnz() > 0 && !t->dirty() && !t->getindex() && t->isc() == (complex_result != 0) &&
           (t->gettype() == kn_double || t->gettype() == kn_uint8);
}
inline bool can_take(const Mm *t, const Mm &other, int complex_result) {
    return can_take(t, complex_result) && other.gettype() == t->gettype() && !other.issparse() &&
           (other.getnnz() == 1 || same_size(*t, other));
}

// The engine's result, made in the place.
inline Mm taken(Mm &t, const Mm &a, const Mm &b, op_t op, bool logical) {
    if (!element_loops(t, a, b, op)) return x_M;
    t.getflags() = {0, 0, logical, 0, 0, 0, t.gettype()};
    return std::move(t);
}

// The engine's result.
inline Mm marked(int complex, const Mm &a, const Mm &b, const Mm &dim, int do_dim, op_t op, bool logical) {
    Mm out = element_operation(complex, a, b, dim, op, do_dim, l_M);
    if (logical) out.setlogical(1);
    return out;
}

// The same where the operands are real and full and fit, and so is the result, which looks like `like`.
inline Mm computed(const Mm &like, const Mm &a, const Mm &b, op_t op, bool logical) {
    Mm out = Header::real_like(like); // named by all returns, so that it is built where the caller wants it
    if (lacks(out, like.getnnz()) || !element_loops(out, a, b, op))
        out = x_M;
    else
        out.getflags().logical = logical;
    return out;
}

inline bool fit(const Mm &a, const Mm &b) { return a.getnnz() == 1 || b.getnnz() == 1 || same_size(a, b); }

// In the place of a temporary, in a fresh value, or by the engine.
[[gnu::always_inline]] inline Mm elements(int complex, const Mm &a, const Mm &b, Mm *ta, Mm *tb, op_t op,
                                          bool logical) {
    if (can_take(ta, b, complex)) return taken(*ta, a, b, op, logical);
    if (can_take(tb, a, complex)) return taken(*tb, a, b, op, logical);
    if (!complex && is_plain(a) && is_plain(b) && fit(a, b))
        return computed(b.getnnz() == 1 ? a : b, a, b, op, logical);
    return marked(complex, a, b, nop_M, 0, op, logical);
}
inline Mm elements(int complex, const Mm &a, Mm *t, op_t op, bool logical) {
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

inline bool error_not_numeric(const Mm &a, const char *caller) {
    if (a.gettype() != kn_Mm) return false;
    error("%s: Operation can not be performed on non-numerical datatypes", caller);
    return true;
}

} // namespace kn

#endif
