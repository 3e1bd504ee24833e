// What core calls of the folders above it, as function pointers that those folders fill in. Null: the upper
// folder does not stand.
#ifndef QUORVEX_CORE_HOOKS_H
#define QUORVEX_CORE_HOOKS_H

class Mm;

namespace kn {

// Workspace registration of named values; called only while kn_interactive_flag is set.
struct ScopeHooks {
    void (*add)(Mm &value);
    void (*detach)(Mm &value);
};
extern ScopeHooks scope_hooks;

} // namespace kn

#endif
