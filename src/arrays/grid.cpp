// Coordinates of grids, and the way between positions and subscripts.
#include <algorithm>

#include "arrays/slice.h"
#include "quorvex/arrays.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/indexing.h"
#include "quorvex/operations.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/size_arguments.h"

namespace {

// Axis k of n, laid along dimension dim[k], is repeated along the dimensions of the others.
template <size_t n> Mm grid(const Mm *const (&axes)[n], const int (&dim)[n], size_t k) {
    Mm counts[4] = {1.0, 1.0, 1.0, 1.0};
    for (size_t l = 0; l < n; l++)
        if (l != k) counts[dim[l] - 1] = axes[l]->size();
    return repmat(kn::along(full(*axes[k]), dim[k]), counts[0], counts[1], counts[2], counts[3]);
}

template <size_t n> Mm grids(const Mm *const (&axes)[n], const int (&dim)[n], Mm *const (&out)[n]) {
    Mm made[n];
    for (size_t k = 0; k < n; k++) made[k] = grid(axes, dim, k);
    for (size_t k = 0; k < n; k++) *out[k] = made[k];
    return x_M;
}

constexpr int mesh2[] = {2, 1}, mesh3[] = {2, 1, 3}, nd2[] = {1, 2}, nd3[] = {1, 2, 3};

// ---- Subscripts ----

// The extents for n subscripts: what a size vector has more is multiplied into the last one.
struct Size {
    double d[4] = {1, 1, 1, 1};
    double total = 1;
    bool valid;

    Size(const char *name, const Mm &size, int n) {
        Mm v = mdouble(size);
        kn_size given = v.getnnz();
        valid = given >= 2;
        if (!valid) error("%s: size vector must have at least two elements", name);
        for (kn_size k = 0; valid && k < given; k++) {
            d[std::min<kn_size>(k, n - 1)] *= v.addr()[k];
            total *= v.addr()[k];
        }
    }
};

bool all_within(const Mm &x, double last) {
    Mm v = x(c_p);
    return all(mand(v >= 1.0, v <= last)).r() != 0; // NaN is not
}

Mm subscripts(const Mm &size, const Mm &position, std::initializer_list<Mm *> out) {
    const int n = static_cast<int>(out.size());
    Size extents("ind2sub", size, n);
    if (!extents.valid) return x_M;
    Mm k = mdouble(position);
    if (k.size() > 0 && !all_within(k, extents.total)) {
        error("ind2sub: index out of range");
        return x_M;
    }
    k = k - 1.0;
    Mm found[4];
    for (int l = 0; l < n - 1; l++) {
        found[l] = rem(k, extents.d[l]) + 1.0;
        k = floor(k / extents.d[l]);
    }
    found[n - 1] = k + 1.0;
    const Mm *next = found;
    for (Mm *m : out) *m = *next++;
    return x_M;
}

Mm position(const Mm &size, std::initializer_list<const Mm *> subscripts) {
    const int n = static_cast<int>(subscripts.size());
    Size extents("sub2ind", size, n);
    if (!extents.valid) return x_M;
    Mm out = 1.0;
    double step = 1;
    const double *extent = extents.d;
    for (const Mm *subscript : subscripts) {
        Mm s = mdouble(*subscript);
        if (s.size() > 0 && !all_within(s, *extent)) {
            error("sub2ind: subscript out of range");
            return x_M;
        }
        out = out + (s - 1.0) * step;
        step *= *extent++;
    }
    return out;
}

} // namespace

Mm meshgrid(const Mm &x) { return meshgrid(x, x); }
Mm meshgrid(const Mm &x, const Mm &y) { return grid<2>({&x, &y}, mesh2, 0); }
Mm meshgrid(const Mm &x, const Mm &y, const Mm &z) { return grid<3>({&x, &y, &z}, mesh3, 0); }
Mm meshgrid(const Mm &x, i_o_t, Mm &gx, Mm &gy) { return meshgrid(x, x, i_o, gx, gy); }
Mm meshgrid(const Mm &x, const Mm &y, i_o_t, Mm &gx, Mm &gy) { return grids<2>({&x, &y}, mesh2, {&gx, &gy}); }
Mm meshgrid(const Mm &x, i_o_t, Mm &gx, Mm &gy, Mm &gz) { return meshgrid(x, x, x, i_o, gx, gy, gz); }
Mm meshgrid(const Mm &x, const Mm &y, const Mm &z, i_o_t, Mm &gx, Mm &gy, Mm &gz) {
    return grids<3>({&x, &y, &z}, mesh3, {&gx, &gy, &gz});
}

Mm ndgrid(const Mm &x) { return ndgrid(x, x); }
Mm ndgrid(const Mm &x1, const Mm &x2) { return grid<2>({&x1, &x2}, nd2, 0); }
Mm ndgrid(const Mm &x1, const Mm &x2, const Mm &x3) { return grid<3>({&x1, &x2, &x3}, nd3, 0); }
Mm ndgrid(const Mm &x, i_o_t, Mm &g1, Mm &g2) { return ndgrid(x, x, i_o, g1, g2); }
Mm ndgrid(const Mm &x1, const Mm &x2, i_o_t, Mm &g1, Mm &g2) { return grids<2>({&x1, &x2}, nd2, {&g1, &g2}); }
Mm ndgrid(const Mm &x, i_o_t, Mm &g1, Mm &g2, Mm &g3) { return ndgrid(x, x, x, i_o, g1, g2, g3); }
Mm ndgrid(const Mm &x1, const Mm &x2, const Mm &x3, i_o_t, Mm &g1, Mm &g2, Mm &g3) {
    return grids<3>({&x1, &x2, &x3}, nd3, {&g1, &g2, &g3});
}

Mm ind2sub(const Mm &size, const Mm &k) {
    Mm i;
    subscripts(size, k, {&i});
    return i;
}
Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j) { return subscripts(size, k, {&i, &j}); }
Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j, Mm &l) {
    return subscripts(size, k, {&i, &j, &l});
}
Mm ind2sub(const Mm &size, const Mm &k, i_o_t, Mm &i, Mm &j, Mm &l, Mm &m) {
    return subscripts(size, k, {&i, &j, &l, &m});
}

Mm sub2ind(const Mm &size, const Mm &i) { return position(size, {&i}); }
Mm sub2ind(const Mm &size, const Mm &i, const Mm &j) { return position(size, {&i, &j}); }
Mm sub2ind(const Mm &size, const Mm &i, const Mm &j, const Mm &l) { return position(size, {&i, &j, &l}); }
Mm sub2ind(const Mm &size, const Mm &i, const Mm &j, const Mm &l, const Mm &m) {
    return position(size, {&i, &j, &l, &m});
}
