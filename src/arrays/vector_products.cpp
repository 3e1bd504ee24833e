// Scalar and vector products, and integrals by trapezoids.
#include <algorithm>

#include "arrays/slice.h"
#include "quorvex/arrays.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/indexing.h"
#include "quorvex/operations.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace {

// b in the direction of a (in `turned`) when both are vectors of one length; else b itself.
const Mm &directed_as(const Mm &b, const Mm &a, Mm &turned) {
    bool vectors = isvector(a).r() != 0 && isvector(b).r() != 0;
    if (!vectors || a.size() != b.size()) return b;
    turned = reshape(b, size(a));
    return turned;
}

// Along *dim, or else the first dimension above 1.
Mm dot_along(const Mm &a, const Mm &b, const Mm *dim) {
    a.warn_uninit();
    b.warn_uninit();
    if (!kn::same_size(a, b)) {
        error("dot: a and b must be same size");
        return x_M;
    }
    Mm products = times(conj(a), b);
    return dim ? sum(products, *dim) : sum(products);
}

Mm cross_along(const Mm &a, const Mm &b, int dim) {
    a.warn_uninit();
    b.warn_uninit();
    if (!kn::same_size(a, b)) {
        error("cross: a and b must be same size");
        return x_M;
    }
    if (dim == 0 || a.size(dim) != 3) {
        error("cross: a and b must have 3 elements in the dimension");
        return x_M;
    }
    Mm next = (BR(2.0), Mm(3.0), Mm(1.0)), last = (BR(3.0), Mm(1.0), Mm(2.0));
    auto part = [dim](const Mm &x, const Mm &k) { return kn::slice(x, dim, k); };
    return times(part(a, next), part(b, last)) - times(part(a, last), part(b, next));
}

// The areas of the trapezoids along dim; false after an error. There is at least one.
bool areas(const char *name, const Mm &x, const Mm &y, int dim, Mm &out) {
    kn_size m = y.size(dim);
    Mm pairs = kn::slice(y, dim, colon(1.0, m - 1)) + kn::slice(y, dim, colon(2.0, m));
    if (x.size() == 0) {
        out = pairs / 2.0;
    } else if (kn::same_size(x, y)) {
        out = times(diff(x, 1.0, dim), pairs) / 2.0;
    } else if (isvector(x).r() != 0 && x.size() == m) {
        Mm widths = kn::along(diff(x), dim);
        for (int k = 1; k <= 4; k++)
            if (k != dim) widths = kn::repeat(widths, k, y.size(k));
        out = times(widths, pairs) / 2.0;
    } else {
        error("%s: length of x must equal the size of y in the dimension", name);
        return false;
    }
    return true;
}

// A zero for each line along the dimension.
Mm zero_slice(const Mm &y, int dim) {
    kn_size dims[4];
    std::copy_n(y.getdims(), 4, dims);
    dims[dim - 1] = 1;
    return czeros(0, 4, dims);
}

Mm integral(const Mm &abscissas, const Mm &ordinates, int dim) {
    abscissas.warn_uninit();
    ordinates.warn_uninit();
    if (error_numeric(abscissas, "trapz") || error_numeric(ordinates, "trapz")) return x_M;
    Mm x = mdouble(abscissas), y = mdouble(ordinates);
    if (y.size() == 0) return 0.0;
    if (y.size(dim) == 1) return zero_slice(y, dim);
    Mm a;
    return areas("trapz", x, y, dim, a) ? sum(a, dim) : x_M;
}

Mm running_integral(const Mm &abscissas, const Mm &ordinates, int dim) {
    abscissas.warn_uninit();
    ordinates.warn_uninit();
    if (error_numeric(abscissas, "cumtrapz") || error_numeric(ordinates, "cumtrapz")) return x_M;
    Mm x = mdouble(abscissas), y = mdouble(ordinates);
    if (y.size() == 0) return y;
    if (y.size(dim) == 1) return zero_slice(y, dim);
    Mm a;
    if (!areas("cumtrapz", x, y, dim, a)) return x_M;
    Mm out = zeros(size(y));
    kn::set_slice(out, dim, colon(2.0, y.size(dim)), cumsum(a, dim));
    return out;
}

Mm given_dimension(const char *name, const Mm &x, const Mm &y, const Mm &dim,
                   Mm (*f)(const Mm &, const Mm &, int)) {
    int d = kn::dimension(name, y, dim);
    return d > 0 ? f(x, y, d) : x_M;
}

} // namespace

Mm dot(const Mm &a, const Mm &b) {
    Mm turned;
    return dot_along(a, directed_as(b, a, turned), nullptr);
}
Mm dot(const Mm &a, const Mm &b, const Mm &dim) { return dot_along(a, b, &dim); }

Mm cross(const Mm &a, const Mm &b) {
    const kn_size *d = a.getdims(), *found = std::find(d, d + 4, 3);
    Mm turned;
    return cross_along(a, directed_as(b, a, turned), found == d + 4 ? 0 : static_cast<int>(found - d) + 1);
}
Mm cross(const Mm &a, const Mm &b, const Mm &dim) {
    int d = kn::dimension("cross", a, dim);
    return d > 0 ? cross_along(a, b, d) : x_M;
}

Mm trapz(const Mm &y) { return integral(nop_M, y, y.nsingleton()); }
Mm trapz(const Mm &x, const Mm &y) { return integral(x, y, y.nsingleton()); }
Mm trapz(const Mm &x, const Mm &y, const Mm &dim) { return given_dimension("trapz", x, y, dim, integral); }

Mm cumtrapz(const Mm &y) { return running_integral(nop_M, y, y.nsingleton()); }
Mm cumtrapz(const Mm &x, const Mm &y) { return running_integral(x, y, y.nsingleton()); }
Mm cumtrapz(const Mm &x, const Mm &y, const Mm &dim) {
    return given_dimension("cumtrapz", x, y, dim, running_integral);
}
