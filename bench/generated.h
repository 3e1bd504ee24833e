// A loop as a compiler of the language emits it (docs/generated-code.md).
#ifndef QUORVEX_BENCH_GENERATED_H
#define QUORVEX_BENCH_GENERATED_H

#include <quorvex/generated.h>

namespace generated {

// for k = 1:n, <body>, end
template <class F> void loop(Mm &k, int n, F body) {
    line(1);
    for (double k_ = 1; k_ <= n; ++k_) {
        k = k_;
        line(2), body();
    }
}

} // namespace generated

#endif
