// Extents that a program gives, as values.
#include "value/size_arguments.h"

#include <algorithm>

#include "quorvex/classes.h"
#include "quorvex/messages.h"

kn::Extents kn::extents_of(const char *name, std::initializer_list<const Mm *> sizes) {
    auto extent = [](double x) { return x >= 1 ? double_to_size(x) : 0; };
    Extents e{2, {1, 1, 1, 1}};
    const Mm &first = **sizes.begin();
    if (sizes.size() > 1) {
        e.n = 0;
        for (const Mm *x : sizes) e.d[e.n++] = extent(mdouble(*x).r(1));
    } else if (first.size() == 1) {
        e.d[0] = e.d[1] = extent(mdouble(first).r(1));
    } else {
        Mm vector = mdouble(first);
        if (vector.size() > 4) warning("%s: too many dimensions", name);
        e.n = std::clamp<kn_size>(vector.size(), 2, 4);
        for (int k = 0; k < e.n; k++) e.d[k] = extent(vector.r(k + 1) + 0.5);
    }
    return e;
}
