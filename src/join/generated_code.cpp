// What generated code uses: storage of switch statements, literals, `end`.

#include "quorvex/generated.h"

#include "value/header.h"

constinit int switchdepth = 0, switchfalse = 0;

const i_o_t i_o = {};

Mm switchinit(const Mm &x) {
    x.warn_uninit();
    return x;
}

namespace generated {

Mm texts(kn_size rows, kn_size cols, const char *const *list) {
    Mm out(0, 0, 0, rows, cols, kn_Mm);
    for (kn_size k = 0; k < out.getnnz(); ++k) out.mr(k + 1) = TM(list[k]);
    return out;
}

double end_of(const Mm &x, int k, int n) {
    if (x.gettype() == kn_none || k < 1) return 0;
    if (n > 1) return k <= 4 ? static_cast<double>(x.getdims()[k - 1]) : 1;
    const kn_size *d = x.getdims();
    double size = 1;
    for (int l = 0; l < 4; ++l) size *= static_cast<double>(d[l]);
    return size;
}

double end_of(const Mr &x, int k, int n) { return end_of(Mm(x, 0), k, n); }

} // namespace generated
