// The positions of the elements that are not zero.
#include <algorithm>

#include "base/number_tests.h"
#include "indexing/index_move.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/indexing.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/sparse_walk.h"

namespace {

// For n elements of x: a row for those of a row, else a column.
Mm line_for(const Mm &x, kn_size n) {
    const bool row = x.rows() == 1;
    return Mm(0, 0, 0, row ? 1 : n, row ? n : 1, kn_double);
}

// The positions, from 1, of the places in x that are selected.
Mm positions(const Mm &x, const kn::Positions &places) {
    kn_size n = places.count();
    Mm out = line_for(x, n);
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

// The rows and columns, from 1, of the entries that are not zero: doubles may hold these but not the
// positions.
Mm subscripts_of_entries(const Mm &x, Mm &i, Mm &j) {
    const double *re = x.addr(), *im = x.addi();
    kn_size n = 0;
    for (kn_size k = 0; k < x.getnnz(); k++) n += kn::is_nonzero(re, im, k);
    Mm rows = line_for(x, n), columns = line_for(x, n);
    if (kn::lacks(rows, n) || kn::lacks(columns, n)) return x_M;
    double *row_to = rows.addr(), *column_to = columns.addr();
    kn::for_entries(x, [&](kn_size k, kn_size row, kn_size column) {
        if (!kn::is_nonzero(re, im, k)) return;
        *row_to++ = static_cast<double>(row + 1);
        *column_to++ = static_cast<double>(column + 1);
    });
    i = rows;
    j = columns;
    return x_M;
}

} // namespace

Mm find(const Mm &x) {
    x.warn_uninit();
    if (error_numeric(x, "find")) return x_M;
    if (x.gettype() == kn_uint8) return find(mdouble(x));
    kn::Positions places;
    return places.set_nonzero(x) ? positions(x, places) : x_M;
}

Mm find(const Mm &x, i_o_t, Mm &i, Mm &j) {
    return x.issparse() ? subscripts_of_entries(x, i, j) : ind2sub(size(x), find(x), i_o, i, j);
}

Mm find(const Mm &x, i_o_t, Mm &i, Mm &j, Mm &v) {
    const Mm k = x.issparse() ? nop_M : find(x);
    Mm values = x.issparse() ? stored_nonzeros(x) : Mm(squeeze(x(k)));
    values = x.rows() == 1 ? reshape(values, 1.0, nop_M) : values;
    x.issparse() ? subscripts_of_entries(x, i, j) : ind2sub(size(x), k, i_o, i, j);
    v = values;
    return x_M;
}
