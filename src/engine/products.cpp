// Products and quotients of matrices, as functions and operators.

#include "base/hooks.h"
#include "engine/binary_overloads.h"
#include "engine/multiply.h"
#include "quorvex/classes.h"

using namespace kn;

// Matrices of numbers have the matrix product; scalars, and what the engine reports or passes on, the
// elements'.
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
