// Mr: references with their subscripts, reads through them, and assignment as fetch, modify, store back.
//
// A chain such as s(2).a{3}(4) = y is resolved from its end: what the last bracket indexes is read from the
// reference before it (tolerantly, so that what is missing can come into being), changed, and assigned to
// that reference in turn. Where every step leads to one element that stands there already, the element
// itself is read or replaced; nothing but the time differs.

#include "quorvex/indexing.h"

#include "core/constants.h"
#include "core/index_move.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"

namespace kn {

struct RefAccess {
    static Subscripts subscripts(const Mr &r) {
        return {r.nidx > 0 ? r.nidx : 0, {r.idx[0], r.idx[1], r.idx[2], r.idx[3]}};
    }
    static Mr_idx_type kind(const Mr &r) { return r.kind; }

    static const Mm *container(const Mr &r, const Mm *src);
    static const Mm *find(const Mr &r, const Mm *src);

    static Mm record(const Mr &r);
    static Mm read(const Mr &r, int strict);
    static Mm read(const Mm &base, const Mr &r, int strict);
    static Mm read_member(const Mm &base, const char *member, int strict);

    static void assign(const Mr &r, const Mm &src);
    static bool modify(Mm &base, const Mr &r, const Mm &src);
};

namespace {

// A value that has to stand while the target changes: the value itself, or a holder of its block under its
// name when it is, or may lie in, the target.
class Kept {
  public:
    Kept() = default;
    Kept(const Mm &x, const Mm &target) { set(x, target); }
    ~Kept() {
        if (copy_) Header::name(*copy_) = nullptr;
    }
    const Mm *set(const Mm &x, const Mm &target) {
        value_ = &x;
        if (&x == &target || target.gettype() == kn_Mm) {
            value_ = &copy_.emplace(x);
            Header::name(*copy_) = x.getname();
        }
        return value_;
    }
    const Mm &operator*() const { return *value_; }

  private:
    const Mm *value_ = nullptr;
    std::optional<Mm> copy_;
};

// Subscripts that stand while the target changes.
struct KeptSubscripts : Subscripts {
    KeptSubscripts(const Subscripts &s, const Mm &target) {
        n = s.n;
        for (int k = 0; k < n; ++k) at[k] = kept_[k].set(s[k], target);
    }

  private:
    Kept kept_[4];
};

bool has_method(const Mm &m, const char *method) {
    return m.getclassid() && is_class_function(kn_class_name(m.getclassid()), method);
}

void report_unset(const Mm &base) {
    const char *name = kn_display_name(base);
    error("%s(...): variable '%s' was used without value.", name, name);
}

} // namespace

// ---- The elements that stand in their place ----

// What a reference indexes, when it stands there already; see find.
const Mm *RefAccess::container(const Mr &r, const Mm *src) {
    return r.chained ? find(*r.base_r, src) : r.base_m;
}

// The value that a reference denotes, when it is an element of a cell or a field of a structure, reached
// through such elements only, and no class takes part. Null otherwise. To be replaced by `src`, or in a part
// of it, nobody else may hold the values on the way, and `src` must not be one of them.
const Mm *RefAccess::find(const Mr &r, const Mm *src) {
    auto open = [src](const Mm *m) {
        return m && m->gettype() == kn_Mm && !m->getclassid() &&
               (!src || (!m->dirty() && !same_block(*m, *src)));
    };
    if (r.kind == Mr_brace) {
        const Mm *cell = container(r, src);
        int k = open(cell) ? scalar_position(*cell, r.nidx, r.idx) : -1;
        return k >= 0 ? re<Mm>(*cell) + k : nullptr;
    }
    if (r.kind != Mr_member) return nullptr;
    bool of_array = r.chained && r.base_r->kind == Mr_paren; // s(k).member
    const Mm *s = of_array ? container(*r.base_r, src) : container(r, src);
    if (!open(s) || !s->isstruct()) return nullptr;
    int k = of_array ? scalar_position(*s, r.base_r->nidx, r.base_r->idx) : s->getnnz() == 1 ? 0 : -1;
    if (k < 0) return nullptr;
    const Mm *values = re<Mm>(*s) + k;
    int f = s->findfield(r.member_name, 0);
    if (f < 0 || !open(values) || values->getnnz() != s->getnfields()) return nullptr;
    return re<Mm>(*values) + f;
}

// ---- Reading ----

namespace {

// One element of a real double value.
Mm number(const Mm &base, int at) {
    Mm out = base.addr()[at];
    if (lacks(out, 1)) {
        out = nothing_M;
    } else {
        M_types &flags = out.getflags();
        flags = base.getflags();
        flags.persistent = flags.global = 0;
    }
    return out;
}

} // namespace

// What the methods subsref and subsasgn are told: the fields type and subs.
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
    int n = base.getnnz();
    Mm out;
    if (n > 1) out = Mm(0, 0, 0, 1, n, kn_Mm);
    if (n > 1 && lacks(out, n)) return nothing_M;
    for (int k = 0; k < n; ++k) {
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
        const int dims[4] = {base.size(), 1, 1, 1};
        set_extents(out, dims);
        return out;
    }
    if (s.n == 2 && is_colon(s[0]) && is_colon(s[1])) return base;
    return read_selection(base, s, strict);
}

