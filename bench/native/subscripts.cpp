#include "bench/native.h"

#include <vector>

#include <benchmark/benchmark.h>

namespace native {

double read_each(int n, const double *x) {
    double s = 0;
    for (int k = 0; k < n; ++k) benchmark::DoNotOptimize(s = x[k]);
    return s;
}

void write_each(int n, double *x, double v) {
    for (int k = 0; k < n; ++k) x[k] = v;
}

void append(int n) {
    std::vector<double> x;
    for (int k = 1; k <= n; ++k) {
        x.push_back(k);
        benchmark::DoNotOptimize(x.data());
    }
}

void append_records(int n) {
    std::vector<Record> s;
    for (int k = 1; k <= n; ++k) {
        s.push_back({static_cast<double>(k)});
        benchmark::DoNotOptimize(s.data());
    }
}

double read_records(int n, const Record *s) {
    double t = 0;
    for (int k = 0; k < n; ++k) benchmark::DoNotOptimize(t = s[k].a);
    return t;
}

} // namespace native
