// The entry list of a sparse value: search, sort, merge, grow.

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/number_tests.h"
#include "base/scratch.h"
#include "quorvex/messages.h"
#include "value/header.h"

using namespace kn;

namespace {

// An index in the upper half, its slot in the lower one: sorting is stable.
using Place = std::uint64_t;

Place place(int position, int slot) {
    return static_cast<Place>(static_cast<unsigned>(position) ^ 0x80000000u) << 32 |
           static_cast<unsigned>(slot);
}
int position(Place p) { return static_cast<int>(static_cast<unsigned>(p >> 32) ^ 0x80000000u); }
int slot(Place p) { return static_cast<int>(p); }

// Sorts n places by their positions, digit by digit from the lowest; digits that are the same in all of them
// are passed over. The result is in `places` or in `other`.
Place *sort_by_digits(Place *places, Place *other, int n) {
    constexpr int bits = 11, bins = 1 << bits;
    Scratch<int> counts(bins);
    if (!counts) return nullptr;
    Place varying = 0;
    for (int k = 1; k < n; ++k) varying |= places[k] ^ places[0];
    for (int shift = 32; shift < 64; shift += bits) {
        auto digit = [shift](Place p) { return p >> shift & (bins - 1); };
        if (digit(varying) == 0) continue;
        int *at = counts.get();
        std::fill_n(at, bins, 0);
        for (int k = 0; k < n; ++k) ++at[digit(places[k])];
        for (int d = 0, before = 0; d < bins; ++d) before += std::exchange(at[d], before);
        for (int k = 0; k < n; ++k) other[at[digit(places[k])]++] = places[k];
        std::swap(places, other);
    }
    return places;
}

} // namespace

int Mm::search(int pos) const {
    if (error_sparse(*this, "::search")) return -1;
    const int *found = std::lower_bound(index, index + nnz, pos);
    return found != index + nnz && *found == pos ? static_cast<int>(found - index) : -1;
}

void Mm::sort() {
    if (error_sparse(*this, "::sort") || std::is_sorted(index, index + nnz) || !unshared(*this)) return;
    constexpr int few = 1000;
    Scratch<Place> places(nnz), other(nnz);
    Scratch<double> values(nnz);
    if (!places || !other || !values) return;
    for (int k = 0; k < nnz; ++k) places[k] = place(index[k], k);
    const Place *sorted = places.get();
    if (nnz <= few)
        std::sort(places.get(), places.get() + nnz);
    else if (!(sorted = sort_by_digits(places.get(), other.get(), nnz)))
        return;
    for (int k = 0; k < nnz; ++k) index[k] = position(sorted[k]);
    for (double *plane : {addr(), addi()}) {
        if (!plane) continue;
        for (int k = 0; k < nnz; ++k) values[k] = plane[slot(sorted[k])];
        std::copy_n(values.get(), nnz, plane);
    }
}

void Mm::resparse() {
    if (error_sparse(*this, "::resparse") || !unshared(*this)) return;
    double *re = addr(), *im = addi();
    auto zero = [=](int k) { return !is_nonzero(re, im, k); };
    int kept = 0; // most values keep all entries
    while (kept < nnz && !zero(kept) && (kept == 0 || index[kept - 1] != index[kept])) ++kept;
    for (int k = kept; k < nnz; ++k) {
        if (zero(k)) continue;
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
    longer.nnz = n; // even where the extents hold fewer
    *this = longer;
}
