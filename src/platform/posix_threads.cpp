// The library's own threads on POSIX systems.
#include "platform/platform.h"

#include <csignal>
#include <initializer_list>
#include <pthread.h>

namespace kn::os {

static_assert(sizeof(pthread_t) == sizeof(Thread));

// A new thread inherits the signal mask of the one that starts it.
Thread start_thread(void (*run)()) {
    sigset_t all, before;
    sigfillset(&all);
    for (int fault : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP, SIGABRT}) sigdelset(&all, fault);
    auto body = [](void *work) -> void * {
        reset_floating_point();
        reinterpret_cast<void (*)()>(work)();
        return nullptr;
    };
    if (pthread_sigmask(SIG_SETMASK, &all, &before) != 0) return nullptr;
    pthread_t thread;
    const bool started = pthread_create(&thread, nullptr, body, reinterpret_cast<void *>(run)) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started ? (Thread)thread : nullptr;
}

void join_thread(Thread thread) { pthread_join((pthread_t)thread, nullptr); }

void around_fork(void (*before)(), void (*in_parent)(), void (*in_child)()) {
    pthread_atfork(before, in_parent, in_child);
}

} // namespace kn::os
