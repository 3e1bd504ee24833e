// Reductions along each dimension of a matrix.

#include <vector>

#include <quorvex.h>

#include "bench/native.h"
#include "bench/ratio.h"

namespace {

constexpr int m = 2000;

// The same function of the language along each dimension.
void both(const char *name, const Mm &a, Mm (*ours)(const Mm &a, const Mm &dim), native::Reduction *loop) {
    static std::vector<double> out(size_t(m) * m);
    for (int dim : {1, 2}) {
        Mm d(dim);
        bench::row(
            name + ("(a," + std::to_string(dim)) + ") of 2000x2000", bench::times_native(1.2),
            [&] { bench::keep(ours(a, d)); }, [&] { loop(dim, m, a.addr(), out.data()); });
    }
}

Mm largest(const Mm &a, const Mm &dim) { return max(a, nop_M, dim); }

} // namespace

void bench::reduction_rows() {
    heading("Reductions");
    Mm a = randn(m, m), none = zeros(m, m); // neither any nor all can stop early
    both("sum", a, sum, native::sum);
    both("cumsum", a, cumsum, native::cumsum);
    both("max", a, largest, native::max);
    both("mean", a, mean, native::mean);
    both("any", none, any, native::any);
    both("all", a, all, native::all);
}
