// Work shared by the caller and a few helper threads.
//
// The helpers are started by the first call that shares its work. Between calls they spin for some
// microseconds, ready to begin at once, and then sleep; a call never waits for one to wake up, but only for
// what it has begun. A call from inside another, or while another thread's is going on, runs alone.
#ifndef QUORVEX_BASE_PARALLEL_H
#define QUORVEX_BASE_PARALLEL_H

#include <stddef.h>

namespace kn {

// How many threads a call may use: those of the machine, 8 at most, or what the environment variable
// QUORVEX_THREADS says. 1 while kn_threads_flag is set, unless that variable said more.
int thread_count();

// Sets that number as if QUORVEX_THREADS said it; 0 asks the environment again. Not from inside a call.
void set_thread_count(int n);

// Calls work(context, begin, end) for ranges that cover 0 to n once, each beginning at a multiple of `grain`,
// and returns when all is done. See parallel_for.
using RangeWork = void (*)(void *context, ptrdiff_t begin, ptrdiff_t end) noexcept;
void share_ranges(ptrdiff_t n, ptrdiff_t grain, RangeWork work, void *context) noexcept;

// Calls f(begin, end) for disjoint ranges that cover 0 to n; each begins at a multiple of `grain`, at least
// 1, and ends at one or at n. How many grains a range has depends on the number of threads: f treats each
// alike wherever the ranges are cut, and results are the same for any number. Work of one grain is one range
// and wakes no thread, so work not worth sharing has a grain of n: a helper that sleeps takes 25 to 35 us to
// begin, one that spins less than 1.
//
// f runs on several threads at once. It must not throw, report errors, make or free blocks, or fork.
template <class F> void parallel_for(ptrdiff_t n, ptrdiff_t grain, F f) noexcept {
    if (n <= 0) return;
    if (n <= grain) return f(ptrdiff_t(0), n);
    share_ranges(
        n, grain,
        [](void *context, ptrdiff_t begin, ptrdiff_t end) noexcept {
            (*static_cast<F *>(context))(begin, end);
        },
        &f);
}

} // namespace kn

#endif
