// Working along one dimension with the public operations.
#include "arrays/slice.h"

#include <algorithm>

#include "quorvex/arrays.h"
#include "quorvex/indexing.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_argument.h"

namespace {

Mr part(const Mm &x, int dim, const Mm &k) {
    const Mm *subscripts[4] = {&c_p, &c_p, &c_p, &c_p};
    subscripts[dim - 1] = &k;
    return Mr(x, Mr_paren, std::max(dim, x.getndims()), subscripts);
}

} // namespace

Mm kn::slice(const Mm &x, int dim, const Mm &k) { return part(x, dim, k); }
void kn::set_slice(Mm &x, int dim, const Mm &k, const Mm &v) { part(x, dim, k) = v; }

Mm kn::repeat(const Mm &x, int dim, kn_size n) {
    Mm counts[4] = {1.0, 1.0, 1.0, 1.0};
    counts[dim - 1] = n;
    return repmat(x, counts[0], counts[1], counts[2], counts[3]);
}

Mm kn::along(const Mm &x, int dim) {
    kn_size dims[4] = {1, 1, 1, 1};
    dims[dim - 1] = x.size();
    Mm out = x;
    out.reshape(4, dims);
    return out;
}

int kn::dimension(const char *name, const Mm &x, const Mm &dim) {
    const int d = double_to_int(first_number(dim));
    if (d >= 1 && d <= 4) return d;
    error("%s: dimension=%d does not exist for matrix %s", name, d, kn_display_name(x));
    return 0;
}
