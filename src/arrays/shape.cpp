// The same elements in another shape or order: reshape, squeeze, and the turns and flips of a matrix.
#include <algorithm>
#include <cmath>

#include "arrays/slice.h"
#include "base/scratch.h"
#include "quorvex/arrays.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_argument.h"

namespace {

kn_size extent(double x) { return double_to_size(std::floor(x + 0.5)); }

// The product of sizes that are not negative; the largest size where it is too large.
kn_size times(kn_size a, kn_size b) {
    const kn_size both[] = {a, b}, n = kn::product(2, both);
    return n < 0 ? kn::size_max : n;
}

// The extents, of which one empty value is found from the others.
Mm shaped(const Mm &x, std::initializer_list<const Mm *> sizes) {
    x.warn_uninit();
    kn_size dims[4], n = 0, unknown = -1;
    kn_size known = 1;
    for (const Mm *size : sizes) {
        if (size->size() == 0 && unknown >= 0) {
            error("reshape: only one size may be []");
            return x_M;
        }
        if (size->size() == 0)
            unknown = n;
        else
            known = times(known, extent(kn::first_number(*size)));
        dims[n++] = size->size() == 0 ? 0 : extent(kn::first_number(*size));
    }
    kn_size total = x.size();
    if (unknown >= 0) {
        if (known == 0 ? total > 0 : total % known != 0) {
            error("reshape: size=%td is no multiple of the product of the sizes given", total);
            return x_M;
        }
        dims[unknown] = known == 0 ? 0 : total / known;
    }
    Mm out = x;
    if (n == 2)
        out.reshape(dims[0], dims[1]);
    else
        out.reshape(n, dims);
    return out;
}

Mm reversed(const Mm &x, int dim) {
    x.warn_uninit();
    if (x.size() == 0) return x;
    return kn::slice(x, dim, colon(x.size(dim), -1.0, 1.0));
}

} // namespace

Mm reshape(const Mm &x, const Mm &sizes) {
    x.warn_uninit();
    Mm v = mdouble(sizes);
    kn_size n = v.getnnz();
    if (n < 2) {
        error("reshape: size vector must have at least two elements");
        return x_M;
    }
    kn::Scratch<kn_size> dims(n);
    if (!dims) return x_M;
    for (kn_size k = 0; k < n; k++) dims[k] = extent(v.addr()[k]);
    Mm out = x;
    out.reshape(n, dims.get());
    return out;
}

Mm reshape(const Mm &x, const Mm &m, const Mm &n) { return shaped(x, {&m, &n}); }
Mm reshape(const Mm &x, const Mm &m, const Mm &n, const Mm &p) { return shaped(x, {&m, &n, &p}); }
Mm reshape(const Mm &x, const Mm &m, const Mm &n, const Mm &p, const Mm &q) {
    return shaped(x, {&m, &n, &p, &q});
}

Mm squeeze(const Mm &x) {
    x.warn_uninit();
    if (x.getndims() <= 2) return x;
    kn_size dims[4] = {1, 1, 1, 1}, n = 0;
    for (int k = 1; k <= 4; k++)
        if (x.size(k) != 1) dims[n++] = x.size(k);
    Mm out = x;
    out.reshape(4, dims);
    return out;
}

Mm fliplr(const Mm &x) { return error_2d(x, "fliplr") ? x_M : reversed(x, 2); }
Mm flipud(const Mm &x) { return error_2d(x, "flipud") ? x_M : reversed(x, 1); }

Mm rot90(const Mm &x) { return rot90(x, 1.0); }

Mm rot90(const Mm &x, const Mm &quarters) {
    if (error_2d(x, "rot90")) return x_M;
    double k = kn::first_number(quarters);
    switch (double_to_int(k - 4 * std::floor(k / 4))) {
    case 1: return flipud(transpose(x));
    case 2: return flipud(fliplr(x));
    case 3: return fliplr(transpose(x));
    default: return x;
    }
}
