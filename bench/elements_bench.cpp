// Element operations and reductions against plain loops that write into an array of their own.

#include <cmath>
#include <cstdlib>

#include <quorvex.h>

#include "bench/ratio.h"

namespace {

// What a careful programmer writes: a fresh array, one loop that vectorises.
template <class F> auto plain(int n, const double *__restrict a, const double *__restrict b, F f) {
    return [=] {
        double *__restrict out = static_cast<double *>(std::malloc(sizeof(double) * static_cast<size_t>(n)));
        for (int k = 0; k < n; ++k) out[k] = f(a[k], b[k]);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
        std::free(out);
    };
}

void element_cases(int n, double limit) {
    const Mm &a = *new Mm(randM(1.0, n) + 0.5), &b = *new Mm(randM(1.0, n) + 0.5);
    std::string of = " of " + std::to_string(n);
    auto add = [&](const char *name, auto ours, auto f) {
        bench::compare(
            name + of, limit, [=, &a, &b] { bench::keep(ours(a, b)); }, plain(n, a.addr(), b.addr(), f));
    };
    add(
        "a + b", [](auto &x, auto &y) { return x + y; }, [](double x, double y) { return x + y; });
    add(
        "a - b", [](auto &x, auto &y) { return x - y; }, [](double x, double y) { return x - y; });
    add(
        "a .* b", [](auto &x, auto &y) { return times(x, y); }, [](double x, double y) { return x * y; });
    add(
        "a ./ b", [](auto &x, auto &y) { return rdivide(x, y); }, [](double x, double y) { return x / y; });
    add(
        "a < b", [](auto &x, auto &y) { return x < y; }, [](double x, double y) { return double(x < y); });
    add(
        "a == b", [](auto &x, auto &y) { return x == y; }, [](double x, double y) { return double(x == y); });
    add(
        "sqrt(a)", [](auto &x, auto &) { return sqrt(x); }, [](double x, double) { return std::sqrt(x); });
}

constexpr int m = 2000;

// Loop nests that walk memory in order, whatever the dimension.
template <class F> void columns(const double *x, double *out, F f) {
    for (int j = 0; j < m; ++j) {
        double best = x[j * m];
        for (int k = 1; k < m; ++k) best = f(best, x[j * m + k]);
        out[j] = best;
    }
}

template <class F> void rows(const double *__restrict x, double *__restrict out, F f) {
    for (int k = 0; k < m; ++k) out[k] = x[k];
    for (int j = 1; j < m; ++j)
        for (int k = 0; k < m; ++k) out[k] = f(out[k], x[j * m + k]);
}

void accumulate_columns(const double *__restrict x, double *__restrict out) {
    for (int j = 0; j < m; ++j) {
        double s = 0;
        for (int k = 0; k < m; ++k) out[j * m + k] = s += x[j * m + k];
    }
}

void accumulate_rows(const double *__restrict x, double *__restrict out) {
    for (int k = 0; k < m; ++k) out[k] = x[k];
    for (int j = 1; j < m; ++j)
        for (int k = 0; k < m; ++k) out[j * m + k] = out[(j - 1) * m + k] + x[j * m + k];
}

using bench::into_fresh;

void reduction_cases() {
    static const Mm a = randn(m, m);
    const double *x = a.addr();
    auto add = [](double s, double v) { return s + v; };
    auto larger = [](double s, double v) { return v > s ? v : s; };
    bench::compare(
        "sum(a,1) of 2000x2000", 1.3, [] { bench::keep(sum(a, 1)); },
        into_fresh(m, [=](double *out) { columns(x, out, add); }));
    bench::compare(
        "sum(a,2)", 1.3, [] { bench::keep(sum(a, 2)); },
        into_fresh(m, [=](double *out) { rows(x, out, add); }));
    bench::compare(
        "max(a,[],1)", 1.3, [] { bench::keep(max(a, nop_M, 1)); },
        into_fresh(m, [=](double *out) { columns(x, out, larger); }));
    bench::compare(
        "max(a,[],2)", 1.3, [] { bench::keep(max(a, nop_M, 2)); },
        into_fresh(m, [=](double *out) { rows(x, out, larger); }));
    bench::compare(
        "cumsum(a,1)", 1.3, [] { bench::keep(cumsum(a, 1)); },
        into_fresh(size_t(m) * m, [=](double *out) { accumulate_columns(x, out); }));
    bench::compare(
        "cumsum(a,2)", 1.3, [] { bench::keep(cumsum(a, 2)); },
        into_fresh(size_t(m) * m, [=](double *out) { accumulate_rows(x, out); }));
}

void add_cases() {
    element_cases(1000000, 1.3);
    element_cases(100, 3);
    reduction_cases();
}

bench::Group group(add_cases);

} // namespace
