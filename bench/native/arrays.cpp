#include "bench/native.h"

#include <algorithm>

namespace native {

void transpose(int m, const double *__restrict a, double *__restrict out) {
    constexpr int block = 16; // the best of 8 to 64
    for (int c0 = 0; c0 < m; c0 += block)
        for (int r0 = 0; r0 < m; r0 += block) {
            int c1 = std::min(c0 + block, m), r1 = std::min(r0 + block, m);
            for (int c = c0; c < c1; ++c)
                for (int r = r0; r < r1; ++r) out[c * m + r] = a[r * m + c];
        }
}

void join(int m, const double *const blocks[2][2], double *out) {
    for (int c = 0; c < 2 * m; ++c)
        for (int r = 0; r < 2; ++r) out = std::copy_n(blocks[r][c / m] + c % m * m, m, out);
}

// The first columns from the tile, the others from them.
void repeat(int rows, int cols, const double *tile, int m, double *out) {
    for (int c = 0; c < cols; ++c)
        for (int r = 0; r < m; r += rows)
            if (rows == 1)
                std::fill_n(out + c * m, m, tile[c]), r = m;
            else
                std::copy_n(tile + c * rows, std::min(rows, m - r), out + c * m + r);
    for (int c = cols; c < m; c += cols) std::copy_n(out, std::min(cols, m - c) * m, out + c * m);
}

} // namespace native
