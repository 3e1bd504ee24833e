// gradient and del2: slopes and second differences over coordinates.

#include <algorithm>

#include "engine/element_engine.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"

using namespace kn;

namespace {

// Bytes are differenced as doubles.
Mm numbers(const Mm &f) { return f.gettype() == kn_uint8 ? mdouble(f) : f; }

// 0, 1, 2, ... as coordinates for n elements.
Mm counted(kn_size n) {
    Mm x(0, 0, 0, 1, n, kn_double);
    if (lacks(x, n)) return x_M;
    for (kn_size k = 0; k < n; ++k) x.addr()[k] = k;
    return x;
}

Mm along(op_t op, const Mm &f, const Mm &x, int d) {
    return element_operation(0, f, full(x), static_cast<double>(d), op, 1, l_M);
}

// Slope along dimension d. One coordinate is the step.
Mm slope(const Mm &f, const Mm &coordinates, int d) {
    Mm x = numbers(coordinates);
    if (x.size() != 1) return along(op_gradient, f, x, d);
    return rdivide(along(op_gradient, f, counted(f.size(d)), d), x);
}

// Each element divided by the one of g that belongs to its place along dimension d.
void divide_along(Mm &out, const Mm &g, int d) {
    const kn_size *dims = out.getdims();
    ptrdiff_t stride = 1, len = dims[d - 1];
    for (kn_size k = 0; k < d - 1; ++k) stride *= dims[k];
    if (g.getnnz() < len || out.issparse()) return;
    for (ptrdiff_t k = 0; k < out.getnnz(); ++k) out.addr()[k] /= g.addr()[k / stride % len];
}

// Half the second derivative along dimension d. The engine divides by the width of the interval once; the
// other time it is the mean spacing there.
Mm bend(const Mm &f, const Mm &coordinates, int d) {
    Mm x = numbers(full(coordinates));
    if (x.size() == 1) return rdivide(along(op_del2, f, counted(f.size(d)), d), times(x, x));
    Mm out = along(op_del2, f, x, d), line = x;
    line.reshape(1, line.size());
    divide_along(out, slope(line, 1.0, 2), d);
    return out;
}

// The direction of f's columns, but that of the elements for a column vector.
int first_direction(const Mm &f) { return f.cols() == 1 && f.getndims() == 2 ? 1 : 2; }

} // namespace

Mm gradient(const Mm &f) { return gradient(f, 1.0); }
Mm gradient(const Mm &f, const Mm &x) {
    Mm a = numbers(f);
    return slope(a, x, first_direction(a));
}
Mm gradient(const Mm &f, const Mm &x, const Mm &) { return gradient(f, x); }
Mm gradient(const Mm &f, i_o_t, Mm &gx, Mm &gy) { return gradient(f, 1.0, 1.0, i_o, gx, gy); }
Mm gradient(const Mm &f, const Mm &x, const Mm &y, i_o_t, Mm &gx, Mm &gy) {
    Mm a = numbers(f), columns = slope(a, x, 2), rows = slope(a, y, 1);
    gx = columns;
    gy = rows;
    return x_M;
}

Mm del2(const Mm &f) { return del2(f, 1.0, 1.0); }
Mm del2(const Mm &f, const Mm &x) { return del2(f, x, x); }
Mm del2(const Mm &f, const Mm &x, const Mm &y) {
    Mm a = full(numbers(f));
    Mm sum = 0.0;
    // A direction with fewer than three elements does not bend.
    bool flat = true;
    for (int d = 1; d <= a.getndims(); ++d) {
        if (a.getdims()[d - 1] < 3) continue;
        Mm part = bend(a, d == 1 ? y : d == 2 ? x : Mm(1.0), d);
        sum = flat ? part : sum + part;
        flat = false;
    }
    if (flat) return bend(a, 1.0, 1);
    Mm out = sum / static_cast<double>(a.getndims());
    return f.issparse() ? sparse(out) : out;
}
