// Safe points of long calls, at which a host may interrupt them (kn_poll_handler).
#ifndef QUORVEX_BASE_POLL_H
#define QUORVEX_BASE_POLL_H

#include "quorvex/host.h"

namespace kn {

// Asks the host, if it did not answer within the last 20 ms. True after its answer was nonzero and
// error("Interrupted") has returned.
bool ask_host();

// Whether the call is to end here, with x_M or what else a report leaves it with. For the thread of the call,
// not for helpers of parallel_for; where both the hook and the error handler may throw. Without a hook it
// costs a comparison, with one the reading of a coarse clock, about 5 ns: worth a loop pass of 100 ns.
inline bool interrupted() { return kn_poll_handler && ask_host(); }

// The same in every `passes`th call of a loop whose passes are shorter than that. `passes` is a power of two.
class Poll {
  public:
    explicit Poll(unsigned passes) : mask_(passes - 1) {}
    bool interrupted() { return (++count_ & mask_) == 0 && kn::interrupted(); }

  private:
    unsigned mask_, count_ = 0;
};

} // namespace kn

#endif
