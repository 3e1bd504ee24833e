// The report of a fault or of an uncaught exception, before the process ends.

#include "base/crash.h"

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "base/message_funnel.h"
#include "platform/platform.h"
#include "quorvex/messages.h"

namespace kn {
namespace {

constinit std::terminate_handler previous = nullptr;

os::CrashAction handle_fault(unsigned code) {
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

// The text that is thrown for an error, null for any other exception.
const char *thrown_text() {
    try {
        if (std::current_exception()) throw;
    } catch (const char *text) {
        return text;
    } catch (...) {
    }
    return nullptr;
}

void handle_uncaught() {
    static bool within = false; // else a handler throws while it shows the error
    if (!within) {
        within = true;
        const char *text = thrown_text();
        if (text && !*lasterr_buffer) std::snprintf(lasterr_buffer, text_size, "error: %s\n", text);
        if (*lasterr_buffer) error_lasterr();
        if (text) os::end_process(1);
    }
    os::write_out();
    if (previous) previous();
    std::abort();
}

} // namespace

void install_crash_handlers() {
    os::install_crash_hook(handle_fault);
    previous = std::set_terminate(handle_uncaught);
}

void remove_crash_handlers() {
    os::remove_crash_hook();
    if (std::get_terminate() == handle_uncaught) std::set_terminate(previous);
}

} // namespace kn
