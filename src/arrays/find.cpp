// The positions of the elements that are not zero.
#include <algorithm>

#include "indexing/index_move.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/indexing.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"

namespace {

// The positions, from 1, of the places in x that are selected.
Mm positions(const Mm &x, const kn::Positions &places) {
    kn_size n = places.count();
    bool row = x.rows() == 1;
    Mm out(0, 0, 0, row ? 1 : n, row ? n : 1, kn_double);
    if (kn::lacks(out, n)) return x_M;
    double *to = out.addr();
    const kn_size *index = x.getindex();
    if (places.is_run())
        for (kn_size k = 0; k < n; k++) to[k] = (index ? index[places.first() + k] : places.first() + k) + 1;
    else if (index)
        kn::for_masked(places, [=](kn_size k, ptrdiff_t entry) { to[k] = index[entry] + 1; });
    else
        kn::kernels().moves->numbers(to, n, places.bits(), places.largest() + 1);
    return out;
}

// The elements of a sparse value that are not zero, as a full column.
Mm stored_nonzeros(const Mm &x) {
    kn::Positions places;
    if (!places.set_nonzero(x)) return x_M;
    kn_size n = places.count();
    Mm out(x.isc(), 0, 0, n, 1, kn_double);
    if (kn::lacks(out, n)) return x_M;
    kn::gather(out.addr(), x.addr(), places, 1);
    if (out.isc()) kn::gather(out.addi(), x.addi(), places, 1);
    out.getreal(0);
    return out;
}

} // namespace

Mm find(const Mm &x) {
    x.warn_uninit();
    if (error_numeric(x, "find")) return x_M;
    if (x.gettype() == kn_uint8) return find(mdouble(x));
    kn::Positions places;
    return places.set_nonzero(x) ? positions(x, places) : x_M;
}

Mm find(const Mm &x, i_o_t, Mm &i, Mm &j) { return ind2sub(size(x), find(x), i_o, i, j); }

Mm find(const Mm &x, i_o_t, Mm &i, Mm &j, Mm &v) {
    Mm k = find(x), values = x.issparse() ? stored_nonzeros(x) : Mm(squeeze(x(k)));
    values = x.rows() == 1 ? reshape(values, 1.0, nop_M) : values;
    ind2sub(size(x), k, i_o, i, j);
    v = values;
    return x_M;
}
