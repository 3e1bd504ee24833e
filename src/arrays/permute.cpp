// The dimensions of an array in another order. Runs are copied where the first dimension stays first;
// otherwise each plane of the two dimensions that are first in the source and in the result is transposed.
#include <algorithm>
#include <numeric>

#include "base/scratch.h"
#include "kernels/transpose_planes.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/startup.h"
#include "value/planes.h"
#include "value/sparse_walk.h"

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
    const kn_size n = v.getnnz();
    bool seen[4] = {}, right = n >= x.getndims() && n <= 4;
    for (kn_size k = 0; right && k < n; k++) {
        const int d = double_to_int(v.addr()[k]) - 1;
        right = d >= 0 && d < n && v.addr()[k] == d + 1 && !seen[d];
        if (right) seen[order.of[k] = d] = true;
    }
    if (!right)
        error("%s: order must name each of the dimensions 1 to %td once", name,
              std::max<kn_size>(x.getndims(), n));
    return right;
}

// Extents and, along them, steps in the result and in the source.
struct Walk {
    kn_size d[4];
    ptrdiff_t to[4], from[4];

    Walk(const Mm &x, const Order &order) {
        ptrdiff_t steps[4] = {1}, step = 1;
        for (int k = 1; k < 4; k++) steps[k] = steps[k - 1] * x.getdims()[k - 1];
        for (int k = 0; k < 4; k++) {
            const int source = order.of[k];
            d[k] = x.getdims()[source];
            from[k] = steps[source];
            to[k] = step;
            step *= d[k];
        }
    }

    // The same with neighbours that stay neighbours as one dimension, and `first` the one along which the
    // source is contiguous.
    Walk merged(int &first) const {
        Walk w = *this;
        int n = 0;
        for (int k = 0; k < 4; k++) {
            if (d[k] == 1) continue;
            if (n > 0 && from[k] == w.from[n - 1] * w.d[n - 1]) {
                w.d[n - 1] *= d[k];
            } else {
                w.d[n] = d[k];
                w.to[n] = to[k];
                w.from[n++] = from[k];
            }
        }
        for (; n < 4; n++) {
            w.d[n] = 1;
            w.to[n] = w.from[n] = 0;
        }
        first = static_cast<int>(std::find(w.from, w.from + 4, 1) - w.from) % 4;
        return w;
    }
};

template <class T> void permute_elements(T *to, const T *from, const Walk &walk, bool negated) {
    int first, other[2], n = 0; // the dimensions outside the planes
    const Walk w = walk.merged(first);
    const int q = first == 0 ? 1 : first;
    for (int k = 1; k < 4; k++)
        if (k != q) other[n++] = k;
    auto [a, b] = other;
    for (kn_size l = 0; l < w.d[b]; l++)
        for (kn_size k = 0; k < w.d[a]; k++) {
            T *t = to + k * w.to[a] + l * w.to[b];
            const T *f = from + k * w.from[a] + l * w.from[b];
            if (first == 0)
                for (kn_size c = 0; c < w.d[q]; c++) kn::copy_run(t + c * w.to[q], f + c * w.from[q], w.d[0]);
            else
                kn::transpose_plane(kn::Transposition<T>{t, w.to[q], f, w.from[0], w.d[0], w.d[q]}, negated);
        }
}

// ---- Sparse values ----

Mm permute_entries(const Mm &x, const Walk &w) {
    kn_size nnz = x.getnnz();
    Mm out(x.isc(), 1, nnz, 4, w.d, kn_double);
    if (kn::lacks(out, nnz) || !out.issparse()) return x_M;
    for (kn_size k = 0; k < nnz; k++) {
        kn_size from = x.getindex()[k];
        kn_size to = 0;
        for (int d = 0; d < 4; d++) to += from / w.from[d] % w.d[d] * w.to[d];
        out.getindex()[k] = to;
    }
    kn::for_planes(out, x, [nnz](auto *to, const auto *from) { std::copy_n(from, nnz, to); });
    if (!kn::sort_entries(out)) return x_M;
    out.setlogical(x.islogical());
    out.setstr(x.isstr());
    kn::check(out);
    return out;
}

// The transpose of a sparse matrix: the entries of each row are counted, then distributed.
Mm transpose_entries(const Mm &x) {
    kn_size m = x.rows(), n = x.cols(), nnz = x.getnnz();
    Mm out(x.isc(), 1, nnz, n, m, kn_double);
    kn::Scratch<kn_size> place(m + 1);
    if (kn::lacks(out, nnz) || !out.issparse() || !place) return x_M;
    kn_size *at = place.get();
    std::fill_n(at, m + 1, 0);
    kn::for_entries(x, [at](kn_size, kn_size row, kn_size) { at[row + 1]++; });
    std::partial_sum(at, at + m + 1, at);
    kn_size *index = out.getindex();
    const double *from = x.addr(), *from_im = x.addi();
    double *to = out.addr(), *to_im = out.addi();
    kn::for_entries(x, [=](kn_size k, kn_size row, kn_size column) {
        kn_size e = at[row]++;
        index[e] = row * n + column;
        to[e] = from[k];
        if (to_im) to_im[e] = from_im[k];
    });
    out.setlogical(x.islogical());
    out.setstr(x.isstr());
    kn::check(out);
    return out;
}

Mm permuted(const Mm &x, const Order &order) {
    if (x.size() == 0) return x;
    Walk w(x, order);
    // A list of many more rows than entries is better sorted.
    bool transposes = x.getndims() == 2 && order.of[0] == 1 && order.of[1] == 0;
    if (x.issparse())
        return transposes && x.rows() / 4 <= x.getnnz() ? transpose_entries(x) : permute_entries(x, w);
    Mm out;
    if (!kn::make_like(out, x, 4, w.d)) return x_M;
    kn::for_planes(out, x, [&w](auto *to, const auto *from) { permute_elements(to, from, w, false); });
    kn::check(out);
    return out;
}

Order swapped() {
    Order o;
    std::swap(o.of[0], o.of[1]);
    return o;
}

// conj(transpose(x)) of a full complex matrix that is not a vector, in one pass.
Mm conjugate(const Mm &x) {
    Walk w(x, swapped());
    Mm out(1, 0, 0, 4, w.d, kn_double);
    if (kn::lacks(out, x.getnnz())) return x_M;
    permute_elements(out.addr(), x.addr(), w, false);
    permute_elements(out.addi(), x.addi(), w, true);
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
    if (x.rows() <= 1 || x.cols() <= 1) { // the elements keep their order
        Mm out = x;
        out.reshape(x.cols(), x.rows());
        return out;
    }
    return permuted(x, swapped());
}

Mm ctranspose(const Mm &x) {
    bool plain = x.gettype() == kn_double && !x.issparse() && x.getndims() == 2;
    if (x.isc() && plain && x.rows() > 1 && x.cols() > 1) return conjugate(x);
    return x.isc() ? conj(transpose(x)) : transpose(x);
}
