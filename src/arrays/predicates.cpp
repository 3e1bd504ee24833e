// Questions about arrays, answered by a logical scalar.
#include "quorvex/arrays.h"

#include <algorithm>

#include "base/number_tests.h"
#include "quorvex/classes.h"
#include "value/header.h"
#include "value/number_block.h"

namespace {

Mm answer(bool yes) {
    Mm out = yes ? 1.0 : 0.0;
    out.setlogical(1);
    return out;
}

bool is_complex(Mm m) { return m.getreal(0); } // of a copy: getreal changes the header it is called on

} // namespace

Mm isstruct(const Mm &m) { return answer(m.isstruct() && m.getclassid() == 0); }
Mm iscell(const Mm &m) { return answer(kn::is_cell(m)); }
Mm islogical(const Mm &m) { return answer(m.islogical() && !m.isc()); }
Mm iscomplex(const Mm &m) { return answer(is_complex(m)); }
Mm isreal(const Mm &m) { return answer(m.gettype() != kn_Mm && !is_complex(m)); }
Mm isnumeric(const Mm &m) { return answer(m.gettype() != kn_Mm && !m.isstr()); }
Mm ischar(const Mm &m) { return answer(m.isstr()); }

Mm isempty(const Mm &m) {
    m.warn_uninit();
    return answer(m.size() == 0);
}

Mm isvector(const Mm &m) {
    const kn_size *dims = m.getdims();
    return answer(m.size() != 0 && std::count_if(dims, dims + 4, [](kn_size n) { return n > 1; }) <= 1);
}

int istrue(const Mm &x) {
    if (kn::is_real_scalar(x)) return *x.addr() != 0;
    x.warn_uninit();
    if (x.gettype() == kn_none || error_numeric(x, "istrue") || x.size() < 1) return 0;
    Mm v = mdouble(x);
    const double *re = v.addr(), *im = v.addi();
    kn_size n = v.getnnz();
    for (kn_size k = 0; k < n; k++)
        if (!kn::is_nonzero(re, im, k)) return 0;
    return n > 0;
}
