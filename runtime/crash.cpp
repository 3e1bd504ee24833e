// The last words at a fault of the process.

#include "runtime/crash.h"

#include <cstdio>

#include "quorvex/messages.h"
#include "runtime/message_funnel.h"

kn::os::CrashAction kn::handle_crash(unsigned code) {
    if (*lasterr_buffer) {
        error_lasterr();
        return os::CrashAction::end_process;
    }
    static char text[text_size];
    constexpr char title[] = "Application crash!";
    std::snprintf(text, sizeof text, "Exception code: %08X %s\n\n", code, os::exception_name(code));
    error_call_stack(text);
    show_box(text, title, 48, true);
    std::printf("\n%s\n\n%s", title, text);
    std::fflush(stdout);
    os::pause_milliseconds(500);
    return os::CrashAction::continue_search;
}
