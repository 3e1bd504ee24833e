// The positions of the elements that are not zero.
#include <algorithm>

#include "core/header.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/indexing.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"

namespace {

// The positions, from 1, of the stored elements that `keeps` takes. Each is stored before it is known whether
// it stays, which saves a branch.
template <class Keeps> Mm positions(const Mm &x, Keeps keeps) {
    int stored = x.getnnz(), n = 0;
    for (int k = 0; k < stored; k++) n += keeps(k);
    bool row = x.rows() == 1;
    Mm out(0, 0, 0, row ? 1 : n, row ? n : 1, kn_double);
    if (kn::lacks(out, n)) return x_M;
    double *to = out.addr();
    const int *index = x.getindex();
    if (index)
        for (int k = 0, e = 0; e < n; e += keeps(k++)) to[e] = index[k] + 1;
    else
        for (int k = 0, e = 0; e < n; e += keeps(k++)) to[e] = k + 1;
    return out;
}

} // namespace

Mm find(const Mm &x) {
    x.warn_uninit();
    if (error_numeric(x, "find")) return x_M;
    if (x.gettype() == kn_uint8) return find(mdouble(x));
    const double *re = x.addr(), *im = x.addi();
    if (im) return positions(x, [=](int k) { return !(re[k] == 0) | !(im[k] == 0); });
    return positions(x, [=](int k) { return !(re[k] == 0); });
}

Mm find(const Mm &x, i_o_t, Mm &i, Mm &j) { return ind2sub(size(x), find(x), i_o, i, j); }

Mm find(const Mm &x, i_o_t, Mm &i, Mm &j, Mm &v) {
    Mm k = find(x), values = full(squeeze(x(k)));
    values = x.rows() == 1 ? reshape(values, 1.0, nop_M) : values;
    ind2sub(size(x), k, i_o, i, j);
    v = values;
    return x_M;
}
