// Reading with subscripts.
//
// One or two subscripts on a plain matrix, and all other reads, differ in what they report and in the shape
// of what one subscript gives; the elements move the same way. Sparse bases: index_sparse.cpp.
#ifndef QUORVEX_INDEXING_INDEX_READ_H
#define QUORVEX_INDEXING_INDEX_READ_H

#include "indexing/index_messages.h"
#include "indexing/index_move.h"
#include "value/constants.h"
#include "value/fields.h"

namespace kn {

// -- Shapes. `dims` comes with 1 in all places.

// Positions and shape of a read from a plain matrix. False after a report, or what would be one.
bool select_plain(Selection &sel, const Mm &base, const Subscripts &s, int strict, int *dims);
// The same for all other reads. When only the positions lie outside, `outside` is set too.
bool select_general(Selection &sel, const Mm &base, const Subscripts &s, int strict, int *dims,
                    bool &outside);

// Whether a read goes the plain way. A sparse subscript becomes full for it, and stays so.
bool reads_plain(const Mm &base, const Subscripts &s);

template <class T> Mm select(const Mm &base, const Selection &sel, const int *dims) {
    int n = sel.total();
    Mm out(base.isc(), 0, 0, 4, dims, base.gettype());
    if (n < 0 || lacks(out, n)) return nothing_M;
    M_types flags = base.getflags();
    flags.persistent = flags.global = 0;
    out.getflags() = flags;
    if (!copy_fields(out, base)) return nothing_M;
    if (n > 0) gather<T>(out, base, sel);
    check(out);
    return out;
}

template <class T> Mm read_selection(const Mm &base, const Subscripts &s, int strict) {
    Selection sel;
    int dims[4] = {1, 1, 1, 1};
    bool outside = false;
    const Mm model = base.isstruct() ? base : Mm(); // the error handler may assign to the variable
    if (reads_plain(base, s) ? select_plain(sel, base, s, strict, dims)
                             : select_general(sel, base, s, strict, dims, outside))
        return base.issparse() ? select_sparse(base, sel, dims) : select<T>(base, sel, dims);
    if (!outside || !model.isstruct()) return nothing_M;

    // Places in a structure array that are still to come: empty fields, for an assignment to fill.
    int n = sel.total();
    Mm out(0, 0, 0, 4, dims, kn_Mm);
    if (n < 0 || lacks(out, n) || !copy_fields(out, model)) return nothing_M;
    clear<Mm>(out, 0, n);
    check(out);
    return out;
}

} // namespace kn

#endif
