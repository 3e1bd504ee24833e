// Means, variances and covariances, by the formulas that subtract the mean first.
#include <algorithm>

#include "arrays/slice.h"
#include "quorvex/arrays.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/concat.h"
#include "quorvex/indexing.h"
#include "quorvex/operations.h"
#include "quorvex/startup.h"
#include "value/constants.h"
#include "value/number_argument.h"

namespace {

// n - 1 for flag 0, n for flag 1; a single observation has variance 0. -1 after an error.
double divisor(const char *name, const Mm &flag, kn_size n) {
    double f = flag.size() == 0 ? 0 : kn::first_number(flag);
    if (f == 0) return static_cast<double>(std::max<kn_size>(n - 1, 1));
    if (f == 1) return static_cast<double>(n);
    error("%s: flag must be 0 or 1", name);
    return -1;
}

// x minus its mean along the dimension.
Mm centred(const Mm &x, int dim) { return x - kn::repeat(mean(x, dim), dim, x.size(dim)); }

Mm variance(const char *name, const Mm &x, const Mm &flag, int dim) {
    x.warn_uninit();
    if (error_numeric(x, name)) return x_M;
    if (x.size() == 0) return kn::raw_nan;
    double n = divisor(name, flag, x.size(dim));
    if (n < 0) return x_M;
    Mm c = centred(mdouble(x), dim);
    return sum(real(times(conj(c), c)), dim) / n;
}

Mm variance(const char *name, const Mm &x, const Mm &flag, const Mm &dim) {
    int d = kn::dimension(name, x, dim);
    return d > 0 ? variance(name, x, flag, d) : x_M;
}

// x: one observation per row.
Mm covariance(const Mm &x, const Mm &flag) {
    if (x.size() == 0) return kn::raw_nan;
    double n = divisor("cov", flag, x.rows());
    if (n < 0) return x_M;
    Mm c = centred(x, 1);
    return ctranspose(c) * c / n;
}

Mm covariance_of_columns(const Mm &x, const Mm &flag) {
    x.warn_uninit();
    if (error_2d(x, "cov") || error_numeric(x, "cov")) return x_M;
    Mm v = mdouble(x);
    return covariance(v.rows() == 1 ? transpose(v) : v, flag);
}

} // namespace

Mm mean(const Mm &x) { return sum(x) / size(x, x.nsingleton()); }
Mm mean(const Mm &x, const Mm &dim) { return sum(x, dim) / size(x, dim); }

Mm var(const Mm &x) { return var(x, 0.0); }
Mm var(const Mm &x, const Mm &flag) { return variance("var", x, flag, x.nsingleton()); }
Mm var(const Mm &x, const Mm &flag, const Mm &dim) { return variance("var", x, flag, dim); }

Mm stdM(const Mm &x) { return stdM(x, 0.0); }
Mm stdM(const Mm &x, const Mm &flag) { return sqrt(variance("std", x, flag, x.nsingleton())); }
Mm stdM(const Mm &x, const Mm &flag, const Mm &dim) { return sqrt(variance("std", x, flag, dim)); }

Mm cov(const Mm &x) { return covariance_of_columns(x, 0.0); }

Mm cov(const Mm &x, const Mm &y_or_flag) {
    bool flag = x.size() > 1 && y_or_flag.size() == 1;
    return flag ? covariance_of_columns(x, y_or_flag) : cov(x, y_or_flag, 0.0);
}

Mm cov(const Mm &x, const Mm &y, const Mm &flag) {
    x.warn_uninit();
    y.warn_uninit();
    if (x.size() != y.size()) {
        error("cov: x and y must have the same number of elements");
        return x_M;
    }
    Mm u = mdouble(x), v = mdouble(y);
    return covariance(horzcat(u(c_p), v(c_p)), flag);
}
