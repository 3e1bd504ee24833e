// The product of a sparse and a full matrix, as a full one. It is what the product of both made sparse would
// be: terms are added in the order of the inner index, and a zero of the full matrix, which would not be
// stored, forms none, not even with an infinity or NaN.
#include <algorithm>
#include <cmath>

#include "base/number_tests.h"
#include "base/parallel.h"
#include "engine/multiply.h"
#include "quorvex/startup.h"
#include "value/constants.h"
#include "value/header.h"
#include "value/planes_as_numbers.h"

namespace kn {
namespace {

// Columns worth waking a thread for.
ptrdiff_t grain_of(ptrdiff_t work_per_column) { return (1 << 15) / (work_per_column + 1) + 1; }

// s times `width` columns of f from column c on: each element of f times a column of s. The entries of s, at
// least one, are read once; their positions show where columns end. After each column with entries but the
// last there is another one.
template <int width, class A, class B>
void times_columns(const Mm &s, const Mm &f, const Mm &out, ptrdiff_t c) {
    const kn_size *index = s.getindex(), *end = index + s.getnnz(), *e = index;
    const ptrdiff_t m = s.rows(), inner = s.cols(), last = end[-1] / m;
    const PlanesOf<A> x(s);
    const PlanesOf<B> y(f);
    const PlanesOf<ProductOf<A, B>> z(out);
    auto add_column = [&](ptrdiff_t r, auto is_in_column) {
        const ptrdiff_t shift = (c - r) * m;
        B factor[width];
        bool stored = true;
        for (int w = 0; w < width; ++w) stored &= is_nonzero(factor[w] = y[(c + w) * inner + r]);
        if (stored) {
            for (; is_in_column(e); ++e)
                for (int w = 0; w < width; ++w) z.add(shift + w * m + *e, x[e - index] * factor[w]);
            return;
        }
        const kn_size *first = e;
        while (is_in_column(e)) ++e;
        for (int w = 0; w < width; ++w)
            if (is_nonzero(factor[w]))
                for (const kn_size *k = first; k < e; ++k)
                    z.add(shift + w * m + *k, x[k - index] * factor[w]);
    };
    for (ptrdiff_t r = 0; r < last; ++r)
        add_column(r, [next = (r + 1) * m](const kn_size *entry) { return *entry < next; });
    add_column(last, [end](const kn_size *entry) { return entry < end; });
}

template <class A, class B> void sparse_times_full(const Mm &s, const Mm &f, const Mm &out) {
    if (s.getnnz() == 0) return;
    constexpr kn_size wide = 4;
    const ptrdiff_t n = f.cols(), blocks = (n + wide - 1) / wide;
    parallel_for(blocks, grain_of(wide * (s.getnnz() + s.cols())), [&](ptrdiff_t from, ptrdiff_t to) {
        ptrdiff_t c = wide * from, end = std::min(wide * to, n);
        for (; c + wide <= end; c += wide) times_columns<wide, A, B>(s, f, out, c);
        for (; c < end; ++c) times_columns<1, A, B>(s, f, out, c);
    });
}

// A row times columns of s: each is a sum over its entries.
template <class A, class B> void row_times_sparse(const Mm &f, const Mm &s, const Mm &out) {
    if (s.getnnz() == 0) return;
    const kn_size *index = s.getindex(), *end = index + s.getnnz(), *e = index;
    const ptrdiff_t inner = s.rows(), last = end[-1] / inner;
    const PlanesOf<A> x(f);
    const PlanesOf<B> y(s);
    const PlanesOf<ProductOf<A, B>> z(out);
    auto sum_column = [&](ptrdiff_t c, auto is_in_column) {
        ProductOf<A, B> sum{};
        for (; is_in_column(e); ++e) {
            const A factor = x[*e - c * inner];
            const ProductOf<A, B> term = factor * y[e - index];
            sum += is_nonzero(factor) ? term : ProductOf<A, B>();
        }
        z.set(c, sum);
    };
    for (ptrdiff_t c = 0; c < last; ++c)
        sum_column(c, [next = (c + 1) * inner](const kn_size *entry) { return *entry < next; });
    sum_column(last, [end](const kn_size *entry) { return entry < end; });
}

// f times column c of s: of each of its entries the multiple of a column of f.
template <class A, class B> void full_times_sparse(const Mm &f, const Mm &s, const Mm &out) {
    if (f.rows() == 1) return row_times_sparse<A, B>(f, s, out);
    const kn_size *index = s.getindex(), *end = index + s.getnnz(), m = f.rows(), inner = s.rows();
    const PlanesOf<A> x(f);
    const PlanesOf<B> y(s);
    const PlanesOf<ProductOf<A, B>> z(out);
    const ptrdiff_t work = m * (s.getnnz() / s.cols() + 1);
    parallel_for(s.cols(), grain_of(work), [&](ptrdiff_t from, ptrdiff_t to) {
        ptrdiff_t column = from * inner;
        const kn_size *e = std::lower_bound(index, end, column);
        for (ptrdiff_t c = from; c < to; ++c, column += inner)
            for (; e < end && *e < column + inner; ++e) {
                const B factor = y[e - index];
                const ptrdiff_t other = (*e - column) * m;
                if (is_finite(factor)) // a zero adds nothing
                    for (kn_size r = 0; r < m; ++r) z.add(c * m + r, x[other + r] * factor);
                else
                    for (kn_size r = 0; r < m; ++r)
                        if (is_nonzero(x[other + r])) z.add(c * m + r, x[other + r] * factor);
            }
    });
}

} // namespace

Mm mixed_product(const Mm &a, const Mm &b) {
    const kn_size dims[] = {a.rows(), b.cols()}, n = product(2, dims);
    if (n >= too_large_for_full) { // as `full` says of such a product
        error("full: matrix too large");
        return x_M;
    }
    Mm out(a.isc() || b.isc(), 0, 0, dims[0], dims[1], kn_double);
    if (n < 0 || lacks(out, n)) return x_M;
    std::fill_n(out.addr(), n, 0.0);
    if (out.isc()) std::fill_n(out.addi(), n, 0.0);
    by_planes(a, b, [&out]<class A, class B>(const Mm &x, const Mm &y, A, B) {
        if (x.issparse())
            sparse_times_full<A, B>(x, y, out);
        else
            full_times_sparse<A, B>(x, y, out);
    });
    check(out);
    return out;
}

} // namespace kn
