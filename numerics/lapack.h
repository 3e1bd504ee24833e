// LAPACK and BLAS for real and complex matrices alike: the same names for double and for complex numbers.
//
// The routines end the process when an argument is wrong, so none ever is: extents are those of matrices with
// at least one row and column, work arrays have the size that the routine asked for. What is returned is the
// 1-based position of the first zero pivot, or 0. Integers are 32 bits wide.
#ifndef QUORVEX_NUMERICS_LAPACK_H
#define QUORVEX_NUMERICS_LAPACK_H

#include <cassert>
#include <cmath>
#include <complex>

#include "core/header.h"
#include "core/scratch.h"

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
                  const int *n, const T *alpha, const T *a, const int *lda, T *b, const int *ldb);
extern "C" {
KN_DECLARE(d, double)
KN_DECLARE(z, kn::complex)
void dsytrf_(const char *uplo, const int *n, double *a, const int *lda, int *ipiv, double *work,
             const int *lwork, int *info);
void dsytrs_(const char *uplo, const int *n, const int *nrhs, const double *a, const int *lda,
             const int *ipiv, double *b, const int *ldb, int *info);
void dgeqp3_(const int *m, const int *n, double *a, const int *lda, int *jpvt, double *tau, double *work,
             const int *lwork, int *info);
void zgeqp3_(const int *m, const int *n, kn::complex *a, const int *lda, int *jpvt, kn::complex *tau,
             kn::complex *work, const int *lwork, double *rwork, int *info);
void dormqr_(const char *side, const char *trans, const int *m, const int *n, const int *k, const double *a,
             const int *lda, const double *tau, double *c, const int *ldc, double *work, const int *lwork,
             int *info);
void zunmqr_(const char *side, const char *trans, const int *m, const int *n, const int *k,
             const kn::complex *a, const int *lda, const kn::complex *tau, kn::complex *c, const int *ldc,
             kn::complex *work, const int *lwork, int *info);
}
#undef KN_DECLARE

namespace kn {

// A matrix of m by n numbers in the layout of LAPACK: column-major, both parts of a complex number side by
// side. Its memory is a value's, so that large ones come from the large blocks; false when there is none.
template <class T> class Matrix {
  public:
    Matrix(int m, int n); // not cleared
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
    inline int getrf(const Matrix<T> &a, int *p) {                                                  \
        int m = a.rows(), n = a.cols(), info = 0;                                                   \
        t##getrf_(&m, &n, a.data(), &m, p, &info);                                                  \
        return info;                                                                                \
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
    /* the first k rows of b = r \ b, r upper triangular in the first k rows and columns of a */    \
    inline void solve_upper(const Matrix<T> &a, int k, const Matrix<T> &b) {                        \
        int lda = a.rows(), ldb = b.rows(), q = b.cols();                                           \
        T one = 1;                                                                                  \
        t##trsm_("L", "U", "N", "N", &k, &q, &one, a.data(), &lda, b.data(), &ldb);                 \
    }
KN_WRAP(d, double)
KN_WRAP(z, complex)
#undef KN_WRAP

// a p = q r with column pivoting, all columns free. lwork as above; rwork has 2 n elements, and is used for
// complex numbers only.
inline void geqp3(const Matrix<double> &a, int *p, double *tau, double *work, int lwork, double *) {
    int m = a.rows(), n = a.cols(), info = 0;
    dgeqp3_(&m, &n, a.data(), &m, p, tau, work, &lwork, &info);
}
inline void geqp3(const Matrix<complex> &a, int *p, complex *tau, complex *work, int lwork, double *rwork) {
    int m = a.rows(), n = a.cols(), info = 0;
    zgeqp3_(&m, &n, a.data(), &m, p, tau, work, &lwork, rwork, &info);
}
// b = q' b, q being the product of k reflectors.
inline void unmqr(const Matrix<double> &a, int k, const double *tau, const Matrix<double> &b, double *work,
                  int lwork) {
    int m = a.rows(), q = b.cols(), info = 0;
    dormqr_("L", "T", &m, &q, &k, a.data(), &m, tau, b.data(), &m, work, &lwork, &info);
}
inline void unmqr(const Matrix<complex> &a, int k, const complex *tau, const Matrix<complex> &b,
                  complex *work, int lwork) {
    int m = a.rows(), q = b.cols(), info = 0;
    zunmqr_("L", "C", &m, &q, &k, a.data(), &m, tau, b.data(), &m, work, &lwork, &info);
}

} // namespace lapack
} // namespace kn

#endif
