#include "bench/ratio.h"

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <quorvex.h>

namespace {

struct Pair {
    std::string name;
    double limit;
    int steps; // 0: the limit is one on the ratio
    double ours = 0, plain = 0;
};

std::vector<Pair> &pairs() {
    static std::vector<Pair> all;
    return all;
}

std::vector<void (*)()> &groups() {
    static std::vector<void (*)()> all;
    return all;
}

// Keeps the smallest of the repetitions, which the machine's other work disturbs least.
class Ratios : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            double ns = run.GetAdjustedRealTime();
            std::string name = run.run_name.function_name;
            for (Pair &p : pairs()) {
                double *time = name == p.name + "/ours"    ? &p.ours
                               : name == p.name + "/plain" ? &p.plain
                                                           : nullptr;
                if (time && (*time == 0 || ns < *time)) *time = ns;
            }
        }
    }
    void Finalize() override {
        std::printf("%-44s %14s %14s %8s %8s %9s\n", "case", "ours ns", "plain ns", "ratio", "ns/step",
                    "limit");
        for (const Pair &p : pairs()) {
            if (p.ours == 0 || p.plain == 0) continue;
            double ratio = p.ours / p.plain, judged = p.steps ? p.ours / p.steps : ratio;
            std::printf("%-44s %14.1f %14.1f %8.2f", p.name.c_str(), p.ours, p.plain, ratio);
            if (p.steps)
                std::printf(" %8.1f %6.0f ns", judged, p.limit);
            else
                std::printf(" %8s %9.2f", "", p.limit);
            std::printf("%s\n", judged > p.limit ? "  over" : "");
        }
    }
};

} // namespace

bench::Group::Group(void (*add_cases)()) { groups().push_back(add_cases); }

void bench::compare(const std::string &name, double limit, std::function<void()> ours,
                    std::function<void()> plain) {
    compare_steps(name, limit, 0, std::move(ours), std::move(plain));
}

void bench::compare_steps(const std::string &name, double limit, int steps, std::function<void()> ours,
                          std::function<void()> plain) {
    pairs().push_back({name, limit, steps});
    auto add = [&](const char *side, std::function<void()> work) {
        benchmark::RegisterBenchmark((name + side).c_str(),
                                     [work](benchmark::State &state) {
                                         for (auto _ : state) work();
                                     })
            ->Repetitions(5)
            ->MinWarmUpTime(0.2) // fresh memory is slow for a while
            ->MinTime(0.02);
    };
    add("/ours", std::move(ours));
    add("/plain", std::move(plain));
}

int main(int argc, char **argv) {
    initM2(QUORVEX_VERSION, sizeof(Mm));
    for (auto add_cases : groups()) add_cases();
    benchmark::Initialize(&argc, argv);
    Ratios ratios;
    benchmark::RunSpecifiedBenchmarks(&ratios);
    benchmark::Shutdown();
}
