// Compressed columns of sparse values, there and back.
#include "sparse/compressed_columns.h"

#include <algorithm>

#include "quorvex/sparse.h"
#include "value/header.h"
#include "value/sparse_walk.h"

namespace kn {
namespace {

kn_size entries_before(const Mm &a, kn_size cols) {
    const kn_size *index = a.getindex();
    return std::lower_bound(index, index + a.getnnz(), cols * a.rows()) - index;
}

// Of the first n entries, in either kind of integer.
template <class I> void put_starts(const Mm &a, kn_size n, kn_size cols, I *starts) {
    kn_size c = 0;
    for_entries(a, n, [&](kn_size k, kn_size, kn_size column) {
        while (c <= column) starts[c++] = static_cast<I>(k);
    });
    while (c <= cols) starts[c++] = static_cast<I>(n);
}
template <class I> void put_rows(const Mm &a, kn_size n, I *rows) {
    for_entries(a, n, [rows](kn_size k, kn_size row, kn_size) { rows[k] = static_cast<I>(row); });
}

} // namespace

void column_starts(const Mm &a, kn_size cols, kn_size *starts) {
    put_starts(a, entries_before(a, cols), cols, starts);
}

void row_indices(const Mm &a, kn_size n, kn_size *rows) { put_rows(a, n, rows); }

CompressedColumns::CompressedColumns(int rows, int cols, int room, bool is_complex)
    : m_(rows), n_(cols), is_complex_(is_complex), start_(ptrdiff_t{cols} + 1), row_(room), re_(room),
      im_(is_complex ? room : 0) {
    if (start_) start_[0] = 0;
}

CompressedColumns::CompressedColumns(const Mm &a, kn_size cols)
    : CompressedColumns(static_cast<int>(a.rows()), static_cast<int>(cols),
                        static_cast<int>(entries_before(a, cols)), a.isc()) {
    if (!*this) return;
    const kn_size n = entries_before(a, cols);
    put_starts(a, n, cols, start());
    put_rows(a, n, row());
    filled_ = n_;
    std::copy_n(a.addr(), n, re());
    if (is_complex_) std::copy_n(a.addi(), n, im());
}

void CompressedColumns::add(int row, double re, double im, bool kept) {
    if (!kept && re == 0 && im == 0) return;
    int k = start_[filled_]++;
    row_[k] = row;
    re_[k] = re;
    if (is_complex_) im_[k] = im;
}

} // namespace kn

namespace {

// An array from the C heap; the caller frees it.
kn_size *sizes(size_t n) {
    kn_size *p = static_cast<kn_size *>(kn::heap_alloc(n * sizeof(kn_size)));
    if (!p) kn::out_of_memory();
    return p;
}

// The column starts of a sparse value, closed by -1.
kn_size *starts_of(const Mm &a) {
    const kn_size cols = kn::column_count(a);
    kn_size *jc = sizes(static_cast<size_t>(cols) + 2);
    if (!jc) return nullptr;
    kn::column_starts(a, cols, jc);
    jc[cols + 1] = -1;
    return jc;
}

} // namespace

kn_size *getIr(const Mm &a) {
    if (error_sparse(a, "getIr")) return nullptr;
    kn_size *ir = sizes(static_cast<size_t>(std::max<kn_size>(a.getnnz(), 2)));
    if (!ir) return nullptr;
    ir[0] = ir[1] = 0;
    kn::row_indices(a, a.getnnz(), ir);
    return ir;
}

kn_size *getJc(const Mm &a) { return error_sparse(a, "getJc") ? nullptr : starts_of(a); }

kn_size *sparse_bounds(const Mm &a, kn_size &least_row, kn_size &largest_row, kn_size &least_col,
                       kn_size &largest_col) {
    least_row = least_col = kn::size_max;
    largest_row = largest_col = -1;
    if (error_sparse(a, "sparse_bounds")) return nullptr;
    kn::for_entries(a, [&](kn_size, kn_size row, kn_size column) {
        least_row = std::min(least_row, row);
        largest_row = std::max(largest_row, row);
        least_col = std::min(least_col, column);
        largest_col = column;
    });
    return starts_of(a);
}

void freeIrJc(kn_size *ir, kn_size *jc) {
    kn::heap_free(ir);
    kn::heap_free(jc);
}

void setIrJc(Mm &a, const kn_size *ir, const kn_size *jc) {
    if (error_sparse(a, "IrJc") || !ir || !jc || !kn::unshared(a)) return;
    const kn_size rows = a.rows(), room = a.getp();
    kn_size *index = a.getindex();
    for (kn_size c = 0, cols = kn::column_count(a); c < cols; c++)
        for (kn_size k = jc[c]; k < jc[c + 1]; k++) {
            if (k < 0 || k >= room || ir[k] < 0 || ir[k] >= rows) {
                error("IrJc: entry outside of matrix %s", kn_display_name(a));
                return;
            }
            index[k] = ir[k] + c * rows;
        }
}
