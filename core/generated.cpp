// Storage that generated code uses: switch statements and argument counts.

#include "quorvex/startup.h"

constinit double nargin_val = 0, nargout_val = 0;
constinit int nargin_set = 0, nargout_set = 0;
constinit int switchdepth = 0, switchfalse = 0;

const i_o_t i_o = {};

double nargin() { return nargin_val; }
double nargout() { return nargout_val; }

Mm argn(i_o_t, Mm &out, Mm &in) {
    out = nargout_val;
    in = nargin_val;
    return x_M;
}

Mm switchinit(const Mm &x) {
    x.warn_uninit();
    return x;
}
