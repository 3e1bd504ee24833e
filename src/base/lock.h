// Locks of the library, each held for a scope. Nothing is locked unless the threads flag is on.
#ifndef QUORVEX_BASE_LOCK_H
#define QUORVEX_BASE_LOCK_H

#include "platform/platform.h"
#include "quorvex/startup.h"

namespace kn {

// What the locks guard. A thread that holds one may enter those after it, not those before it.
enum class Guarded { file_table, random_generators, blocks, count };

static_assert(os::lock_count == static_cast<int>(Guarded::count));

class Lock {
  public:
    explicit Lock(Guarded what) : n_(kn_threads_flag ? static_cast<int>(what) : -1) {
        if (n_ >= 0) os::enter_lock(n_);
    }
    ~Lock() {
        if (n_ >= 0) os::leave_lock(n_);
    }
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

  private:
    int n_; // -1 when nothing was locked
};

} // namespace kn

#endif
