// A job is cut into chunks of whole grains; who is free takes the next one. The ticket is one atomic number:
//
//     | number of the job, 48 bits | chunks left, 16 bits |
//
// A thread reads the ticket, then the job, and takes a chunk by counting the ticket down, which fails if the
// ticket has changed. A job is written while the ticket has no chunks left; so a helper that comes late, and
// reads while the next job is written, takes nothing. The caller takes chunks until there are none, then
// waits for those that helpers hold.
//
// All state is without constructor and destructor: jobs run while static objects are built and destroyed.

#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <thread>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "platform/platform.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

constexpr int most_by_default = 8;
constexpr int most = 64;
constexpr int chunks_each = 8;    // a thread that begins late or is held up leaves the rest to the others
constexpr uint64_t job = 1 << 16; // what counts the number of the job up
constexpr auto spin_time = std::chrono::microseconds(20);

static_assert(most * chunks_each < job);

struct Pool {
    // The job.
    std::atomic<RangeWork> work;
    std::atomic<void *> context;
    std::atomic<ptrdiff_t> n, chunk;
    std::atomic<int> chunks;

    alignas(64) std::atomic<uint64_t> ticket;
    alignas(64) std::atomic<int> finished;  // chunks
    alignas(64) std::atomic<int> published; // changes with each job, and to stop; helpers wait for that

    alignas(64) std::atomic<bool> busy; // somebody shares work, or starts or stops helpers
    std::atomic<int> count;             // of threads; 0 while not settled
    std::atomic<bool> chosen;           // whether somebody asked for that number
    std::atomic<bool> stopping;
    bool watching_forks;
    bool ended; // the library goes; no more helpers
    int helpers;
    os::Thread threads[most - 1];
};

constinit Pool pool = {};

void relax() {
#if defined(__SSE2__)
    _mm_pause();
#else
    std::this_thread::yield();
#endif
}

// Waits until `a` is no longer `old`: awake for a short time, then asleep. Beyond that a spinning thread may
// keep the one it waits for from its core.
void wait_while(const std::atomic<int> &a, int old) {
    const auto end = std::chrono::steady_clock::now() + spin_time;
    do {
        for (int k = 0; k < 32; ++k) {
            if (a.load(std::memory_order_acquire) != old) return;
            relax();
        }
    } while (std::chrono::steady_clock::now() < end);
    a.wait(old, std::memory_order_acquire);
}

// Does chunks of the present job while there are any.
void do_chunks() {
    for (uint64_t t = pool.ticket.load(std::memory_order_acquire);;) {
        const RangeWork work = pool.work.load(std::memory_order_acquire);
        void *context = pool.context.load(std::memory_order_acquire);
        const ptrdiff_t n = pool.n.load(std::memory_order_acquire);
        const ptrdiff_t chunk = pool.chunk.load(std::memory_order_acquire);
        const int chunks = pool.chunks.load(std::memory_order_acquire);
        const int left = static_cast<int>(t & (job - 1));
        if (left == 0) return;
        if (!pool.ticket.compare_exchange_weak(t, t - 1, std::memory_order_acq_rel)) continue;
        const ptrdiff_t begin = (chunks - left) * chunk;
        work(context, begin, begin + std::min(chunk, n - begin));
        if (pool.finished.fetch_add(1, std::memory_order_acq_rel) + 1 == chunks) pool.finished.notify_one();
        t = pool.ticket.load(std::memory_order_acquire);
    }
}

void help() {
    int seen = pool.published.load(std::memory_order_acquire);
    while (!pool.stopping.load(std::memory_order_acquire)) {
        do_chunks();
        wait_while(pool.published, seen);
        seen = pool.published.load(std::memory_order_acquire);
    }
}

void wake_helpers() {
    pool.published.fetch_add(1, std::memory_order_acq_rel);
    pool.published.notify_all();
}

// Those who change the number of helpers hold `busy`.
void stop_helpers() {
    pool.stopping = true;
    wake_helpers();
    while (pool.helpers > 0) os::join_thread(pool.threads[--pool.helpers]);
    pool.stopping = false;
}

bool try_busy() {
    return !pool.busy.load(std::memory_order_relaxed) && !pool.busy.exchange(true, std::memory_order_acquire);
}

void leave_busy() { pool.busy.store(false, std::memory_order_release); }

// If another thread still shares work now, the process is ending under it, and the helpers end with both.
struct AtEnd {
    ~AtEnd() {
        if (!try_busy()) return;
        pool.ended = true;
        stop_helpers();
        leave_busy();
    }
} at_end;

// The child has the forking thread only; who else held `busy` is gone, and so are the helpers.
void forget_helpers() {
    pool.helpers = 0;
    pool.ticket = 0;
    pool.stopping = false;
    leave_busy();
}

void start_helpers(int count) {
    if (pool.ended) return;
    if (!pool.watching_forks) os::around_fork(nullptr, nullptr, forget_helpers);
    pool.watching_forks = true;
    while (pool.helpers < count) {
        os::Thread thread = os::start_thread(help);
        if (!thread) return;
        pool.threads[pool.helpers++] = thread;
    }
}

// What was asked for, or else the environment; 1 to `most`.
void settle_count(int n) {
    if (n <= 0) {
        char text[16];
        os::environment("QUORVEX_THREADS", text, sizeof text);
        n = static_cast<int>(std::strtol(text, nullptr, 10));
    }
    pool.chosen.store(n > 0, std::memory_order_relaxed);
    if (n <= 0) n = std::min(static_cast<int>(std::thread::hardware_concurrency()), most_by_default);
    pool.count.store(std::clamp(n, 1, most), std::memory_order_relaxed);
}

} // namespace

int thread_count() {
    if (pool.count.load(std::memory_order_relaxed) == 0) settle_count(0);
    const bool may_share = !kn_threads_flag || pool.chosen.load(std::memory_order_relaxed);
    return may_share ? pool.count.load(std::memory_order_relaxed) : 1;
}

void set_thread_count(int n) {
    while (!try_busy()) std::this_thread::yield();
    stop_helpers();
    settle_count(n);
    leave_busy();
}

void share_ranges(ptrdiff_t n, ptrdiff_t grain, RangeWork work, void *context) noexcept {
    grain = std::max<ptrdiff_t>(grain, 1);
    const ptrdiff_t grains = n / grain + (n % grain != 0);
    const int threads = static_cast<int>(std::min<ptrdiff_t>(thread_count(), grains));
    if (threads < 2 || !try_busy()) return work(context, 0, n);
    start_helpers(threads - 1);
    if (pool.helpers == 0) {
        leave_busy();
        return work(context, 0, n);
    }

    const ptrdiff_t most_chunks = std::min<ptrdiff_t>(grains, threads * chunks_each);
    const ptrdiff_t each = (grains + most_chunks - 1) / most_chunks;
    const int chunks = static_cast<int>((grains + each - 1) / each);
    pool.work.store(work, std::memory_order_release);
    pool.context.store(context, std::memory_order_release);
    pool.n.store(n, std::memory_order_release);
    pool.chunk.store(each * grain, std::memory_order_release);
    pool.chunks.store(chunks, std::memory_order_release);
    pool.finished.store(0, std::memory_order_release);
    const uint64_t last = pool.ticket.load(std::memory_order_relaxed);
    pool.ticket.store(last + job + static_cast<uint64_t>(chunks), std::memory_order_release);
    wake_helpers();

    do_chunks();
    for (int k; (k = pool.finished.load(std::memory_order_acquire)) != chunks;) wait_while(pool.finished, k);
    leave_busy();
}

} // namespace kn
