// What a compiler of the language emits around its statements (examples/sunspots.cpp shows it whole).
#ifndef QUORVEX_BENCH_GENERATED_H
#define QUORVEX_BENCH_GENERATED_H

#include <quorvex.h>

namespace generated {

// One entry on the stack of source positions.
struct Frame {
    explicit Frame(const char *file) {
        if (kn_error_stack.depth < 512) ++kn_error_stack.depth;
        kn_error_stack.file[kn_error_stack.depth] = file;
        kn_error_stack.line_ptr = kn_error_stack.line + kn_error_stack.depth;
        *kn_error_stack.line_ptr = 0;
    }
    ~Frame() {
        kn_error_stack.depth = caller;
        kn_error_stack.line_ptr = kn_error_stack.line + caller;
    }
    int caller = kn_error_stack.depth;
};

inline void line(int n) { *kn_error_stack.line_ptr = n; }

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
