// The poll hook: asked from one thread at a time, and not while it is being answered.

#include "base/poll.h"

#include <atomic>

#include "platform/platform.h"
#include "quorvex/messages.h"

constinit kn_poll_hook kn_poll_handler = nullptr;

namespace kn {
namespace {

constexpr long long pause = 20; // milliseconds between an answer and the next question

constinit std::atomic<bool> asking = false;
constinit std::atomic<long long> answered = -pause;

// The hook's answer, which it may give by throwing.
bool answer() {
    struct Question {
        ~Question() {
            answered.store(os::coarse_milliseconds(), std::memory_order_relaxed);
            asking.store(false, std::memory_order_release);
        }
    } question;
    return kn_poll_handler() != 0;
}

} // namespace

bool ask_host() {
    if (os::coarse_milliseconds() - answered.load(std::memory_order_relaxed) < pause) return false;
    if (asking.exchange(true, std::memory_order_acquire)) return false;
    if (!answer()) return false;
    error("Interrupted");
    return true;
}

} // namespace kn
