#include "bench/ratio.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <quorvex.h>

namespace {

using Work = std::function<void()>;

const char *pattern = ""; // rows without this text are left out
const char *title = nullptr;
int rows = 0, over = 0;

// Of a row, in ns. A batch is long enough for the clock and the caches; there are as many as the budget
// allows.
constexpr double batch = 5e6, budget = 5e8, warm_up = 3e7;
constexpr int fewest_batches = 3;

double nanoseconds_now() {
    using namespace std::chrono;
    return static_cast<double>(duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count());
}

double timed(const Work &work, int calls = 1) {
    double start = nanoseconds_now();
    for (int k = 0; k < calls; ++k) work();
    return (nanoseconds_now() - start) / calls;
}

// One side of a row.
struct Side {
    const Work &work;
    int calls = 1; // of a batch
    std::vector<double> batches = {};

    explicit Side(const Work &w) : work(w) {
        double call = timed(work); // fresh memory is slow for a while
        for (double spent = call; spent < warm_up;) {
            double next = timed(work);
            spent += next;
            call = std::min(call, next);
        }
        calls = static_cast<int>(std::clamp(std::ceil(batch / std::max(call, 1.0)), 1.0, 1e7));
    }
    void run() {
        work(); // the other side has filled the caches
        batches.push_back(timed(work, calls));
    }
    double best() const { return *std::ranges::min_element(batches); }
    double median() {
        auto middle = batches.begin() + static_cast<ptrdiff_t>(batches.size() / 2);
        std::ranges::nth_element(batches, middle);
        return *middle;
    }
};

std::string time_text(double ns) {
    const char *unit = ns < 999.5 ? "ns" : ns < 999.5e3 ? "us" : "ms";
    double shown = ns < 999.5 ? ns : ns < 999.5e3 ? ns / 1e3 : ns / 1e6;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", shown < 10 ? 2 : shown < 100 ? 1 : 0, shown, unit);
    return text;
}

void print(const char *work, const char *ours, const char *our_median, const char *native,
           const char *native_median, const char *ratio, const char *limit, const char *mark = "") {
    std::printf("%-42s %9s %9s %9s %9s %7s %6s%s\n", work, ours, our_median, native, native_median, ratio,
                limit, mark);
    std::fflush(stdout);
}

// Holds the last result.
Mm &variable() {
    static Mm y(i_o, "y", 0);
    return y;
}

} // namespace

void bench::heading(const char *text) { title = text; }

void bench::keep(const Mm &x) {
    variable() = x;
    benchmark::DoNotOptimize(variable());
}

void bench::row(const std::string &work, Limit limit, const Work &ours, const Work &native) {
    if (work.find(pattern) == std::string::npos) return;
    Side a(ours), b(native);
    double start = nanoseconds_now();
    for (int k = 0; k < fewest_batches || nanoseconds_now() - start < budget; ++k) a.run(), b.run();

    const double ratio = a.best() / b.best();
    char ratio_text[32], limit_text[32];
    std::snprintf(ratio_text, sizeof ratio_text, "%.2f", ratio);
    std::snprintf(limit_text, sizeof limit_text, "%.2f", limit.most);
    if (title) std::printf("\n%s\n", title);
    title = nullptr;
    print(work.c_str(), time_text(a.best()).c_str(), time_text(a.median()).c_str(),
          time_text(b.best()).c_str(), time_text(b.median()).c_str(), ratio_text, limit_text,
          ratio > limit.most ? "  over" : "");
    ++rows, over += ratio > limit.most;
}

// quorvex_bench [--strict] [text]: the rows whose names hold the text. With --strict a row over its limit is
// a failure.
int main(int argc, char **argv) {
    bool strict = false;
    for (int k = 1; k < argc; ++k) {
        if (std::strcmp(argv[k], "--strict") == 0)
            strict = true;
        else
            pattern = argv[k];
    }
    // The native loops run on one thread, and so does the library, unless QUORVEX_THREADS says otherwise.
    // BLAS takes as many as it likes on both sides.
    setenv("QUORVEX_THREADS", "1", 0);
    initM2(QUORVEX_VERSION, sizeof(Mm));
    std::printf(
        "Threads: library %s, native 1, BLAS the same on both sides. Least times, medians after them.\n",
        std::getenv("QUORVEX_THREADS"));
    print("work", "ours", "median", "native", "median", "ratio", "limit");
    for (auto group : {bench::scalar_rows, bench::subscript_rows, bench::element_rows, bench::reduction_rows,
                       bench::selection_rows, bench::array_rows, bench::structure_rows, bench::value_rows,
                       bench::product_rows, bench::workspace_rows, bench::formatted_rows, bench::text_rows,
                       bench::file_rows, bench::sparse_rows, bench::solving_rows, bench::matfile_rows})
        group();
    variable() = nop_M;
    std::printf("\n%d of %d rows over their limit\n", over, rows);
    return rows == 0 || (strict && over > 0);
}
