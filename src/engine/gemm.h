// Products of matrices in the layout of BLAS, which a host can interrupt.
#ifndef QUORVEX_ENGINE_GEMM_H
#define QUORVEX_ENGINE_GEMM_H

#include <complex>

#include "quorvex/host.h"

namespace kn {

// How many multiplications BLAS may do between two safe points (base/poll.h): real ones take 15 to 30 ms.
template <class T> constexpr double longest_work = (1 << 28) / (sizeof(T) == sizeof(double) ? 1.0 : 4.0);

// Whether work is to be divided, which is so only while a host's hook is set.
template <class T> bool too_long(double work) { return kn_poll_handler && work > longest_work<T>; }

// How many of n alike pieces of work may be done at once.
template <class T> int at_once(int n, double work) {
    return too_long<T>(n * work) ? static_cast<int>(longest_work<T> / work) + 1 : n;
}

// c = alpha a b + beta c, of m by k and k by n; T is double or std::complex<double>. False, c being of no
// use, after a report: an interruption, or no memory.
template <class T>
bool gemm(int m, int n, int k, T alpha, const T *a, int lda, const T *b, int ldb, T beta, T *c, int ldc);

} // namespace kn

#endif
