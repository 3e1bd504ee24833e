// The engines of indexing, by type of element: double, unsigned char and Mm.
//
// index_read.h and index_write.h hold them, once; index_{read,write}_{double,uint8,values}.cpp are their
// three instances. A function that gives bool has done its work when it is true; otherwise an error was
// reported and the error handler has returned, and the target holds a whole value.
#ifndef QUORVEX_INDEXING_INDEX_ENGINE_H
#define QUORVEX_INDEXING_INDEX_ENGINE_H

#include <type_traits>

#include "indexing/selection.h"
#include "quorvex/indexing.h"

namespace kn {

// f(std::type_identity<T>()) for the elements of m.
template <class F> auto by_type(const Mm &m, F f) {
    switch (m.gettype()) {
    case kn_uint8: return f(std::type_identity<unsigned char>());
    case kn_Mm: return f(std::type_identity<Mm>());
    case kn_none:
    case kn_double: break;
    }
    return f(std::type_identity<double>());
}

// -- Reading.

// base(s), for at least one subscript. What lies outside is reported when strict, and gives nothing_M, or of
// a structure a value of the selected shape with empty fields.
template <class T> Mm read_selection(const Mm &base, const Subscripts &s, int strict);
Mm read_selection(const Mm &base, const Subscripts &s, int strict);

// The selected elements as a value of the given extents, with the flags, field names and class of the base.
// The selection lies inside the base. nothing_M when memory was exhausted.
template <class T> Mm select(const Mm &base, const Selection &s, const kn_size *dims);
Mm select(const Mm &base, const Selection &s, const kn_size *dims);
Mm select_sparse(const Mm &base, const Selection &s, const kn_size *dims);

// -- Writing. The source is of the target's type, and neither it nor a subscript is, or lies in, the target.

template <class T> bool vwcopy1(Mm &t, const Mm &src, const Mm &i);
template <class T> bool vwcopy2(Mm &t, const Mm &src, const Mm &i, const Mm &j);
// The general engine. Of the kind {} the source may be of any type.
template <class T> bool vwcopyn(Mm &t, Mr_idx_type kind, const Subscripts &s, const Mm &src);
// Deletes from a sparse value what is selected along dimension d; -1: of all elements.
bool delete_sparse(Mm &t, const Positions &gone, int d);
// The extents when `left` positions stay along dimension d; -1: elements, which become a vector.
void shorten(kn_size *dims, const Mm &t, int d, kn_size left);
bool write_sparse(Mm &t, const Selection &s, const kn_size *dims, const Mm &src);

// -- Deletion.

bool delete1(Mm &t, const Mm &i);
bool delete2(Mm &t, const Mm &i, const Mm &j);
bool vwcopy0(Mm &t, const Subscripts &s);

// -- What they share.

// Replaces the target's block; its flags stay.
void replace_block(Mm &t, const Mm &fresh);
// The target becomes an empty value of its type.
bool make_empty(Mm &t);
// New extents for the header; nnz is their product.
void set_extents(Mm &t, const kn_size *dims);

} // namespace kn

#endif
