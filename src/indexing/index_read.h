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

// Indices and shape of a read that reads_matrix accepts, with full subscripts. False after a report, or where
// a strict read would report.
bool select_from_matrix(Selection &sel, const Mm &base, const Subscripts &s, int strict, kn_size *dims);
// The same for all other reads. When only the positions lie outside, `outside` is set too.
bool select_general(Selection &sel, const Mm &base, const Subscripts &s, int strict, kn_size *dims,
                    bool &outside);

// Whether one or two matrices select from a full matrix that is no structure array.
bool reads_matrix(const Mm &base, const Subscripts &s);
// Replaces each sparse subscript by its full value, in the program's variable. False when memory is
// exhausted.
bool make_full(const Subscripts &s);

template <class T> Mm select(const Mm &base, const Selection &sel, const kn_size *dims) {
    kn_size n = sel.total();
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
    kn_size dims[4] = {1, 1, 1, 1};
    bool outside = false;
    const Mm model = base.isstruct() ? base : Mm(); // the error handler may assign to the variable
    const bool selected = reads_matrix(base, s) && make_full(s)
                              ? select_from_matrix(sel, base, s, strict, dims)
                              : select_general(sel, base, s, strict, dims, outside);
    if (selected) return base.issparse() ? select_sparse(base, sel, dims) : select<T>(base, sel, dims);
    if (!outside || !model.isstruct()) return nothing_M;

    // Places in a structure array that are still to come: empty fields, for an assignment to fill.
    kn_size n = sel.total();
    Mm out(0, 0, 0, 4, dims, kn_Mm);
    if (n < 0 || lacks(out, n) || !copy_fields(out, model)) return nothing_M;
    clear<Mm>(out, 0, n);
    check(out);
    return out;
}

} // namespace kn

#endif
