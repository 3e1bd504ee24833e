// What core calls of the folders above it, as function pointers that those folders fill in. Null: the upper
// folder does not stand.
#ifndef QUORVEX_CORE_HOOKS_H
#define QUORVEX_CORE_HOOKS_H

class Mm;

namespace kn {

// The workspace and named values. `add` is called for a new named value while kn_interactive_flag is set; it
// gives the value a level, or leaves it at -1. `detach` is called before a value that has one ends.
struct ScopeHooks {
    void (*add)(Mm &value);
    void (*detach)(Mm &value);
};
extern ScopeHooks scope_hooks;

} // namespace kn

#endif
