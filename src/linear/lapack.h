// LAPACK and BLAS for real and complex matrices alike: the same names for double and for complex numbers.
//
// The routines end the process when an argument is wrong, so this must never happen: sizes are those of
// matrices with at least one row and column, work arrays have the size that the routine requires. Routines
// return the 1-based position of the first zero pivot, or 0. Integers are 32 bits wide.
#ifndef QUORVEX_LINEAR_LAPACK_H
#define QUORVEX_LINEAR_LAPACK_H

#include <cassert>
#include <cmath>
#include <complex>

#include "base/scratch.h"
#include "value/header.h"

namespace kn {
using complex = std::complex<double>;
} // namespace kn

#define KN_DECLARE(t, T)                                                                                 \
    void t##getrf_(const int *m, const int *n, T *a, const int *lda, int *ipiv, int *info);              \
    void t##getrs_(const char *trans, const int *n, const int *nrhs, const T *a, const int *lda,         \
                   const int *ipiv, T *b, const int *ldb, int *info);                                    \
    void t##getri_(const int *n, T *a, const int *lda, const int *ipiv, T *work, const int *lwork,       \
                   int *info);                                                                           \
    void t##trsm_(const char *side, const char *uplo, const char *trans, const char *diag, const int *m, \
                  const int *n, const T *alpha, const T *a, const int *lda, T *b, const int *ldb);       \
    void t##trtri_(const char *uplo, const char *diag, const int *n, T *a, const int *lda, int *info);   \
    void t##laswp_(const int *n, T *a, const int *lda, const int *k1, const int *k2, const int *ipiv,    \
                   const int *incx);
extern "C" {
KN_DECLARE(d, double)
KN_DECLARE(z, kn::complex)
void dlasyf_(const char *uplo, const int *n, const int *nb, int *kb, double *a, const int *lda, int *ipiv,
             double *w, const int *ldw, int *info);
void dsytf2_(const char *uplo, const int *n, double *a, const int *lda, int *ipiv, int *info);
void dsytrs_(const char *uplo, const int *n, const int *nrhs, const double *a, const int *lda,
             const int *ipiv, double *b, const int *ldb, int *info);
void dlaqps_(const int *m, const int *n, const int *offset, const int *nb, int *kb, double *a, const int *lda,
             int *jpvt, double *tau, double *vn1, double *vn2, double *auxv, double *f, const int *ldf);
void zlaqps_(const int *m, const int *n, const int *offset, const int *nb, int *kb, kn::complex *a,
             const int *lda, int *jpvt, kn::complex *tau, double *vn1, double *vn2, kn::complex *auxv,
             kn::complex *f, const int *ldf);
void dlaqp2_(const int *m, const int *n, const int *offset, double *a, const int *lda, int *jpvt, double *tau,
             double *vn1, double *vn2, double *work);
void zlaqp2_(const int *m, const int *n, const int *offset, kn::complex *a, const int *lda, int *jpvt,
             kn::complex *tau, double *vn1, double *vn2, kn::complex *work);
double dnrm2_(const int *n, const double *x, const int *incx);
double dznrm2_(const int *n, const kn::complex *x, const int *incx);
void dormqr_(const char *side, const char *trans, const int *m, const int *n, const int *k, const double *a,
             const int *lda, const double *tau, double *c, const int *ldc, double *work, const int *lwork,
             int *info);
void zunmqr_(const char *side, const char *trans, const int *m, const int *n, const int *k,
             const kn::complex *a, const int *lda, const kn::complex *tau, kn::complex *c, const int *ldc,
             kn::complex *work, const int *lwork, int *info);
}
#undef KN_DECLARE

