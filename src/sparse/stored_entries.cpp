// The stored entries of a value: nnz, nzmax, nonzeros; and spfun, which applies a function to them.
#include <algorithm>

#include "base/number_tests.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "value/call_by_name.h"
#include "value/header.h"

Mm nnz(const Mm &x) {
    x.warn_uninit();
    if (error_numeric(x, "nnz")) return x_M;
    auto count = [&](const auto *re, const auto *im) {
        kn_size n = 0;
        for (kn_size k = 0; k < x.getnnz(); k++) n += kn::is_nonzero(re, im, k);
        return static_cast<double>(n);
    };
    auto planes = [&](auto *tag) { return count(x.getpr(tag), x.getpi(tag)); };
    return x.gettype() == kn_uint8 ? planes(static_cast<unsigned char *>(nullptr))
                                   : planes(static_cast<double *>(nullptr));
}

Mm nzmax(const Mm &x) { return x.issparse() ? x.getnnz() + 1.0 : x.size(); }

Mm nonzeros(const Mm &x) {
    x.warn_uninit();
    if (error_numeric(x, "nonzeros")) return x_M;
    Mm i, j, v;
    find(x, i_o, i, j, v);
    v.reshape(v.getnnz(), 1);
    return v;
}

Mm spfun(const Mm &f, const Mm &s) {
    s.warn_uninit();
    if (error_numeric(s, "spfun")) return x_M;
    Mm i, j, v, m, n;
    find(s, i_o, i, j, v);
    size(s, i_o, m, n);
    const Mm *list[] = {&v};
    return sparse(i, j, kn::feval_one(f, cell_from_array(1, list)), m, n);
}

Mm sparsfun(const Mm &, const Mm &) {
    error("sparsfun called");
    return x_M;
}
