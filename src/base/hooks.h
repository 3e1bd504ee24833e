// What lower folders call of the folders above them, as pointers to functions. Start-up fills them in
// (host/startup.cpp), before any program runs.
#ifndef QUORVEX_BASE_HOOKS_H
#define QUORVEX_BASE_HOOKS_H

#include "quorvex/export.h"

class Mm;

namespace kn {

// The workspace and named values. `add` is called for a new named value while kn_interactive_flag is set; it
// gives the value a level, or leaves it at -1. `detach` is called before a value that has one ends.
struct ScopeHooks {
    void (*add)(Mm &value);
    void (*detach)(Mm &value);
};
extern ScopeHooks scope_hooks;

// The products and quotients that the engine's operators leave to sparse/ and linear/.
struct MatrixHooks {
    Mm (*sparse_product)(const Mm &a, const Mm &b);
    Mm (*right_division)(const Mm &a, const Mm &b); // b is no scalar
};
extern MatrixHooks matrix_hooks;

// What the console asks of the graphics engine: to draw what is due, and whether a button was pressed.
struct ConsoleHooks {
    void (*draw)();
    double (*button_pressed)();
};
extern ConsoleHooks console_hooks;

} // namespace kn

#endif