namespace kn {

// A matrix of m by n numbers, which are ints, in the layout of LAPACK: column-major, both parts of a complex
// number adjacent. Its memory is a value's, so that large ones use the large blocks; false when there is
// none.
template <class T> class Matrix {
  public:
    Matrix(int m, int n); // uninitialized
    // A copy of a full value. A complex copy of a real one has zero imaginary parts; a real copy of a complex
    // one drops them.
    explicit Matrix(const Mm &x);
    explicit operator bool() const { return store_.getnnz() > 0; }

    int rows() const { return m_; }
    int cols() const { return n_; }
    T *data() const { return static_cast<T *>(Header::pr(store_)); }
    T *column(int j) const { return data() + static_cast<ptrdiff_t>(j) * m_; }
    T &operator()(int i, int j) const { return column(j)[i]; } // 0-based
    // As a value, which takes over the memory of real numbers.
    Mm value() const;

  private:
    int m_, n_;
    Mm store_;
};

using Pivots = Scratch<int>; // positions of rows or columns, counted from 1

// f(T()) with the kind of number T that the values hold.
template <class F> auto by_number(bool is_complex, F f) { return is_complex ? f(complex()) : f(double()); }

// |x|, or |re| + |im|, by which pivots are chosen.
inline double modulus(double x) { return std::fabs(x); }
inline double modulus(const complex &x) { return std::fabs(x.real()) + std::fabs(x.imag()); }

namespace lapack {

#define KN_WRAP(t, T)                                                                               \
    /* p a = l u with row interchanges */                                                           \
    inline int getrf(int m, int n, T *a, int lda, int *p) {                                         \
        int info = 0;                                                                               \
        t##getrf_(&m, &n, a, &lda, p, &info);                                                       \
        return info;                                                                                \
    }                                                                                               \
    /* row interchanges k1 to k2, counted from 1 */                                                 \
    inline void laswp(int n, T *a, int lda, int k1, int k2, const int *p) {                         \
        int one = 1;                                                                                \
        t##laswp_(&n, a, &lda, &k1, &k2, p, &one);                                                  \
    }                                                                                               \
    /* b = a \ b from these factors */                                                              \
    inline void getrs(const Matrix<T> &a, const int *p, const Matrix<T> &b) {                       \
        int n = a.rows(), q = b.cols(), info = 0;                                                   \
        t##getrs_("N", &n, &q, a.data(), &n, p, b.data(), &n, &info);                               \
    }                                                                                               \
    /* the inverse from these factors; with lwork -1 only the size of the work array, in work[0] */ \
    inline int getri(const Matrix<T> &a, const int *p, T *work, int lwork) {                        \
        int n = a.rows(), info = 0;                                                                 \
        t##getri_(&n, a.data(), &n, p, work, &lwork, &info);                                        \
        return info;                                                                                \
    }                                                                                               \
    /* the inverse of an upper triangle */                                                          \
    inline void trtri(int n, T *a, int lda) {                                                       \
        int info = 0;                                                                               \
        t##trtri_("U", "N", &n, a, &lda, &info);                                                    \
    }                                                                                               \
    /* b = alpha a \ b or alpha b / a, a triangular */                                              \
    inline void trsm(const char *side, const char *uplo, const char *diag, int m, int n, T alpha,   \
                     const T *a, int lda, T *b, int ldb) {                                          \
        t##trsm_(side, uplo, "N", diag, &m, &n, &alpha, a, &lda, b, &ldb);                          \
    }
KN_WRAP(d, double)
KN_WRAP(z, complex)
#undef KN_WRAP

// Steps of the factorisation a p = q r with column pivoting, of the columns of a from j on. The current norms
// of their lower parts are in `norm`, those when last computed exactly in `exact`. laqps: several columns, at
// most nb; returns their number; f has n - j rows and nb columns. laqp2: all of them.
#define KN_WRAP(t, T, nrm2_of_t)                                                                            \
    inline double norm(int n, const T *x) {                                                                 \
        int one = 1;                                                                                        \
        return nrm2_of_t(&n, x, &one);                                                                      \
    }                                                                                                       \
    inline int laqps(const Matrix<T> &a, int j, int nb, int *p, T *tau, double *norm, double *exact,        \
                     T *work, T *f) {                                                                       \
        int m = a.rows(), n = a.cols() - j, kb = 0;                                                         \
        t##laqps_(&m, &n, &j, &nb, &kb, a.column(j), &m, p + j, tau + j, norm + j, exact + j, work, f, &n); \
        return kb;                                                                                          \
    }                                                                                                       \
    inline void laqp2(const Matrix<T> &a, int j, int *p, T *tau, double *norm, double *exact, T *work) {    \
        int m = a.rows(), n = a.cols() - j;                                                                 \
        t##laqp2_(&m, &n, &j, a.column(j), &m, p + j, tau + j, norm + j, exact + j, work);                  \
    }
KN_WRAP(d, double, dnrm2_)
KN_WRAP(z, complex, dznrm2_)
#undef KN_WRAP
// b = q' b, q being the product of k reflectors, b of q columns; lwork as above.
inline void unmqr(const Matrix<double> &a, int k, const double *tau, double *b, int q, double *work,
                  int lwork) {
    int m = a.rows(), info = 0;
    dormqr_("L", "T", &m, &q, &k, a.data(), &m, tau, b, &m, work, &lwork, &info);
}
inline void unmqr(const Matrix<complex> &a, int k, const complex *tau, complex *b, int q, complex *work,
                  int lwork) {
    int m = a.rows(), info = 0;
    zunmqr_("L", "C", &m, &q, &k, a.data(), &m, tau, b, &m, work, &lwork, &info);
}

} // namespace lapack
} // namespace kn

#endif
