// Triangular factors in the language's three forms, of full and of sparse matrices.
//
// LAPACK's factors are p a = l u, each interchange of rows applied to all of l. The packed form of one output
// is that of LINPACK: a column of multipliers keeps the row order at its elimination, so the later
// interchanges are undone column by column.
#include "linear/lu.h"

#include <algorithm>
#include <utility>

#include "linear/blocked_lu.h"
#include "linear/lapack.h"
#include "linear/solvers.h"
#include "linear/sparse_lu.h"
#include "quorvex/builders.h"
#include "quorvex/operations.h"
#include "quorvex/solving.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/number_block.h"

namespace kn {
namespace {

// The row of a that row i of l and u comes from.
void rows_of_pivots(const Pivots &p, int n, int *row) {
    for (int i = 0; i < n; ++i) row[i] = i;
    for (int i = 0; i < n; ++i) std::swap(row[i], row[p[i] - 1]);
}

struct Outputs {
    Mm l, u, p;
};

// l has the rows of a, or with `ordered` those of u.
template <class T> bool split(const Mm &a, bool ordered, Outputs &out) {
    const int n = static_cast<int>(a.rows());
    Matrix<T> f(a), l(n, n);
    if (!f || !l) return false;
    Pivots p(n), row(n);
    if (!p || !row || !factor(f, p)) return false;
    rows_of_pivots(p, n, row.get());
    out.p = zeros(n, n);
    if (lacks(out.p, kn_size{n} * n)) return false;
    for (int i = 0; i < n; ++i) *out.p.addr(i + 1, row[i] + 1) = 1;
    for (int j = 0; j < n; ++j) {
        T *from = f.column(j), *to = l.column(j);
        for (int i = 0; i < n; ++i) to[ordered ? i : row[i]] = i > j ? from[i] : T(i == j);
        std::fill(from + j + 1, from + n, T(0));
    }
    out.l = l.value();
    out.u = f.value();
    return out.l.getnnz() > 0 && out.u.getnnz() > 0;
}

// False after an error, and for an empty matrix, for which all outputs are empty.
bool factored(const Mm &a, bool ordered, Outputs &out) {
    a.warn_uninit();
    if (error_numeric(a, "lu") || error_square(a, "lu")) return out = {x_M, x_M, x_M}, false;
    if (a.size() == 0) return out = {nop_M, nop_M, nop_M}, false;
    Mm x;
    bool done = false;
    if (a.issparse() && a.isc()) {
        error("lu: Complex sparse not supported.");
    } else if (a.issparse()) {
        done = sparse_doubles_of(a, "lu", x) && sparse_factors(x, ordered, out.l, out.u, out.p);
    } else {
        done = doubles_of(a, "lu", x) &&
               by_number(a.isc(), [&]<class T>(T) { return split<T>(x, ordered, out); });
    }
    if (!done) out = {x_M, x_M, x_M};
    return done;
}

} // namespace

template <class T> void pack_multipliers(const Matrix<T> &f, const Pivots &p) {
    const int n = f.rows();
    for (int k = 0; k < n; ++k) {
        T *column = f.column(k);
        for (int j = n - 1; j > k; --j) std::swap(column[j], column[p[j] - 1]);
        if (modulus(column[k]) == 0) continue; // nothing was eliminated
        for (int i = k + 1; i < n; ++i) column[i] = -column[i];
    }
}
template void pack_multipliers(const Matrix<double> &f, const Pivots &p);
template void pack_multipliers(const Matrix<complex> &f, const Pivots &p);

bool sparse_pivots(const Mm &a, Scratch<double> &pivots) {
    Outputs out;
    if (!factored(a, true, out)) return false;
    for (kn_size k = 0, n = a.rows(); k < n; ++k) {
        const kn_size slot = out.u.search(k * (n + 1));
        pivots[k] = slot < 0 ? 0 : out.u.addr()[slot];
    }
    return true;
}

} // namespace kn

Mm lu(const Mm &a) {
    a.warn_uninit();
    Mm x;
    if (error_square(a, "lu") || !kn::doubles_of(a, "lu", x)) return x_M;
    if (x.size() == 0) return nop_M;
    return kn::by_number(x.isc(), [&]<class T>(T) {
        kn::Matrix<T> factors(x);
        if (!factors) return x_M;
        kn::Pivots p(x.rows());
        if (!p || !kn::factor(factors, p)) return x_M;
        kn::pack_multipliers(factors, p);
        return factors.value();
    });
}

Mm lu(const Mm &a, i_o_t, Mm &l, Mm &u) {
    kn::Outputs out;
    kn::factored(a, false, out);
    l = std::move(out.l);
    u = std::move(out.u);
    return x_M;
}

Mm lu(const Mm &a, i_o_t, Mm &l, Mm &u, Mm &p) {
    kn::Outputs out;
    kn::factored(a, true, out);
    l = std::move(out.l);
    u = std::move(out.u);
    p = std::move(out.p);
    return x_M;
}

Mm lu_L(const Mm &a) {
    kn::Outputs out;
    kn::factored(a, false, out);
    return out.l;
}

Mm lu_U(const Mm &a) {
    kn::Outputs out;
    kn::factored(a, false, out);
    return out.u;
}
