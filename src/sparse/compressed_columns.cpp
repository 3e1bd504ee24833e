// Compressed columns of sparse values, there and back.
#include "sparse/compressed_columns.h"

#include <algorithm>
#include <climits>

#include "quorvex/sparse.h"
#include "value/header.h"
#include "value/sparse_walk.h"

namespace kn {
namespace {

kn_size entries_before(const Mm &a, ptrdiff_t cols) {
    const int64_t end = static_cast<int64_t>(cols) * a.rows();
    const kn_size *index = a.getindex();
    return static_cast<kn_size>(std::lower_bound(index, index + a.getnnz(), end) - index);
}

// A size beyond int makes the allocation fail, which is reported.
ptrdiff_t room_for(int64_t n) { return n <= size_max ? static_cast<ptrdiff_t>(n) : PTRDIFF_MAX; }

} // namespace

void column_starts(const Mm &a, ptrdiff_t cols, kn_size *starts) {
    const kn_size n = entries_before(a, cols);
    ptrdiff_t c = 0;
    for_entries(a, n, [&](kn_size k, int, kn_size column) {
        while (c <= column) starts[c++] = k;
    });
    while (c <= cols) starts[c++] = n;
}

void row_indices(const Mm &a, kn_size n, kn_size *rows) {
    for_entries(a, n, [rows](kn_size k, kn_size row, int) { rows[k] = row; });
}

CompressedColumns::CompressedColumns(int64_t rows, int64_t cols, int64_t room, bool is_complex)
    : m_(static_cast<kn_size>(rows)), n_(static_cast<kn_size>(cols)), is_complex_(is_complex),
      start_(room_for(cols + 1)), row_(room_for(room)), re_(room_for(room)),
      im_(is_complex ? room_for(room) : 0) {
    if (start_) start_[0] = 0;
}

CompressedColumns::CompressedColumns(const Mm &a, kn_size cols)
    : CompressedColumns(a.rows(), cols, entries_before(a, cols), a.isc()) {
    if (!*this) return;
    column_starts(a, cols, start());
    filled_ = cols;
    row_indices(a, entries(), row());
    std::copy_n(a.addr(), entries(), re());
    if (is_complex_) std::copy_n(a.addi(), entries(), im());
}

void CompressedColumns::add(kn_size row, double re, double im, bool kept) {
    if (!kept && re == 0 && im == 0) return;
    kn_size k = start_[filled_]++;
    row_[k] = row;
    re_[k] = re;
    if (is_complex_) im_[k] = im;
}

} // namespace kn

namespace {

// An array from the C heap; the caller frees it.
kn_size *ints(size_t n) {
    kn_size *p = static_cast<int *>(kn::heap_alloc(n * sizeof(kn_size)));
    if (!p) kn::out_of_memory();
    return p;
}

// The column starts of a sparse value, closed by -1.
kn_size *starts_of(const Mm &a) {
    const ptrdiff_t cols = kn::column_count(a);
    kn_size *jc = ints(static_cast<size_t>(cols) + 2);
    if (!jc) return nullptr;
    kn::column_starts(a, cols, jc);
    jc[cols + 1] = -1;
    return jc;
}

} // namespace

kn_size *getIr(const Mm &a) {
    if (error_sparse(a, "getIr")) return nullptr;
    kn_size *ir = ints(static_cast<size_t>(std::max(a.getnnz(), 2)));
    if (!ir) return nullptr;
    ir[0] = ir[1] = 0;
    kn::row_indices(a, a.getnnz(), ir);
    return ir;
}

kn_size *getJc(const Mm &a) { return error_sparse(a, "getJc") ? nullptr : starts_of(a); }

kn_size *sparse_bounds(const Mm &a, kn_size &least_row, kn_size &largest_row, kn_size &least_col, kn_size &largest_col) {
    least_row = least_col = size_max;
    largest_row = largest_col = -1;
    if (error_sparse(a, "sparse_bounds")) return nullptr;
    kn::for_entries(a, [&](int, kn_size row, kn_size column) {
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
    for (ptrdiff_t c = 0, cols = kn::column_count(a); c < cols; c++)
        for (kn_size k = jc[c]; k < jc[c + 1]; k++) {
            if (k < 0 || k >= room || ir[k] < 0 || ir[k] >= rows) {
                error("IrJc: entry outside of matrix %s", kn_display_name(a));
                return;
            }
            index[k] = static_cast<kn_size>(ir[k] + c * rows);
        }
}