Mm RefAccess::read(const Mr &r, int strict) {
    if (const Mm *element = find(r, nullptr)) return *element;
    const Mm *base = container(r, nullptr);
    if (base) {
        if (r.kind == Mr_paren && base->gettype() == kn_double && !base->isc() && !base->getclassid()) {
            int at = scalar_position(*base, r.nidx, r.idx);
            if (at >= 0) return number(*base, at);
        }
        return read(*base, r, strict);
    }
    if (r.chained) return read(Mm(*r.base_r, strict), r, strict);
    if (strict) report_unset(nothing_M);
    return nothing_M;
}

// ---- Assignment ----

namespace {

// The place behind the last element of a row or column that has room for one more. It becomes part of the
// value, not set.
int append(Mm &t, const Subscripts &s) {
    int n = t.getnnz(), *dims = t.getdims();
    if (s.n != 1 || n == t.getp() || !is_plain(t) || !is_scalar_subscript(s[0]) || *s[0].addr() != n + 1.0)
        return -1;
    if (n > 0 && dims[0] > 1 && dims[1] > 1) return -1;
    if (n == 0)
        std::fill_n(dims, 4, 1);
    else
        ++dims[dims[0] > 1 ? 0 : 1];
    return t.getnnz()++;
}

// One real number into one element that is there already, or behind the last.
bool assign_element(Mm &t, const Subscripts &s, const Mm &src) {
    if (t.gettype() != kn_double || t.dirty() || t.getclassid()) return false;
    if (src.gettype() != kn_double || src.getnnz() != 1 || src.isc() || !is_plain(src)) return false;
    double x = *src.addr();
    int at = scalar_position(t, s.n, s.at);
    if (at >= 0) {
        for (int k = 0; k < s.n; ++k) { // fractions grow the target by the rounded number
            double v = *s[k].addr();
            if (v != static_cast<int>(v)) return false;
        }
    } else {
        at = append(t, s);
        if (at < 0) return false;
    }
    t.addr()[at] = x;
    if (t.isc()) t.addi()[at] = 0.0;
    return true;
}

// The target of x(...) = src gets the type of the source, or the source that of the target.
bool settle_type(Mm &t, const Mm &src, const Mm *&settled, std::optional<Mm> &converted) {
    settled = &src;
    if (t.gettype() == src.gettype()) return true;
    if (t.gettype() != kn_none && t.size() > 0) {
        Mm &x = converted.emplace();
        x.deepcopy(src.isc(), 0, src, t.gettype());
        settled = &x;
        return x.gettype() == t.gettype() && !lacks(x, src.size());
    }
    if (src.isstruct()) { // a structure with empty fields
        Mm zero = 0.0;
        Mm model = read_selection<Mm>(src, {1, {&zero}}, 0);
        if (!model.isstruct()) return false;
        t = model;
    } else {
        t = Mm(0, 0, 0, 0, 0, src.gettype());
    }
    return t.gettype() == src.gettype();
}

// Structures must have the same fields in the same order. One more in the source comes into the target.
bool settle_fields(Mm &t, const Mm &src) {
    if (!(t.isstruct() || src.isstruct()) || src.size() == 0) return true;
    if (!src.isstruct()) {
        error("In the assignment x(...)=y, x was a structure array but y was not a structure");
        return false;
    }
    int nf = t.getnfields(), more = src.getnfields() - nf;
    bool same = more == 0 || more == 1;
    for (int k = 0; same && k < nf; ++k) same = t.findfield(src.getfields()[k], 0) == k;
    if (!same) {
        error("In the assignment x(...)=y, x and y (structures) must have identical members");
        return false;
    }
    if (more == 0) return true;

    Mm wider = t;
    if (wider.addfield(src.getfields()[nf], 0) != nf) return false;
    Mm place = nf + 1.0;
    for (int k = 0; k < wider.getnnz(); ++k) {
        Mm &values = re<Mm>(wider)[k];
        values.br(place) = nop_M;
        if (values.gettype() != kn_Mm || values.getnnz() <= nf) return false;
    }
    t = wider;
    return true;
}

// t(...) = src or t{...} = src by the engine that it takes, or the general one.
bool store(Mm &t, Mr_idx_type kind, const Subscripts &subscripts, const Mm &source, bool general = false) {
    Kept kept(source, t);
    KeptSubscripts s(subscripts, t);
    const Mm *src = &*kept;
    std::optional<Mm> converted;
    if (kind != Mr_brace) {
        if (src->gettype() == kn_none && s.n > 0) {
            src->warn_uninit();
            return false;
        }
        if (!settle_type(t, *kept, src, converted) || !settle_fields(t, *src)) return false;
    }
    general = general || kind != Mr_paren || t.isstruct() || !is_plain(t) || !is_plain(*src) || s.n > 2;
    for (int k = 0; k < s.n; ++k) general = general || !is_plain(s[k]);
    return by_type(t, [&](auto type) {
        using T = typename decltype(type)::type;
        if (general || s.n == 0) return vwcopyn<T>(t, kind, s, *src);
        return s.n == 1 ? vwcopy1<T>(t, *src, s[0]) : vwcopy2<T>(t, *src, s[0], s[1]);
    });
}

// t.member = src, in the first structure of t.
bool store_member(Mm &t, const char *member, const Mm &source) {
    Kept src(source, t);
    if (t.gettype() != kn_Mm) t = Mm(0, 0, 0, 0, 0, kn_Mm);
    if (t.gettype() != kn_Mm) return false;
    Mm first = 1.0;
    int f = t.findfield(member, 0);
    if (f >= 0) {
        Mm place = f + 1.0;
        if (t.getnnz() > 0 && !t.dirty())
            re<Mm>(t)->br(place) = *src;
        else
            t.br(first).br(place) = *src;
        return true;
    }
    // The name and the value come together or not at all.
    Mm wider = t;
    f = wider.addfield(member, 0);
    if (f < 0) return false;
    Mm place = f + 1.0;
    wider.br(first).br(place) = *src;
    if (wider.getnnz() < 1 || re<Mm>(wider)->getnnz() <= f) return false;
    t = wider;
    return true;
}

} // namespace

