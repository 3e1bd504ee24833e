// One element at a time: x(k), c{k}, s.a and s(k).a read, replaced in place, or added after the last.
//
// Whatever is out of the ordinary (a class, a shared block, a subscript that is no number inside, growth that
// moves elements about) is left to the general way, without a trace.

#include "indexing/index_write.h"
#include "indexing/reference.h"
#include "value/fields.h"
#include "value/number_block.h"

namespace kn {

namespace {

Mm &writable(const Mm *m) { return const_cast<Mm &>(*m); }

// ---- Growth by one element ----

// The dimension along which a value grows when only the element after its last one is written; -1 when
// another place is selected.
int grows_along(const Mm &t, int n, const Mm *const *s) {
    kn_size rows = t.rows(), cols = t.cols(), size = t.getnnz();
    if (!is_full_matrix(t) || n < 1 || n > 2 || !is_scalar_subscript(*s[0])) return -1;
    double i = *s[0]->addr();
    if (n == 1) {
        if (i != size + 1.0 || (rows > 1 && cols > 1)) return -1;
        return rows > 1 ? 0 : 1;
    }
    if (!is_scalar_subscript(*s[1])) return -1;
    double j = *s[1]->addr();
    if (rows <= 1 && i == 1.0 && j == cols + 1.0) return 1;
    if (cols == 1 && i == rows + 1.0 && j == 1.0) return 0;
    return -1;
}

// Room for one more element of an unshared cell or structure array. What it holds moves.
bool make_room(Mm &t) {
    kn_size n = t.getnnz(), dims[4];
    if (n < t.getp()) return true;
    kn_size room = grown_room(n, n + 1);
    Mm fresh(0, 0, 0, room, 1, kn_Mm);
    if (lacks(fresh, room) || !copy_fields(fresh, t)) return false;
    std::copy_n(t.getdims(), 4, dims);
    Header::move_values(fresh, t);
    set_extents(fresh, dims);
    replace_block(t, fresh);
    return true;
}

void append(Mm &t, int along, Mm &element) {
    if (!make_room(t)) return;
    re<Mm>(t)[t.getnnz()] = std::move(element);
    RefAccess::extend(t, along);
    check(t);
}

// x(end+1) = a number, in the room that there is.
bool append_number(Mm &t, int n, const Mm *const *subscripts, double x) {
    kn_size size = t.getnnz();
    int along = RefAccess::takes_numbers(t) && size < t.getp() ? grows_along(t, n, subscripts) : -1;
    if (along < 0) return false;
    t.addr()[size] = x;
    if (t.isc()) t.addi()[size] = 0.0;
    RefAccess::extend(t, along);
    return true;
}

} // namespace

// ---- Elements ----

kn_size RefAccess::position(const Mm &base, const Mr &r) {
    kn_size at = -1;
    if (r.nidx <= 2) return selects_one(base, r, at) ? at : -1;
    if (base.issparse()) return -1;
    at = 0;
    for (int k = r.nidx; k-- > 0;) {
        kn_size l;
        if (!is_inside<false>(*r.idx[k], base.getdims()[k], l)) return -1;
        at = at * base.getdims()[k] + l;
    }
    return at;
}

const Mm *RefAccess::find(const Mr &r, Way way) {
    if (r.kind == Mr_brace) {
        const Mm *cell = container(r, way);
        kn_size at = cell && way.leads_through(*cell) ? position(*cell, r) : -1;
        return at >= 0 ? re<Mm>(*cell) + at : nullptr;
    }
    if (r.kind != Mr_member) return nullptr;
    const Mr *array = r.base_r && r.base_r->kind == Mr_paren ? r.base_r : nullptr; // s(k).member
    const Mm *s = container(array ? *array : r, way);
    if (!s || !way.leads_through(*s) || !s->isstruct()) return nullptr;
    kn_size at = array ? position(*s, *array) : s->getnnz() == 1 ? 0 : -1;
    if (at < 0) return nullptr;
    const Mm &values = re<Mm>(*s)[at];
    int f = find_field(*s, r.member_name);
    if (f < 0 || !way.leads_through(values) || values.getnnz() != s->getnfields()) return nullptr;
    return re<Mm>(values) + f;
}

// ---- Writing ----

bool RefAccess::assign_element(const Mr &r, const Mm &src) {
    Way way = to_assign(src);
    if (r.kind == Mr_paren) {
        const Mm *base = is_real_scalar(src) ? container(r, way) : nullptr;
        if (!base) return false;
        double x = *src.addr();
        return (r.base_r && write_number(*base, r, x)) || append_number(writable(base), r.nidx, r.idx, x);
    }
    if (const Mm *element = find(r, way)) {
        writable(element) = src;
        return true;
    }

    bool of_array = r.kind == Mr_member && r.base_r && r.base_r->kind == Mr_paren;
    if (r.kind != Mr_brace && !of_array) return false;
    const Mr &place = of_array ? *r.base_r : r;
    const Mm *base = container(place, way);
    if (!base || !way.leads_through(*base) || base->isstruct() != of_array) return false;
    int along = grows_along(*base, place.nidx, place.idx);
    int f = of_array ? find_field(*base, r.member_name) : 0;
    if (along < 0 || f < 0) return false;
    // The source may be an element, and elements move.
    Mm element = of_array ? Header::values(base->getnfields()) : src;
    if (of_array) {
        if (lacks(element, base->getnfields())) return true;
        re<Mm>(element)[f] = src;
    }
    append(writable(base), along, element);
    return true;
}

void RefAccess::assign(const Mr &r, const Mm &src) {
    if (!assign_element(r, src)) assign_any(r, src);
}

// ---- Reading ----

Mm RefAccess::number(const Mm &base, kn_size at) {
    Mm x = Header::number(base.addr()[at], base.islogical());
    x.setstr(base.isstr());
    return x;
}

Mm RefAccess::read(const Mr &r, int strict) {
    kn_size at;
    return r.base_m && reads_number(*r.base_m, r, at) ? number(*r.base_m, at) : read_element(r, strict);
}

Mm RefAccess::read_element(const Mr &r, int strict) {
    kn_size at;
    const Mm *base = r.base_r && r.kind == Mr_paren ? find(*r.base_r, to_read) : nullptr;
    if (base && reads_number(*base, r, at)) return number(*base, at);
    const Mm *element = find(r, to_read);
    return element ? *element : read_any(r, strict);
}

} // namespace kn

