#include "bench/ratio.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

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
    double best = std::numeric_limits<double>::infinity();

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
        best = std::min(best, timed(work, calls));
    }
};

std::string time_text(double ns) {
    const char *unit = ns < 999.5 ? "ns" : ns < 999.5e3 ? "us" : "ms";
    double shown = ns < 999.5 ? ns : ns < 999.5e3 ? ns / 1e3 : ns / 1e6;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", shown < 10 ? 2 : shown < 100 ? 1 : 0, shown, unit);
    return text;
}

void print(const char *work, const char *ours, const char *native, const char *judged, const char *limit,
           const char *mark) {
    std::printf("%-42s %9s %9s %9s %9s%s\n", work, ours, native, judged, limit, mark);
    std::fflush(stdout);
}

} // namespace

void bench::heading(const char *text) { title = text; }

void bench::row(const std::string &work, Limit limit, const Work &ours, const Work &native) {
    if (work.find(pattern) == std::string::npos) return;
    Side a(ours), b(native);
    double start = nanoseconds_now();
    for (int k = 0; k < fewest_batches || nanoseconds_now() - start < budget; ++k) a.run(), b.run();

    double judged = 0;
    const char *form = "%.1f ns";
    switch (limit.kind) {
    case Limit::ratio: judged = a.best / b.best, form = "%.2f x"; break;
    case Limit::step: judged = a.best / limit.steps; break;
    case Limit::beyond: judged = (a.best - b.best) / limit.steps; break;
    case Limit::total: judged = a.best / 1e6, form = "%.2f ms"; break;
    }
    char judged_text[32], limit_text[32];
    std::snprintf(judged_text, sizeof judged_text, form, judged);
    std::snprintf(limit_text, sizeof limit_text, form, limit.most);
    if (title) std::printf("\n%s\n", title);
    title = nullptr;
    print(work.c_str(), time_text(a.best).c_str(), time_text(b.best).c_str(), judged_text, limit_text,
          judged > limit.most ? "  over" : "");
    ++rows, over += judged > limit.most;
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
    initM2(QUORVEX_VERSION, sizeof(Mm));
    print("work", "ours", "native", "judged", "limit", "");
    for (auto group : {bench::scalar_rows, bench::subscript_rows, bench::element_rows, bench::reduction_rows,
                       bench::selection_rows, bench::array_rows, bench::structure_rows, bench::value_rows,
                       bench::product_rows, bench::workspace_rows, bench::formatted_rows, bench::text_rows,
                       bench::file_rows, bench::sparse_rows, bench::solving_rows, bench::matfile_rows})
        group();
    std::printf("\n%d of %d rows over their limit\n", over, rows);
    return rows == 0 || (strict && over > 0);
}
