// What a compiler of the language emits around its statements: the entry of a running function on the stack
// of source positions, and the line that is being carried out.
#ifndef QUORVEX_EXAMPLES_GENERATED_H
#define QUORVEX_EXAMPLES_GENERATED_H

#include <quorvex.h>

namespace generated {

// Pushed on entry to a function, popped on every way out.
struct Frame {
    explicit Frame(const char *file) { // the stack has 512 entries; deeper calls share the last
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

} // namespace generated

#endif
