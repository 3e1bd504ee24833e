// Arithmetic and calls on scalar values.

#include "bench/generated.h"
#include "bench/native.h"
#include "bench/ratio.h"

namespace {

using generated::line;
using generated::loop;

// y = fib(n)
Mm fib(Mm n) {
    generated::Frame frame("fib.m");
    n.setname("n");
    Mm y(i_o, "y", 0);
    // if n < 2, y = n; else y = fib(n - 1) + fib(n - 2); end
    line(2);
    if (istrue(n < 2.0))
        line(3), y = n;
    else
        line(5), y = fib(n - 1.0) + fib(n - 2.0);
    return y;
}

} // namespace

void bench::scalar_rows() {
    constexpr int n = 100000;
    heading("Scalar values");
    row(
        "s = s + i*2", times_native(0.6),
        [] {
            Mm s(i_o, "s", 0), i(i_o, "i", 0);
            s = 0.0;
            loop(i, n, [&] { s = s + i * 2.0; });
            keep(s);
        },
        [] { keep(native::add_twice(n)); });
    row(
        "fib(24)", times_native(1), [] { keep(fib(24.0)); }, [] { keep(native::fib(24)); });
}
