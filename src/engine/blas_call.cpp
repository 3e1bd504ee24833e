#include "engine/blas_call.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include "base/scratch.h"
#include "platform/platform.h"

// Present where the BLAS is OpenBLAS: `blas_num_threads` is the size of its pool, the caller included, and
// `blas_server_avail` is nonzero while the pool runs. A buffer given is the first of its list that is free.
#if defined(__GNUC__) && !defined(_WIN32)
extern "C" {
__attribute__((weak)) void openblas_set_num_threads(int n);
__attribute__((weak)) int openblas_get_num_threads();
__attribute__((weak)) void *blas_memory_alloc(int position);
__attribute__((weak)) void blas_memory_free(void *buffer);
__attribute__((weak)) int blas_thread_init();
__attribute__((weak)) extern volatile int blas_server_avail;
__attribute__((weak)) extern int blas_num_threads;
}
#define KN_ADJUSTABLE (openblas_set_num_threads && openblas_get_num_threads)
#define KN_HAS_BUFFERS (blas_memory_alloc && blas_memory_free)
#define KN_HAS_POOL (blas_thread_init && &blas_server_avail && &blas_num_threads)
#else
static void openblas_set_num_threads(int) {}
static int openblas_get_num_threads() { return 1; }
static void *blas_memory_alloc(int) { return nullptr; }
static void blas_memory_free(void *) {}
static int blas_thread_init() { return 0; }
static int blas_server_avail = 1, blas_num_threads = 1;
#define KN_ADJUSTABLE false
#define KN_HAS_BUFFERS false
#define KN_HAS_POOL false
#endif

namespace kn {
namespace {

// ---- Buffers ----

constexpr size_t buffer_bytes = size_t{128} << 20;
// What work for all threads takes in all: a product half a megabyte from malloc, a factorisation four of the
// stack, which grows by them.
constexpr size_t heap_bytes = size_t{1} << 20, stack_bytes = size_t{8} << 20;
constexpr int most = 128; // buffers that there can be

std::mutex guard;
std::atomic<int> callers = 0; // threads inside a call at this moment
thread_local int depth = 0;   // calls that this thread is inside of
std::atomic<int> mapped = 0;  // buffers, those of the pool included

// Threads of the pool beside the caller, and whether they have been started.
int workers() { return KN_HAS_POOL ? std::clamp(blas_num_threads - 1, 0, most / 2) : 0; }
bool workers_run() { return workers() == 0 || blas_server_avail; }

// Whether n threads can run at a time. Their stacks are kept for later threads.
bool threads_fit(int n) {
    os::Thread started[most];
    int count = 0;
    while (count < n && (started[count] = os::start_thread([] {}))) ++count;
    for (int k = 0; k < count; ++k) os::join_thread(started[k]);
    return count == n;
}

bool room_for(size_t bytes) {
    void *room = os::map(bytes);
    if (room) os::unmap(room, bytes);
    return room != nullptr;
}

// Whether n buffers can be mapped at a time; they stay mapped.
bool buffers_fit(int n) {
    void *held[most];
    int count = 0;
    for (; count < n; ++count) {
        if (!room_for(buffer_bytes)) break;
        held[count] = blas_memory_alloc(0);
    }
    for (int k = 0; k < count; ++k) blas_memory_free(held[k]);
    return count == n;
}

bool reserve_buffers() {
    std::lock_guard lock(guard);
    const int calling = std::min<int>(callers, most / 2), all = calling + workers();
    const bool running = workers_run();
    if (all > mapped) {
        // A worker may not have come to map its buffer yet. Where not all fit it gets time to, once; one that
        // had none would have taken the room by then that is found afterwards.
        static bool waited = false;
        if (running && !waited && !room_for(buffer_bytes * static_cast<size_t>(all))) {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            waited = true;
        }
        if (!buffers_fit(running ? calling : all)) return false;
        mapped = all;
    }
    if (running) return true;
    if (!threads_fit(workers())) return false;
    blas_thread_init();
    return true;
}

void enter() {
    if (depth++ == 0) ++callers;
}
void leave() {
    if (--depth == 0) --callers;
}

bool has_memory(BlasWork work) {
    if (!KN_HAS_BUFFERS) return true;
    if ((callers + workers() > mapped || !workers_run()) && !reserve_buffers()) return false;
    if (work == BlasWork::small || work == BlasWork::alone || workers() == 0) return true;
    if (work == BlasWork::factorisation && !room_for(stack_bytes)) return false;
    void *room = heap_alloc(heap_bytes);
    heap_free(room);
    return room != nullptr;
}

// ---- Threads ----

bool chosen_by_user() {
    for (const char *name : {"OPENBLAS_NUM_THREADS", "GOTO_NUM_THREADS", "OMP_NUM_THREADS"}) {
        char value[16];
        if (os::environment(name, value, sizeof value)) return true;
    }
    return false;
}

bool adjustable() {
    static const bool yes = KN_ADJUSTABLE && !chosen_by_user();
    return yes;
}

// How many ask for one thread at this moment, and what was set before the first of them came.
int asking = 0, before = 1;

} // namespace

BlasCall::BlasCall(BlasWork work) : alone_(work == BlasWork::alone && adjustable()) {
    enter();
    has_memory_ = has_memory(work);
    if (!has_memory_) {
        alone_ = false;
        leave();
        out_of_memory();
    } else if (alone_) {
        std::lock_guard lock(guard);
        if (asking++ > 0) return;
        before = openblas_get_num_threads();
        if (before > 1) openblas_set_num_threads(1);
    }
}

BlasCall::~BlasCall() {
    if (has_memory_) leave();
    if (!alone_) return;
    std::lock_guard lock(guard);
    if (--asking == 0 && before > 1) openblas_set_num_threads(before);
}

} // namespace kn
