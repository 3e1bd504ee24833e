// Diagonals and triangles of matrices. Diagonal k holds the elements whose column is their row plus k.
#include <algorithm>

#include "quorvex/arrays.h"
#include "quorvex/builders.h"
#include "quorvex/indexing.h"
#include "quorvex/startup.h"
#include "value/number_argument.h"
#include "value/planes.h"
#include "value/sparse_walk.h"

namespace {

kn_size diagonal_number(const Mm &k) { return double_to_size(kn::first_number(k)); }

// ---- diag ----

// The matrix with the vector x on diagonal k: its element e goes to row e + down, column e + right.
Mm on_diagonal(const Mm &x, kn_size k) {
    const kn_size down = std::max<kn_size>(-k, 0), right = std::max<kn_size>(k, 0);
    const kn_size n = x.size() + down + right, dims[] = {n, n};
    auto position = [&](kn_size e) { return e + down + (e + right) * n; };
    if (!x.issparse()) {
        Mm out;
        if (!kn::make_like(out, x, 2, dims)) return x_M;
        kn::for_planes(out, x, [&](auto *to, const auto *from) {
            if constexpr (std::is_arithmetic_v<std::remove_reference_t<decltype(*to)>>)
                std::fill_n(to, out.getnnz(), 0);
            for (kn_size e = 0; e < x.getnnz(); e++) to[position(e)] = from[e];
        });
        return out;
    }
    kn_size nnz = x.getnnz();
    Mm out(x.isc(), 1, nnz, 2, dims, kn_double);
    if (kn::product(2, dims) < 0 || kn::lacks(out, nnz) || !out.issparse()) return x_M;
    kn::for_planes(out, x, [&](auto *to, const auto *from) { std::copy_n(from, nnz, to); });
    for (kn_size e = 0; e < nnz; e++) out.getindex()[e] = position(x.getindex()[e]);
    out.setlogical(x.islogical());
    kn::check(out);
    return out;
}

// Its n elements; positions in a sparse matrix may be more than a double can count.
Mm sparse_diagonal(const Mm &x, kn_size k, kn_size n) {
    const kn_size down = std::max<kn_size>(-k, 0);
    kn_size nnz = 0;
    kn::for_entries(x, [&](kn_size, kn_size row, kn_size column) { nnz += column - row == k; });
    Mm d(x.isc(), 1, nnz, n, 1, kn_double);
    if (kn::lacks(d, nnz) || !d.issparse()) return x_M;
    kn_size to = 0;
    kn::for_entries(x, [&](kn_size slot, kn_size row, kn_size column) {
        if (column - row != k) return;
        d.getindex()[to] = row - down;
        d.addr()[to] = x.addr()[slot];
        if (x.isc()) d.addi()[to] = x.addi()[slot];
        ++to;
    });
    d.setlogical(x.islogical());
    kn::check(d);
    return d;
}

Mm diagonal_of(const Mm &x, kn_size k) {
    kn_size m = x.rows(), down = std::max<kn_size>(-k, 0), right = std::max<kn_size>(k, 0);
    kn_size n = std::min(m - down, x.cols() - right);
    if (n <= 0) return nop_M;
    if (x.issparse()) return sparse_diagonal(x, k, n);
    double first = 1 + down + static_cast<double>(right) * m;
    Mm d = x(colon(first, m + 1.0, first + (n - 1) * (m + 1.0)));
    d.reshape(n, 1);
    return d;
}

// ---- Triangles ----

// Whether column c keeps what lies above the diagonal (or below it), and the rows [0, split) and [split, m).
kn_size split_row(kn_size c, kn_size k, bool upper, kn_size m) {
    return std::clamp<kn_size>(c - k + (upper ? 1 : 0), 0, m);
}

Mm triangle_of_entries(const Mm &x, kn_size k, bool upper) {
    kn_size nnz = x.getnnz(), m = x.rows(), kept = 0;
    auto keeps = [&](kn_size position) {
        return (position % m < split_row(position / m, k, upper, m)) == upper;
    };
    Mm out(x.isc(), 1, nnz, m, x.cols(), kn_double);
    if (kn::lacks(out, nnz) || !out.issparse()) return x_M;
    for (kn_size e = 0; e < nnz; e++) {
        if (!keeps(x.getindex()[e])) continue;
        out.getindex()[kept] = x.getindex()[e];
        out.addr()[kept] = x.addr()[e];
        if (out.isc()) out.addi()[kept] = x.addi()[e];
        kept++;
    }
    out.getnnz() = kept;
    out.setlogical(x.islogical());
    kn::check(out);
    return out;
}

Mm triangle(const char *name, const Mm &x, const Mm &diagonal, bool upper) {
    x.warn_uninit();
    if (error_2d(x, name) || error_numeric(x, name)) return x_M;
    if (x.size() == 0) return x;
    kn_size k = diagonal_number(diagonal);
    if (x.issparse()) return triangle_of_entries(x, k, upper);
    Mm out;
    if (!kn::make_like(out, x, 2, x.getdims())) return x_M;
    kn_size m = x.rows(), n = x.cols();
    kn::for_planes(out, x, [&](auto *to, const auto *from) {
        if constexpr (std::is_arithmetic_v<std::remove_reference_t<decltype(*to)>>)
            for (kn_size c = 0; c < n; c++, to += m, from += m) {
                kn_size split = split_row(c, k, upper, m);
                kn_size begin = upper ? 0 : split, end = upper ? split : m;
                std::fill_n(to, begin, 0);
                std::copy(from + begin, from + end, to + begin);
                std::fill(to + end, to + m, 0);
            }
    });
    return out;
}

} // namespace

Mm diag(const Mm &x) { return diag(x, 0.0); }

Mm diag(const Mm &x, const Mm &k) {
    x.warn_uninit();
    if (error_2d(x, "diag") || error_numeric(x, "diag")) return x_M;
    if (x.size() == 0) return x;
    kn_size number = diagonal_number(k);
    return x.rows() == 1 || x.cols() == 1 ? on_diagonal(x, number) : diagonal_of(x, number);
}

Mm tril(const Mm &x) { return tril(x, 0.0); }
Mm tril(const Mm &x, const Mm &k) { return triangle("tril", x, k, false); }
Mm triu(const Mm &x) { return triu(x, 0.0); }
Mm triu(const Mm &x, const Mm &k) { return triangle("triu", x, k, true); }
