// Deep copies with their table of conversions, and the two ways to lose or gain an imaginary plane.

#include <cstring>

#include "base/number_tests.h"
#include "base/scratch.h"
#include "quorvex/messages.h"
#include "special/scalar_kernels.h"
#include "value/fields.h"
#include "value/header.h"

namespace kn {
namespace {

template <class To, class From> To converted(From x) { return static_cast<To>(x); }
template <> unsigned char converted<unsigned char, double>(double x) { return to_byte(x); }

// Element k of `from` becomes element at(k) of `to`.
template <class To, class From> void copy_plane(void *to, const void *from, kn_size n, const kn_size *at) {
    To *t = static_cast<To *>(to);
    const From *f = static_cast<const From *>(from);
    if (at) {
        for (kn_size k = 0; k < n; ++k) t[at[k]] = converted<To>(f[k]);
    } else {
        for (kn_size k = 0; k < n; ++k) t[k] = converted<To>(f[k]);
    }
}

template <class To> void copy_plane(void *to, const Mm &src, const void *from, const kn_size *at) {
    switch (src.gettype()) {
    case kn_none:
    case kn_double: copy_plane<To, double>(to, from, src.getnnz(), at); break;
    case kn_uint8: copy_plane<To, unsigned char>(to, from, src.getnnz(), at); break;
    case kn_Mm:
        if constexpr (requires(To x, Mm m) { x = m; }) copy_plane<To, Mm>(to, from, src.getnnz(), at);
        break;
    }
}

void copy_plane(kn_matrix_types t, void *to, const Mm &src, const void *from, const kn_size *at) {
    switch (t) {
    case kn_none:
    case kn_double: copy_plane<double>(to, src, from, at); break;
    case kn_uint8: copy_plane<unsigned char>(to, src, from, at); break;
    case kn_Mm: copy_plane<Mm>(to, src, from, at); break;
    }
}

size_t element_size(kn_matrix_types t) { return t == kn_uint8 ? 1 : sizeof(double); }

} // namespace
} // namespace kn

using namespace kn;

void Mm::deepcopy(const Mm &src, kn_matrix_types t) { deepcopy(src.isc(), src.issparse(), src, t); }
void Mm::deepcopy(int complex, const Mm &src, kn_matrix_types t) {
    deepcopy(complex, src.issparse(), src, t);
}

void Mm::deepcopy(int complex, int sparse, const Mm &src, kn_matrix_types t) {
    if (t == kn_none) t = src.flags.type;
    if (src.flags.type == kn_Mm && t != kn_Mm) {
        error("Can not convert %s into a numeric matrix", kn_display_name(src));
        return;
    }
    if (t == kn_Mm) complex = sparse = 0;

    Mm copy(complex, sparse, src.nnz, src.ndims, src.dims, t);
    kn_size n = sparse ? src.nnz : src.size();
    if (sparse ? !copy.index : lacks(copy, n) || copy.flags.type != t || (complex && !copy.pi)) return;
    if (sparse) copy.nnz = n; // which extend_nnz may have made more than the extents have
    const kn_size *scatter = src.index && !sparse ? src.index : nullptr;
    if (scatter && t == kn_Mm) {
        for (kn_size k = 0; k < n; ++k) static_cast<Mm *>(copy.pr)[k] = 0.0;
    } else if (scatter) {
        std::memset(copy.pr, 0, element_size(t) * static_cast<size_t>(n));
        if (complex) std::memset(copy.pi, 0, element_size(t) * static_cast<size_t>(n));
    }
    copy_plane(t, copy.pr, src, src.pr, scatter);
    if (complex && src.pi)
        copy_plane(t, copy.pi, src, src.pi, scatter);
    else if (complex)
        std::memset(copy.pi, 0, element_size(t) * static_cast<size_t>(n));
    if (sparse) {
        for (kn_size k = 0; k < src.nnz; ++k) copy.index[k] = src.index ? src.index[k] : k;
    }
    if (!copy_fields(copy, src)) return;
    copy.classid = src.classid;
    copy.flags = src.flags;
    copy.flags.sparse = sparse != 0;
    copy.flags.type = t;
    copy.flags.persistent = 0;
    copy.flags.global = 0;
    if (!sparse) check(copy); // sparse entries may still wait for sort and resparse
    *this = copy;
}

int Mm::getreal(int force) const {
    if (!pi) return 0;
    if (!force && flags.type == kn_double) {
        const double *im = addi();
        for (kn_size k = 0; k < nnz; ++k)
            if (is_nonzero(im[k])) return 1;
    }
    const_cast<Mm *>(this)->pi = nullptr;
    return 0;
}

void Mm::getcomplex() const {
    if (!pi) const_cast<Mm *>(this)->deepcopy(1, *this, flags.type);
}
