// Cells: made empty, from an array of values, from text, and from the elements of an array.
#include "quorvex/display.h"
#include "quorvex/indexing.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "quorvex/text.h"
#include "value/constants.h"
#include "value/header.h"
#include "value/size_arguments.h"

namespace {

Mm new_cell(std::initializer_list<const Mm *> sizes) {
    for (const Mm *x : sizes)
        if (x->size() == 0) return nop_M;
    kn::Extents e = kn::extents_of("cell", sizes);
    kn_size n = kn::product(e.n, e.d);
    Mm out(0, 0, 0, e.n, e.d, kn_Mm);
    return n < 0 || kn::lacks(out, n) ? x_M : out;
}

} // namespace

Mm cell(const Mm &n) { return new_cell({&n}); }
Mm cell(const Mm &m, const Mm &n) { return new_cell({&m, &n}); }
Mm cell(const Mm &m, const Mm &n, const Mm &p) { return new_cell({&m, &n, &p}); }
Mm cell(const Mm &m, const Mm &n, const Mm &p, const Mm &q) { return new_cell({&m, &n, &p, &q}); }
Mm cells(const Mm &n) { return cell(n); }
Mm cells(const Mm &m, const Mm &n) { return cell(m, n); }

Mm cell_from_array(kn_size n, const Mm *const *a) {
    Mm out(0, 0, 0, 1, n, kn_Mm);
    if (kn::lacks(out, n)) return x_M;
    for (kn_size k = 0; k < n; k++) out.mr(k + 1) = *a[k];
    return out;
}

Mm iscellstr(const Mm &x) {
    bool yes = kn::is_cell(x);
    for (kn_size k = 1; yes && k <= x.getnnz(); k++) yes = x.mr(k).isstr();
    return mlogical(yes ? 1.0 : 0.0);
}

Mm num2cell(const Mm &x) {
    x.warn_uninit();
    Mm elements = full(x);
    kn_size n = elements.getnnz();
    Mm out = kn::fresh_like(elements, 0, kn_Mm);
    if (kn::lacks(out, n)) return x_M;
    for (kn_size k = 1; k <= n; k++) out.mr(k) = elements(k);
    return out;
}
