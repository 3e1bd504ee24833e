// The entry list of a sparse value: search, sort, merge, grow.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "base/number_tests.h"
#include "base/scratch.h"
#include "quorvex/messages.h"
#include "value/header.h"

using namespace kn;

namespace {

// The number of an entry, above it where there is room its index: what sorts first is first.
using Place = std::uint64_t;

// Sorts n places by their bits from `first` on, digit by digit from the lowest; digits that are the same in
// all of them are passed over. The result is in `places` or in `other`.
Place *sort_by_digits(Place *places, Place *other, kn_size n, int first) {
    constexpr int bits = 11, bins = 1 << bits;
    Scratch<kn_size> counts(bins);
    if (!counts) return nullptr;
    Place varying = 0;
    for (kn_size k = 1; k < n; ++k) varying |= places[k] ^ places[0];
    for (int shift = first; shift < 64; shift += bits) {
        auto digit = [shift](Place p) { return p >> shift & (bins - 1); };
        if (digit(varying) == 0) continue;
        kn_size *at = counts.get();
        std::fill_n(at, bins, kn_size(0));
        for (kn_size k = 0; k < n; ++k) ++at[digit(places[k])];
        kn_size before = 0;
        for (int d = 0; d < bins; ++d) before += std::exchange(at[d], before);
        for (kn_size k = 0; k < n; ++k) other[at[digit(places[k])]++] = places[k];
        std::swap(places, other);
    }
    return places;
}

} // namespace

kn_size Mm::search(kn_size pos) const {
    if (error_sparse(*this, "::search")) return -1;
    const kn_size *found = std::lower_bound(index, index + nnz, pos);
    return found != index + nnz && *found == pos ? found - index : -1;
}

void Mm::sort() {
    if (error_sparse(*this, "::sort") || std::is_sorted(index, index + nnz) || !unshared(*this)) return;
    constexpr kn_size few = 1000;
    Scratch<Place> places(nnz), other(nnz);
    if (!places || !other) return;
    const int below =
        static_cast<int>(std::bit_width(static_cast<Place>(nnz))); // bits of a number of an entry
    const bool fits = *std::max_element(index, index + nnz) >> (63 - below) == 0;
    for (kn_size k = 0; k < nnz; ++k)
        places[k] = static_cast<Place>(k) | (fits ? Place(index[k]) << below : 0);
    const Place *sorted = places.get();
    if (!fits)
        std::sort(places.get(), places.get() + nnz,
                  [at = index](Place a, Place b) { return at[a] != at[b] ? at[a] < at[b] : a < b; });
    else if (nnz <= few)
        std::sort(places.get(), places.get() + nnz);
    else if (!(sorted = sort_by_digits(places.get(), other.get(), nnz, below)))
        return;
    const Place slot = (Place{1} << below) - 1;
    auto arrange = [&](auto *plane) {
        auto *arranged =
            reinterpret_cast<decltype(plane)>(sorted == other.get() ? places.get() : other.get());
        for (kn_size k = 0; k < nnz; ++k) arranged[k] = plane[sorted[k] & slot];
        std::copy_n(arranged, nnz, plane);
    };
    arrange(addr());
    if (pi) arrange(addi());
    arrange(index);
}

void Mm::resparse() {
    if (error_sparse(*this, "::resparse") || !unshared(*this)) return;
    double *re = addr(), *im = addi();
    auto zero = [=](kn_size k) { return !is_nonzero(re, im, k); };
    kn_size kept = 0; // most values keep all entries
    while (kept < nnz && !zero(kept) && (kept == 0 || index[kept - 1] != index[kept])) ++kept;
    for (kn_size k = kept; k < nnz; ++k) {
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

void Mm::extend_nnz(kn_size n) {
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
