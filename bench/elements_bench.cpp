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

const Limit limit = times_native(1.2);

void real_rows(int n) {
    Mm a = numbers(n), b = numbers(n);
    Doubles out(n);
    std::string of = " of " + bench::size_text(n);
    auto binary = [&](const char *work, auto ours, native::Binary *loop) {
        row(
            work + of, limit, [&] { keep(ours(a, b)); }, [&] { loop(n, a.addr(), b.addr(), out.data()); });
    };
    auto unary = [&](const char *work, auto ours, native::Unary *loop) {
        row(
            work + of, limit, [&] { keep(ours(a)); }, [&] { loop(n, a.addr(), out.data()); });
    };
    using X = const Mm &;
    binary(
        "a + b", [](X x, X y) { return x + y; }, native::add);
    binary(
        "a .* b", [](X x, X y) { return times(x, y); }, native::multiply);
    binary(
        "a ./ b", [](X x, X y) { return rdivide(x, y); }, native::divide);
    binary(
        "a < b", [](X x, X y) { return x < y; }, native::less);
    unary(
        "sqrt(a)", [](X x) { return sqrt(x); }, native::square_root);
    unary(
        "exp(a)", [](X x) { return exp(x); }, native::exponential);
    unary(
        "log(a)", [](X x) { return log(x); }, native::logarithm);
    unary(
        "sin(a)", [](X x) { return sin(x); }, native::sine);
    unary(
        "a.^2", [](X x) { return power(x, 2.0); }, native::square);
    unary(
        "a.^1.5", [](X x) { return power(x, 1.5); }, native::power_three_halves);
    binary(
        "a.^b", [](X x, X y) { return power(x, y); }, native::power);
}

void complex_rows(int n) {
    Mm a = numbers(n) + i * numbers(n), b = numbers(n) + i * numbers(n);
    Doubles re(n), im(n);
    std::string of = " of " + bench::size_text(n);
    row(
        "complex a .* b" + of, limit, [&] { keep(times(a, b)); },
        [&] {
            native::complex_multiply(n, planes(a), planes(b), {re.data(), im.data()});
        });
    row(
        "complex abs(a)" + of, limit, [&] { keep(abs(a)); },
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
    auto many = [](auto step) {
        return [step] {
            for (int k = 0; k < steps; ++k) step();
        };
    };
    row("a + b of 100 / malloc, loop, free", limit, many([&] { keep(a + b); }),
        many([&] { native::add_into_fresh(n, a.addr(), b.addr()); }));
}

} // namespace

void bench::element_rows() {
    heading("Element operations");
    short_row();
    for (int n : {10000, 1000000, 10000000}) {
        real_rows(n);
        complex_rows(n);
    }
    fused_row();
}
