// The loops for doubles: one row for each operation. And what else is asked of real numbers.

#include "core/kernels/element_kernels.h"
#include "core/kernels/op_loops.h"
#include "core/kernels/tables.h"
#include "core/result_rules.h"

namespace kn::inline KN_ISA {

namespace {

template <class K> constexpr NumberFunctions numbers_for() {
    if constexpr (along_dimension<K>)
        return {nullptr, nullptr};
    else if constexpr (unary<K>)
        return {[](double x) -> double { return K::r(x); }, nullptr};
    else
        return {nullptr, [](double x, double y) -> double { return K::r(x, y); }};
}

// By blocks, so that an early answer is taken. The answers are doubles like the elements, so that the
// compiler selects by the mask of the comparison.
template <Rule rule> bool outside(const double *x, ptrdiff_t n) {
    constexpr ptrdiff_t block = 1024;
    for (ptrdiff_t begin = 0; begin < n; begin += block) {
        const ptrdiff_t end = n - begin < block ? n : begin + block;
        double found = 0;
        for (ptrdiff_t k = begin; k < end; ++k) found = is_outside<rule>(x[k]) ? 1 : found;
        if (found != 0) return true;
    }
    return false;
}

} // namespace

const Loops<double> double_loops[op_count_] = {
#define KN_ROW(name, group, rule, K) loops_for<double, DoubleLoops, kernel::K>(),
    QUORVEX_OPERATIONS(KN_ROW)
#undef KN_ROW
};

const NumberFunctions number_functions[op_count_] = {
#define KN_ROW(name, group, rule, K) numbers_for<kernel::K>(),
    QUORVEX_OPERATIONS(KN_ROW)
#undef KN_ROW
};

bool any_outside(Rule rule, const double *x, ptrdiff_t n) {
    switch (rule) {
    case Rule::negative: return outside<Rule::negative>(x, n);
    case Rule::outside_one: return outside<Rule::outside_one>(x, n);
    case Rule::outside_zero_one: return outside<Rule::outside_zero_one>(x, n);
    case Rule::inside_one: return outside<Rule::inside_one>(x, n);
    case Rule::below_one: return outside<Rule::below_one>(x, n);
    case Rule::never:
    case Rule::operand:
    case Rule::power_rule:
    case Rule::logical: break;
    }
    return false;
}

} // namespace kn::inline KN_ISA
