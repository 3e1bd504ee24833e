// Values and scalars against the C heap.

#include <cstdlib>

#include <quorvex.h>

#include "bench/ratio.h"

namespace {

// Many steps per call, so that the call itself does not count.
constexpr int steps = 1000;

template <class F> auto many(F f) {
    return [f] {
        for (int k = 0; k < steps; ++k) f();
    };
}

void allocate_pair() {
    void *p = std::malloc(64);
    benchmark::DoNotOptimize(p);
    std::free(p);
}

} // namespace

void bench::value_rows() {
    Mm a(3.0), b(4.0), big = randn(100.0, 100.0);
    heading("Values / malloc and free");
    auto heap = many(allocate_pair);
    row("Mm(double) and destruction", times_native(3), many([] { keep(Mm(1.0)); }), heap);
    row("scalar a + b", times_native(3), many([&] { keep(a + b); }), heap);
    row("scalar a < b", times_native(3), many([&] { keep(a < b); }), heap);
    // 10 ns are asked for; a malloc and free pair of 64 bytes takes about as long.
    row("copy of a value", times_native(1), many([&] { keep(Mm(big)); }), heap);
}
