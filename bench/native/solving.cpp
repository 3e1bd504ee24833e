#include "bench/native.h"

#include <algorithm>
#include <complex>
#include <cstddef>
#include <vector>

#include <slu_ddefs.h>

namespace {

using complex = std::complex<double>;

} // namespace

extern "C" {
void dgetrf_(const int *, const int *, double *, const int *, int *, int *);
void dgetrs_(const char *, const int *, const int *, const double *, const int *, const int *, double *,
             const int *, int *);
void dgetri_(const int *, double *, const int *, const int *, double *, const int *, int *);
void zgetrf_(const int *, const int *, complex *, const int *, int *, int *);
void zgetrs_(const char *, const int *, const int *, const complex *, const int *, const int *, complex *,
             const int *, int *);
void zgetri_(const int *, complex *, const int *, const int *, complex *, const int *, int *);
void dsytrf_(const char *, const int *, double *, const int *, int *, double *, const int *, int *);
void dsytrs_(const char *, const int *, const int *, const double *, const int *, const int *, double *,
             const int *, int *);
void dgeqp3_(const int *, const int *, double *, const int *, int *, double *, double *, const int *, int *);
void dormqr_(const char *, const char *, const int *, const int *, const int *, const double *, const int *,
             const double *, double *, const int *, double *, const int *, int *);
}

namespace {

std::size_t squared(int n) { return static_cast<std::size_t>(n) * n; }
complex *pairs(double *x) { return reinterpret_cast<complex *>(x); }

constexpr int one = 1, block = 64;

} // namespace

namespace native {

void solve(int n, const double *a, const double *b, double *work, double *x) {
    std::vector<int> p(n);
    int info;
    std::copy_n(a, squared(n), work);
    std::copy_n(b, n, x);
    dgetrf_(&n, &n, work, &n, p.data(), &info);
    dgetrs_("N", &n, &one, work, &n, p.data(), x, &n, &info);
}

void solve_symmetric(int n, const double *a, const double *b, double *work, double *x) {
    std::vector<int> p(n);
    std::vector<double> w(static_cast<std::size_t>(n) * block);
    int info, lwork = n * block;
    std::copy_n(a, squared(n), work);
    std::copy_n(b, n, x);
    dsytrf_("L", &n, work, &n, p.data(), w.data(), &lwork, &info);
    dsytrs_("L", &n, &one, work, &n, p.data(), x, &n, &info);
}

void solve_complex(int n, const double *a, const double *b, double *work, double *x) {
    std::vector<int> p(n);
    int info;
    std::copy_n(a, 2 * squared(n), work);
    std::copy_n(b, 2 * n, x);
    zgetrf_(&n, &n, pairs(work), &n, p.data(), &info);
    zgetrs_("N", &n, &one, pairs(work), &n, p.data(), pairs(x), &n, &info);
}

void invert(int n, const double *a, double *x) {
    std::vector<int> p(n);
    std::vector<double> w(static_cast<std::size_t>(n) * block);
    int info, lwork = n * block;
    std::copy_n(a, squared(n), x);
    dgetrf_(&n, &n, x, &n, p.data(), &info);
    dgetri_(&n, x, &n, p.data(), w.data(), &lwork, &info);
}

void invert_complex(int n, const double *a, double *x) {
    std::vector<int> p(n);
    std::vector<complex> w(static_cast<std::size_t>(n) * block);
    int info, lwork = n * block;
    std::copy_n(a, 2 * squared(n), x);
    zgetrf_(&n, &n, pairs(x), &n, p.data(), &info);
    zgetri_(&n, pairs(x), &n, p.data(), w.data(), &lwork, &info);
}

double determinant(int n, const double *a, double *work) {
    std::vector<int> p(n);
    int info;
    std::copy_n(a, squared(n), work);
    dgetrf_(&n, &n, work, &n, p.data(), &info);
    double d = 1;
    for (int k = 0; k < n; ++k) d *= p[k] == k + 1 ? work[k * (n + 1)] : -work[k * (n + 1)];
    return d;
}

void least_squares(int m, int n, const double *a, const double *b, double *work, double *x) {
    std::vector<int> p(n);
    std::vector<double> tau(n), w(static_cast<std::size_t>(n + m) * block);
    int info, lwork = (n + m) * block;
    std::copy_n(a, static_cast<std::size_t>(m) * n, work);
    std::copy_n(b, m, x);
    dgeqp3_(&m, &n, work, &m, p.data(), tau.data(), w.data(), &lwork, &info);
    dormqr_("L", "T", &m, &one, &n, work, &m, tau.data(), x, &m, w.data(), &lwork, &info);
    double scale = 1;
    char side[] = "L", upper[] = "U", no[] = "N";
    int q = 1;
    dtrsm_(side, upper, no, no, &n, &q, &scale, work, &m, x, &m);
}

void solve_sparse(int n, int *starts, int *rows, double *values, const double *b, double *x) {
    std::copy_n(b, n, x);
    std::vector<int> column_order(n), row_order(n);
    superlu_options_t options;
    set_default_options(&options);
    options.ColPerm = MMD_AT_PLUS_A;
    SuperMatrix a, rhs, l, u;
    SuperLUStat_t statistics;
    StatInit(&statistics);
    dCreate_CompCol_Matrix(&a, n, n, starts[n], values, rows, starts, SLU_NC, SLU_D, SLU_GE);
    dCreate_Dense_Matrix(&rhs, n, 1, x, n, SLU_DN, SLU_D, SLU_GE);
    int info;
    dgssv(&options, &a, column_order.data(), row_order.data(), &l, &u, &rhs, &statistics, &info);
    Destroy_SuperMatrix_Store(&a);
    Destroy_SuperMatrix_Store(&rhs);
    Destroy_SuperNode_Matrix(&l);
    Destroy_CompCol_Matrix(&u);
    StatFree(&statistics);
}

} // namespace native
