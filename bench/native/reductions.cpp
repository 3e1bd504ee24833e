#include "bench/native.h"

#include <algorithm>
#include <limits>

namespace {

// f from start on over each column (dim 1) or row (dim 2) of a, walking memory in order. `lanes` accumulators
// share a column; more than one change the order.
template <int lanes, class F>
void fold(int dim, int m, const double *__restrict a, double *__restrict out, double start, F f) {
    if (dim == 1) {
        for (int j = 0; j < m; ++j, a += m) {
            double part[lanes];
            std::fill_n(part, lanes, start);
            int k = 0;
            for (; k + lanes <= m; k += lanes)
                for (int l = 0; l < lanes; ++l) part[l] = f(part[l], a[k + l]);
            for (; k < m; ++k) part[0] = f(part[0], a[k]);
            for (int l = 1; l < lanes; ++l) part[0] = f(part[0], part[l]);
            out[j] = part[0];
        }
    } else {
        std::fill_n(out, m, start);
        for (int j = 0; j < m; ++j, a += m)
            for (int k = 0; k < m; ++k) out[k] = f(out[k], a[k]);
    }
}

} // namespace

namespace native {

void sum(int dim, int m, const double *a, double *out) {
    fold<32>(dim, m, a, out, 0, [](double s, double v) { return s + v; });
}

void mean(int dim, int m, const double *a, double *out) {
    sum(dim, m, a, out);
    for (int k = 0; k < m; ++k) out[k] /= m;
}

void max(int dim, int m, const double *a, double *out) {
    fold<32>(dim, m, a, out, -std::numeric_limits<double>::infinity(),
             [](double s, double v) { return v > s ? v : s; });
}

void any(int dim, int m, const double *a, double *out) {
    fold<32>(dim, m, a, out, 0, [](double s, double v) { return v != 0 ? 1 : s; });
}

void all(int dim, int m, const double *a, double *out) {
    fold<32>(dim, m, a, out, 1, [](double s, double v) { return v == 0 ? 0 : s; });
}

void cumsum(int dim, int m, const double *__restrict a, double *__restrict out) {
    if (dim == 1) {
        constexpr int together = 8; // columns, whose sums don't wait for one another; m is a multiple
        for (int j = 0; j < m; j += together, a += together * m, out += together * m) {
            double s[together] = {};
            for (int k = 0; k < m; ++k)
                for (int c = 0; c < together; ++c) out[k + c * m] = s[c] += a[k + c * m];
        }
    } else {
        std::copy_n(a, m, out);
        for (int j = 1; j < m; ++j, out += m) {
            a += m;
            for (int k = 0; k < m; ++k) out[m + k] = out[k] + a[k];
        }
    }
}

} // namespace native
