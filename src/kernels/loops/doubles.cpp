// The loops for doubles: one row for each operation. And what else is asked of real numbers.

#include "kernels/loops/element_kernels.h"
#include "kernels/loops/op_loops.h"
#include "kernels/loops/tables.h"
#include "kernels/op_rows.h"
#include "kernels/real_domains.h"

namespace kn::inline KN_ISA {

namespace {

// In the type of the elements, so that the compiler selects by the mask of the comparison.
template <Rule rule> double seen(double found, double x) { return is_outside<rule>(x) ? 1 : found; }

// Four quarters at once, so that no element waits for the one before.
template <Rule rule> bool any_outside(const double *x, ptrdiff_t n) {
    const ptrdiff_t q = n / 4;
    double f0 = 0, f1 = 0, f2 = 0, f3 = 0;
    for (ptrdiff_t k = 0; k < q; ++k) {
        f0 = seen<rule>(f0, x[k]);
        f1 = seen<rule>(f1, x[k + q]);
        f2 = seen<rule>(f2, x[k + 2 * q]);
        f3 = seen<rule>(f3, x[k + 3 * q]);
    }
    for (ptrdiff_t k = 4 * q; k < n; ++k) f0 = seen<rule>(f0, x[k]);
    return f0 + f1 + f2 + f3 > 0;
}

// One block is asked and computed, in one loop where that is simple, before the next one.
template <Rule rule, class K> bool within(double *out, const double *x, ptrdiff_t n) {
    constexpr ptrdiff_t block = 1024;
    for (; n > 0; n -= block, out += block, x += block) {
        const ptrdiff_t m = n < block ? n : block;
        if constexpr (kernel::real_vectors<K>) {
            if (any_outside<rule>(x, m)) return false;
            const Operand<double> a = {x, nullptr, 1};
            DoubleLoops<K>::unary({out, nullptr, m, a, a});
        } else {
            double found = 0;
            KN_INDEPENDENT
            for (ptrdiff_t k = 0; k < m; ++k) {
                found = seen<rule>(found, x[k]);
                out[k] = K::r(x[k]);
            }
            if (found > 0) return false;
        }
    }
    return true;
}

template <class K, class... X> double number(X... x) {
    if constexpr (kernel::real_vectors<K>)
        return one_nan(K::r(x...));
    else
        return K::r(x...);
}

template <Rule rule, class K> constexpr NumberFunctions numbers_for() {
    NumberFunctions f = {};
    if constexpr (along_dimension<K>)
        return f;
    else if constexpr (unary<K>)
        f.unary = [](double x) -> double { return number<K>(x); };
    else
        f.binary = [](double x, double y) -> double { return number<K>(x, y); };
    if constexpr (looks_at_elements(rule)) f.within = within<rule, K>;
    return f;
}

} // namespace

const Loops<double> double_loops[op_count_] = {
#define KN_ROW(name, group, rule, K) loops_for<double, DoubleLoops, kernel::K>(),
    KN_OPERATIONS(KN_ROW)
#undef KN_ROW
};

const NumberFunctions number_functions[op_count_] = {
#define KN_ROW(name, group, rule, K) numbers_for<Rule::rule, kernel::K>(),
    KN_OPERATIONS(KN_ROW)
#undef KN_ROW
};

} // namespace kn::inline KN_ISA
