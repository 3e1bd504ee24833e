#include <algorithm>
#include <cstddef>

#include "bench/native.h"

namespace native {

// Counting passes: by rows into `work`, which is the transpose, and from there by columns.
void from_triplets(int n, const double *i, const double *j, const double *s, const Csc &work,
                   const Csc &out) {
    int *start = work.start;
    std::fill_n(start, out.rows + 2, 0);
    for (int k = 0; k < n; ++k) ++start[static_cast<int>(i[k]) + 1];
    for (int r = 0; r < out.rows; ++r) start[r + 2] += start[r + 1];
    for (int k = 0; k < n; ++k) {
        int at = start[static_cast<int>(i[k])]++;
        work.row[at] = static_cast<int>(j[k]) - 1;
        work.value[at] = s[k];
    }
    transpose(work, out);
    int kept = 0; // equal places are neighbours now
    for (int c = 0, k = 0; c < out.cols; ++c) {
        const int first = kept, end = out.start[c + 1];
        out.start[c] = first;
        for (; k < end; ++k) {
            if (kept > first && out.row[kept - 1] == out.row[k]) {
                out.value[kept - 1] += out.value[k];
            } else {
                out.row[kept] = out.row[k];
                out.value[kept++] = out.value[k];
            }
        }
    }
    out.start[out.cols] = kept;
}

void multiply(const Csc &a, const double *x, double *y) {
    std::fill_n(y, a.rows, 0.0);
    for (int c = 0; c < a.cols; ++c)
        for (int k = a.start[c]; k < a.start[c + 1]; ++k) y[a.row[k]] += a.value[k] * x[c];
}

void multiply_transposed(const Csc &a, const double *x, double *y) {
    for (int c = 0; c < a.cols; ++c) {
        double sum = 0;
        for (int k = a.start[c]; k < a.start[c + 1]; ++k) sum += x[a.row[k]] * a.value[k];
        y[c] = sum;
    }
}

void add(const Csc &a, const Csc &b, const Csc &out) {
    int n = 0;
    for (int c = 0; c < a.cols; ++c) {
        out.start[c] = n;
        int i = a.start[c], j = b.start[c];
        const int end_i = a.start[c + 1], end_j = b.start[c + 1];
        while (i < end_i || j < end_j) {
            int ri = i < end_i ? a.row[i] : a.rows, rj = j < end_j ? b.row[j] : a.rows, r = std::min(ri, rj);
            double v = 0;
            if (ri == r) v += a.value[i++];
            if (rj == r) v += b.value[j++];
            out.row[n] = r;
            out.value[n++] = v;
        }
    }
    out.start[a.cols] = n;
}

// Rows in ascending order, as a list that is sorted.
void product(const Csc &a, const Csc &b, const Csc &out, int *mark, double *sum) {
    int n = 0;
    std::fill_n(mark, a.rows, -1);
    for (int c = 0; c < b.cols; ++c) {
        out.start[c] = n;
        for (int e = b.start[c]; e < b.start[c + 1]; ++e)
            for (int k = a.start[b.row[e]]; k < a.start[b.row[e] + 1]; ++k) {
                int r = a.row[k];
                double term = a.value[k] * b.value[e];
                if (mark[r] != c) {
                    mark[r] = c;
                    sum[r] = term;
                    out.row[n++] = r;
                } else {
                    sum[r] += term;
                }
            }
        std::sort(out.row + out.start[c], out.row + n);
        for (int k = out.start[c]; k < n; ++k) out.value[k] = sum[out.row[k]];
    }
    out.start[b.cols] = n;
}

void transpose(const Csc &a, const Csc &out) {
    const int n = a.start[a.cols];
    std::fill_n(out.start, a.rows + 1, 0);
    for (int k = 0; k < n; ++k) ++out.start[a.row[k] + 1];
    for (int r = 0; r < a.rows; ++r) out.start[r + 1] += out.start[r];
    for (int c = 0; c < a.cols; ++c)
        for (int k = a.start[c]; k < a.start[c + 1]; ++k) {
            int at = out.start[a.row[k]]++;
            out.row[at] = c;
            out.value[at] = a.value[k];
        }
    for (int r = a.rows; r > 0; --r) out.start[r] = out.start[r - 1];
    out.start[0] = 0;
}

} // namespace native
