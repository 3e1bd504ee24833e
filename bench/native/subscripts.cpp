#include "bench/native.h"

#include <vector>

namespace native {

double read_each(int n, const double *x) {
    Box s, k;
    loop(k, n, [&] { s = x[static_cast<int>(*k) - 1]; });
    return *s;
}

void write_each(int n, double *x, double v) {
    const Box value = v;
    Box k;
    loop(k, n, [&] { x[static_cast<int>(*k) - 1] = *value; });
}

void append(int n) {
    std::vector<double> x;
    Box k;
    loop(k, n, [&] {
        x.push_back(*k);
        benchmark::DoNotOptimize(x.data());
    });
}

void append_records(int n) {
    std::vector<Record> s;
    Box k;
    loop(k, n, [&] {
        s.push_back({k});
        benchmark::DoNotOptimize(s.data());
    });
}

double read_records(int n, const Record *s) {
    Box t, k;
    loop(k, n, [&] { t = s[static_cast<int>(*k) - 1].a; });
    return *t;
}

} // namespace native
