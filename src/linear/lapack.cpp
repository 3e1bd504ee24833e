// Matrices between planes and the layout of LAPACK.
#include "linear/lapack.h"

#include "quorvex/startup.h"
#include "value/planes.h"

namespace kn {
namespace {

kn_size size_of(const Mm &x) { return x.rows() * x.cols(); }

} // namespace

template <> Matrix<double>::Matrix(int m, int n) : m_(m), n_(n), store_(0, 0, 0, m, n, kn_double) {}

template <> Matrix<complex>::Matrix(int m, int n) : m_(m), n_(n) {
    store_ = Mm(0, 0, 0, 2 * ptrdiff_t{m}, n, kn_double);
}

template <>
Matrix<double>::Matrix(const Mm &x) : Matrix(static_cast<int>(x.rows()), static_cast<int>(x.cols())) {
    if (*this) copy_run(data(), x.addr(), size_of(x));
}

template <>
Matrix<complex>::Matrix(const Mm &x) : Matrix(static_cast<int>(x.rows()), static_cast<int>(x.cols())) {
    if (!*this) return;
    const double *re = x.addr(), *im = x.addi();
    double *z = reinterpret_cast<double *>(data());
    for (ptrdiff_t k = 0, n = size_of(x); k < n; ++k) {
        z[2 * k] = re[k];
        z[2 * k + 1] = im ? im[k] : 0;
    }
}

template <> Mm Matrix<double>::value() const { return store_; }

template <> Mm Matrix<complex>::value() const {
    Mm out(1, 0, 0, m_, n_, kn_double);
    ptrdiff_t n = size_of(out);
    if (n == 0) return x_M;
    const double *z = reinterpret_cast<const double *>(data());
    double *re = out.addr(), *im = out.addi();
    for (ptrdiff_t k = 0; k < n; ++k) {
        re[k] = z[2 * k];
        im[k] = z[2 * k + 1];
    }
    return out;
}

} // namespace kn