// Changes what a reference indexes.
bool RefAccess::modify(Mm &base, const Mr &r, const Mm &src) {
    if (has_method(base, "subsasgn")) {
        base = call_class_function("subsasgn", base, record(r), src);
        return true;
    }
    switch (r.kind) {
    case Mr_member: return store_member(base, r.member_name, src);
    case Mr_brace:
        if (base.gettype() != kn_Mm) {
            if (base.gettype() != kn_none && base.size() > 0) {
                error("'%s' is not a cell array and can't be {}-indexed", kn_display_name(base));
                return false;
            }
            base = Mm(0, 0, 0, 0, 0, kn_Mm);
            if (base.gettype() != kn_Mm) return false;
        }
        return store(base, Mr_brace, subscripts(r), src);
    case Mr_paren: return store(base, Mr_paren, subscripts(r), src);
    case Mr_none: break;
    }
    return false;
}

void RefAccess::assign(const Mr &r, const Mm &src) {
    if (r.kind == Mr_paren) {
        const Mm *t = container(r, &src);
        if (t && assign_element(const_cast<Mm &>(*t), subscripts(r), src)) return;
    } else if (const Mm *element = find(r, &src)) {
        const_cast<Mm &>(*element) = src;
        return;
    }
    if (r.chained) {
        Mm base(*r.base_r, 0);
        if (modify(base, r, src)) assign(*r.base_r, base);
    } else if (r.base_m) {
        modify(*r.base_m, r, src);
    } else {
        report_unset(nothing_M);
    }
}

} // namespace kn

using namespace kn;

// ---- Building ----

Mr::Mr()
    : nidx(-1), kind(Mr_none), member_name(nullptr), chained(0), base_m(nullptr),
      base_r(nullptr), owned{}, idx{} {}

Mr::Mr(const Mm &base) : Mr(base, Mr_paren, 0, nullptr) {}

Mr::Mr(const Mm &base, const char *member) : Mr(base, Mr_member, 0, nullptr) { member_name = member; }

Mr::Mr(const Mr &base, const char *member) : Mr(base, Mr_member, 0, nullptr) { member_name = member; }

Mr::Mr(const Mm &base, Mr_idx_type k, int n, const Mm *const *subscripts) : Mr() {
    base_m = const_cast<Mm *>(&base);
    if (base.getflags().scalar_only) base.getflags().scalar_only = 0;
    set(k, n, subscripts);
}

