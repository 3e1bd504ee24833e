// The extents of a value, as values.
#include <algorithm>

#include "quorvex/arrays.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_argument.h"

namespace {

// One extent per output, the last with all that are left.
Mm sizes(const Mm &x, std::initializer_list<Mm *> out) {
    x.warn_uninit();
    double extents[4];
    std::copy_n(x.getdims(), 4, extents);
    const int n = static_cast<int>(out.size());
    for (int k = n; k < 4; k++) extents[n - 1] *= extents[k];
    const double *extent = extents;
    for (Mm *m : out) *m = *extent++;
    return x_M;
}

} // namespace

Mm size(const Mm &x) {
    x.warn_uninit();
    int n = x.getndims();
    Mm out(0, 0, 0, 1, n, kn_double);
    if (kn::lacks(out, n)) return x_M;
    std::copy_n(x.getdims(), n, out.addr());
    return out;
}

Mm size(const Mm &x, const Mm &dim) {
    constexpr int backwards = 100;
    x.warn_uninit();
    const int d = double_to_int(kn::first_number(dim));
    if (d != backwards) return x.size(d);
    Mm out = size(x);
    std::reverse(out.addr(), out.addr() + out.getnnz());
    return out;
}

Mm size(const Mm &x, i_o_t, Mm &m, Mm &n) { return sizes(x, {&m, &n}); }
Mm size(const Mm &x, i_o_t, Mm &m, Mm &n, Mm &p) { return sizes(x, {&m, &n, &p}); }
Mm size(const Mm &x, i_o_t, Mm &m, Mm &n, Mm &p, Mm &q) { return sizes(x, {&m, &n, &p, &q}); }

Mm length(const Mm &x) {
    x.warn_uninit();
    return x.length();
}

Mm ndims(const Mm &x) {
    x.warn_uninit();
    return x.getndims();
}

Mm numel(const Mm &x) {
    x.warn_uninit();
    return x.size();
}
