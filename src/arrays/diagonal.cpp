// Diagonals and triangles of matrices. Diagonal k holds the elements whose column is their row plus k.
#include <algorithm>
#include <climits>

#include "quorvex/arrays.h"
#include "quorvex/builders.h"
#include "quorvex/indexing.h"
#include "quorvex/startup.h"
#include "value/number_argument.h"
#include "value/planes.h"

namespace {

int diagonal_number(const Mm &k) {
    return std::clamp(double_to_int(kn::first_number(k)), -INT_MAX / 2, INT_MAX / 2);
}

// ---- diag ----

// The matrix with the vector x on diagonal k: its element e goes to row e + down, column e + right.
Mm on_diagonal(const Mm &x, int k) {
    ptrdiff_t down = std::max(-k, 0), right = std::max(k, 0);
    int n = static_cast<int>(std::min<ptrdiff_t>(x.size() + down + right, INT_MAX)), dims[] = {n, n};
    auto position = [&](ptrdiff_t e) { return e + down + (e + right) * n; };
    if (!x.issparse()) {
        Mm out;
        if (!kn::make_like(out, x, 2, dims)) return x_M;
        kn::for_planes(out, x, [&](auto *to, const auto *from) {
            if constexpr (std::is_arithmetic_v<std::remove_reference_t<decltype(*to)>>)
                std::fill_n(to, out.getnnz(), 0);
            for (int e = 0; e < x.getnnz(); e++) to[position(e)] = from[e];
        });
        return out;
    }
    int nnz = x.getnnz();
    Mm out(x.isc(), 1, nnz, 2, dims, kn_double);
    if (kn::product(2, dims) < 0 || kn::lacks(out, nnz) || !out.issparse()) return x_M;
    kn::for_planes(out, x, [&](auto *to, const auto *from) { std::copy_n(from, nnz, to); });
    for (int e = 0; e < nnz; e++) out.getindex()[e] = static_cast<int>(position(x.getindex()[e]));
    out.setlogical(x.islogical());
    kn::check(out);
    return out;
}

Mm diagonal_of(const Mm &x, int k) {
    int m = x.rows(), down = std::max(-k, 0), right = std::max(k, 0);
    int n = std::min(m - down, x.cols() - right);
    if (n <= 0) return nop_M;
    double first = 1 + down + static_cast<double>(right) * m;
    Mm d = x(colon(first, m + 1.0, first + (n - 1) * (m + 1.0)));
    d.reshape(n, 1);
    return d;
}

// ---- Triangles ----

// Whether column c keeps what lies above the diagonal (or below it), and the rows [0, split) and [split, m).
int split_row(int c, int k, bool upper, int m) {
    long long first_below = static_cast<long long>(c) - k + (upper ? 1 : 0);
    return static_cast<int>(std::clamp<long long>(first_below, 0, m));
}

Mm triangle_of_entries(const Mm &x, int k, bool upper) {
    int nnz = x.getnnz(), m = x.rows(), kept = 0;
    auto keeps = [&](int position) { return (position % m < split_row(position / m, k, upper, m)) == upper; };
    Mm out(x.isc(), 1, nnz, m, x.cols(), kn_double);
    if (kn::lacks(out, nnz) || !out.issparse()) return x_M;
    for (int e = 0; e < nnz; e++) {
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
    int k = diagonal_number(diagonal);
    if (x.issparse()) return triangle_of_entries(x, k, upper);
    Mm out;
    if (!kn::make_like(out, x, 2, x.getdims())) return x_M;
    int m = x.rows(), n = x.cols();
    kn::for_planes(out, x, [&](auto *to, const auto *from) {
        if constexpr (std::is_arithmetic_v<std::remove_reference_t<decltype(*to)>>)
            for (int c = 0; c < n; c++, to += m, from += m) {
                int split = split_row(c, k, upper, m);
                int begin = upper ? 0 : split, end = upper ? split : m;
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
    int number = diagonal_number(k);
    return x.rows() == 1 || x.cols() == 1 ? on_diagonal(x, number) : diagonal_of(x, number);
}

Mm tril(const Mm &x) { return tril(x, 0.0); }
Mm tril(const Mm &x, const Mm &k) { return triangle("tril", x, k, false); }
Mm triu(const Mm &x) { return triu(x, 0.0); }
Mm triu(const Mm &x, const Mm &k) { return triangle("triu", x, k, true); }
