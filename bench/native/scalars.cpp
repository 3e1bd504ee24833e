#include "bench/native.h"

namespace native {

double add_twice(int n) {
    Box s, k;
    loop(k, n, [&] { s = s + k * 2.0; });
    return *s;
}

static Box fib(const Box &n) {
    if (*(n < 2.0) != 0) return n;
    return fib(n - 1.0) + fib(n - 2.0);
}

double fib(double n) { return *fib(Box(n)); }

} // namespace native
