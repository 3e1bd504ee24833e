// The crash hook on Linux: faults arrive as signals and are reported with the exception codes of
// `exception_names.h`.
//
// While the hook runs all fault signals are blocked, so that a fault inside it ends the process instead of
// recurring. To continue the search, the action found at installation is restored and the handler returns:
// the instruction faults again and that action handles it. A signal that was sent has no instruction to
// repeat and is raised again.
#include "platform/exception_names.h"
#include "platform/platform.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <iterator>
#include <sys/mman.h>
#include <ucontext.h>

namespace kn::os {

namespace {

constexpr int any_reason = 0;

struct Fault {
    int signal, reason;
    unsigned code;
};

// The first matching row is used.
constexpr Fault faults[] = {
    {SIGFPE, FPE_INTDIV, exception_code("INT_DIVIDE_BY_ZERO")},
    {SIGFPE, FPE_INTOVF, exception_code("INT_OVERFLOW")},
    {SIGFPE, FPE_FLTDIV, exception_code("FLT_DIVIDE_BY_ZERO")},
    {SIGFPE, FPE_FLTOVF, exception_code("FLT_OVERFLOW")},
    {SIGFPE, FPE_FLTUND, exception_code("FLT_UNDERFLOW")},
    {SIGFPE, FPE_FLTRES, exception_code("FLT_INEXACT_RESULT")},
    {SIGFPE, FPE_FLTSUB, exception_code("ARRAY_BOUNDS_EXCEEDED")},
    {SIGFPE, any_reason, exception_code("FLT_INVALID_OPERATION")},
    {SIGILL, ILL_PRVOPC, exception_code("PRIV_INSTRUCTION")},
    {SIGILL, ILL_PRVREG, exception_code("PRIV_INSTRUCTION")},
    {SIGILL, any_reason, exception_code("ILLEGAL_INSTRUCTION")},
    {SIGBUS, BUS_ADRALN, exception_code("DATATYPE_MISALIGNMENT")},
    {SIGBUS, any_reason, exception_code("IN_PAGE_ERROR")},
    {SIGSEGV, any_reason, exception_code("ACCESS_VIOLATION")},
};

constexpr int fault_signals[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE};

std::atomic<CrashAction (*)(unsigned)> crash_hook = nullptr;
struct sigaction previous[std::size(fault_signals)];
bool installed = false;

// The thread's alternative stack for the hook, so that it can run after an overflow of the thread's own
// stack. One that another part of the process provided, such as a sanitizer, is kept.
class AlternateStack {
  public:
    AlternateStack() {
        stack_t present = {};
        if (sigaltstack(nullptr, &present) != 0 || !(present.ss_flags & SS_DISABLE)) return;
        void *memory =
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED) return;
        memory_ = memory;
        stack_t own = {};
        own.ss_sp = memory;
        own.ss_size = size;
        sigaltstack(&own, nullptr);
    }
    ~AlternateStack() {
        stack_t present = {};
        if (!memory_ || sigaltstack(nullptr, &present) != 0 || (present.ss_flags & SS_ONSTACK)) return;
        if (present.ss_sp == memory_) {
            present.ss_flags = SS_DISABLE;
            sigaltstack(&present, nullptr);
        }
        munmap(memory_, size);
    }
    AlternateStack(const AlternateStack &) = delete;
    AlternateStack &operator=(const AlternateStack &) = delete;

  private:
    static constexpr std::size_t size = 1 << 18;
    void *memory_ = nullptr;
};

// A stack overflow faults close to the stack pointer: a call, a push or the first use of a new frame.
bool close_to_stack_pointer([[maybe_unused]] const void *address, [[maybe_unused]] const void *context) {
#ifdef __x86_64__
    constexpr std::uintptr_t reach = 1 << 16;
    const std::uintptr_t stack = static_cast<const ucontext_t *>(context)->uc_mcontext.gregs[REG_RSP];
    return reinterpret_cast<std::uintptr_t>(address) - stack + reach < 2 * reach;
#else
    return false;
#endif
}

unsigned code_of(const siginfo_t &info, const void *context) {
    if (info.si_signo == SIGSEGV && info.si_code > 0 && close_to_stack_pointer(info.si_addr, context))
        return exception_code("STACK_OVERFLOW");
    for (const Fault &row : faults)
        if (row.signal == info.si_signo && (row.reason == any_reason || row.reason == info.si_code))
            return row.code;
    return 0;
}

void on_fault(int signal, siginfo_t *info, void *context) {
    const bool sent = info->si_code <= 0;
    if (signal == SIGFPE && sent) return;

    const int saved = errno;
    const auto hook = crash_hook.load();
    if (hook && hook(code_of(*info, context)) == CrashAction::end_process) end_process(1);
    for (std::size_t k = 0; k < std::size(fault_signals); ++k)
        if (fault_signals[k] == signal) sigaction(signal, &previous[k], nullptr);
    if (sent) raise(signal);
    errno = saved;
}

} // namespace

void guard_thread() {
    static constinit thread_local bool guarded = false;
    if (guarded) return;
    guarded = true;
    static thread_local AlternateStack stack;
}

void install_crash_hook(CrashAction (*hook)(unsigned code)) {
    crash_hook = hook;
    if (installed) return;

    guard_thread();
    struct sigaction action = {};
    action.sa_sigaction = on_fault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (int signal : fault_signals) sigaddset(&action.sa_mask, signal);
    for (std::size_t k = 0; k < std::size(fault_signals); ++k)
        sigaction(fault_signals[k], &action, &previous[k]);
    installed = true;
}

// A handler that was installed after ours is kept.
void remove_crash_hook() {
    if (!installed) return;
    for (std::size_t k = 0; k < std::size(fault_signals); ++k) {
        struct sigaction present;
        sigaction(fault_signals[k], nullptr, &present);
        if ((present.sa_flags & SA_SIGINFO) && present.sa_sigaction == on_fault)
            sigaction(fault_signals[k], &previous[k], nullptr);
    }
    crash_hook = nullptr;
    installed = false;
}

} // namespace kn::os
