// Rectangular systems, by the QR factorisation with pivoting by the norms of the columns.
//
// a P = Q R. Of the k = min(m, n) leading columns r is solved for; the rows of the others stay zero.
#include <algorithm>

#include "numerics/blas_threads.h"
#include "numerics/lapack.h"
#include "numerics/solvers.h"
#include "quorvex/builders.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

// y = Q' b, then its first k rows become R \ y; `lead` tells the column of each.
template <class T> bool solve_leading(const Matrix<T> &a, const Matrix<T> &b, int k, const Pivots &lead) {
    T wanted[2];
    lapack::geqp3(a, lead.get(), nullptr, &wanted[0], -1, nullptr);
    lapack::unmqr(a, k, nullptr, b, &wanted[1], -1);
    int lwork = static_cast<int>(std::max(std::real(wanted[0]), std::real(wanted[1])));
    Scratch<T> work(lwork), tau(k);
    Scratch<double> rwork(2 * static_cast<ptrdiff_t>(a.cols()));
    if (!work || !tau || !rwork) return false;
    OneBlasThread one(small_factorisation(a.rows(), a.cols()));
    std::fill_n(lead.get(), a.cols(), 0); // all columns are free
    lapack::geqp3(a, lead.get(), tau.get(), work.get(), lwork, rwork.get());
    lapack::unmqr(a, k, tau.get(), b, work.get(), lwork);
    lapack::solve_upper(a, k, b);
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
        const int n = a.cols(), k = std::min(a.rows(), n);
        Matrix<T> factors(a), y(b);
        if (!factors || !y) return x_M;
        Pivots lead(n);
        if (!lead || !solve_leading(factors, y, k, lead)) return x_M;
        Mm x = czeros(a.isc() || b.isc(), n, b.cols());
        if (x.getnnz() == 0) return x_M;
        for (int i = 0; i < k; ++i) scatter_row(y, i, x, lead[i]);
        return x;
    });
}

} // namespace kn
