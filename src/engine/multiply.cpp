// The matrix product, by BLAS on whole matrices; planes of complex matrices are multiplied as real ones.
//
// A product of complex matrices is four real products. Large ones with finite elements are done with three,
//
//     T1 = Re A Re B,  T2 = Im A Im B,  Re C = T1 - T2,  Im C = (Re A + Im A)(Re B + Im B) - T1 - T2,
//
// whose error in Im C is bounded by the size of the whole product and not by that of Im C alone (Higham,
// Stability of a method for multiplying complex matrices with three real matrix multiplications, SIAM J.
// Matrix Anal. Appl. 13, 1992). Should it give anything that is not finite, as the sums may overflow, the
// four products are formed after all: infinities and NaN are then those of the definition.

#include "engine/multiply.h"

#include <cmath>
#include <memory>

#include "base/hooks.h"
#include "base/number_tests.h"
#include "base/scratch.h"
#include "engine/gemm.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/constants.h"
#include "value/header.h"

namespace kn {
namespace {

// Products of m by k and k by n, until one fails, which has been reported.
struct Products {
    kn_size m, k, n;
    bool ok = true;

    // c = sign a b + beta c
    void add(double sign, const double *a, const double *b, double beta, double *c) {
        ok = ok && gemm(m, n, k, sign, a, m, b, k, beta, c, m);
    }
};

bool all_finite(const double *x, ptrdiff_t n) {
    long long others = 0;
    for (ptrdiff_t k = 0; k < n; ++k) others += !is_finite(x[k]);
    return others == 0;
}

struct HeapFree {
    void operator()(double *p) const { heap_free(p); }
};

bool worth_three(const Products &s) {
    // Below, the sums of whole matrices cost more than the product that they save.
    constexpr double least = 48.0 * 48 * 48;
    return s.m > 16 && s.n > 16 && s.k > 16 && static_cast<double>(s.m) * s.k * s.n >= least;
}

// Whether c holds the product, or one has failed.
bool three_products(Products &s, const Mm &a, const Mm &b, Mm &c) {
    ptrdiff_t na = a.getnnz(), nb = b.getnnz(), nc = c.getnnz();
    auto finite = [](const Mm &x, ptrdiff_t n) { return all_finite(x.addr(), n) && all_finite(x.addi(), n); };
    if (!finite(a, na) || !finite(b, nb)) return false;
    size_t room = sizeof(double) * static_cast<size_t>(na + nb + nc);
    std::unique_ptr<double, HeapFree> scratch(static_cast<double *>(heap_alloc(room)));
    if (!scratch) return false;
    double *sum_a = scratch.get(), *sum_b = sum_a + na, *t2 = sum_b + nb, *re = c.addr(), *im = c.addi();
    for (ptrdiff_t k = 0; k < na; ++k) sum_a[k] = a.addr()[k] + a.addi()[k];
    for (ptrdiff_t k = 0; k < nb; ++k) sum_b[k] = b.addr()[k] + b.addi()[k];
    s.add(1, a.addr(), b.addr(), 0, re);
    s.add(1, a.addi(), b.addi(), 0, t2);
    s.add(1, sum_a, sum_b, 0, im);
    if (!s.ok) return true;
    for (ptrdiff_t k = 0; k < nc; ++k) {
        im[k] -= re[k] + t2[k];
        re[k] -= t2[k];
    }
    return finite(c, nc);
}

Mm dense_product(const Mm &a, const Mm &b) {
    Products s = {a.rows(), a.cols(), b.cols()};
    kn_size extents[2] = {s.m, s.n};
    kn_size n = kn::product(2, extents);
    Mm c(a.isc() || b.isc(), 0, 0, s.m, s.n, kn_double);
    if (n < 0 || lacks(c, n)) return x_M;
    if (a.isc() && b.isc()) {
        if (worth_three(s) && three_products(s, a, b, c)) return s.ok ? c : x_M;
        s.add(1, a.addr(), b.addr(), 0, c.addr());
        s.add(-1, a.addi(), b.addi(), 1, c.addr());
        s.add(1, a.addr(), b.addi(), 0, c.addi());
        s.add(1, a.addi(), b.addr(), 1, c.addi());
        return s.ok ? c : x_M;
    }
    s.add(1, a.addr(), b.addr(), 0, c.addr());
    if (a.isc()) s.add(1, a.addi(), b.addr(), 0, c.addi());
    if (b.isc()) s.add(1, a.addr(), b.addi(), 0, c.addi());
    return s.ok ? c : x_M;
}

Mm of_doubles(const Mm &x) { return x.gettype() == kn_uint8 ? mdouble(x) : x; }

} // namespace

bool conform(const Mm &a, const Mm &b) {
    if (a.getndims() == 2 && b.getndims() == 2 && a.cols() == b.rows()) return true;
    error("*: wrong dimensions of: %s %tdx%td, %s %tdx%td", kn_display_name(a), a.rows(), a.cols(),
          kn_display_name(b), b.rows(), b.cols());
    return false;
}

Mm matrix_product(const Mm &x, const Mm &y) {
    if (x.issparse() && y.issparse()) return matrix_hooks.sparse_product(x, y);
    if (!conform(x, y)) return x_M;
    Mm a = of_doubles(x), b = of_doubles(y);
    if (a.size() != x.size() || b.size() != y.size()) return x_M;
    return a.issparse() || b.issparse() ? mixed_product(a, b) : dense_product(a, b);
}

} // namespace kn
