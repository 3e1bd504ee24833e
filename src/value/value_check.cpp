// What holds for every value between operations.

#ifndef NDEBUG

#include <cassert>

#include "value/header.h"

void kn::check(const Mm &m) {
    const kn_size *d = m.getdims();
    const kn_size size = product(4, d), nnz = m.getnnz();
    const int ndims = m.getndims();
    assert(ndims >= 2 && ndims <= 4);
    assert(nnz >= 0 && size >= 0);
    assert(*Header::refcount(m) >= 1);
    assert(m.getp() >= nnz);
    for (int k = ndims; k < 4; ++k) assert(d[k] == (size > 0 ? 1 : 0));
    if (m.issparse()) {
        assert(m.gettype() == kn_double && nnz <= size);
        const kn_size *index = m.getindex();
        for (kn_size k = 0; k < nnz; ++k)
            assert(index[k] >= 0 && index[k] < size && (k == 0 || index[k - 1] < index[k]));
    } else {
        assert(nnz == size);
        assert(size > 0 || (d[0] == 0 && d[1] == 0));
    }
    if (m.isstruct()) {
        assert(m.gettype() == kn_Mm);
        const char **fields = m.getfields();
        int end = 0;
        while (fields[end]) ++end;
        assert(end >= m.getnfields());
    } else {
        assert(m.getnfields() == 0);
    }
}

#endif
