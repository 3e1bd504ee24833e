#ifndef QUORVEX_RUNTIME_CRASH_H
#define QUORVEX_RUNTIME_CRASH_H

#include "platform/platform.h"

namespace kn {

// What happens at a fault: a pending error is shown, and the process ends; otherwise the fault and the call
// stack are shown and printed, and the fault goes on to whoever was there before.
os::CrashAction handle_crash(unsigned code);

} // namespace kn

#endif
