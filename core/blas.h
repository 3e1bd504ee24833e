// The BLAS routines that core calls, by their Fortran names. Integers are 32 bits wide.
#ifndef QUORVEX_CORE_BLAS_H
#define QUORVEX_CORE_BLAS_H

extern "C" {
// c = alpha op(a) op(b) + beta c
void dgemm_(const char *trans_a, const char *trans_b, const int *m, const int *n, const int *k,
            const double *alpha, const double *a, const int *lda, const double *b, const int *ldb,
            const double *beta, double *c, const int *ldc);
// y = alpha op(a) x + beta y
void dgemv_(const char *trans, const int *m, const int *n, const double *alpha, const double *a,
            const int *lda, const double *x, const int *incx, const double *beta, double *y, const int *incy);
}

#endif
