// The compressed-column view of a sparse value: row indices and column starts, there and back.
#include "value/columns.h"

#include <algorithm>
#include <climits>

#include "base/scratch.h"
#include "quorvex/sparse.h"
#include "value/header.h"

namespace {

// Of the C heap, for the caller to free.
int *ints(size_t n) {
    int *p = static_cast<int *>(kn::heap_alloc(n * sizeof(int)));
    if (!p) kn::out_of_memory();
    return p;
}

// The column starts of a sparse value, closed by -1.
int *starts_of(const Mm &a) {
    const size_t cols = static_cast<size_t>(kn::column_count(a));
    int *jc = ints(cols + 2);
    if (!jc) return nullptr;
    kn::column_starts(a, jc);
    jc[cols + 1] = -1;
    return jc;
}

} // namespace

int *getIr(const Mm &a) {
    if (error_sparse(a, "getIr")) return nullptr;
    int *ir = ints(static_cast<size_t>(std::max(a.getnnz(), 2)));
    if (!ir) return nullptr;
    ir[0] = ir[1] = 0;
    kn::for_entries(a, [ir](int k, int row, int) { ir[k] = row; });
    return ir;
}

int *getJc(const Mm &a) { return error_sparse(a, "getJc") ? nullptr : starts_of(a); }

int *sparse_bounds(const Mm &a, int &least_row, int &largest_row, int &least_col, int &largest_col) {
    least_row = least_col = INT_MAX;
    largest_row = largest_col = -1;
    if (error_sparse(a, "sparse_bounds")) return nullptr;
    kn::for_entries(a, [&](int, int row, int column) {
        least_row = std::min(least_row, row);
        largest_row = std::max(largest_row, row);
        least_col = std::min(least_col, column);
        largest_col = column;
    });
    return starts_of(a);
}

void freeIrJc(int *ir, int *jc) {
    kn::heap_free(ir);
    kn::heap_free(jc);
}

void setIrJc(Mm &a, const int *ir, const int *jc) {
    if (error_sparse(a, "IrJc") || !ir || !jc || !kn::unshared(a)) return;
    const int rows = a.rows(), room = a.getp();
    int *index = a.getindex();
    for (ptrdiff_t c = 0, cols = kn::column_count(a); c < cols; c++)
        for (int k = jc[c]; k < jc[c + 1]; k++) {
            if (k < 0 || k >= room || ir[k] < 0 || ir[k] >= rows) {
                error("IrJc: entry outside of matrix %s", kn_display_name(a));
                return;
            }
            index[k] = static_cast<int>(ir[k] + c * rows);
        }
}
