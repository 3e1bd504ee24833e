// Functions along a dimension: sums and their like, the largest and smallest elements, differences.

#include "engine/elementwise.h"
#include "engine/sorted.h"
#include "quorvex/classes.h"
#include "quorvex/sparse.h"

namespace kn {
namespace {

template <op_t op> Mm along(const Mm &a, const Mm &dim) {
    return marked(complex_result(op, a), a, zero_M, dim, 1, op, is_logical<op>);
}

// Largest or smallest; `extra` receives the positions.
template <op_t op> Mm best(const Mm &a, const Mm &dim, Mm &extra) {
    a.getreal(0);
    return element_operation(complex_result(op, a), a, zero_M, dim, op, 1, extra);
}

template <op_t op> Mm best_with_positions(const Mm &a, const Mm &dim, Mm &y, Mm &i) {
    Mm positions, values = best<op>(a, dim, positions);
    y = values;
    i = same_block(values, x_M) ? x_M : positions;
    return x_M;
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
