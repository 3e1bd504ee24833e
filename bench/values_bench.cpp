// Values and scalars against the C heap.

#include <cstdlib>

#include <quorvex.h>

#include "bench/ratio.h"

namespace {

// Many steps per call, so that the call of the case itself does not count.
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

void add_cases() {
    static Mm a(3.0), b(4.0);
    static Mm big = randn(100.0, 100.0);
    bench::compare("Mm(double) and destruction / malloc+free", 3, many([] { bench::keep(Mm(1.0)); }),
                   many(allocate_pair));
    bench::compare("scalar a + b / malloc+free", 3, many([] { bench::keep(a + b); }), many(allocate_pair));
    bench::compare("scalar a < b / malloc+free", 3, many([] { bench::keep(a < b); }), many(allocate_pair));
    // 10 ns are asked for; a malloc and free pair of 64 bytes takes about as long.
    bench::compare("copy of a value / malloc+free", 1, many([] { bench::keep(Mm(big)); }),
                   many(allocate_pair));
}

bench::Group group(add_cases);

} // namespace
