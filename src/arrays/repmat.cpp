// An array laid side by side with itself.
//
// Dimension by dimension: once the first tile is filled along the dimensions below k, the tiles along k are
// copies of one contiguous block.
#include <algorithm>

#include "base/scratch.h"
#include "quorvex/arrays.h"
#include "quorvex/builders.h"
#include "quorvex/indexing.h"
#include "quorvex/operations.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/number_argument.h"
#include "value/planes.h"
#include "value/size_arguments.h"
#include "value/sparse_walk.h"

namespace {

template <class T> void lay_tiles(T *to, const T *from, const kn_size *d, const kn_size *count) {
    // The runs of the first dimension, each at its place in the first tile and beside itself.
    ptrdiff_t steps[4] = {1};
    for (int k = 1; k < 4; k++) steps[k] = steps[k - 1] * d[k - 1] * count[k - 1];
    for (kn_size l = 0; l < d[3]; l++)
        for (kn_size k = 0; k < d[2]; k++)
            for (kn_size c = 0; c < d[1]; c++, from += d[0]) {
                T *run = to + c * steps[1] + k * steps[2] + l * steps[3];
                if (d[0] == 1)
                    kn::fill_run(run, *from, count[0]);
                else
                    for (kn_size t = 0; t < count[0]; t++) kn::copy_run(run + t * d[0], from, d[0]);
            }
    // Blocks along the other dimensions.
    for (int dim = 1; dim < 4; dim++) {
        ptrdiff_t block = steps[dim] * d[dim];
        for (kn_size l = 0; l < (dim < 3 ? d[3] : 1); l++)
            for (kn_size k = 0; k < (dim < 2 ? d[2] : 1); k++) {
                T *first = to + l * steps[3] + (dim < 2 ? k * steps[2] : 0);
                for (kn_size t = 1; t < count[dim]; t++) kn::copy_run(first + t * block, first, block);
            }
    }
}

Mm tiled(const Mm &x, const kn::Extents &count) {
    kn_size dims[4]; // an extent that is cut makes no array that could be allocated
    for (int k = 0; k < 4; k++)
        if (__builtin_mul_overflow(x.getdims()[k], count.d[k], &dims[k])) dims[k] = kn::size_max;
    Mm out;
    if (!kn::make_like(out, x, 4, dims)) return x_M;
    if (out.size() == 0) return out;
    kn::for_planes(out, x, [&](auto *to, const auto *from) { lay_tiles(to, from, x.getdims(), count.d); });
    kn::check(out);
    return out;
}

Mm tiled_entries(const Mm &x, kn_size down, kn_size across) {
    const kn_size m = x.rows(), entries[] = {x.getnnz(), down, across}, rows[] = {m, down},
                  columns[] = {x.cols(), across}, n = kn::product(3, entries),
                  dims[] = {kn::product(2, rows), kn::product(2, columns)};
    if (n < 0 || dims[0] < 0 || dims[1] < 0 || kn::product(2, dims) < 0) {
        kn::out_of_memory();
        return x_M;
    }
    Mm out(x.isc(), 1, n, 2, dims, kn_double);
    if (kn::lacks(out, n) || !out.issparse()) return x_M;
    kn_size e = 0;
    for (kn_size right = 0; n > 0 && right < across; right++)
        for (kn_size below = 0; below < down; below++)
            kn::for_entries(x, [&](kn_size k, kn_size row, kn_size column) {
                out.getindex()[e] = row + below * m + (column + right * x.cols()) * dims[0];
                out.addr()[e] = x.addr()[k];
                if (x.isc()) out.addi()[e] = x.addi()[k];
                e++;
            });
    if (!kn::sort_entries(out)) return x_M;
    out.setlogical(x.islogical());
    out.setstr(x.isstr());
    kn::check(out);
    return out;
}

Mm repeated(const Mm &x, std::initializer_list<const Mm *> counts) {
    x.warn_uninit();
    for (const Mm *c : counts)
        if (c->size() == 0) {
            error("repmat: count is empty");
            return x_M;
        }
    kn::Extents count = kn::extents_of("repmat", counts);
    if (!x.issparse()) return tiled(x, count);
    if (x.getndims() == 2 && count.d[2] == 1 && count.d[3] == 1)
        return tiled_entries(x, count.d[0], count.d[1]);
    return tiled(full(x), count);
}

} // namespace

Mm repmat(const Mm &x, const Mm &m) { return repeated(x, {&m}); }
Mm repmat(const Mm &x, const Mm &m, const Mm &n) { return repeated(x, {&m, &n}); }
Mm repmat(const Mm &x, const Mm &m, const Mm &n, const Mm &p) { return repeated(x, {&m, &n, &p}); }
Mm repmat(const Mm &x, const Mm &m, const Mm &n, const Mm &p, const Mm &q) {
    return repeated(x, {&m, &n, &p, &q});
}
