// zeros, ones, eye, randM and randn in all their forms, and the matrices of zeros and ones that the numerics
// start from.
//
// A builder is a way to fill a fresh real value. Sizes reach it by two ways, plain doubles and values; the
// two random builders also take the commands "state" and "seed" in place of the first size.
#include "quorvex/builders.h"

#include <algorithm>

#include "arrays/random.h"
#include "base/poll.h"
#include "base/scratch.h"
#include "quorvex/classes.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/keyword.h"
#include "value/number_argument.h"

namespace {

// ---- Filling ----

bool fill_zeros(const Mm &x) {
    std::fill_n(x.addr(), x.getnnz(), 0.0);
    return true;
}
bool fill_ones(const Mm &x) {
    std::fill_n(x.addr(), x.getnnz(), 1.0);
    return true;
}

void fill_diagonal(const Mm &x) {
    kn_size m = x.rows(), n = std::min(m, x.cols());
    for (kn_size k = 1; k <= n; k++) *x.addr(k, k) = 1;
}

bool fill_eye(const Mm &x) { // the first page only
    fill_zeros(x);
    fill_diagonal(x);
    return true;
}

template <class Random> bool fill_random(Random &random, const Mm &x) {
    constexpr ptrdiff_t portion = ptrdiff_t{1} << 18; // 1 ms
    for (ptrdiff_t from = 0; from < x.getnnz(); from += portion) {
        if (from > 0 && kn::interrupted()) return false;
        random.fill(x.addr() + from, std::min(portion, x.getnnz() - from));
    }
    return true;
}
bool fill_randM(const Mm &x) { return fill_random(kn::uniform_random, x); }
bool fill_randn(const Mm &x) { return fill_random(kn::normal_random, x); }

// False when interrupted.
using Fill = bool (*)(const Mm &);

Mm build(Fill fill, kn_size ndims, const kn_size *dims) {
    kn_size n = kn::product(ndims, dims);
    Mm out(0, 0, 0, ndims, dims, kn_double);
    if (n < 0 || kn::lacks(out, n) || !fill(out)) return x_M;
    kn::check(out);
    return out;
}

// ---- Sizes ----

kn_size size_arg(double x) { return x >= 1 ? double_to_size(x) : 0; }

Mm build(Fill fill, double m, double n) {
    kn_size dims[2] = {size_arg(m), size_arg(n)};
    return build(fill, 2, dims);
}

Mm eye01(Fill fill, const Mm &a, const Mm &b, const Mm &c, const Mm &d) {
    const Mm *args[4] = {&a, &b, &c, &d};
    if (std::any_of(args, args + 4, [](const Mm *x) { return x->size() == 0; })) return nop_M;

    Mm sizes[4];
    for (int k = 0; k < 4; k++) {
        sizes[k] = mdouble(*args[k]);
        if (sizes[k].size() == 0) return x_M; // not numbers
    }

    kn_size dims[4];
    if (sizes[0].size() == 1) {
        for (int k = 0; k < 4; k++) {
            if (sizes[k].size() > 1) warning("eye01: expecting scalar argument");
            dims[k] = size_arg(sizes[k].r());
        }
        return build(fill, 4, dims);
    }
    kn_size ndims = sizes[0].size();
    if (ndims > 4) {
        warning("eye01: too many dimensions");
        ndims = 4;
    }
    for (kn_size k = 0; k < ndims; k++)
        dims[k] = std::max<kn_size>(double_to_size(sizes[0].r(k + 1) + 0.5), 0);
    return build(fill, ndims, dims);
}

// ---- Commands of the random builders ----

// Only "state" and "seed" are commands; with any other first input these give false, and it is a size.

template <class Function> bool reads(Function &f, const Mm &command, Mm &result) {
    if (kn::is_word(command, "seed")) {
        result = f.get_seed();
        return true;
    }
    if (!kn::is_word(command, "state")) return false;
    constexpr int n = Function::state_size;
    Mm y(0, 0, 0, n, 1, kn_double);
    if (kn::lacks(y, n)) return true;
    f.get_state(y.addr());
    result = y;
    return true;
}

template <class Function> bool sets(Function &f, const Mm &command, const Mm &y) {
    if (kn::is_word(command, "seed")) {
        f.set_seed(kn::first_number(y));
        return true;
    }
    if (!kn::is_word(command, "state")) return false;
    Mm state = mdouble(y);
    bool usable = state.gettype() == kn_double && !state.issparse();
    if (!f.set_state(state.addr(), usable ? static_cast<int>(std::min<kn_size>(state.getnnz(), INT_MAX)) : 0))
        error("%s('state',y): y must be scalar or %d-element state vector", f.name, f.state_size);
    return true;
}

} // namespace

// ---- The builders ----

#define BUILDER(name)                                                                             \
    Mm name(double n) { return build(fill_##name, n, n); }                                        \
    Mm name(double m, double n) { return build(fill_##name, m, n); }                              \
    Mm name(const Mm &a, const Mm &b, const Mm &c) { return eye01(fill_##name, a, b, c, one_M); } \
    Mm name(const Mm &a, const Mm &b, const Mm &c, const Mm &d) { return eye01(fill_##name, a, b, c, d); }
QUORVEX_BUILDER_FUNCTIONS(BUILDER)
#undef BUILDER

// One scalar is both sizes of a square matrix.
#define PLAIN_BUILDER(name)                                                                         \
    Mm name(const Mm &a) { return eye01(fill_##name, a, a.size() == 1 ? a : one_M, one_M, one_M); } \
    Mm name(const Mm &a, const Mm &b) { return eye01(fill_##name, a, b, one_M, one_M); }
PLAIN_BUILDER(zeros)
PLAIN_BUILDER(ones)
PLAIN_BUILDER(eye)
#undef PLAIN_BUILDER

#define RANDOM_BUILDER(name, function)                                         \
    double name() { return kn::function.draw(); }                              \
    Mm name(const Mm &a) {                                                     \
        Mm result = x_M;                                                       \
        if (reads(kn::function, a, result)) return result;                     \
        return eye01(fill_##name, a, a.size() == 1 ? a : one_M, one_M, one_M); \
    }                                                                          \
    Mm name(const Mm &a, const Mm &b) {                                        \
        if (sets(kn::function, a, b)) return x_M;                              \
        return eye01(fill_##name, a, b, one_M, one_M);                         \
    }
RANDOM_BUILDER(randM, uniform_random)
RANDOM_BUILDER(randn, normal_random)
#undef RANDOM_BUILDER

Mm zeros() { return 0.0; }
Mm eye() { return 1.0; }
Mm cputime() { return zeros(); }

// ---- Complex from the start ----

Mm czeros(int complex, kn_size ndims, kn_extents dims) {
    if (ndims > 4) {
        warning("czeros: too many dimensions");
        ndims = 4;
    }
    kn_size n = kn::product(ndims, dims.d);
    Mm out(complex != 0, 0, 0, ndims, dims, kn_double);
    if (n < 0 || kn::lacks(out, n)) return x_M;
    fill_zeros(out);
    if (out.isc()) std::fill_n(out.addi(), n, 0.0);
    return out;
}

Mm czeros(int complex, kn_size rows, kn_size cols) {
    kn_size dims[2] = {rows, cols};
    return czeros(complex, 2, dims);
}

Mm ceye(int complex, kn_size rows, kn_size cols) {
    Mm out = czeros(complex, rows, cols);
    fill_diagonal(out);
    return out;
}
