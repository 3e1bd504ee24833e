#include "base/hooks.h"

namespace kn {

constinit ScopeHooks scope_hooks = {};
constinit MatrixHooks matrix_hooks = {};
constinit ConsoleHooks console_hooks = {};

} // namespace kn
