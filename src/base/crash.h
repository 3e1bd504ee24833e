#ifndef QUORVEX_BASE_CRASH_H
#define QUORVEX_BASE_CRASH_H

namespace kn {

// Installs the handlers of faults and of uncaught exceptions, before those that exist, and removes them.
//
// At a fault a pending error is shown, and the process ends. Without one the fault and the call stack are
// shown and printed, and the previous handler is called.
//
// At an uncaught exception a pending error is shown. If the exception is the text of an error, that is shown
// too and the process ends with status 1; otherwise the previous handler is called.
void install_crash_handlers();
void remove_crash_handlers();

} // namespace kn

#endif
