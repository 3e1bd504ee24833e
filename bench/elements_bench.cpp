// Element operations on arrays, with fresh results.

#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

namespace {

using bench::keep;
using bench::Limit;
using bench::row;
using bench::times_native;
using Doubles = std::vector<double>;

// From 0.1 to 10.1.
Mm numbers(int n) { return randM(1.0, n) * 10.0 + 0.1; }

native::Planes planes(const Mm &z) { return {z.addr(), z.addi()}; }

struct Limits {
    Limit usual, plus, exp, sin, times;
};

void real_rows(int n, const Limits &limits) {
    Mm a = numbers(n), b = numbers(n);
    Doubles out(n);
    std::string of = " of " + bench::size_text(n);
    auto binary = [&](const char *work, Limit limit, auto ours, native::Binary *loop) {
        row(
            work + of, limit, [&] { keep(ours(a, b)); }, [&] { loop(n, a.addr(), b.addr(), out.data()); });
    };
    auto unary = [&](const char *work, Limit limit, auto ours, native::Unary *loop) {
        row(
            work + of, limit, [&] { keep(ours(a)); }, [&] { loop(n, a.addr(), out.data()); });
    };
    using X = const Mm &;
    const Limit usual = limits.usual;
    binary(
        "a + b", limits.plus, [](X x, X y) { return x + y; }, native::add);
    binary(
        "a .* b", usual, [](X x, X y) { return times(x, y); }, native::multiply);
    binary(
        "a ./ b", usual, [](X x, X y) { return rdivide(x, y); }, native::divide);
    binary(
        "a < b", usual, [](X x, X y) { return x < y; }, native::less);
    unary(
        "sqrt(a)", usual, [](X x) { return sqrt(x); }, native::square_root);
    unary(
        "exp(a)", limits.exp, [](X x) { return exp(x); }, native::exponential);
    unary(
        "log(a)", usual, [](X x) { return log(x); }, native::logarithm);
    unary(
        "sin(a)", limits.sin, [](X x) { return sin(x); }, native::sine);
    unary(
        "a.^2", usual, [](X x) { return power(x, 2.0); }, native::square);
    unary(
        "a.^1.5", usual, [](X x) { return power(x, 1.5); }, native::power_three_halves);
}

void complex_rows(int n, const Limits &limits) {
    Mm a = numbers(n) + i * numbers(n), b = numbers(n) + i * numbers(n);
    Doubles re(n), im(n);
    std::string of = " of " + bench::size_text(n);
    row(
        "complex a .* b" + of, limits.times, [&] { keep(times(a, b)); },
        [&] {
            native::complex_multiply(n, planes(a), planes(b), {re.data(), im.data()});
        });
    row(
        "complex abs(a)" + of, limits.usual, [&] { keep(abs(a)); },
        [&] { native::complex_abs(n, planes(a), re.data()); });
}

void fused_row() {
    constexpr int n = 1000000;
    Mm a = numbers(n), b = numbers(n), c = numbers(n);
    Doubles out(n);
    row(
        "a .* b + c of 1e6", times_native(1.3), [&] { keep(times(a, b) + c); },
        [&] { native::multiply_add(n, a.addr(), b.addr(), c.addr(), out.data()); });
}

// Long enough to be timed.
void short_row() {
    constexpr int n = 100, steps = 1000;
    Mm a = numbers(n), b = numbers(n);
    Doubles out(n);
    auto many = [](auto step) {
        return [step] {
            for (int k = 0; k < steps; ++k) step();
        };
    };
    row("a + b of 100", bench::ns_each(45, steps), many([&] { keep(a + b); }),
        many([&] { native::add(n, a.addr(), b.addr(), out.data()); }));
}

} // namespace

void bench::element_rows() {
    const Limit usual = times_native(1.2);
    const Limits ratios{usual, usual, usual, usual, usual};
    const Limits largest{usual, ms(6.9), ms(7.7), ms(8.3), ms(23)};
    const std::pair<int, Limits> sizes[] = {{10000, ratios}, {1000000, ratios}, {10000000, largest}};
    heading("Element operations");
    short_row();
    for (auto &[n, limits] : sizes) {
        real_rows(n, limits);
        complex_rows(n, limits);
    }
    fused_row();
}
