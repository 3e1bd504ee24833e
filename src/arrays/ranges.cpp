// Evenly spaced rows: colon, linspace, logspace.
#include <algorithm>
#include <cmath>

#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/operations.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_argument.h"

// A copy has no name, and so is no marker.
Mm colon() { return c_p; }

Mm colon(double a, double b) {
    if (b < a) return nop_M;
    kn_size n = double_to_size(b - a + 1); // below 1 for NaN
    if (n < 1) return nop_M;

    Mm out(0, 0, 0, 1, n, kn_double);
    if (kn::lacks(out, n)) return x_M;
    double *x = out.addr();
    if (a == std::floor(a) && std::fabs(a) < 0x1p52) { // every sum is exact, in whatever order
        for (kn_size k = 1; k < n; k++) x[k] = a + k;
        x[0] = a; // -0 plus 0 is 0
    } else {
        for (kn_size k = 0; k < n; k++, a += 1) x[k] = a;
    }
    return out;
}

Mm colon(double a, double s, double b) {
    if (s == 0 || (s > 0 && b < a) || (s < 0 && b > a)) return nop_M;
    double n0 = (b - a) / s + 1;
    double nearest = std::floor(n0 + 0.5);
    bool exact = std::fabs(n0 - nearest) < 1e-8;
    kn_size n = double_to_size(exact ? nearest : n0); // below 1 for NaN
    if (n < 1) return nop_M;
    if (n == 1) return a;

    Mm out(0, 0, 0, 1, n, kn_double);
    if (kn::lacks(out, n)) return x_M;
    double *x = out.addr();
    double last = exact ? b : (n - 1) * s + a;
    double total = last + a;
    kn_size half = n / 2;
    for (kn_size k = 0; k < half; k++) x[k] = k * s + a;
    if (n % 2 == 1) x[half] = total * 0.5;
    for (kn_size k = 0; k < half; k++) x[n - 1 - k] = total - x[k];
    double &end = x[n - 1];
    if (s > 0 ? end > last : end < last) end = last;
    return out;
}

Mm colon(const Mm &a, const Mm &b) {
    if (a.size() == 0 || b.size() == 0) return nop_M;
    return colon(kn::first_number(a), kn::first_number(b));
}

Mm colon(const Mm &a, const Mm &s, const Mm &b) {
    if (a.size() == 0 || s.size() == 0 || b.size() == 0) return nop_M;
    return colon(kn::first_number(a), kn::first_number(s), kn::first_number(b));
}

Mm linspace(const Mm &a) { return +a; }
Mm linspace(const Mm &a, const Mm &b) { return linspace(a, b, 100.0); }

Mm linspace(const Mm &a, const Mm &b, const Mm &n) {
    double points = kn::first_number(n), m = points - 1;
    if (points < 2) return b;
    return a + rdivide(times(colon(0.0, m), b - a), m);
}

namespace {

// Whether all elements, of any shape, are nonzero.
bool every(const Mm &x) {
    Mm full = mdouble(x);
    const double *v = full.addr();
    return std::all_of(v, v + full.getnnz(), [](double element) { return element != 0; });
}

} // namespace

Mm logspace(const Mm &a) { return +a; }
Mm logspace(const Mm &a, const Mm &b) { return logspace(a, b, 50.0); }

Mm logspace(const Mm &a, const Mm &b, const Mm &n) {
    Mm top = every(b == pi) ? log10(pi) : b;
    return power(10.0, kn::first_number(n) >= 2 ? linspace(a, top, n) : top);
}
