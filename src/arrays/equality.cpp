// Equality of whole values.
#include <algorithm>

#include "quorvex/arrays.h"
#include "quorvex/sparse.h"
#include "quorvex/structures.h"
#include "value/fields.h"
#include "value/nesting.h"

namespace {

template <class T> struct Planes {
    const T *re, *im;
    explicit Planes(const Mm &m)
        : re(m.getpr(static_cast<T *>(nullptr))), im(m.getpi(static_cast<T *>(nullptr))) {}
    double imaginary(kn_size k) const { return im ? im[k] : 0; }
};

template <class T, class U> bool equal_elements(const Mm &a, const Mm &b) {
    Planes<T> x(a);
    Planes<U> y(b);
    kn_size n = a.getnnz();
    for (kn_size k = 0; k < n; k++)
        if (!(static_cast<double>(x.re[k]) == static_cast<double>(y.re[k]))) return false;
    if (x.im || y.im)
        for (kn_size k = 0; k < n; k++)
            if (!(x.imaginary(k) == y.imaginary(k))) return false;
    return true;
}

template <class T> bool equal_to(const Mm &a, const Mm &b) {
    return b.gettype() == kn_uint8 ? equal_elements<T, unsigned char>(a, b) : equal_elements<T, double>(a, b);
}

// Entries that are stored but zero don't count.
bool equal_entries(const Mm &a, const Mm &b) {
    Planes<double> x(a), y(b);
    const kn_size *ia = a.getindex(), *ib = b.getindex();
    auto next = [](const Planes<double> &p, kn_size k, kn_size n) {
        while (k < n && p.re[k] == 0 && p.imaginary(k) == 0) k++;
        return k;
    };
    kn_size na = a.getnnz(), nb = b.getnnz();
    for (kn_size ka = 0, kb = 0;; ka++, kb++) {
        ka = next(x, ka, na);
        kb = next(y, kb, nb);
        if (ka == na || kb == nb) return ka == na && kb == nb;
        if (ia[ka] != ib[kb] || !(x.re[ka] == y.re[kb]) || !(x.imaginary(ka) == y.imaginary(kb)))
            return false;
    }
}

// Extents and kind, the names of fields, and the elements of what holds no values.
bool alike(const Mm &a, const Mm &b) {
    if (!kn::same_size(a, b)) return false;
    if ((a.gettype() == kn_Mm) != (b.gettype() == kn_Mm) || a.isstruct() != b.isstruct()) return false;
    if (a.isstruct()) {
        if (a.getclassid() != b.getclassid() || a.getnfields() != b.getnfields()) return false;
        return std::all_of(a.getfields(), a.getfields() + a.getnfields(),
                           [&](const char *name) { return kn::find_field(b, name) >= 0; });
    }
    if (a.gettype() == kn_Mm) return true;
    if (a.issparse() || b.issparse()) return equal_entries(sparse(a), sparse(b));
    return a.gettype() == kn_uint8 ? equal_to<unsigned char>(a, b) : equal_to<double>(a, b);
}

// Two values whose elements are compared; of a structure, the cells of the fields of one element.
struct Step {
    const Mm *a, *b;
    const Mm *a_names, *b_names; // the structures, else null
    kn_size next;
};

// An element that is missing counts as empty.
const Mm &value_of(const Mm &cell, kn_size k) {
    return cell.gettype() == kn_Mm && k < cell.getnnz() ? kn::element_at(cell, k) : nop_M;
}

bool equal(const Mm &a, const Mm &b) {
    kn::Path<Step> path;
    const Mm *x = &a, *y = &b;
    for (;;) {
        if (x && !alike(*x, *y)) return false;
        if (x && x->gettype() == kn_Mm && !path.push({x, y, nullptr, nullptr, 0})) return false;
        if (path.empty()) return true;
        const Step step = path.top();
        x = nullptr;
        if (step.next == (step.a_names ? step.a_names->getnfields() : step.a->getnnz())) {
            path.pop();
            continue;
        }
        const kn_size k = path.top().next++;
        if (step.a_names) {
            x = &value_of(*step.a, k);
            y = &value_of(*step.b, kn::find_field(*step.b_names, step.a_names->getfields()[k]));
        } else if (step.a->isstruct()) {
            if (!path.push({&kn::element_at(*step.a, k), &kn::element_at(*step.b, k), step.a, step.b, 0}))
                return false;
        } else {
            x = &kn::element_at(*step.a, k);
            y = &kn::element_at(*step.b, k);
        }
    }
}

} // namespace

Mm isequal(const Mm &a, const Mm &b) {
    a.warn_uninit();
    b.warn_uninit();
    return mlogical(equal(a, b) ? 1.0 : 0.0);
}

Mm isequal(const Mm &a, const Mm &b, const Mm &c) {
    Mm first = isequal(a, b);
    return first.r() != 0 ? isequal(a, c) : first;
}

Mm isequal(const Mm &a, const Mm &b, const Mm &c, const Mm &d) {
    Mm first = isequal(a, b, c);
    return first.r() != 0 ? isequal(a, d) : first;
}
