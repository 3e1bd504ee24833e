// Sparse matrices of triplets (row, column, value) in any order: sparse(i, j, s, m, n), spconvert.
#include <algorithm>

#include "base/scratch.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace {

// A list of n numbers, or one that is used for all.
struct Indices {
    const double *x;
    kn_size step;
    // Rounded; what is below 1, and NaN, is 0, and what no size reaches the largest one.
    kn_size operator[](kn_size k) const {
        constexpr double most = static_cast<double>(kn::largest_index);
        const double v = x[k * step] + 0.5;
        return v >= 1 ? v < most ? static_cast<kn_size>(v) : kn::size_max : 0;
    }
};

bool in_range(kn_size k, kn_size most, const char *too_small, const char *too_large) {
    if (k < 1) error("%s", too_small);
    if (k > most) error("%s", too_large);
    return k >= 1 && k <= most;
}

// Reports the first index outside.
bool report(const Indices &i, const Indices &j, kn_size n, kn_size rows, kn_size cols) {
    for (kn_size k = 0; k < n; k++)
        if (!in_range(i[k], rows, "sparse: non-positive row index encountered",
                      "sparse: out of bounds row index encountered") ||
            !in_range(j[k], cols, "sparse: non-positive column index encountered",
                      "sparse: out of bounds column index encountered"))
            break;
    return false;
}

// The positions of n triplets. False, after a report, when an index lies outside.
bool positions(kn_size *index, const Indices &i, const Indices &j, kn_size n, kn_size rows, kn_size cols) {
    bool outside = false;
    for (kn_size k = 0; k < n; k++) {
        const size_t row = static_cast<size_t>(i[k]) - 1, col = static_cast<size_t>(j[k]) - 1;
        outside |= (row >= static_cast<size_t>(rows)) | (col >= static_cast<size_t>(cols));
        index[k] = static_cast<kn_size>(col * static_cast<size_t>(rows) + row);
    }
    return !outside || report(i, j, n, rows, cols);
}

kn_size size_arg(const Mm &x) { return std::max<kn_size>(double_to_size(*x.addr() + 0.5), 0); }

Mm of_triplets(const Mm &i, const Mm &j, const Mm &s, const Mm &m, const Mm &n) {
    const Mm *values[] = {&i, &j, &s, &m, &n};
    for (const Mm *x : values)
        if (error_numeric(*x, "sparse")) return x_M;
    kn_size size = s.size() != 1 ? s.size() : j.size() != 1 ? j.size() : i.size();
    for (const Mm *x : {&i, &j, &s})
        if (x->size() != size && x->size() != 1) {
            error("sparse: i,j and v must be same size");
            return x_M;
        }
    Mm full_i = mdouble(i), full_j = mdouble(j), full_s = mdouble(s), full_m = mdouble(m),
       full_n = mdouble(n);
    if (full_m.size() == 0 || full_n.size() == 0) return sparse(zero_M);

    Mm out(s.isc(), 1, size, size_arg(full_m), size_arg(full_n), kn_double);
    bool made = out.issparse() && out.getp() >= size && kn::product(4, out.getdims()) >= 0;
    if (!made || kn::lacks(full_i, i.size()) || kn::lacks(full_j, j.size()) || kn::lacks(full_s, s.size()))
        return x_M;
    Indices rows{full_i.addr(), i.size() != 1}, cols{full_j.addr(), j.size() != 1};
    if (!positions(out.getindex(), rows, cols, size, size_arg(full_m), size_arg(full_n))) return x_M;
    auto copy = [&](double *to, const double *from) {
        if (s.size() == 1)
            std::fill_n(to, size, *from);
        else
            std::copy_n(from, size, to);
    };
    copy(out.addr(), full_s.addr());
    if (out.isc()) copy(out.addi(), full_s.addi());
    out.getnnz() = size; // equal positions are stored too, for now
    if (!kn::sort_entries(out)) return x_M;
    out.resparse();
    kn::check(out);
    return out;
}

} // namespace

Mm sparse(const Mm &m, const Mm &n) { return of_triplets(nop_M, nop_M, nop_M, m, n); }
Mm sparse(const Mm &i, const Mm &j, const Mm &s) {
    for (const Mm *x : {&i, &j})
        if (error_numeric(*x, "sparse")) return x_M;
    return of_triplets(i, j, s, max(max(mdouble(i))), max(max(mdouble(j))));
}
Mm sparse(const Mm &i, const Mm &j, const Mm &s, const Mm &m, const Mm &n) {
    return of_triplets(i, j, s, m, n);
}
Mm sparse(const Mm &i, const Mm &j, const Mm &s, const Mm &m, const Mm &n, const Mm &) {
    return of_triplets(i, j, s, m, n);
}

Mm spconvert(const Mm &d) {
    if (error_numeric(d, "spconvert")) return x_M;
    if (d.size() == 0) return spzeros(nop_M);
    Mm rows = mdouble(d);
    kn_size n = rows.rows(), cols = rows.cols();
    if (rows.getndims() > 2 || cols < 3 || cols > 4) {
        error("spconvert: matrix '%s' must have 3 or 4 columns", kn_display_name(d));
        return x_M;
    }
    auto column = [&](kn_size c) {
        Mm x(0, 0, 0, n, 1, kn_double);
        if (!kn::lacks(x, n)) std::copy_n(rows.addr(1, c), n, x.addr());
        return x;
    };
    bool complex = rows.isc() || cols == 4;
    Mm v(complex, 0, 0, n, 1, kn_double);
    if (kn::lacks(v, n)) return x_M;
    const double *re = rows.addr(1, 3), *second = cols == 4 ? rows.addr(1, 4) : nullptr;
    const double *im = rows.isc() ? rows.addi(1, 3) : nullptr;
    const double *second_im = im && second ? rows.addi(1, 4) : nullptr;
    for (kn_size k = 0; k < n; k++) {
        v.addr()[k] = re[k] - (second_im ? second_im[k] : 0);
        if (complex) v.addi()[k] = (im ? im[k] : 0) + (second ? second[k] : 0);
    }
    return sparse(column(1), column(2), v);
}
