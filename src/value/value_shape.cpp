// Sizes and shape of a value: the header only, never the elements.

#include <algorithm>
#include <cstring>

#include "quorvex/messages.h"
#include "value/header.h"

kn_size Mm::size() const {
    if (ndims < 2 || ndims > 4) return -1;
    return flags.sparse ? kn::product(ndims, dims) : nnz;
}

kn_size Mm::size(int dim) const {
    if (dim >= 1 && dim <= 4) return dims[dim - 1];
    error("%s.size(dim): no such dimension=%d", kn_display_name(*this), dim);
    return 0;
}

kn_size Mm::length() const {
    kn_size longest = 0;
    for (kn_size d : dims) {
        if (d == 0) return 0;
        if (d > longest) longest = d;
    }
    return longest;
}

int Mm::nsingleton() const {
    for (int k = 0; k < 4; ++k)
        if (dims[k] > 1) return k + 1;
    return 1;
}

int Mm::vectordim() const {
    int found = 0;
    for (int k = 0; k < 4; ++k) {
        if (dims[k] <= 1) continue;
        if (found) return 0;
        found = k + 1;
    }
    return found ? found : 2;
}

void Mm::collapse() {
    while (ndims > 2 && dims[ndims - 1] <= 1) --ndims;
}

void Mm::reshape(kn_size r, kn_size c) {
    kn_size extents[2] = {r, c};
    if (r < 0 || c < 0 || kn::product(2, extents) != size()) {
        error("reshape: size=%td is different than %td*%td", size(), r, c);
        return;
    }
    reshape(2, extents);
}

void Mm::reshape(kn_size n, kn_extents extents) {
    const kn_size *d = extents.d;
    bool fits = n <= 4 || std::all_of(d + 4, d + n, [](kn_size extent) { return extent == 1; });
    n = std::min<kn_size>(n, 4);
    if (!fits || kn::product(n, d) != size()) {
        error("reshape: size=%td is different than the product of new dimensions", size());
        return;
    }
    if (size() > 0) {
        for (int k = 0; k < 4; ++k) dims[k] = k < n ? d[k] : 1;
    } else {
        std::memset(dims, 0, sizeof dims);
        n = 2;
    }
    ndims = n < 2 ? 2 : static_cast<int>(n);
    collapse();
}
