// Benchmarks as ratios: each case runs the library's call and the plain C++ (or BLAS) version of the same
// work in one process, and the table at the end shows their times and the ratio beside the limit that the
// project sets itself. A limit in nanoseconds is one on the time of a single step.
#ifndef QUORVEX_BENCH_RATIO_H
#define QUORVEX_BENCH_RATIO_H

#include <cstdlib>
#include <functional>
#include <string>

#include <benchmark/benchmark.h>

namespace bench {

// `ours` and `plain` do the work once; `limit` is the largest ratio aimed at.
void compare(const std::string &name, double limit, std::function<void()> ours, std::function<void()> plain);

// The same for work of `steps` steps, of which `ours` may take `limit_ns` nanoseconds each, whatever the
// ratio.
void compare_steps(const std::string &name, double limit_ns, int steps, std::function<void()> ours,
                   std::function<void()> plain);

// A group of cases: its registration runs before the benchmarks do.
struct Group {
    explicit Group(void (*add_cases)());
};

template <class T> void keep(const T &x) { benchmark::DoNotOptimize(&x); }

// f writes n doubles into a fresh block, which nobody has cleared.
template <class F> auto into_fresh(size_t n, F f) {
    return [=] {
        double *out = static_cast<double *>(std::malloc(sizeof(double) * n));
        f(out);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
        std::free(out);
    };
}

} // namespace bench

#endif
