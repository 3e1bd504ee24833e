// Sparse matrices from sizes: speye, spzeros, spalloc, sprand and sprandn; and spones, a pattern.
#include <algorithm>
#include <cstdint>

#include "base/scratch.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace {

struct Size {
    kn_size rows = 0, cols = 0;
};

kn_size truncated(double x) { return x >= 1 ? double_to_size(x) : 0; }
kn_size rounded(double x) { return std::max<kn_size>(double_to_size(x + 0.5), 0); }

// As of eye: two numbers, truncated, or one size vector, rounded; one number alone is both. 0 by 0 when
// something is empty, or no number.
Size size_of(const Mm &m, const Mm &n) {
    if (m.size() == 0 || n.size() == 0) return {};
    Mm a = mdouble(m), b = mdouble(n);
    if (a.size() == 0 || b.size() == 0) return {};
    if (a.size() > 1) {
        if (a.size() > 4) warning("eye01: too many dimensions");
        return {rounded(a.addr()[0]), rounded(a.addr()[1])};
    }
    if (b.size() > 1) warning("eye01: expecting scalar argument");
    return {truncated(a.addr()[0]), truncated(b.addr()[0])};
}
Size size_of(const Mm &n) { return size_of(n, n.size() == 1 ? n : one_M); }

// n entries, at most as many as there are elements, without values and positions yet. False when memory was
// exhausted.
bool make(Mm &out, Size s, kn_size n) {
    out = Mm(0, 1, n, s.rows, s.cols, kn_double);
    return out.issparse();
}

Mm identity(Size s) {
    Mm out;
    kn_size n = std::min(s.rows, s.cols);
    if (!make(out, s, n)) return x_M;
    for (kn_size k = 0; k < n; k++) out.getindex()[k] = k * s.rows + k;
    std::fill_n(out.addr(), n, 1.0);
    kn::check(out);
    return out;
}

Mm no_entries(Size s) {
    Mm out;
    return make(out, s, 0) ? out : x_M;
}

// ---- Random ----

using Values = Mm (*)(double rows, double cols);

Mm random_values(Values values, const Mm &a) {
    Mm out = spones(a), v = values(out.getnnz(), 1);
    if (!out.issparse() || v.getnnz() != out.getnnz()) return x_M;
    std::copy_n(v.addr(), v.getnnz(), out.addr());
    return out;
}

// Ordered by rows.
struct Place {
    kn_size row, column;
    auto operator<=>(const Place &) const = default;
};

Mm random_matrix(Values values, const Mm &rows, const Mm &cols, const Mm &density) {
    Mm sizes[3] = {mdouble(rows), mdouble(cols), mdouble(density)};
    for (const Mm &x : sizes)
        if (x.size() == 0) return spzeros(nop_M);
    const double m = *sizes[0].addr(), n = *sizes[1].addr(), d = *sizes[2].addr();
    Mm r = randM(round(Mm(d * n * m)).r(), 1), c = randM(r.getnnz(), 1);
    kn_size k = r.getnnz();
    if (c.getnnz() != k) return x_M;

    kn::Scratch<Place> places(k);
    if (!places) return x_M;
    for (kn_size e = 0; e < k; e++)
        places[e] = {double_to_size(1 + m * r.addr()[e]), double_to_size(1 + n * c.addr()[e])};
    std::sort(places.get(), places.get() + k);
    k = std::unique(places.get(), places.get() + k) - places.get();

    Mm i(0, 0, 0, k, 1, kn_double), j(0, 0, 0, k, 1, kn_double), v = values(k, 1);
    if (kn::lacks(i, k) || kn::lacks(j, k) || kn::lacks(v, k)) return x_M;
    for (kn_size e = 0; e < k; e++) {
        i.addr()[e] = static_cast<double>(places[e].row);
        j.addr()[e] = static_cast<double>(places[e].column);
    }
    return sparse(i, j, v, m, n);
}

} // namespace

Mm speye() { return identity({1, 1}); }
Mm speye(const Mm &n) { return identity(size_of(n)); }
Mm speye(const Mm &m, const Mm &n) { return identity(size_of(m, n)); }
Mm spzeros(const Mm &n) { return no_entries(size_of(n)); }
Mm spzeros(const Mm &m, const Mm &n) { return no_entries(size_of(m, n)); }

Mm spalloc(const Mm &) { return error_input("spalloc", 2); }
Mm spalloc(const Mm &, const Mm &) { return error_input("spalloc", 1); }
Mm spalloc(const Mm &m, const Mm &n, const Mm &nz) {
    Mm out, count = mdouble(nz);
    if (!make(out, size_of(m, n), count.size() == 0 ? 0 : truncated(*count.addr()))) return x_M;
    for (kn_size k = 0; k < out.getnnz(); k++) out.getindex()[k] = k;
    std::fill_n(out.addr(), out.getnnz(), 0.0);
    kn::check(out);
    return out;
}

Mm sprand(const Mm &a) { return random_values(randM, a); }
Mm sprand(const Mm &m, const Mm &n) { return sprand(m, n, 0.1); }
Mm sprand(const Mm &m, const Mm &n, const Mm &d) { return random_matrix(randM, m, n, d); }
Mm sprandn(const Mm &a) { return random_values(randn, a); }
Mm sprandn(const Mm &m, const Mm &n) { return sprandn(m, n, 0.1); }
Mm sprandn(const Mm &m, const Mm &n, const Mm &d) { return random_matrix(randn, m, n, d); }

Mm spones(const Mm &a) {
    Mm s = sparse(a), out;
    if (!s.issparse()) return x_M;
    out.deepcopy(0, s, kn_none);
    if (!out.issparse()) return x_M;
    std::fill_n(out.addr(), out.getnnz(), 1.0);
    return out;
}
