// A result of the same kind as an operand.
#include "value/planes.h"

bool kn::make_like(Mm &out, const Mm &x, int ndims, const int *dims) {
    kn_matrix_types t = x.gettype() == kn_none ? kn_double : x.gettype();
    int n = product(ndims, dims);
    Mm made(x.isc(), 0, 0, ndims, dims, t);
    if (n < 0 || lacks(made, n) || made.gettype() != t) return false;

    M_types flags = x.getflags();
    flags.type = t;
    flags.sparse = flags.scalar_only = flags.persistent = flags.global = 0;
    made.getflags() = flags;
    if (x.isstruct()) {
        made.extend_nfields(x.getnfields() > 8 ? x.getnfields() : 8);
        if (!made.isstruct()) return false;
    }
    for (int k = 0; k < x.getnfields(); k++)
        if (made.addfield(x.getfields()[k], 1) < 0) return false;
    made.setclassid(x.getclassid());
    out = made;
    return true;
}
