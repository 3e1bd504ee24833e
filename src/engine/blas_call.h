// The scope of each use of BLAS and LAPACK: memory for it is there before it begins, and threads are used
// where they pay.
//
// OpenBLAS works in buffers of 128 MB of address space: one for each of its threads, which it starts when it
// is loaded and after each fork, and one for each thread that is inside a call. They are mapped when they are
// first needed and then kept. When one can't be had OpenBLAS asks for it over and over, or ends the process;
// so here, before the first call and when more threads call at a time than ever before, it is found out
// whether they can be had, and OpenBLAS made to take them.
//
// OpenBLAS shares the factorisation of a matrix of order 100 already, and then loses more by waiting for its
// threads than it gains: measured on two processors, seven times as long at orders 100 to 200 while other
// programs ran. So smaller work keeps to the calling thread, and so does all that SuperLU does on its small
// blocks.
#ifndef QUORVEX_ENGINE_BLAS_CALL_H
#define QUORVEX_ENGINE_BLAS_CALL_H

#include <cstddef>

namespace kn {

enum class BlasWork {
    small,        // so little that OpenBLAS leaves it to the calling thread
    alone,        // not to be shared, though OpenBLAS would
    product,      // for all threads: products and substitutions
    factorisation // for all threads
};

// False after "Out of memory!". Work for all threads takes further memory, which is asked for here, too, so
// nothing is to be allocated before it is done. One inside another of the same thread asks for no further
// buffer. While one exists for work `alone`, OpenBLAS uses one thread, in the whole process; but not where
// OPENBLAS_NUM_THREADS, GOTO_NUM_THREADS or OMP_NUM_THREADS is set: then that holds. With another BLAS it
// does nothing.
class BlasCall {
  public:
    explicit BlasCall(BlasWork work);
    ~BlasCall();
    BlasCall(const BlasCall &) = delete;
    BlasCall &operator=(const BlasCall &) = delete;
    explicit operator bool() const { return has_memory_; }

  private:
    bool has_memory_, alone_;
};

// How a matrix of m by n is factored.
inline BlasWork factorisation_of(ptrdiff_t m, ptrdiff_t n) {
    constexpr double order = 256;
    const double work = static_cast<double>(m) * n * (m < n ? m : n);
    return work <= order * order * order ? BlasWork::alone : BlasWork::factorisation;
}

// How a product of m by k and k by n is formed.
inline BlasWork product_of(ptrdiff_t m, ptrdiff_t k, ptrdiff_t n) {
    return static_cast<double>(m) * k * n <= 1 << 18 ? BlasWork::small : BlasWork::product;
}

} // namespace kn

#endif
