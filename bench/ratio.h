// Rows of the benchmark table. Each runs the library's call and the native version of the same work in one
// process and is judged by a limit on their ratio or on the library's time alone.
#ifndef QUORVEX_BENCH_RATIO_H
#define QUORVEX_BENCH_RATIO_H

#include <functional>
#include <string>

#include <benchmark/benchmark.h>

namespace bench {

// The most that the library's call may take.
struct Limit {
    enum Kind { ratio, step, beyond, total } kind;
    double most;   // as often as long as native; ns a step; ns a step more than native; ms in all
    int steps = 1; // of one call
};
inline Limit times_native(double most) { return {Limit::ratio, most}; }
inline Limit ns_each(double most, int steps) { return {Limit::step, most, steps}; }
inline Limit ns_beyond_native(double most, int steps) { return {Limit::beyond, most, steps}; }
inline Limit ms(double most) { return {Limit::total, most}; }

// Measures and prints one row, unless the pattern of the command line leaves it out. Both sides do the work
// once a call. They take turns, so that other work on the machine disturbs both, and the shortest time
// counts.
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

inline std::string size_text(int n) { // 1e6 for 1000000
    int zeros = 0;
    for (; n % 10 == 0; n /= 10) ++zeros;
    return n == 1 && zeros > 2 ? "1e" + std::to_string(zeros) : std::to_string(n) + std::string(zeros, '0');
}

} // namespace bench

#endif
