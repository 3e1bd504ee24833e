// The BLAS routines that core calls: their Fortran names, and one name for double and for complex numbers.
// Integers are 32 bits wide.
#ifndef QUORVEX_ENGINE_BLAS_H
#define QUORVEX_ENGINE_BLAS_H

#include <complex>

#define KN_BLAS(t, T)                                                                                       \
    extern "C" void t##gemm_(const char *trans_a, const char *trans_b, const int *m, const int *n,          \
                             const int *k, const T *alpha, const T *a, const int *lda, const T *b,          \
                             const int *ldb, const T *beta, T *c, const int *ldc);                          \
    extern "C" void t##gemv_(const char *trans, const int *m, const int *n, const T *alpha, const T *a,     \
                             const int *lda, const T *x, const int *incx, const T *beta, T *y,              \
                             const int *incy);                                                              \
    namespace kn::blas {                                                                                    \
    /* c = alpha op(a) op(b) + beta c */                                                                    \
    inline void gemm(const char *trans_a, const char *trans_b, const int *m, const int *n, const int *k,    \
                     const T *alpha, const T *a, const int *lda, const T *b, const int *ldb, const T *beta, \
                     T *c, const int *ldc) {                                                                \
        t##gemm_(trans_a, trans_b, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);                           \
    }                                                                                                       \
    /* y = alpha op(a) x + beta y */                                                                        \
    inline void gemv(const char *trans, const int *m, const int *n, const T *alpha, const T *a,             \
                     const int *lda, const T *x, const int *incx, const T *beta, T *y, const int *incy) {   \
        t##gemv_(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);                                       \
    }                                                                                                       \
    }
KN_BLAS(d, double)
KN_BLAS(z, std::complex<double>)
#undef KN_BLAS

#endif
