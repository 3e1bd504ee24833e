// One page of a value: consecutive elements in storage order, or the entries of a sparse value in that range.

#include "text/page.h"

#include <algorithm>

#include "value/header.h"

namespace kn {
namespace {

template <class T> void copy_part(const Mm &m, Mm &out, ptrdiff_t from, kn_size n) {
    T *type = nullptr;
    std::copy_n(m.getpr(type) + from, n, out.getpr(type));
    if (out.isc()) std::copy_n(m.getpi(type) + from, n, out.getpi(type));
}

} // namespace

Mm page(const Mm &m, kn_size k, kn_size l) {
    const kn_size *d = m.getdims();
    kn_size size = d[0] * d[1], n = size;
    kn_size start = (k - 1 + (l - 1) * d[2]) * size;
    ptrdiff_t from = start;
    if (m.issparse()) {
        const kn_size *index = m.getindex(), *end = index + m.getnnz();
        const kn_size *first = std::lower_bound(index, end, start);
        n = std::lower_bound(first, end, start + size) - first;
        from = first - index;
    }
    Mm out(m.isc(), m.issparse(), n, d[0], d[1], m.gettype());
    if (lacks(out, n)) return out;
    switch (m.gettype()) {
    case kn_none:
    case kn_double: copy_part<double>(m, out, from, n); break;
    case kn_uint8: copy_part<unsigned char>(m, out, from, n); break;
    case kn_Mm: copy_part<Mm>(m, out, from, n); break;
    }
    if (m.issparse())
        for (kn_size e = 0; e < n; ++e) out.getindex()[e] = m.getindex()[from + e] - start;
    out.setstr(m.isstr());
    out.setlogical(m.islogical());
    check(out);
    return out;
}

} // namespace kn
