// The rules of complex results, over whole operands. Unstored zeros of a sparse operand count as elements.
//
// Cells and structures have no elements to ask; the engine reports them.

#include "engine/result_rules.h"

#include <algorithm>

namespace kn {
namespace {

// Four quarters at once, so that no element waits for the one before. The answers are of the elements' type:
// the compiler selects by the mask of the comparison.
template <Rule rule, class T> bool any_outside(const T *x, ptrdiff_t n) {
    auto outside = [](T v) { return is_outside<rule>(static_cast<double>(v)); };
    const ptrdiff_t q = n / 4;
    double f0 = 0, f1 = 0, f2 = 0, f3 = 0;
    for (ptrdiff_t k = 0; k < q; ++k) {
        f0 = outside(x[k]) ? 1 : f0;
        f1 = outside(x[k + q]) ? 1 : f1;
        f2 = outside(x[k + 2 * q]) ? 1 : f2;
        f3 = outside(x[k + 3 * q]) ? 1 : f3;
    }
    return f0 + f1 + f2 + f3 > 0 || std::any_of(x + 4 * q, x + n, outside);
}

// By blocks, so that an early answer is taken.
template <Rule rule, class T> bool any_leaves(const T *x, ptrdiff_t n) {
    constexpr ptrdiff_t block = 512;
    for (ptrdiff_t k = 0; k < n; k += block)
        if (any_outside<rule>(x + k, std::min(block, n - k))) return true;
    return false;
}

template <Rule rule> bool leaves_reals(const Mm &a) {
    if (a.gettype() == kn_Mm) return false;
    if (is_outside<rule>(0.0) && a.getnnz() < a.size()) return true;
    if (a.gettype() == kn_uint8)
        return any_leaves<rule>(a.getpr(static_cast<unsigned char *>(nullptr)), a.getnnz());
    return any_leaves<rule>(a.addr(), a.getnnz());
}

// f with the rule as its template argument, for the rules that look at the elements; false for the others.
template <class F> bool with_rule(Rule rule, F f) {
    switch (rule) {
    case Rule::negative: return f.template operator()<Rule::negative>();
    case Rule::outside_one: return f.template operator()<Rule::outside_one>();
    case Rule::outside_zero_one: return f.template operator()<Rule::outside_zero_one>();
    case Rule::inside_one: return f.template operator()<Rule::inside_one>();
    case Rule::below_one: return f.template operator()<Rule::below_one>();
    case Rule::never:
    case Rule::operand:
    case Rule::power_rule:
    case Rule::logical: break;
    }
    return false;
}

bool is_two(const Mm &b) {
    if (b.size() != 1 || b.getnnz() != 1) return false;
    if (b.gettype() == kn_uint8) return *b.getpr(static_cast<unsigned char *>(nullptr)) == 2;
    return b.gettype() == kn_double && *b.addr() == 2;
}

} // namespace

int complex_result(op_t op, const Mm &a) {
    Rule rule = op_rows[op].rule;
    if (rule == Rule::never || rule == Rule::logical) return 0;
    return a.isc() || with_rule(rule, [&]<Rule r>() { return leaves_reals<r>(a); });
}

int complex_result(op_t op, const Mm &a, const Mm &b) {
    Rule rule = op_rows[op].rule;
    if (rule == Rule::never || rule == Rule::logical) return 0;
    if (a.isc() || b.isc()) return 1;
    return rule == Rule::power_rule && !is_two(b) && leaves_reals<Rule::negative>(a);
}

} // namespace kn
