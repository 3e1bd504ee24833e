// Reads, assignments and growth with subscripts, as generated code writes them, against the same loops on
// std::vector<double>. The index values and masks of the plain loops are doubles too: that is what the
// language has.

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include <quorvex.h>

#include "bench/ratio.h"

namespace {

using Doubles = std::vector<double>;

constexpr int n = 1000000;
constexpr int m = 1000; // n is the size of an m by m matrix

Mm row(const Doubles &v) {
    Mm out(0, 0, 0, 1, static_cast<int>(v.size()), kn_double);
    std::copy(v.begin(), v.end(), out.addr());
    return out;
}

Doubles shuffled(int count) {
    Doubles v(count);
    std::iota(v.begin(), v.end(), 1.0);
    std::shuffle(v.begin(), v.end(), std::mt19937(1));
    return v;
}

// As a variable of a generated program: named, with a block of its own.
Mm &variable(const char *name, const Mm &value) {
    Mm &x = *new Mm(i_o, name, 0);
    x.deepcopy(value, kn_none);
    return x;
}

template <class T> void seen(T &x) {
    benchmark::DoNotOptimize(x);
    benchmark::ClobberMemory();
}

// ---- One element at a time ----

void scalar_cases() {
    static Mm &x = variable("x", randn(1.0, n)), &a = variable("a", randn(m, m));
    static Mm &k = variable("k", 1.0), &i = variable("i", 1.0), &j = variable("j", 1.0);
    static Mm &s = variable("s", 0.0), &v = variable("v", 1.0);
    static Doubles px(x.addr(), x.addr() + n);

    auto along = [](auto step) {
        return [step] {
            for (double i_k = 1; i_k <= n; i_k++) {
                k = i_k;
                step();
            }
        };
    };
    auto across = [](auto step) {
        return [step] {
            for (double i_j = 1; i_j <= m; i_j++) {
                j = i_j;
                for (double i_i = 1; i_i <= m; i_i++) {
                    i = i_i;
                    step();
                }
            }
        };
    };
    auto plain_sum = [] {
        double total = 0;
        for (int l = 0; l < n; ++l) total += px[l];
        seen(total);
    };
    auto plain_fill = [] {
        std::fill(px.begin(), px.end(), 1.0);
        seen(px);
    };
    bench::compare_steps("s = s + x(k)", 60, n, along([] { s = s + x(k); }), plain_sum);
    bench::compare_steps("x(k) = v", 60, n, along([] { x(k) = v; }), plain_fill);
    bench::compare_steps("s = s + A(i,j)", 80, n, across([] { s = s + a(i, j); }), plain_sum);
    bench::compare_steps("A(i,j) = v", 80, n, across([] { a(i, j) = v; }), plain_fill);
    // A million elements in 0.2 s.
    bench::compare_steps(
        "x(end+1) = k", 200, n,
        [] {
            Mm y(i_o, "y", 0);
            y = nop_M;
            for (double i_k = 1; i_k <= n; i_k++) {
                k = i_k;
                y(numel(y) + 1.0) = k;
            }
        },
        [] {
            Doubles y;
            for (int l = 1; l <= n; ++l) {
                y.push_back(l);
                benchmark::DoNotOptimize(y.data());
            }
        });
}

// ---- Many elements at once ----

void block_cases() {
    static Mm &a = variable("a", randn(m, m));
    static Doubles pa(a.addr(), a.addr() + n);

    bench::compare(
        "A(2:end-1,:) of 1000x1000", 1.5, [] { bench::keep(Mm(a(colon(2.0, a.rows() - 1.0), c_p))); },
        [] {
            Doubles out;
            out.reserve(n - 2 * m);
            for (int c = 0; c < m; ++c)
                out.insert(out.end(), pa.begin() + c * m + 1, pa.begin() + (c + 1) * m - 1);
            seen(out);
        });

    static Doubles pidx = shuffled(m);
    static Mm &idx = variable("idx", row(pidx));
    bench::compare(
        "A(:,idx)", 1.5, [] { bench::keep(Mm(a(c_p, idx))); },
        [] {
            Doubles out;
            out.reserve(n);
            for (double c : pidx) {
                auto column = pa.begin() + (static_cast<int>(c) - 1) * m;
                out.insert(out.end(), column, column + m);
            }
            seen(out);
        });
}

void list_cases() {
    static Mm &x = variable("x", randn(1.0, n));
    static Doubles px(x.addr(), x.addr() + n);

    // A mask that no branch predictor learns; the plain loop does not branch on it.
    static Mm &mask = variable("mask", x > 0);
    static Doubles pmask(mask.addr(), mask.addr() + n);
    bench::compare(
        "x(mask) of 1e6", 1.5, [] { bench::keep(Mm(x(mask))); },
        [] {
            int count = 0;
            for (double b : pmask) count += b != 0;
            Doubles out(count + 1);
            count = 0;
            for (int k = 0; k < n; ++k) {
                out[count] = px[k];
                count += pmask[k] != 0;
            }
            out.pop_back();
            seen(out);
        });

    auto add = [](const char *name, const Doubles &list) {
        const Doubles &pidx = *new Doubles(list);
        const Mm &idx = variable("idx", row(pidx)), &v = variable("v", randn(1.0, double(pidx.size())));
        const Doubles &pv = *new Doubles(v.addr(), v.addr() + pidx.size());
        bench::compare(
            name, 1.5, [&] { x(idx) = v; },
            [&] {
                for (size_t k = 0; k < pidx.size(); ++k) px[static_cast<int>(pidx[k]) - 1] = pv[k];
                seen(px);
            });
    };
    Doubles list = shuffled(n);
    add("x(idx) = v, shuffled", list);
    list.resize(n / 2);
    std::sort(list.begin(), list.end());
    add("x(idx) = v, ascending", list);
}

void add_cases() {
    scalar_cases();
    block_cases();
    list_cases();
}

bench::Group group(add_cases);

} // namespace
