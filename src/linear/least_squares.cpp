// Rectangular systems, by the QR factorisation with pivoting by the norms of the columns.
//
// a P = Q R, y = Q' b. Of the k = min(m, n) leading columns R x = y is solved; the rows of x of the others
// stay zero.
#include <algorithm>

#include "base/poll.h"
#include "engine/blas_call.h"
#include "engine/gemm.h"
#include "linear/blocked_lu.h"
#include "linear/solvers.h"
#include "quorvex/builders.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

// Factors the first k columns of the pivoted matrix; `lead` gives the original column of each column, counted
// from 1.
template <class T> bool factor_qr(const Matrix<T> &a, int k, const Pivots &lead, const Scratch<T> &tau) {
    constexpr int widest = 32, unblocked = 128; // columns, as LAPACK has them
    const int m = a.rows(), n = a.cols();
    const int block =
        static_cast<int>(at_once<T>(widest, 8.0 * m * n)); // half of the work is limited by memory speed
    const BlasWork kind = factorisation_of(m, n);
    Scratch<T> work(std::max(n, widest)), f(static_cast<ptrdiff_t>(n) * widest);
    Scratch<double> norm(n), exact(n);
    if (!work || !f || !norm || !exact) return false;
    for (int j = 0; j < n; ++j) {
        norm[j] = exact[j] = lapack::norm(m, a.column(j));
        lead[j] = j + 1;
    }
    for (int j = 0;;) {
        if (interrupted()) return false;
        BlasCall call(kind);
        if (!call) return false;
        if (j >= k - unblocked) {
            lapack::laqp2(a, j, lead.get(), tau.get(), norm.get(), exact.get(), work.get());
            return true;
        }
        j += lapack::laqps(a, j, std::min(block, k - unblocked - j), lead.get(), tau.get(), norm.get(),
                           exact.get(), work.get(), f.get());
    }
}

// b = Q' b
template <class T> bool reflect(const Matrix<T> &a, int k, const Scratch<T> &tau, const Matrix<T> &b) {
    T wanted;
    lapack::unmqr(a, k, tau.get(), b.data(), b.cols(), &wanted, -1);
    const int lwork = double_to_int(std::real(wanted));
    Scratch<T> work(lwork);
    if (!work) return false;
    const int width = static_cast<int>(at_once<T>(b.cols(), 2.0 * b.rows() * k));
    for (int j = 0; j < b.cols(); j += width) {
        if (interrupted()) return false;
        BlasCall call(factorisation_of(a.rows(), k));
        if (!call) return false;
        lapack::unmqr(a, k, tau.get(), b.column(j), std::min(width, b.cols() - j), work.get(), lwork);
    }
    return true;
}

void scatter_row(const Matrix<double> &y, int i, const Mm &x, int to) {
    for (int j = 0; j < y.cols(); ++j) *x.addr(to, j + 1) = y(i, j);
}
void scatter_row(const Matrix<complex> &y, int i, const Mm &x, int to) {
    for (int j = 0; j < y.cols(); ++j) {
        *x.addr(to, j + 1) = y(i, j).real();
        x.addi()[x.addr(to, j + 1) - x.addr()] = y(i, j).imag();
    }
}

} // namespace

Mm solve_rectangular(const Mm &a, const Mm &b) {
    return by_number(a.isc() || b.isc(), [&]<class T>(T) {
        const int n = static_cast<int>(a.cols()), k = static_cast<int>(std::min(a.rows(), a.cols()));
        Matrix<T> factors(a), y(b);
        if (!factors || !y) return x_M;
        Pivots lead(n);
        Scratch<T> tau(k);
        if (!lead || !tau || !factor_qr(factors, k, lead, tau) || !reflect(factors, k, tau, y) ||
            !substitute_upper(factors, k, y))
            return x_M;
        Mm x = czeros(a.isc() || b.isc(), n, b.cols());
        if (x.getnnz() == 0) return x_M;
        for (int i = 0; i < k; ++i) scatter_row(y, i, x, lead[i]);
        return x;
    });
}

} // namespace kn
