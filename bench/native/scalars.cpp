#include "bench/native.h"

double native::add_twice(int n) {
    double s = 0;
    for (int k = 1; k <= n; ++k) s = s + k * 2.0;
    return s;
}

double native::fib(double n) { return n < 2 ? n : fib(n - 1) + fib(n - 2); }
