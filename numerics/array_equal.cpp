// Equality of whole values.
#include <algorithm>

#include "quorvex/arrays.h"
#include "quorvex/sparse.h"
#include "quorvex/structures.h"

namespace {

template <class T> struct Planes {
    const T *re, *im;
    explicit Planes(const Mm &m)
        : re(m.getpr(static_cast<T *>(nullptr))), im(m.getpi(static_cast<T *>(nullptr))) {}
    double imaginary(int k) const { return im ? im[k] : 0; }
};

template <class T, class U> bool equal_elements(const Mm &a, const Mm &b) {
    Planes<T> x(a);
    Planes<U> y(b);
    int n = a.getnnz();
    for (int k = 0; k < n; k++)
        if (!(static_cast<double>(x.re[k]) == static_cast<double>(y.re[k]))) return false;
    if (x.im || y.im)
        for (int k = 0; k < n; k++)
            if (!(x.imaginary(k) == y.imaginary(k))) return false;
    return true;
}

template <class T> bool equal_to(const Mm &a, const Mm &b) {
    return b.gettype() == kn_uint8 ? equal_elements<T, unsigned char>(a, b) : equal_elements<T, double>(a, b);
}

// Entries that are stored but zero don't count.
bool equal_entries(const Mm &a, const Mm &b) {
    Planes<double> x(a), y(b);
    const int *ia = a.getindex(), *ib = b.getindex();
    auto next = [](const Planes<double> &p, int k, int n) {
        while (k < n && p.re[k] == 0 && p.imaginary(k) == 0) k++;
        return k;
    };
    int na = a.getnnz(), nb = b.getnnz();
    for (int ka = 0, kb = 0;; ka++, kb++) {
        ka = next(x, ka, na);
        kb = next(y, kb, nb);
        if (ka == na || kb == nb) return ka == na && kb == nb;
        if (ia[ka] != ib[kb] || !(x.re[ka] == y.re[kb]) || !(x.imaginary(ka) == y.imaginary(kb)))
            return false;
    }
}

bool equal(const Mm &a, const Mm &b);

bool equal_structures(const Mm &a, const Mm &b) {
    int n = a.getnfields();
    if (!a.isstruct() || !b.isstruct() || a.getclassid() != b.getclassid() || n != b.getnfields())
        return false;
    for (int f = 0; f < n; f++) {
        int g = b.findfield(a.getfields()[f], 0);
        if (g < 0) return false;
        for (int k = 1; k <= a.getnnz(); k++)
            if (!equal(a.mr(k).safebr(f + 1), b.mr(k).safebr(g + 1))) return false;
    }
    return true;
}

bool equal_cells(const Mm &a, const Mm &b) {
    for (int k = 1; k <= a.getnnz(); k++)
        if (!equal(a.mr(k), b.mr(k))) return false;
    return true;
}

bool equal(const Mm &a, const Mm &b) {
    if (!std::equal(a.getdims(), a.getdims() + 4, b.getdims())) return false;
    if ((a.gettype() == kn_Mm) != (b.gettype() == kn_Mm)) return false;
    if (a.isstruct() || b.isstruct()) return equal_structures(a, b);
    if (a.gettype() == kn_Mm) return equal_cells(a, b);
    if (a.issparse() || b.issparse()) return equal_entries(sparse(a), sparse(b));
    return a.gettype() == kn_uint8 ? equal_to<unsigned char>(a, b) : equal_to<double>(a, b);
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
