// Holding one of the three numbered locks for a scope: 0 the file table, 1 the random generators, 2 the block
// allocator. Nothing is locked unless the threads flag is on.
#ifndef QUORVEX_BASE_LOCK_H
#define QUORVEX_BASE_LOCK_H

#include "platform/platform.h"
#include "quorvex/startup.h"

namespace kn {

class Lock {
  public:
    explicit Lock(int n) : n_(kn_threads_flag ? n : -1) {
        if (n_ >= 0) os::enter_lock(n_);
    }
    ~Lock() {
        if (n_ >= 0) os::leave_lock(n_);
    }
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

  private:
    int n_;
};

} // namespace kn

#endif
