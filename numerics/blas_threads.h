// Whether OpenBLAS may use several threads for a piece of work.
//
// It shares the factorisation of a matrix of order 100 already, and then loses more by waiting for its
// threads than it gains: measured on two processors, seven times as long at orders 100 to 200 while other
// programs ran. So smaller work keeps to the calling thread, and so does all that SuperLU does on its small
// blocks.
#ifndef QUORVEX_NUMERICS_BLAS_THREADS_H
#define QUORVEX_NUMERICS_BLAS_THREADS_H

namespace kn {

// While one exists that is `needed`, OpenBLAS uses one thread, in the whole process. It does nothing with
// another BLAS, and where OPENBLAS_NUM_THREADS, GOTO_NUM_THREADS or OMP_NUM_THREADS is set: then that holds.
class OneBlasThread {
  public:
    explicit OneBlasThread(bool needed);
    ~OneBlasThread();
    OneBlasThread(const OneBlasThread &) = delete;
    OneBlasThread &operator=(const OneBlasThread &) = delete;

  private:
    bool needed_;
};

// Whether the factorisation of an m by n matrix is too small to be shared.
inline bool small_factorisation(int m, int n) {
    constexpr double order = 256;
    return static_cast<double>(m) * n * (m < n ? m : n) <= order * order * order;
}

} // namespace kn

#endif
