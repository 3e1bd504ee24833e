// Mr: references with their subscripts, and reads through them. Assignment: assignment.cpp.

#include "indexing/reference.h"

#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/memory.h"
#include "quorvex/messages.h"
#include "value/constants.h"

namespace kn {

bool has_method(const Mm &m, const char *method) {
    return m.getclassid() && is_class_function(kn_class_name(m.getclassid()), method);
}

void report_unset(const Mm &base) {
    const char *name = kn_display_name(base);
    error("%s(...): variable '%s' was used without value.", name, name);
}

// ---- Reading ----

// The argument of the methods subsref and subsasgn: a structure with the fields type and subs.
Mm RefAccess::record(const Mr &r) {
    const char *type = r.kind == Mr_paren    ? "()"
                       : r.kind == Mr_member ? "."
                       : r.kind == Mr_brace  ? "{}"
                                             : "?";
    Mm subs;
    if (r.kind == Mr_member) {
        subs = TM(r.member_name);
    } else {
        Subscripts s = subscripts(r);
        subs = Mm(0, 0, 0, 1, s.n, kn_Mm);
        for (int k = 0; k < s.n && k < subs.getnnz(); ++k) re<Mm>(subs)[k] = s[k];
    }
    Mm out;
    out.member("type") = TM(type);
    out.member("subs") = subs;
    return out;
}

// The field of one structure; of several a row of cells with the fields of all; [] of none.
Mm RefAccess::read_member(const Mm &base, const char *member, int strict) {
    int f = base.findfield(member, strict);
    if (f < 0) return nothing_M;
    kn_size n = base.getnnz();
    Mm out;
    if (n > 1) out = Mm(0, 0, 0, 1, n, kn_Mm);
    if (n > 1 && lacks(out, n)) return nothing_M;
    for (kn_size k = 0; k < n; ++k) {
        const Mm &values = re<Mm>(base)[k];
        if (values.gettype() != kn_Mm || values.getnnz() != base.getnfields()) {
            error("structure '%s' is built wrong", kn_display_name(base));
            return nothing_M;
        }
        const Mm &value = re<Mm>(values)[f];
        if (n == 1) return value;
        re<Mm>(out)[k] = value;
    }
    return out;
}

Mm RefAccess::read(const Mm &base, const Mr &r, int strict) {
    if (base.gettype() == kn_none) {
        if (strict) report_unset(base);
        return nothing_M;
    }
    if (has_method(base, "subsref")) return call_class_function("subsref", base, record(r));
    if (r.kind == Mr_member) return read_member(base, r.member_name, strict);

    Subscripts s = subscripts(r);
    if (r.kind == Mr_brace) {
        if (base.gettype() != kn_Mm) {
            if (strict)
                error("variable '%s' was {}-indexed, but it is not a cell array", kn_display_name(base));
            return nothing_M;
        }
        if (s.n == 0) return Mm();
        Mm selected = read_selection(base, s, strict);
        if (selected.gettype() != kn_Mm) return nothing_M;
        return selected.getnnz() > 0 ? *re<Mm>(selected) : Mm();
    }

    if (s.n == 0) return base;
    if (s.n == 1 && is_colon(s[0])) {
        Mm out = base;
        const kn_size dims[4] = {base.size(), 1, 1, 1};
        set_extents(out, dims);
        return out;
    }
    if (s.n == 2 && is_colon(s[0]) && is_colon(s[1])) return base;
    return read_selection(base, s, strict);
}

// All but a single existing element.
Mm RefAccess::read_any(const Mr &r, int strict) {
    if (const Mm *base = container(r, to_read)) return read(*base, r, strict);
    if (r.base_r) return read(Mm(*r.base_r, strict), r, strict);
    if (strict) report_unset(nothing_M);
    return nothing_M;
}

} // namespace kn

using namespace kn;

// ---- Building ----

Mr::Mr(const Mm &base, Mr_idx_type k, int n, const Mm *const *subscripts) : Mr(k, &base, nullptr, n) {
    std::copy_n(subscripts, n, idx);
    convert();
}

Mr::Mr(const Mr &base, Mr_idx_type k, int n, const Mm *const *subscripts) : Mr(k, nullptr, &base, n) {
    std::copy_n(subscripts, n, idx);
    convert();
}

Mr::Mr(const Mr &src)
    : kind(src.kind), nidx(src.nidx), owned(0), base_m(src.base_m), base_r(src.base_r),
      member_name(src.kind == Mr_member ? src.member_name : nullptr) {
    if (nidx > 0) std::copy_n(src.idx, nidx, idx);
}

void Mr::drop() {
    for (int k = 0; k < nidx; ++k)
        if (owned >> k & 1) delete idx[k];
}

void Mr::convert() {
    int n = nidx;
    // A cell as the only subscript is the list of subscripts.
    const Mm *list = nullptr;
    if (n == 1 && kind == Mr_paren && is_cell(*idx[0])) {
        list = re<Mm>(*idx[0]);
        n = idx[0]->getnnz() <= 4 ? static_cast<int>(idx[0]->getnnz()) : 0;
    }
    nidx = 0;
    for (int k = 0; k < n; ++k) {
        const Mm &s = list ? list[k] : *idx[k];
        if (list || s.gettype() != kn_double) {
            Mm index = s.gettype() == kn_double ? s : subsindex(s);
            void *room = kn_block_alloc(sizeof(Mm));
            if (room)
                owned = static_cast<short>(owned | 1 << k);
            else
                out_of_memory();
            idx[k] = room ? new (room) Mm(std::move(index)) : &x_M;
        }
        nidx = static_cast<short>(k + 1);
    }
}

Mm subsindex(const Mm &x) {
    x.warn_uninit();
    if (x.gettype() == kn_none) return Mm();
    Mm index = x;
    if (x.isstruct() && x.getclassid()) index = call_class_function("subsindex", x);
    if (index.gettype() != kn_Mm && index.gettype() != kn_none) return mdouble(index);
    error("Index %s is a cell array or a structure and can't be a subscript.", kn_display_name(x));
    return Mm();
}

#define ON(owner)                                                                    \
    Mr owner::operator()(const Mm &a, const Mm &b, const Mm &c) const {              \
        const Mm *s[] = {&a, &b, &c};                                                \
        return Mr(*this, Mr_paren, 3, s);                                            \
    }                                                                                \
    Mr owner::operator()(const Mm &a, const Mm &b, const Mm &c, const Mm &d) const { \
        const Mm *s[] = {&a, &b, &c, &d};                                            \
        return Mr(*this, Mr_paren, 4, s);                                            \
    }                                                                                \
    Mr owner::br(const Mm &a, const Mm &b, const Mm &c) const {                      \
        const Mm *s[] = {&a, &b, &c};                                                \
        return Mr(*this, Mr_brace, 3, s);                                            \
    }                                                                                \
    Mr owner::br(const Mm &a, const Mm &b, const Mm &c, const Mm &d) const {         \
        const Mm *s[] = {&a, &b, &c, &d};                                            \
        return Mr(*this, Mr_brace, 4, s);                                            \
    }
ON(Mm)
ON(Mr)
#undef ON

kn_size Mr::size() const { return Mm(*this, 1).size(); }
