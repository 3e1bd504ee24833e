// Assignment through references, as fetch, modify, store back.
//
// A chain such as s(2).a{3}(4) = y is resolved from its end: what the last bracket indexes is read from the
// reference before it (tolerantly, so that what is missing can be created), changed, and assigned to that
// reference in turn. Where it is an existing, unshared element, it is changed in place instead: what the
// change doesn't touch is not copied.

#include "indexing/reference.h"

#include "quorvex/classes.h"
#include "quorvex/messages.h"
#include "value/constants.h"

namespace kn {

namespace {

// A value that has to last while the target changes: the value itself, or a holder of its block under its
// name when it is, or may lie in, the target.
class Kept {
  public:
    Kept() = default;
    Kept(const Mm &x, const Mm &target) { set(x, target); }
    ~Kept() {
        if (copy_) Header::lend_name(*copy_, nullptr);
    }
    const Mm *set(const Mm &x, const Mm &target) {
        value_ = &x;
        if (&x == &target || target.gettype() == kn_Mm) {
            value_ = &copy_.emplace(x);
            Header::lend_name(*copy_, x.getname());
        }
        return value_;
    }
    const Mm &operator*() const { return *value_; }

  private:
    const Mm *value_ = nullptr;
    std::optional<Mm> copy_;
};

// Subscripts that last while the target changes.
struct KeptSubscripts : Subscripts {
    KeptSubscripts(const Subscripts &s, const Mm &target) {
        n = s.n;
        for (int k = 0; k < n; ++k) at[k] = kept_[k].set(s[k], target);
    }

  private:
    Kept kept_[4];
};

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
    for (kn_size k = 0; k < wider.getnnz(); ++k) {
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
    general =
        general || kind != Mr_paren || t.isstruct() || !is_full_matrix(t) || !is_full_matrix(*src) || s.n > 2;
    for (int k = 0; k < s.n; ++k) general = general || !is_full_matrix(s[k]);
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
    if (wider.getnnz() < 1 || re<Mm>(wider)->gettype() != kn_Mm || re<Mm>(wider)->getnnz() <= f) return false;
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

namespace {

// Gives a value its shape back unless the change that was under way came to its end. Until then the engines
// change no element that the shape shows.
class Undo {
  public:
    explicit Undo(Mm &t)
        : t_(t), block_(Header::refcount(t)), pi_(Header::pi(t)), ndims_(t.getndims()), nnz_(t.getnnz()) {
        std::copy_n(t.getdims(), 4, dims_);
    }
    Undo(const Undo &) = delete;
    Undo &operator=(const Undo &) = delete;
    ~Undo() {
        if (done_) return;
        std::copy_n(dims_, 4, t_.getdims());
        t_.getndims() = ndims_;
        t_.getnnz() = nnz_;
        if (Header::refcount(t_) == block_) Header::pi(t_) = pi_;
    }
    void done() { done_ = true; }

  private:
    Mm &t_;
    const unsigned *block_;
    void *pi_;
    int ndims_;
    kn_size nnz_, dims_[4];
    bool done_ = false;
};

// Whether t(...) = src, or with another bracket, gives an unshared value what it gives a shared one, and
// either comes to its end or touches nothing but the shape.
bool can_be_undone(const Mm &t, Mr_idx_type kind, const Subscripts &s, const Mm &src) {
    if (t.getclassid()) return false;
    if (kind != Mr_paren) return t.gettype() == kn_Mm;
    bool empty = t.gettype() == kn_none || t.size() == 0;
    if (t.issparse() || (empty && t.gettype() != src.gettype())) return false;
    if (s.n == 1 && is_colon(s[0]) && src.size() > 1) return false; // takes the block of the source
    return !t.isstruct() ? !src.isstruct() : src.size() > 0 && src.getnfields() == t.getnfields();
}

} // namespace

// The last step of a chain on an existing, unshared element.
bool RefAccess::modify_in_place(const Mr &r, const Mm &src) {
    const Mm *element = r.base_r ? find(*r.base_r, to_assign(src)) : nullptr;
    if (!element || !can_be_undone(*element, r.kind, subscripts(r), src)) return false;
    const Mr *first = &r;
    while (first->base_r) first = first->base_r;
    Mm holder = *first->base_m; // should an error handler assign to the variable
    Mm &t = const_cast<Mm &>(*element);
    Undo undo(t);
    if (modify(t, r, src)) undo.done();
    return true;
}

// All but a single element that exists or follows the last.
void RefAccess::assign_any(const Mr &r, const Mm &src) {
    if (modify_in_place(r, src)) return;
    if (r.base_r) {
        Mm base(*r.base_r, 0);
        if (modify(base, r, src)) assign(*r.base_r, base);
    } else if (r.base_m) {
        modify(const_cast<Mm &>(*r.base_m), r, src);
    } else {
        report_unset(nothing_M);
    }
}

} // namespace kn

using namespace kn;

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
