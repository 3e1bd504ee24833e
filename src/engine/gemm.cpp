#include "engine/gemm.h"

#include <algorithm>
#include <climits>

#include "base/poll.h"
#include "engine/blas.h"
#include "engine/blas_call.h"

namespace kn {

namespace {

constexpr kn_size most = INT_MAX; // that BLAS can count

// Sizes that BLAS can count; of a matrix of one column the distance to the next does not matter.
template <class T>
bool call_blas(int m, int n, int k, T alpha, const T *a, int lda, const T *b, int ldb, T beta, T *c,
               int ldc) {
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

} // namespace

template <class T>
bool gemm(kn_size m, kn_size n, kn_size k, T alpha, const T *a, kn_size lda, const T *b, kn_size ldb, T beta,
          T *c, kn_size ldc) {
    auto of_columns = [=](kn_size columns, kn_size from) {
        return gemm(m, columns, k, alpha, a, lda, b + from * ldb, ldb, beta, c + from * ldc, ldc);
    };
    auto of_rows = [=](kn_size rows, kn_size from) {
        return gemm(rows, n, k, alpha, a + from, lda, b, ldb, beta, c + from, ldc);
    };
    auto of_terms = [=](kn_size terms, kn_size from, T factor) {
        return gemm(m, n, terms, alpha, a + from * lda, lda, b + from, ldb, factor, c, ldc);
    };
    const bool single_columns = n > 1 && std::max(ldb, ldc) > most, single_terms = k > 1 && lda > most;
    const bool large = too_long<T>(static_cast<double>(m) * n * k) || std::max({m, n, k}) > most;
    if (single_columns || (large && n >= m && n >= k))
        return of_columns(n / 2, 0) && of_columns(n - n / 2, n / 2);
    if (single_terms || (large && k > m)) return of_terms(k / 2, 0, beta) && of_terms(k - k / 2, k / 2, 1);
    if (large) return of_rows(m / 2, 0) && of_rows(m - m / 2, m / 2);
    auto step = [](kn_size ld) { return static_cast<int>(std::min(ld, most)); };
    return call_blas(static_cast<int>(m), static_cast<int>(n), static_cast<int>(k), alpha, a, step(lda), b,
                     step(ldb), beta, c, step(ldc));
}

#define KN_GEMM(T) \
    template bool gemm(kn_size, kn_size, kn_size, T, const T *, kn_size, const T *, kn_size, T, T *, kn_size)
KN_GEMM(double);
KN_GEMM(std::complex<double>);

} // namespace kn
