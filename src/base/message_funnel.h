// What the rest of the runtime shares with the message funnel.
#ifndef QUORVEX_BASE_MESSAGE_FUNNEL_H
#define QUORVEX_BASE_MESSAGE_FUNNEL_H

#include <stddef.h>

namespace kn {

inline constexpr size_t text_size = 2048; // of every message, its end included

// The last error's full text on this thread; empty when no error is pending.
extern constinit thread_local char lasterr_buffer[text_size];

// A dialog: through the host's handler, else on the platform. `printed`: the same text went to the print
// handler already, so that a platform without dialogs need not repeat it.
void show_box(const char *text, const char *title, unsigned style, bool printed);

} // namespace kn

#endif
