// Text without its trailing blanks.
#include <algorithm>

#include "core/header.h"
#include "quorvex/builders.h"
#include "quorvex/indexing.h"
#include "quorvex/startup.h"
#include "quorvex/text.h"

namespace {

bool is_blank(double code) { return code == 0 || code == ' ' || (code >= '\t' && code <= '\r'); }

} // namespace

Mm deblank(const Mm &s) {
    if (s.gettype() == kn_Mm && !s.isstruct()) {
        Mm out;
        out.deepcopy(s, kn_none);
        if (kn::lacks(out, s.getnnz())) return x_M;
        for (int k = 1; k <= s.getnnz(); k++) out.mr(k) = deblank(s.mr(k));
        return out;
    }
    if (s.size() == 0) return s;
    if (!s.isstr() || s.gettype() != kn_double || s.issparse() || s.getndims() > 2) {
        error("deblank: input is not a string");
        return x_M;
    }
    const double *begin = s.addr(), *end = begin + s.getnnz();
    while (end > begin && is_blank(end[-1])) --end;
    int m = s.rows(), n = static_cast<int>((end - begin + m - 1) / m);
    if (n == s.cols()) return s;
    return setstr(s(c_p, colon(1.0, n)));
}
