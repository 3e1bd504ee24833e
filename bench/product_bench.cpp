// Dense products against BLAS on the same data.

#include <cstdlib>
#include <vector>

#include <quorvex.h>

#include "bench/ratio.h"
#include "core/blas.h"

namespace {

constexpr int n = 1000;

void gemm(double alpha, const double *a, const double *b, double beta, double *c) {
    dgemm_("N", "N", &n, &n, &n, &alpha, a, &n, b, &n, &beta, c, &n);
}

void real_product(const Mm &a, const Mm &b) {
    double *c = static_cast<double *>(std::malloc(sizeof(double) * n * n));
    gemm(1, a.addr(), b.addr(), 0, c);
    benchmark::DoNotOptimize(c);
    std::free(c);
}

// The best of the split-complex schemes measured: three real products of sums.
void complex_product(const Mm &a, const Mm &b) {
    size_t plane = size_t(n) * n;
    std::vector<double> sa(plane), sb(plane), p(plane), q(plane);
    double *c = static_cast<double *>(std::malloc(sizeof(double) * 2 * plane));
    double *re = c, *im = c + plane;
    for (size_t k = 0; k < plane; ++k) sa[k] = a.addr()[k] + a.addi()[k];
    for (size_t k = 0; k < plane; ++k) sb[k] = b.addr()[k] + b.addi()[k];
    gemm(1, a.addr(), b.addr(), 0, p.data());
    gemm(1, a.addi(), b.addi(), 0, q.data());
    gemm(1, sa.data(), sb.data(), 0, im);
    for (size_t k = 0; k < plane; ++k) {
        re[k] = p[k] - q[k];
        im[k] -= p[k] + q[k];
    }
    benchmark::DoNotOptimize(c);
    std::free(c);
}

// Four real products: exact as the definition.
void complex_product_four(const Mm &a, const Mm &b) {
    size_t plane = size_t(n) * n;
    double *c = static_cast<double *>(std::malloc(sizeof(double) * 2 * plane));
    gemm(1, a.addr(), b.addr(), 0, c);
    gemm(-1, a.addi(), b.addi(), 1, c);
    gemm(1, a.addr(), b.addi(), 0, c + plane);
    gemm(1, a.addi(), b.addr(), 1, c + plane);
    benchmark::DoNotOptimize(c);
    std::free(c);
}

void add_cases() {
    static const Mm a = randn(n, n), b = randn(n, n);
    static const Mm za = a + i * b, zb = b - i * a;
    bench::compare(
        "A*B of 1000x1000", 1.05, [] { bench::keep(a * b); }, [] { real_product(a, b); });
    bench::compare(
        "complex A*B / three products", 1.1, [] { bench::keep(za * zb); }, [] { complex_product(za, zb); });
    bench::compare(
        "complex A*B / four products", 1.1, [] { bench::keep(za * zb); },
        [] { complex_product_four(za, zb); });
}

bench::Group group(add_cases);

} // namespace
