// The rules of complex results, over whole operands. Unstored zeros of a sparse operand count as elements.
//
// Cells and structures have no elements to ask; the engine reports them.

#include "core/result_rules.h"

#include <algorithm>

namespace kn {
namespace {

// By blocks, so that the test of a block vectorises and an early answer is still taken.
template <Rule rule, class T> bool any_leaves(const T *x, int n) {
    constexpr int block = 512;
    for (int start = 0; start < n; start += block) {
        bool found = false;
        for (int k = start, end = std::min(start + block, n); k < end; ++k)
            found |= is_outside<rule>(static_cast<double>(x[k]));
        if (found) return true;
    }
    return false;
}

template <Rule rule> bool leaves_reals(const Mm &a) {
    if (a.gettype() == kn_Mm) return false;
    if (is_outside<rule>(0.0) && a.getnnz() < a.size()) return true;
    if (a.gettype() == kn_uint8)
        return any_leaves<rule>(a.getpr(static_cast<unsigned char *>(nullptr)), a.getnnz());
    return any_leaves<rule>(a.addr(), a.getnnz());
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
    if (a.isc()) return 1;
    switch (rule) {
    case Rule::negative: return leaves_reals<Rule::negative>(a);
    case Rule::outside_one: return leaves_reals<Rule::outside_one>(a);
    case Rule::outside_zero_one: return leaves_reals<Rule::outside_zero_one>(a);
    case Rule::inside_one: return leaves_reals<Rule::inside_one>(a);
    case Rule::below_one: return leaves_reals<Rule::below_one>(a);
    case Rule::never:
    case Rule::operand:
    case Rule::power_rule:
    case Rule::logical: break;
    }
    return 0;
}

int complex_result(op_t op, const Mm &a, const Mm &b) {
    Rule rule = op_rows[op].rule;
    if (rule == Rule::never || rule == Rule::logical) return 0;
    if (a.isc() || b.isc()) return 1;
    return rule == Rule::power_rule && !is_two(b) && leaves_reals<Rule::negative>(a);
}

} // namespace kn
