#include "bench/native.h"

#include <cstddef>
#include <vector>

#include "engine/blas.h"

namespace {

void gemm(int n, double alpha, const double *a, const double *b, double beta, double *c) {
    dgemm_("N", "N", &n, &n, &n, &alpha, a, &n, b, &n, &beta, c, &n);
}

std::vector<double> sum_of_planes(std::size_t size, native::Planes x) {
    std::vector<double> out(size);
    for (std::size_t k = 0; k < size; ++k) out[k] = x.re[k] + x.im[k];
    return out;
}

} // namespace

namespace native {

void product(int n, const double *a, const double *b, double *out) { gemm(n, 1, a, b, 0, out); }

void complex_product(int n, Planes a, Planes b, Planes out) {
    std::size_t size = static_cast<std::size_t>(n) * n;
    std::vector<double> p(size), q(size);
    gemm(n, 1, a.re, b.re, 0, p.data());
    gemm(n, 1, a.im, b.im, 0, q.data());
    gemm(n, 1, sum_of_planes(size, a).data(), sum_of_planes(size, b).data(), 0, out.im);
    for (std::size_t k = 0; k < size; ++k) {
        out.re[k] = p[k] - q[k];
        out.im[k] -= p[k] + q[k];
    }
}

void complex_product_exact(int n, Planes a, Planes b, Planes out) {
    gemm(n, 1, a.re, b.re, 0, out.re);
    gemm(n, -1, a.im, b.im, 1, out.re);
    gemm(n, 1, a.re, b.im, 0, out.im);
    gemm(n, 1, a.im, b.re, 1, out.im);
}

} // namespace native
