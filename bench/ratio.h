// Rows of the benchmark table. Each runs the library's call and the native version of the same work in one
// process and is judged by the ratio of their times.
#ifndef QUORVEX_BENCH_RATIO_H
#define QUORVEX_BENCH_RATIO_H

#include <functional>
#include <string>

#include <benchmark/benchmark.h>
#include <quorvex.h>

namespace bench {

// The largest accepted ratio of the library's time to the native time.
struct Limit {
    double most;
};
inline Limit times_native(double most) { return {most}; }

// Measures and prints one row, unless the pattern of the command line leaves it out. Both sides do the work
// once per call, in turns, so that other work on the machine affects both. The ratio is that of the shortest
// times; the medians show how much the times vary.
void row(const std::string &work, Limit limit, const std::function<void()> &ours,
         const std::function<void()> &native);

// The title of the rows that follow; printed with the first of them.
void heading(const char *title);

// The groups of rows, in the order of the table.
void scalar_rows();
void subscript_rows();
void element_rows();
void reduction_rows();
void selection_rows();
void array_rows();
void structure_rows();
void value_rows();
void product_rows();
void sparse_rows();
void solving_rows();
void workspace_rows();
void formatted_rows();
void text_rows();
void file_rows();
void matfile_rows();

template <class T> void keep(const T &x) { benchmark::DoNotOptimize(&x); }
// A result goes into a variable, as in a program: the one before stays until then.
void keep(const Mm &x);

inline std::string size_text(int n) { // 1e6 for 1000000
    int zeros = 0;
    for (; n % 10 == 0; n /= 10) ++zeros;
    return n == 1 && zeros > 2 ? "1e" + std::to_string(zeros) : std::to_string(n) + std::string(zeros, '0');
}

} // namespace bench

#endif
