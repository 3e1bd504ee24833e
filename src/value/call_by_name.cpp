// Calls of functions by name through the hooks of a host, and the argument counts that they find.

#include "value/call_by_name.h"

#include "quorvex/messages.h"
#include "quorvex/startup.h"

namespace {

Mm nothing_linked(Mm, Mm, i_o_t, Mm &, Mm &, Mm &, Mm &, Mm &, Mm &) {
    error("feval was not linked with the program.");
    return x_M;
}

} // namespace

QUORVEX_THREAD_LOCAL double nargin_val = 0, nargout_val = 0;
QUORVEX_THREAD_LOCAL int nargin_set = 0, nargout_set = 0;
constinit kn_feval_hook feval_func = nothing_linked;
constinit kn_callback callback_func = nullptr; // until the library has started
constinit kn_eval_hook eval_func = nullptr;

Mm kn::feval_one(const Mm &f, const Mm &args) {
    Mm y1, y2, y3, y4, y5, y6;
    const double before = nargout_val;
    nargout_val = nargout_set = 1;
    feval_func(f, args, i_o, y1, y2, y3, y4, y5, y6);
    nargout_val = before; // not after an error that is thrown
    return y1;
}

double nargin() { return nargin_val; }
double nargout() { return nargout_val; }

Mm argn(i_o_t, Mm &out, Mm &in) {
    out = nargout_val;
    in = nargin_val;
    return x_M;
}
