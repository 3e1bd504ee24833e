#include "bench/native.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

int position(double subscript) { return static_cast<int>(subscript) - 1; }

void mark(int size, int n, const double *idx, char *marks) {
    std::memset(marks, 0, static_cast<std::size_t>(size));
    for (int k = 0; k < n; ++k) marks[position(idx[k])] = 1;
}

} // namespace

namespace native {

void rows(int m, int n, const double *a, int first, int last, double *out) {
    for (int c = 0; c < n; ++c) out = std::copy(a + c * m + first - 1, a + c * m + last, out);
}

void columns(int m, int n, const double *a, const double *idx, double *out) {
    for (int c = 0; c < n; ++c) out = std::copy_n(a + position(idx[c]) * m, m, out);
}

// No predictor learns a mask, so nothing here branches on one.
int pick(int n, const double *__restrict x, const double *__restrict mask, double *__restrict out) {
    int count = 0;
    for (int k = 0; k < n; ++k) {
        out[count] = x[k];
        count += mask[k] != 0;
    }
    return count;
}

void fill_where(int n, double *__restrict x, const double *__restrict mask, double v) {
    for (int k = 0; k < n; ++k) x[k] = mask[k] != 0 ? v : x[k];
}

void put_where(int n, double *__restrict x, const double *__restrict mask, const double *__restrict v) {
    for (int k = 0; k < n; ++k) {
        bool taken = mask[k] != 0;
        const double either[] = {x[k], *v}; // a conditional expression would become a branch
        x[k] = either[taken];
        v += taken;
    }
}

void put_at(int n, double *__restrict x, const double *__restrict idx, const double *__restrict v) {
    for (int k = 0; k < n; ++k) x[position(idx[k])] = v[k];
}

int erase(int size, const double *__restrict x, int n, const double *idx, char *__restrict marks,
          double *__restrict out) {
    mark(size, n, idx, marks);
    int count = 0;
    for (int k = 0; k < size; ++k) {
        out[count] = x[k];
        count += !marks[k];
    }
    return count;
}

int erase_columns(int m, int cols, const double *a, int n, const double *idx, char *marks, double *out) {
    mark(cols, n, idx, marks);
    int count = 0;
    for (int c = 0; c < cols; ++c)
        if (!marks[c]) std::copy_n(a + c * m, m, out + count++ * m);
    return count;
}

} // namespace native
