// The dimensions of an array in another order. The kernel copies runs where the first dimension stays first;
// otherwise it transposes, in square blocks that fit the cache, each plane of the two dimensions that are
// first in the source and in the result.
#include <algorithm>
#include <numeric>

#include "core/planes.h"
#include "core/scratch.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/startup.h"

namespace {

// A permutation of the four dimensions, from 0; those beyond the given ones stay.
struct Order {
    int of[4] = {0, 1, 2, 3};

    Order inverse() const {
        Order inverse;
        for (int k = 0; k < 4; k++) inverse.of[of[k]] = k;
        return inverse;
    }
};

bool read_order(const char *name, const Mm &x, const Mm &values, Order &order) {
    Mm v = mdouble(values);
    int n = v.getnnz();
    bool seen[4] = {}, right = n >= x.getndims() && n <= 4;
    for (int k = 0; right && k < n; k++) {
        int d = double_to_int(v.addr()[k]) - 1;
        right = d >= 0 && d < n && v.addr()[k] == d + 1 && !seen[d];
        if (right) seen[order.of[k] = d] = true;
    }
    if (!right)
        error("%s: order must name each of the dimensions 1 to %d once", name, std::max(x.getndims(), n));
    return right;
}

// A plane: element (r,c) goes from r * from_step + c to r + c * to_step. Blocks of 16 doubles square.
template <class T>
void transpose_plane(T *to, ptrdiff_t to_step, const T *from, ptrdiff_t from_step, int rows, int cols) {
    constexpr int block = 16;
    for (int c0 = 0; c0 < cols; c0 += block) {
        int c1 = std::min(c0 + block, cols);
        for (int r0 = 0; r0 < rows; r0 += block) {
            int r1 = std::min(r0 + block, rows);
            for (int c = c0; c < c1; c++)
                for (int r = r0; r < r1; r++) to[r + c * to_step] = from[r * from_step + c];
        }
    }
}

// Extents and, along them, steps in the result and in the source.
struct Walk {
    int d[4];
    ptrdiff_t to[4], from[4];
    int first = 0; // the dimension of the result along which the source is contiguous

    Walk(const Mm &x, const Order &order) {
        ptrdiff_t steps[4] = {1}, step = 1;
        for (int k = 1; k < 4; k++) steps[k] = steps[k - 1] * x.getdims()[k - 1];
        for (int k = 0; k < 4; k++) {
            int source = order.of[k];
            d[k] = x.getdims()[source];
            from[k] = steps[source];
            to[k] = step;
            step *= d[k];
            if (source == 0) first = k;
        }
    }
};

template <class T> void permute_elements(T *to, const T *from, const Walk &w) {
    int other[2], n = 0; // the dimensions outside the planes
    int q = w.first == 0 ? 1 : w.first;
    for (int k = 1; k < 4; k++)
        if (k != q) other[n++] = k;
    auto [a, b] = other;
    for (int l = 0; l < w.d[b]; l++)
        for (int k = 0; k < w.d[a]; k++) {
            T *t = to + k * w.to[a] + l * w.to[b];
            const T *f = from + k * w.from[a] + l * w.from[b];
            if (w.first == 0)
                for (int c = 0; c < w.d[q]; c++) std::copy_n(f + c * w.from[q], w.d[0], t + c * w.to[q]);
            else
                transpose_plane(t, w.to[q], f, w.from[0], w.d[0], w.d[q]);
        }
}

// ---- Sparse values ----

// Entry k of the result is entry source[k] of x; by rows of x, so that the positions ascend. Counts per row,
// then places.
bool order_by_rows(const Mm &x, int *source) {
    int m = x.rows(), nnz = x.getnnz();
    const int *index = x.getindex();
    kn::Scratch<int> place(m + ptrdiff_t{1});
    if (!place) return false;
    std::fill_n(place.get(), m + 1, 0);
    for (int k = 0; k < nnz; k++) place[index[k] % m + 1]++;
    std::partial_sum(place.get(), place.get() + m + 1, place.get());
    for (int k = 0; k < nnz; k++) source[place[index[k] % m]++] = k;
    return true;
}

Mm permute_entries(const Mm &x, const Walk &w) {
    int nnz = x.getnnz();
    Mm out(x.isc(), 1, nnz, 4, w.d, kn_double);
    kn::Scratch<int> source(nnz);
    if (kn::lacks(out, nnz) || !out.issparse() || !source) return x_M;
    bool matrix = x.getndims() == 2 && x.rows() / 4 <= nnz;
    if (!matrix)
        std::iota(source.get(), source.get() + nnz, 0);
    else if (!order_by_rows(x, source.get()))
        return x_M;

    for (int k = 0; k < nnz; k++) {
        int from = x.getindex()[source[k]];
        ptrdiff_t to = 0;
        for (int d = 0; d < 4; d++) to += from / w.from[d] % w.d[d] * w.to[d];
        out.getindex()[k] = static_cast<int>(to);
        out.addr()[k] = x.addr()[source[k]];
        if (out.isc()) out.addi()[k] = x.addi()[source[k]];
    }
    out.sort();
    out.setlogical(x.islogical());
    out.setstr(x.isstr());
    kn::check(out);
    return out;
}

Mm permuted(const Mm &x, const Order &order) {
    if (x.size() == 0) return x;
    Walk w(x, order);
    if (x.issparse()) return permute_entries(x, w);
    Mm out;
    if (!kn::make_like(out, x, 4, w.d)) return x_M;
    kn::for_planes(out, x, [&w](auto *to, const auto *from) { permute_elements(to, from, w); });
    kn::check(out);
    return out;
}

} // namespace

Mm permute(const Mm &x, const Mm &order) {
    x.warn_uninit();
    Order o;
    return read_order("permute", x, order, o) ? permuted(x, o) : x_M;
}

Mm ipermute(const Mm &x, const Mm &order) {
    x.warn_uninit();
    Order o;
    return read_order("ipermute", x, order, o) ? permuted(x, o.inverse()) : x_M;
}

Mm transpose(const Mm &x) {
    x.warn_uninit();
    if (error_2d(x, "transpose")) return x_M;
    if (x.rows() <= 1 || x.cols() <= 1) { // the elements stand in the same order
        Mm out = x;
        out.reshape(x.cols(), x.rows());
        return out;
    }
    Order swapped;
    std::swap(swapped.of[0], swapped.of[1]);
    return permuted(x, swapped);
}

Mm ctranspose(const Mm &x) { return x.isc() ? conj(transpose(x)) : transpose(x); }
