#ifndef QUORVEX_BASE_CRASH_H
#define QUORVEX_BASE_CRASH_H

namespace kn {

// Installs what shows the last words of the process, in front of the handlers of others, and takes it away.
//
// A fault: a pending error is shown, and the process ends; otherwise the fault and the call stack are shown
// and printed, and the fault goes on to whoever was there before.
//
// An exception that nobody catches: a pending error is shown. If the exception is the text of an error, which
// is shown in any case, the process ends with status 1; otherwise whoever was there before goes on.
void install_last_words();
void remove_last_words();

} // namespace kn

#endif
