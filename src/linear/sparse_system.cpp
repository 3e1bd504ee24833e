#include "linear/sparse_system.h"

#include <algorithm>

#include "base/scratch.h"

namespace kn {
void embed_complex(const CompressedColumns &a, CompressedColumns &out) {
    const int m = a.rows();
    for (int half = 0; half < 2; ++half)
        for (int c = 0; c < a.cols(); ++c) {
            out.begin_column();
            const int begin = a.start()[c], end = a.start()[c + 1];
            for (int k = begin; k < end; ++k) out.add(a.row()[k], half ? -a.im()[k] : a.re()[k], 0);
            for (int k = begin; k < end; ++k) out.add(a.row()[k] + m, half ? a.re()[k] : a.im()[k], 0);
        }
}

bool augment(const CompressedColumns &a, double s, CompressedColumns &out) {
    const int m = a.rows(), n = a.cols(), nnz = a.entries();
    // The entries by rows: those of row r are by_row[first[r]] to by_row[first[r + 1] - 1].
    Scratch<int> first(static_cast<ptrdiff_t>(m) + 2), by_row(nnz), column(nnz);
    if (!first || !by_row || !column) return false;
    std::fill_n(first.get(), m + 2, 0);
    for (int k = 0; k < nnz; ++k) ++first[a.row()[k] + 2];
    for (int r = 0; r < m; ++r) first[r + 2] += first[r + 1];
    for (int c = 0; c < n; ++c)
        for (int k = a.start()[c]; k < a.start()[c + 1]; ++k) {
            by_row[first[a.row()[k] + 1]++] = k;
            column[k] = c;
        }
    for (int r = 0; r < m; ++r) {
        out.begin_column();
        out.add(r, s, 0);
        for (int e = first[r]; e < first[r + 1]; ++e) {
            int k = by_row[e];
            out.add(m + column[k], a.re()[k], a.im() ? -a.im()[k] : 0);
        }
    }
    for (int c = 0; c < n; ++c) {
        out.begin_column();
        for (int k = a.start()[c]; k < a.start()[c + 1]; ++k)
            out.add(a.row()[k], a.re()[k], a.im() ? a.im()[k] : 0);
    }
    return true;
}

// Columns are visited in order. The next unvisited entry of column r is then in row c whenever column c has
// one in row r.
bool symmetric_pattern(const CompressedColumns &a, int *next) {
    const int n = a.cols();
    int diagonal = 0;
    std::copy_n(a.start(), n, next);
    for (int c = 0; c < n; ++c)
        for (int k = a.start()[c]; k < a.start()[c + 1]; ++k) {
            const int r = a.row()[k];
            if (next[r] == a.start()[r + 1] || a.row()[next[r]++] != c) return false;
            diagonal += r == c;
        }
    return diagonal == n;
}

// A column is matched to its diagonal entry if there is one. An unmatched column searches for a row along a
// path of columns, each of which gives its row to the one before and takes another (Duff, On algorithms for
// obtaining a maximum transversal, ACM Trans. Math. Softw. 7, 1981).
int match_rows(const CompressedColumns &a, int *row_of) {
    const int n = a.cols(), *start = a.start(), *row = a.row();
    Scratch<int> column_of(n), path(n), next(n), fresh(n), seen(n);
    if (!column_of || !path || !next || !fresh || !seen) return -1;
    for (int c = 0; c < n; ++c) row_of[c] = column_of[c] = seen[c] = -1, fresh[c] = start[c];
    for (int c = 0; c < n; ++c)
        if (std::find(row + start[c], row + start[c + 1], c) != row + start[c + 1])
            row_of[c] = column_of[c] = c;

    int without = 0;
    for (int c0 = 0; c0 < n; ++c0) {
        if (row_of[c0] >= 0) continue;
        int depth = 0, found = -1;
        auto enter = [&](int c) {
            path[depth] = c;
            seen[c] = c0;
            next[c] = start[c];
            while (fresh[c] < start[c + 1] && column_of[row[fresh[c]]] >= 0) ++fresh[c];
            if (fresh[c] < start[c + 1]) found = row[fresh[c]];
        };
        enter(c0);
        while (found < 0 && depth >= 0) {
            int c = path[depth];
            while (next[c] < start[c + 1] && seen[column_of[row[next[c]]]] == c0) ++next[c];
            if (next[c] == start[c + 1]) {
                --depth;
            } else {
                ++depth;
                enter(column_of[row[next[c]++]]);
            }
        }
        if (found < 0) ++without;
        for (; found >= 0 && depth >= 0; --depth) {
            column_of[found] = path[depth];
            std::swap(found, row_of[path[depth]]);
        }
    }
    return without;
}

} // namespace kn
