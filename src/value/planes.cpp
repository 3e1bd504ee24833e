// A result of the same kind as an operand.
#include "value/planes.h"

#include "value/fields.h"

bool kn::make_like(Mm &out, const Mm &x, int ndims, const kn_size *dims) {
    kn_matrix_types t = x.gettype() == kn_none ? kn_double : x.gettype();
    kn_size n = product(ndims, dims);
    Mm made(x.isc(), 0, 0, ndims, dims, t);
    if (n < 0 || lacks(made, n) || made.gettype() != t) return false;

    M_types flags = x.getflags();
    flags.type = t;
    flags.sparse = flags.scalar_only = flags.persistent = flags.global = 0;
    made.getflags() = flags;
    if (!copy_fields(made, x)) return false;
    made.setclassid(x.getclassid());
    out = made;
    return true;
}
