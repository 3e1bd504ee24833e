// Products of matrices in the layout of BLAS, which a host can interrupt.
#ifndef QUORVEX_ENGINE_GEMM_H
#define QUORVEX_ENGINE_GEMM_H

#include <complex>

#include "quorvex/host.h"
#include "quorvex/values.h"

namespace kn {

// How many multiplications BLAS may do between two safe points (base/poll.h): real ones take 15 to 30 ms.
template <class T> constexpr double longest_work = (1 << 28) / (sizeof(T) == sizeof(double) ? 1.0 : 4.0);

// Whether work is to be divided, which is so only while a host's hook is set.
template <class T> bool too_long(double work) { return kn_poll_handler && work > longest_work<T>; }

// How many of n alike pieces of work may be done at once.
template <class T> kn_size at_once(kn_size n, double work) {
    return too_long<T>(n * work) ? static_cast<kn_size>(longest_work<T> / work) + 1 : n;
}

// c = alpha a b + beta c, of m by k and k by n; T is double or std::complex<double>. What is more than BLAS
// can count is cut into blocks. False, c being of no use, after a report: an interruption, or no memory.
template <class T>
bool gemm(kn_size m, kn_size n, kn_size k, T alpha, const T *a, kn_size lda, const T *b, kn_size ldb, T beta,
          T *c, kn_size ldc);

} // namespace kn

#endif
