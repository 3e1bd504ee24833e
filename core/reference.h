// The library's own access to references.
//
// Most references select one element that stands there already: a number of an array, an element of a cell, a
// field of a structure, through any chain of such steps. Those are found here and read or replaced in their
// place (element_access.cpp); nothing but the time differs from the general way (reference.cpp).
#ifndef QUORVEX_CORE_REFERENCE_H
#define QUORVEX_CORE_REFERENCE_H

#include "core/index_move.h"

namespace kn {

// Position that a full numeric scalar, of a whole number if asked, selects of an extent; -1 for what lies
// outside or is no such scalar.
inline int position_inside(const Mm &s, int extent, bool whole) {
    if (!is_scalar_subscript(s)) return -1;
    double v = *s.addr() - 1.0;
    if (!(v > -1.0 && v < extent)) return -1;
    int at = static_cast<int>(v);
    return whole && at != v ? -1 : at;
}

struct RefAccess {
    static Subscripts subscripts(const Mr &r) {
        Subscripts s;
        s.n = r.nidx > 0 ? r.nidx : 0;
        for (int k = 0; k < s.n; ++k) s.at[k] = r.idx[k];
        return s;
    }
    static Mr_idx_type kind(const Mr &r) { return r.kind; }
    static const Mm *base(const Mr &r) { return r.base_m; }

    // Linear position that scalar subscripts select in a full value; -1 for anything else. An assignment asks
    // for whole numbers: others may make the value grow.
    static int position(const Mm &base, const Mr &r, bool whole = false) {
        if (base.issparse()) return -1;
        const int *dims = base.getdims();
        if (r.nidx == 1) return position_inside(*r.idx[0], base.getnnz(), whole);
        if (r.nidx != 2) return position_of_many(base, r, whole);
        int i = position_inside(*r.idx[0], dims[0], whole), j = position_inside(*r.idx[1], dims[1], whole);
        return (i | j) < 0 ? -1 : i + j * dims[0];
    }
    static int position_of_many(const Mm &base, const Mr &r, bool whole);

    // How a chain is gone through: to be read, or to be changed, by a source that is held by `source` (null
    // for a read). To change something, nobody else may hold the values on the way to it, and the source
    // must not be one of them.
    struct Way {
        const unsigned *source;
        bool leads_through(const Mm &m) const {
            return m.gettype() == kn_Mm && !m.getclassid() &&
                   (!source || (!m.dirty() && Header::refcount(m) != source));
        }
    };
    static constexpr Way to_read = {nullptr};
    static Way to_assign(const Mm &src) { return {Header::refcount(src)}; }

    // What a reference indexes, when it stands there already; null otherwise.
    static const Mm *container(const Mr &r, Way way) {
        return r.base_m ? r.base_m : r.base_r ? find(*r.base_r, way) : nullptr;
    }
    // The value that a reference denotes, when it is an element of a cell or a field of a structure, reached
    // through such elements only, and no class takes part. Null otherwise.
    static const Mm *find(const Mr &r, Way way);

    // Position of the only element that r reads of a real full array; -1 for anything else.
    static int number_position(const Mm &base, const Mr &r) {
        if (r.kind != Mr_paren || base.gettype() != kn_double || base.isc() || base.getclassid()) return -1;
        return position(base, r);
    }
    // Gives the only element that r selects of an array that nobody shares, or the place behind the last, a
    // real number; false for anything else.
    static bool assign_number(const Mm &base, const Mr &r, double x) {
        if (r.kind != Mr_paren || base.gettype() != kn_double || base.dirty() || base.getclassid())
            return false;
        int at = position(base, r, true);
        if (at < 0) at = place_behind(base, r);
        if (at < 0) return false;
        base.addr()[at] = x;
        if (base.isc()) base.addi()[at] = 0.0;
        return true;
    }
    // The place behind the last element, which becomes part of the value; -1 when r selects another one, or
    // there is no room.
    static int place_behind(const Mm &base, const Mr &r);

    static Mm record(const Mr &r);
    static Mm read(const Mr &r, int strict);
    static Mm read_element(const Mr &r, int strict);
    static Mm read_any(const Mr &r, int strict);
    static Mm number(const Mm &base, int at);
    static Mm &assign_read(Mm &t, const Mr &r);
    static Mm read(const Mm &base, const Mr &r, int strict);
    static Mm read_member(const Mm &base, const char *member, int strict);

    // Assigns when r selects one place that is there already, or the one behind the last; the rest is left to
    // assign.
    static bool assign_element(const Mr &r, const Mm &src);
    static void assign(const Mr &r, const Mm &src);
    static bool modify(Mm &base, const Mr &r, const Mm &src);
    static bool modify_in_place(const Mr &r, const Mm &src);
};

} // namespace kn

#endif
