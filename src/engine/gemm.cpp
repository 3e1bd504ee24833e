#include "engine/gemm.h"

#include "base/poll.h"
#include "engine/blas.h"
#include "engine/blas_call.h"

namespace kn {

template <class T>
bool gemm(int m, int n, int k, T alpha, const T *a, int lda, const T *b, int ldb, T beta, T *c, int ldc) {
    if (too_long<T>(static_cast<double>(m) * n * k)) {
        auto of_columns = [=](int columns, ptrdiff_t from) {
            return gemm(m, columns, k, alpha, a, lda, b + from * ldb, ldb, beta, c + from * ldc, ldc);
        };
        auto of_rows = [=](int rows, ptrdiff_t from) {
            return gemm(rows, n, k, alpha, a + from, lda, b, ldb, beta, c + from, ldc);
        };
        auto of_terms = [=](int terms, ptrdiff_t from, T factor) {
            return gemm(m, n, terms, alpha, a + from * lda, lda, b + from, ldb, factor, c, ldc);
        };
        if (n >= m && n >= k) return of_columns(n / 2, 0) && of_columns(n - n / 2, n / 2);
        if (m >= k) return of_rows(m / 2, 0) && of_rows(m - m / 2, m / 2);
        return of_terms(k / 2, 0, beta) && of_terms(k - k / 2, k / 2, 1);
    }
    if (interrupted()) return false;
    BlasCall call(product_of(m, k, n));
    if (!call) return false;
    const int one = 1;
    if (n == 1)
        blas::gemv("N", &m, &k, &alpha, a, &lda, b, &one, &beta, c, &one);
    else if (m == 1)
        blas::gemv("T", &k, &n, &alpha, b, &ldb, a, &lda, &beta, c, &ldc);
    else
        blas::gemm("N", "N", &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
    return true;
}

template bool gemm(int, int, int, double, const double *, int, const double *, int, double, double *, int);
template bool gemm(int, int, int, std::complex<double>, const std::complex<double> *, int,
                   const std::complex<double> *, int, std::complex<double>, std::complex<double> *, int);

} // namespace kn
