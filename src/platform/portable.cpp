// The parts of the platform that the C++ library implements in the same way on every system: the numbered
// locks, the clocks, and a few functions built on the others.
//
// The locks have static storage, and one atomic state says whether they have been created in it. It needs no
// constructor, so they can be entered while static objects are still being constructed, and no memory.
#include "platform/platform.h"

#include <array>
#include <atomic>
#include <cassert>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <thread>

namespace kn::os {

namespace {

using Locks = std::array<std::recursive_mutex, lock_count>;

enum class LockState { none, in_work, there };
constinit std::atomic<LockState> lock_state = LockState::none;
alignas(Locks) std::byte lock_room[sizeof(Locks)];

Locks &locks() { return *std::launder(reinterpret_cast<Locks *>(lock_room)); }

// A lock number never depends on input of a program.
std::recursive_mutex &numbered(int n) {
    assert(0 <= n && n < lock_count);
    return locks()[static_cast<std::size_t>(n)];
}

// A fork happens while the forking thread holds all locks, entered in their nesting order. In the child no
// thread can leave them, since that thread has a new number there: they are created again.
bool there() { return lock_state.load(std::memory_order_acquire) == LockState::there; }
void hold_all() {
    if (there())
        for (std::recursive_mutex &lock : locks()) lock.lock();
}
void release_all() {
    if (there())
        for (std::recursive_mutex &lock : locks()) lock.unlock();
}
void renew_all() {
    if (there()) new (lock_room) Locks;
}

template <class Clock> double seconds_of() {
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

} // namespace

void create_locks() {
    LockState state = lock_state.load(std::memory_order_acquire);
    while (state != LockState::there) {
        if (state == LockState::none && lock_state.compare_exchange_strong(state, LockState::in_work)) {
            new (lock_room) Locks;
            static constinit bool watching = false;
            if (!watching) around_fork(hold_all, release_all, renew_all);
            watching = true;
            lock_state.store(LockState::there, std::memory_order_release);
            return;
        }
        std::this_thread::yield(); // another thread is creating them
        state = lock_state.load(std::memory_order_acquire);
    }
}

void delete_locks() {
    LockState state = LockState::there;
    if (!lock_state.compare_exchange_strong(state, LockState::in_work)) return;
    locks().~Locks();
    lock_state.store(LockState::none, std::memory_order_release);
}

void enter_lock(int n) {
    guard_thread();
    create_locks();
    numbered(n).lock();
}

void leave_lock(int n) {
    if (there()) numbered(n).unlock();
}

void pause_milliseconds(unsigned milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

double wall_clock() { return seconds_of<std::chrono::system_clock>(); }

double monotonic_clock() { return seconds_of<std::chrono::steady_clock>(); }

bool environment(const char *name, char *out, std::size_t size) {
    const char *value = std::getenv(name);
    std::snprintf(out, size, "%s", value ? value : "");
    return value != nullptr;
}

bool read_line(char *out, std::size_t size) {
    if (!std::fgets(out, static_cast<int>(size), stdin)) return false;
    const std::size_t n = std::strlen(out);
    if (n > 0 && out[n - 1] == '\n') out[n - 1] = 0;
    return true;
}

void (*write_out_files)() = nullptr;

void write_out() {
    write_out(stdout);
    write_out(stderr);
    if (write_out_files) write_out_files();
}

bool copy_readable(char *out, std::size_t size, const char *text) {
    const std::size_t page = page_size();
    std::size_t n = 0;
    for (; n + 1 < size; ++n) {
        const bool new_page = n == 0 || reinterpret_cast<std::uintptr_t>(text + n) % page == 0;
        if (new_page && !readable(text + n, 1)) break;
        if (text[n] == '\0') {
            out[n] = '\0';
            return true;
        }
        out[n] = text[n];
    }
    out[n] = '\0';
    return n > 0;
}

bool file_exists(const char *name) {
    FileStatus s;
    return file_status(name, s);
}

bool is_directory(const char *name) {
    FileStatus s;
    return file_status(name, s) && s.is_directory;
}

#if defined(__x86_64__) && defined(__GNUC__)
bool has_avx2() { return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"); }

bool has_avx512() {
    return has_avx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw");
}
#else
bool has_avx2() { return false; }
bool has_avx512() { return false; }
#endif

} // namespace kn::os
