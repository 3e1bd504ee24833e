// The crash hook on Windows: the filter for unhandled exceptions.
#include "platform/platform.h"
#include "platform/win32_common.h"

#include <atomic>
#include <csignal>

namespace kn::os {

namespace {

std::atomic<CrashAction (*)(unsigned)> crash_hook = nullptr;
LPTOP_LEVEL_EXCEPTION_FILTER previous_filter = nullptr;
void (*previous_signal)(int) = SIG_DFL;
bool installed = false;

LONG WINAPI on_fault(EXCEPTION_POINTERS *fault) {
    const auto hook = crash_hook.load();
    const bool end = hook && hook(fault->ExceptionRecord->ExceptionCode) == CrashAction::end_process;
    return end ? EXCEPTION_EXECUTE_HANDLER : EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

// The filter runs on the thread's own stack, in a part that is reserved for it after an overflow.
void guard_thread() {
    static thread_local bool guarded = false;
    if (guarded) return;
    guarded = true;
    ULONG kept = 1 << 16;
    SetThreadStackGuarantee(&kept);
}

void install_crash_hook(CrashAction (*hook)(unsigned code)) {
    crash_hook = hook;
    guard_thread();
    if (installed) return;
    previous_filter = SetUnhandledExceptionFilter(on_fault);
    previous_signal = std::signal(SIGFPE, SIG_IGN);
    installed = true;
}

void remove_crash_hook() {
    if (!installed) return;
    SetUnhandledExceptionFilter(previous_filter);
    if (previous_signal != SIG_ERR) std::signal(SIGFPE, previous_signal);
    crash_hook = nullptr;
    installed = false;
}

} // namespace kn::os
