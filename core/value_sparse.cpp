// The entry list of a sparse value: search, sort, merge, grow.

#include <algorithm>
#include <cstring>

#include "core/header.h"
#include "core/scratch.h"
#include "quorvex/messages.h"

using namespace kn;

namespace {

bool is_zero(double x) { return x >= 0 && 0 >= x; }

} // namespace

int Mm::search(int pos) const {
    if (error_sparse(*this, "::search")) return -1;
    const int *found = std::lower_bound(index, index + nnz, pos);
    return found != index + nnz && *found == pos ? static_cast<int>(found - index) : -1;
}

void Mm::sort() {
    if (error_sparse(*this, "::sort") || std::is_sorted(index, index + nnz) || !unshared(*this)) return;
    Scratch<int> order(nnz), positions(nnz);
    Scratch<double> values(nnz);
    if (!order || !positions || !values) return;
    for (int k = 0; k < nnz; ++k) order[k] = k;
    std::sort(order.get(), order.get() + nnz,
              [this](int a, int b) { return index[a] != index[b] ? index[a] < index[b] : a < b; });
    for (int k = 0; k < nnz; ++k) positions[k] = index[order[k]];
    std::memcpy(index, positions.get(), sizeof(int) * static_cast<size_t>(nnz));
    for (double *plane : {addr(), addi()}) {
        if (!plane) continue;
        for (int k = 0; k < nnz; ++k) values[k] = plane[order[k]];
        std::memcpy(plane, values.get(), sizeof(double) * static_cast<size_t>(nnz));
    }
}

void Mm::resparse() {
    if (error_sparse(*this, "::resparse") || !unshared(*this)) return;
    double *re = addr(), *im = addi();
    int kept = 0;
    for (int k = 0; k < nnz; ++k) {
        if (is_zero(re[k]) && (!im || is_zero(im[k]))) continue;
        if (kept > 0 && index[kept - 1] == index[k]) {
            re[kept - 1] += re[k];
            if (im) im[kept - 1] += im[k];
            continue;
        }
        index[kept] = index[k];
        re[kept] = re[k];
        if (im) im[kept] = im[k];
        ++kept;
    }
    nnz = kept;
}

void Mm::extend_nnz(int n) {
    if (error_sparse(*this, "::extend_nnz") || n <= nnz) return;
    Mm longer(isc(), 1, n, ndims, dims, kn_double);
    if (!longer.index) return;
    auto extend = [&](auto *to, const auto *from) {
        std::copy(from, from + nnz, to);
        std::fill(to + nnz, to + n, 0);
    };
    extend(longer.addr(), addr());
    if (pi) extend(longer.addi(), addi());
    extend(longer.index, index);
    longer.nnz = n; // the extents may not have so many
    *this = longer;
}
