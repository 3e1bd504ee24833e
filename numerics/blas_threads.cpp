#include "numerics/blas_threads.h"

#include <mutex>

#include "platform/platform.h"

// Present where the BLAS is OpenBLAS.
#if defined(__GNUC__) && !defined(_WIN32)
extern "C" {
__attribute__((weak)) void openblas_set_num_threads(int n);
__attribute__((weak)) int openblas_get_num_threads();
}
#define KN_HAS_OPENBLAS (openblas_set_num_threads && openblas_get_num_threads)
#else
static void openblas_set_num_threads(int) {}
static int openblas_get_num_threads() { return 1; }
#define KN_HAS_OPENBLAS false
#endif

namespace kn {
namespace {

bool chosen_by_user() {
    for (const char *name : {"OPENBLAS_NUM_THREADS", "GOTO_NUM_THREADS", "OMP_NUM_THREADS"}) {
        char value[16];
        if (os::environment(name, value, sizeof value)) return true;
    }
    return false;
}

bool adjustable() {
    static const bool yes = KN_HAS_OPENBLAS && !chosen_by_user();
    return yes;
}

// How many ask for one thread at this moment, and what was set before the first of them came.
std::mutex guard;
int asking = 0, before = 1;

} // namespace

OneBlasThread::OneBlasThread(bool needed) : needed_(needed && adjustable()) {
    if (!needed_) return;
    std::lock_guard lock(guard);
    if (asking++ > 0) return;
    before = openblas_get_num_threads();
    if (before > 1) openblas_set_num_threads(1);
}

OneBlasThread::~OneBlasThread() {
    if (!needed_) return;
    std::lock_guard lock(guard);
    if (--asking == 0 && before > 1) openblas_set_num_threads(before);
}

} // namespace kn
