#include "bench/native.h"

#include <algorithm>

namespace native {

// By squares of one cache line, in strips that read the lines they share while these are cached; the best
// sizes of those measured.
void transpose(int m, const double *__restrict a, double *__restrict out) {
    constexpr int square = 8, strip = 200;
    for (int c0 = 0; c0 < m; c0 += strip)
        for (int r0 = 0; r0 < m; r0 += square)
            for (int c1 = c0; c1 < std::min(c0 + strip, m); c1 += square)
                for (int c = c1; c < c1 + square; ++c)
                    for (int r = r0; r < r0 + square; ++r) out[c * m + r] = a[r * m + c];
}

void join(int m, const double *const blocks[2][2], double *out) {
    for (int c = 0; c < 2 * m; ++c)
        for (int r = 0; r < 2; ++r) out = std::copy_n(blocks[r][c / m] + c % m * m, m, out);
}

// The first columns from the tile, the others from them.
void repeat(int rows, int cols, const double *tile, int m, double *out) {
    for (int c = 0; c < cols; ++c) {
        double *column = out + c * m;
        if (rows == 1)
            std::fill_n(column, m, tile[c]);
        else
            for (int r = 0; r < m; r += rows) std::copy_n(tile + c * rows, std::min(rows, m - r), column + r);
    }
    for (int c = cols; c < m; ++c) std::copy_n(out + c % cols * m, m, out + c * m);
}

} // namespace native
