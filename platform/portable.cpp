// The parts of the platform that the C++ library does alike on every system: the numbered locks, the clocks,
// and a few functions that rest on the others.
//
// The locks hang on one atomic pointer, null while they don't exist. It needs no constructor, so they can be
// entered while static objects are still being built.
#include "platform/platform.h"

#include <array>
#include <atomic>
#include <cassert>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>

namespace kn::os {

namespace {

using Locks = std::array<std::recursive_mutex, 3>;

constinit std::atomic<Locks *> locks = nullptr;

// A lock number is never computed from what a program gives.
std::recursive_mutex &numbered(Locks &from, int n) {
    assert(0 <= n && n < static_cast<int>(from.size()));
    return from[n];
}

Locks &existing_locks() {
    Locks *present = locks.load(std::memory_order_acquire);
    if (present) return *present;
    auto fresh = std::make_unique<Locks>();
    if (locks.compare_exchange_strong(present, fresh.get())) return *fresh.release();
    return *present; // another thread was faster
}

template <class Clock> double seconds_of() {
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

} // namespace

void create_locks() { existing_locks(); }

void delete_locks() { delete locks.exchange(nullptr); }

void enter_lock(int n) { numbered(existing_locks(), n).lock(); }

void leave_lock(int n) {
    if (Locks *present = locks.load(std::memory_order_acquire)) numbered(*present, n).unlock();
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
