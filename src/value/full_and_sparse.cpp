// Between full and sparse values.
//
// A sparse value keeps its entries in the ascending order of their column-major positions, so both ways are
// one pass over the elements.
#include "base/number_tests.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace {

template <class Element> Mm nonzeros_of(const Mm &a) {
    kn_size n = a.getnnz();
    const Element *re = a.getpr(static_cast<Element *>(nullptr));
    const Element *im = a.getpi(static_cast<Element *>(nullptr));
    auto stored = [re, im](kn_size k) { return kn::is_nonzero(re, im, k); };

    kn_size nnz = 0;
    for (kn_size k = 0; k < n; k++) nnz += stored(k);
    Mm out(im != nullptr, 1, nnz, a.getndims(), a.getdims(), kn_double);
    if (kn::lacks(out, nnz)) return x_M;
    out.setlogical(a.islogical());

    double *x = out.addr(), *y = out.addi();
    kn_size *index = out.getindex();
    for (kn_size k = 0, e = 0; e < nnz; k++) {
        if (!stored(k)) continue;
        x[e] = re[k];
        if (im) y[e] = im[k];
        index[e++] = k;
    }
    kn::check(out);
    return out;
}

template <class Element> Mm scattered(const Mm &a) {
    Mm out(a.isc(), 0, 0, a.getndims(), a.getdims(), a.gettype());
    const kn_size n = a.size();
    if (kn::lacks(out, n)) return x_M;
    auto scatter = [&](Element *to, const Element *from) {
        for (kn_size k = 0; k < n; k++) to[k] = 0;
        for (kn_size e = 0; e < a.getnnz(); e++) {
            kn_size k = a.getindex()[e];
            if (k >= 0 && k < n) to[k] = from[e];
        }
    };
    Element *tag = nullptr;
    scatter(out.getpr(tag), a.getpr(tag));
    if (a.isc()) scatter(out.getpi(tag), a.getpi(tag));
    kn::check(out);
    return out;
}

} // namespace

Mm full(const Mm &a) {
    if (!a.issparse()) return a;
    if (a.size() >= kn::too_large_for_full) {
        error("full: matrix too large");
        return x_M;
    }
    return a.gettype() == kn_uint8 ? scattered<unsigned char>(a) : scattered<double>(a);
}

Mm sparse(const Mm &a) {
    if (a.issparse()) return a;
    a.warn_uninit();
    if (error_numeric(a, "sparse")) return x_M;
    return a.gettype() == kn_uint8 ? nonzeros_of<unsigned char>(a) : nonzeros_of<double>(a);
}