Mr::Mr(const Mr &base, Mr_idx_type k, int n, const Mm *const *subscripts) : Mr() {
    chained = 1;
    base_r = &base;
    set(k, n, subscripts);
}

Mr::Mr(const Mr &src)
    : nidx(src.nidx), kind(src.kind), member_name(src.member_name), chained(src.chained), base_m(src.base_m),
      base_r(src.base_r), owned{}, idx{src.idx[0], src.idx[1], src.idx[2], src.idx[3]} {}

Mr::~Mr() {
    for (int k = 0; k < 4; ++k)
        if (owned[k]) delete idx[k];
}

void Mr::set(Mr_idx_type k, int n, const Mm *const *subscripts) {
    kind = k;
    nidx = 0;
    // A cell as the only subscript stands for its elements.
    const Mm *list =
        n == 1 && k == Mr_paren && subscripts[0]->gettype() == kn_Mm && !subscripts[0]->isstruct()
            ? subscripts[0]
            : nullptr;
    if (list) n = list->getnnz() <= 4 ? list->getnnz() : 0;
    for (int l = 0; l < n; ++l) {
        const Mm &s = list ? re<Mm>(*list)[l] : *subscripts[l];
        if (list || s.gettype() != kn_double) {
            idx[l] = new Mm(s.gettype() == kn_double ? s : subsindex(s));
            owned[l] = 1;
        } else {
            idx[l] = &s;
        }
        nidx = l + 1;
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
    Mr owner::operator()(const Mm &a) const {                                        \
        const Mm *s[] = {&a};                                                        \
        return Mr(*this, Mr_paren, 1, s);                                            \
    }                                                                                \
    Mr owner::operator()(const Mm &a, const Mm &b) const {                           \
        const Mm *s[] = {&a, &b};                                                    \
        return Mr(*this, Mr_paren, 2, s);                                            \
    }                                                                                \
    Mr owner::operator()(const Mm &a, const Mm &b, const Mm &c) const {              \
        const Mm *s[] = {&a, &b, &c};                                                \
        return Mr(*this, Mr_paren, 3, s);                                            \
    }                                                                                \
    Mr owner::operator()(const Mm &a, const Mm &b, const Mm &c, const Mm &d) const { \
        const Mm *s[] = {&a, &b, &c, &d};                                            \
        return Mr(*this, Mr_paren, 4, s);                                            \
    }                                                                                \
    Mr owner::br(const Mm &a) const {                                                \
        const Mm *s[] = {&a};                                                        \
        return Mr(*this, Mr_brace, 1, s);                                            \
    }                                                                                \
    Mr owner::br(const Mm &a, const Mm &b) const {                                   \
        const Mm *s[] = {&a, &b};                                                    \
        return Mr(*this, Mr_brace, 2, s);                                            \
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

Mr Mm::operator()() const { return Mr(*this, Mr_paren, 0, nullptr); }
Mr Mm::member(const char *field) const { return Mr(*this, field); }

// ---- Reading and writing ----

Mm::Mm(const Mr &r, int strict) : Mm(RefAccess::read(r, strict)) {
    if (pi && flags.type == kn_double) getreal(0);
}

void Mr::operator=(const Mm &src) { RefAccess::assign(*this, src); }
void Mr::operator=(const Mr &src) { RefAccess::assign(*this, Mm(src, 1)); }

int Mr::size() const { return Mm(*this, 1).size(); }

// ---- The engines by name ----

void Mm::vwcopy1(const Mm &src, const Mm &i) {
    warn_uninit();
    const Mm *s[] = {&i};
    if (gettype() != kn_none) store(*this, Mr_paren, RefAccess::subscripts(Mr(*this, Mr_paren, 1, s)), src);
}

void Mm::vwcopy2(const Mm &src, const Mm &i, const Mm &j) {
    warn_uninit();
    const Mm *s[] = {&i, &j};
    if (gettype() != kn_none) store(*this, Mr_paren, RefAccess::subscripts(Mr(*this, Mr_paren, 2, s)), src);
}

void Mm::vwcopyn(const Mr &r, const Mm &src) {
    warn_uninit();
    if (gettype() == kn_none) return;
    if (RefAccess::kind(r) == Mr_brace && gettype() != kn_Mm) {
        error("'%s' is not a cell array and can't be {}-indexed", kn_display_name(*this));
        return;
    }
    store(*this, RefAccess::kind(r), RefAccess::subscripts(r), src, true);
}

void Mm::vwcopy0(const Mr &r) {
    warn_uninit();
    if (gettype() != kn_none) kn::vwcopy0(*this, KeptSubscripts(RefAccess::subscripts(r), *this));
}
