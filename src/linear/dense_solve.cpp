// Square systems, by triangular factors or, where the matrix is symmetric, by diagonal pivoting.
#include <algorithm>

#include "base/poll.h"
#include "engine/blas_call.h"
#include "engine/gemm.h"
#include "linear/blocked_lu.h"
#include "linear/solvers.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

// By blocks of columns of the lower triangle, as in LAPACK. Pivot positions are relative to their block; both
// of a pivot of two rows are negative.
bool factor_symmetric(const Matrix<double> &a, const Pivots &p) {
    constexpr int block = 64;
    const int n = a.rows(),
              nb = std::max(8, static_cast<int>(at_once<double>(block, static_cast<double>(n) * n)));
    Scratch<double> work(static_cast<ptrdiff_t>(n) * block);
    if (!work) return false;
    for (int k = 0, count; k < n; k += count) {
        if (interrupted()) return false;
        BlasCall call(factorisation_of(n, n));
        if (!call) return false;
        const int left = n - k;
        int info = 0;
        count = left;
        if (left > block)
            dlasyf_("L", &left, &nb, &count, &a(k, k), &n, p.get() + k, work.get(), &n, &info);
        else
            dsytf2_("L", &left, &a(k, k), &n, p.get() + k, &info);
        for (int j = k; j < k + count; ++j) p[j] += p[j] > 0 ? k : -k;
    }
    return true;
}

bool substitute_symmetric(const Matrix<double> &a, const Pivots &p, const Matrix<double> &b) {
    constexpr int widest = 32; // columns solved for one by one, which should stay in the cache
    const int n = a.rows(),
              width = static_cast<int>(at_once<double>(std::min(widest, b.cols()), 4.0 * n * n));
    for (int j = 0; j < b.cols(); j += width) {
        if (interrupted()) return false;
        BlasCall call(factorisation_of(n, n));
        if (!call) return false;
        const int q = std::min(width, b.cols() - j);
        int info = 0;
        dsytrs_("L", &n, &q, a.data(), &n, p.get(), b.column(j), &n, &info);
    }
    return true;
}

} // namespace

Mm solve_square(const Mm &a, const Mm &b) {
    return by_number(a.isc() || b.isc(), [&]<class T>(T) {
        Matrix<T> factors(a), x(b);
        if (!factors || !x) return x_M;
        Pivots p(a.rows());
        return p && factor(factors, p) && substitute(factors, p, x) ? x.value() : x_M;
    });
}

Mm solve_symmetric(const Mm &a, const Mm &b) {
    Matrix<double> factors(a), x(b);
    if (!factors || !x) return x_M;
    Pivots p(a.rows());
    return p && factor_symmetric(factors, p) && substitute_symmetric(factors, p, x) ? x.value() : x_M;
}

} // namespace kn
