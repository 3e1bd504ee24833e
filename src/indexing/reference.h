// The library's own access to references.
//
// Most references select one existing element: a number of an array, an element of a cell, a field of a
// structure, through any chain of such steps. Those are found here and read or replaced in place
// (element_access.cpp); only the time differs from the general way (reference.cpp, assignment.cpp).
#ifndef QUORVEX_INDEXING_REFERENCE_H
#define QUORVEX_INDEXING_REFERENCE_H

#include "indexing/index_move.h"

namespace kn {

// Whether a subscript (a double) is a full numeric scalar, of a whole number if asked, that selects a
// position inside an extent; and which.
template <bool whole>
[[gnu::always_inline]] inline bool is_inside(const Mm &s, ptrdiff_t extent, kn_size &at) {
    if (s.getnnz() != 1 || s.issparse() || s.islogical() || is_colon(s)) return false;
    double v = *s.addr() - 1.0;
    if (!(v > -1.0 && v < static_cast<double>(extent))) return false;
    at = static_cast<kn_size>(v);
    return at < extent && (!whole || at == v); // between 0 and 1 is the first element, if there is one
}

// Whether the class of a value has the method.
bool has_method(const Mm &m, const char *method);
// Reports a variable without a value.
void report_unset(const Mm &base);

struct RefAccess {
    static Subscripts subscripts(const Mr &r) {
        Subscripts s;
        s.n = r.nidx > 0 ? r.nidx : 0;
        for (int k = 0; k < s.n; ++k) s.at[k] = r.idx[k];
        return s;
    }
    static Mr_idx_type kind(const Mr &r) { return r.kind; }
    static const Mm *base(const Mr &r) { return r.base_m; }

    // Whether one or two scalar subscripts select an element of a full value, and its linear position. An
    // assignment asks for whole numbers, as others may make the value grow, and one subscript may select the
    // index after the last element.
    template <bool assigning = false>
    [[gnu::always_inline]] static bool selects_one(const Mm &base, const Mr &r, kn_size &at) {
        if (base.issparse()) return false;
        if (r.nidx == 1) return is_inside<assigning>(*r.idx[0], base.getnnz() + assigning, at);
        kn_size j;
        if (r.nidx != 2 || !is_inside<assigning>(*r.idx[0], base.rows(), at) ||
            !is_inside<assigning>(*r.idx[1], base.cols(), j))
            return false;
        at += j * base.rows();
        return true;
    }
    // The same for any number of subscripts: the position, or -1.
    static kn_size position(const Mm &base, const Mr &r);

    // How a chain is gone through: to be read, or to be changed, by a source that is held by `source` (null
    // for a read). To change something, the values on the way to it must be unshared, and the source
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

    // What a reference indexes, when it exists; null otherwise.
    static const Mm *container(const Mr &r, Way way) {
        return r.base_m ? r.base_m : r.base_r ? find(*r.base_r, way) : nullptr;
    }
    // The value that a reference denotes, when it is an element of a cell or a field of a structure, reached
    // through such elements only, and no class takes part. Null otherwise.
    static const Mm *find(const Mr &r, Way way);

    // Whether r reads one element of a real full array.
    [[gnu::always_inline]] static bool reads_number(const Mm &base, const Mr &r, kn_size &at) {
        return r.kind == Mr_paren && base.gettype() == kn_double && !base.isc() && !base.getclassid() &&
               selects_one(base, r, at);
    }
    // Stores a number in the only element that r selects of an unshared array, or after the last element of
    // a vector with room; false for anything else.
    [[gnu::always_inline]] static bool write_number(const Mm &base, const Mr &r, double x) {
        kn_size at;
        if (r.kind != Mr_paren || !takes_numbers(base) || !selects_one<true>(base, r, at)) return false;
        if (at == base.getnnz()) {
            if (!is_full_matrix(base) || at == base.getp() || (base.rows() > 1 && base.cols() > 1))
                return false;
            extend(base, base.rows() > 1 ? 0 : 1);
        }
        base.addr()[at] = x;
        if (base.isc()) base.addi()[at] = 0.0;
        return true;
    }
    // The element after the last becomes part of the value.
    static void extend(const Mm &m, int along) {
        kn_size *dims = m.getdims();
        if (m.getnnz()++ == 0)
            std::fill_n(dims, 4, 1);
        else
            ++dims[along];
    }
    static bool takes_numbers(const Mm &base) {
        return base.gettype() == kn_double && !base.dirty() && !base.getclassid();
    }

    static Mm record(const Mr &r);
    static Mm read(const Mr &r, int strict);
    [[gnu::noinline]] static Mm read_element(const Mr &r, int strict);
    static Mm read_any(const Mr &r, int strict);
    static Mm number(const Mm &base, kn_size at);
    static Mm read(const Mm &base, const Mr &r, int strict);
    static Mm read_member(const Mm &base, const char *member, int strict);

    // Assigns when r selects one existing element, or the one after the last; the rest is left to
    // assign.
    static bool assign_element(const Mr &r, const Mm &src);
    [[gnu::noinline]] static void assign(const Mr &r, const Mm &src);
    static void assign_any(const Mr &r, const Mm &src);
    static bool modify(Mm &base, const Mr &r, const Mm &src);
    static bool modify_in_place(const Mr &r, const Mm &src);
};

} // namespace kn

#endif
