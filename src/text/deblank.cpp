// Text without its trailing blanks.
#include "quorvex/builders.h"
#include "quorvex/indexing.h"
#include "quorvex/text.h"
#include "value/nesting.h"
#include "value/strings.h"

using namespace kn;

namespace {

Mm deblank_text(const Mm &s) {
    if (s.size() == 0) return s;
    if (!s.isstr() || !is_text(s) || s.issparse() || s.getndims() > 2) {
        error("deblank: input is not a string");
        return x_M;
    }
    const Codes codes(s);
    if (!codes) return x_M;
    const double *begin = codes.data(), *end = begin + codes.size();
    while (end > begin && is_blank(end[-1])) --end;
    kn_size m = s.rows(), n = (end - begin + m - 1) / m;
    if (n == s.cols()) return s;
    return setstr(s(c_p, colon(1.0, n)));
}

} // namespace

Mm deblank(const Mm &s) { return map_leaves(s, deblank_text); }

Mm cellstr(const Mm &x) {
    x.warn_uninit();
    if (is_cell(x)) return x;
    kn_size m = x.rows();
    Mm out(0, 0, 0, m, 1, kn_Mm);
    if (kn::lacks(out, m)) return x_M;
    for (kn_size k = 1; k <= m; k++) out.mr(k) = deblank(x(k, c_p));
    return out;
}
