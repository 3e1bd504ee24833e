// Square systems, by triangular factors or, where the matrix is symmetric, by diagonal pivoting.
#include "numerics/blas_threads.h"
#include "numerics/lapack.h"
#include "numerics/solvers.h"
#include "quorvex/startup.h"

namespace kn {

Mm solve_square(const Mm &a, const Mm &b) {
    return by_number(a.isc() || b.isc(), [&]<class T>(T) {
        Matrix<T> factors(a), x(b);
        if (!factors || !x) return x_M;
        Pivots p(a.rows());
        if (!p) return x_M;
        OneBlasThread one(small_factorisation(a.rows(), a.rows()));
        lapack::getrf(factors, p.get());
        lapack::getrs(factors, p.get(), x);
        return x.value();
    });
}

Mm solve_symmetric(const Mm &a, const Mm &b) {
    Matrix<double> factors(a), x(b);
    if (!factors || !x) return x_M;
    const int n = a.rows(), q = b.cols(), ask = -1;
    int info = 0;
    double wanted = 0;
    Pivots p(n);
    if (!p) return x_M;
    dsytrf_("L", &n, factors.data(), &n, p.get(), &wanted, &ask, &info);
    const int lwork = static_cast<int>(wanted);
    Scratch<double> work(lwork);
    if (!work) return x_M;
    OneBlasThread one(small_factorisation(n, n));
    dsytrf_("L", &n, factors.data(), &n, p.get(), work.get(), &lwork, &info);
    dsytrs_("L", &n, &q, factors.data(), &n, p.get(), x.data(), &n, &info);
    return x.value();
}

} // namespace kn