using namespace kn;

Mm::Mm(const Mr &r, int strict) : Mm(RefAccess::read(r, strict)) {
    if (pi && flags.type == kn_double) getreal(0);
}

// A number comes into the block that the target has, unless the release of that is to be reported.
Mm &Mm::operator=(const Mr &r) {
    kn_size at = 0;
    const Mm *base = RefAccess::base(r);
    if (!base || !RefAccess::reads_number(*base, r, at)) {
        base = RefAccess::find(r, RefAccess::to_read);
        at = 0;
        if (!base || base->pi) return *this = Mm(r);
        if (!is_real_scalar(*base)) return *this = *base;
    }
    // The base may live in what this value holds.
    const double x = base->addr()[at];
    const M_types kind = base->flags;
    if (is_number() && !(kn_default_error_flags & 8))
        *addr() = x;
    else
        *this = x;
    flags.str = kind.str;
    flags.logical = kind.logical;
    return *this;
}

void Mr::operator=(double x) {
    if (!base_m || !RefAccess::write_number(*base_m, *this, x)) RefAccess::assign(*this, Mm(x));
}

void Mr::operator=(const Mm &src) {
    if (!base_m || !is_real_scalar(src) || !RefAccess::write_number(*base_m, *this, *src.addr()))
        RefAccess::assign(*this, src);
}

void Mr::operator=(const Mr &src) {
    kn_size at;
    if (!src.base_m || !base_m || !RefAccess::reads_number(*src.base_m, src, at) ||
        !RefAccess::write_number(*base_m, *this, src.base_m->addr()[at]))
        RefAccess::assign(*this, Mm(src, 1));
}
