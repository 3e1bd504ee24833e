// Permutations, as rows of whole numbers from 1: columns by their number of entries, and a random one.
#include <algorithm>

#include "base/scratch.h"
#include "quorvex/builders.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "sparse/compressed_columns.h"
#include "value/header.h"

namespace {

// The permutation that puts the n keys in ascending order, equal ones in theirs.
template <class Key> Mm order_of(const Key *keys, kn_size n) {
    kn::Scratch<kn_size> order(n);
    Mm out(0, 0, 0, 1, n, kn_double);
    if (!order || kn::lacks(out, n)) return x_M;
    for (kn_size k = 0; k < n; k++) order[k] = k;
    std::sort(order.get(), order.get() + n,
              [keys](kn_size a, kn_size b) { return keys[a] != keys[b] ? keys[a] < keys[b] : a < b; });
    for (kn_size k = 0; k < n; k++) out.addr()[k] = order[k] + 1;
    return out;
}

} // namespace

Mm colperm(const Mm &a) {
    if (error_2d(a, "colperm")) return x_M;
    Mm s = sparse(a);
    if (!s.issparse()) return x_M;
    kn_size n = s.cols();
    kn::Scratch<kn_size> counts(n + 1);
    if (!counts) return x_M;
    kn::column_starts(s, n, counts.get());
    for (kn_size c = 0; c < n; c++) counts[c] = counts[c + 1] - counts[c];
    return order_of(counts.get(), n);
}

Mm colmmd(const Mm &a) { return colperm(a); }

Mm randperm(const Mm &n) {
    Mm keys = randM(1.0, n);
    return order_of(keys.addr(), keys.getnnz());
}
