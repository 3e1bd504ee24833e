#include "linear/blocked_lu.h"

#include <algorithm>
#include <numeric>

#include "base/poll.h"
#include "engine/blas_call.h"
#include "engine/gemm.h"

namespace kn {
namespace {

double cube(double a, double b, double c) { return a * b * c; }

// Part of a matrix: m by n elements, the columns `ld` elements apart.
template <class T> struct Part {
    T *data;
    int m, n, ld;
    Part(T *elements, int rows, int cols, int distance) : data(elements), m(rows), n(cols), ld(distance) {}
    explicit Part(const Matrix<T> &a) : Part(a.data(), a.rows(), a.cols(), a.rows()) {}
    Part at(int i, int j, int rows, int cols) const {
        return {data + i + static_cast<ptrdiff_t>(j) * ld, rows, cols, ld};
    }
    Part top(int k) const { return at(0, 0, k, n); }
    Part below(int k) const { return at(k, 0, m - k, n); }
    Part left(int k) const { return at(0, 0, m, k); }
    Part right(int k) const { return at(0, k, m, n - k); }
};

// c = factor c - a b
template <class T> bool subtract_product(const Part<T> &a, const Part<T> &b, T factor, const Part<T> &c) {
    return gemm<T>(c.m, c.n, a.n, T(-1), a.data, a.ld, b.data, b.ld, factor, c.data, c.ld);
}

// The solution of a x = factor b or x a = factor b, in place of b; a is triangular, a lower triangle with
// ones on its diagonal, which aren't stored, an upper one with its own.
template <bool on_the_left, bool lower, class T>
bool solve_triangular(const Part<T> &a, T factor, const Part<T> &b) {
    auto solve = solve_triangular<on_the_left, lower, T>;
    const int across = on_the_left ? b.n : b.m, h = std::max(a.n, across) / 2;
    if (!too_long<T>(cube(a.n, a.n, across) / 2)) {
        if (interrupted()) return false;
        BlasCall call(product_of(a.n, a.n, across));
        if (call)
            lapack::trsm(on_the_left ? "L" : "R", lower ? "L" : "U", lower ? "U" : "N", b.m, b.n, factor,
                         a.data, a.ld, b.data, b.ld);
        return static_cast<bool>(call);
    }
    if (across >= a.n && on_the_left) return solve(a, factor, b.left(h)) && solve(a, factor, b.right(h));
    if (across >= a.n) return solve(a, factor, b.top(h)) && solve(a, factor, b.below(h));
    // One half of the triangle, then the other, after the contribution of the first has been subtracted.
    const Part<T> low = on_the_left ? b.top(h) : b.left(h), high = on_the_left ? b.below(h) : b.right(h);
    const Part<T> a_low = a.at(0, 0, h, h), a_high = a.at(h, h, a.n - h, a.n - h);
    const Part<T> between = lower ? a.at(h, 0, a.n - h, h) : a.at(0, h, h, a.n - h);
    constexpr bool low_first = on_the_left == lower;
    const Part<T> &first = low_first ? low : high, &second = low_first ? high : low;
    return solve(low_first ? a_low : a_high, factor, first) &&
           (on_the_left ? subtract_product(between, first, factor, second)
                        : subtract_product(first, between, factor, second)) &&
           solve(low_first ? a_high : a_low, T(1), second);
}

// Pivot positions are row numbers of a, counted from 1.
template <class T> bool factor_part(const Part<T> &a, int *p, int &zero_pivot) {
    const int k = std::min(a.m, a.n);
    if (!too_long<T>(cube(a.m, a.n, k)) || k < 2) {
        if (interrupted()) return false;
        BlasCall call(factorisation_of(a.m, a.n));
        if (call) zero_pivot = lapack::getrf(a.m, a.n, a.data, a.ld, p);
        return static_cast<bool>(call);
    }
    const int h = k / 2;
    const Part<T> done = a.left(h), rest = a.right(h);
    if (!factor_part(done, p, zero_pivot)) return false;
    lapack::laswp(rest.n, rest.data, rest.ld, 1, h, p);
    int later;
    if (!solve_triangular<true, true>(done.top(h), T(1), rest.top(h)) ||
        !subtract_product(done.below(h), rest.top(h), T(1), rest.below(h)) ||
        !factor_part(rest.below(h), p + h, later))
        return false;
    for (int j = h; j < k; ++j) p[j] += h;
    lapack::laswp(h, a.data, a.ld, h + 1, k, p);
    if (zero_pivot == 0 && later != 0) zero_pivot = h + later;
    return true;
}

template <class T> bool invert_upper(const Part<T> &u) {
    if (!too_long<T>(cube(u.n, u.n, u.n) / 3)) {
        if (interrupted()) return false;
        BlasCall call(factorisation_of(u.n, u.n));
        if (call) lapack::trtri(u.n, u.data, u.ld);
        return static_cast<bool>(call);
    }
    const int h = u.n / 2;
    const Part<T> low = u.at(0, 0, h, h), high = u.at(h, h, u.n - h, u.n - h),
                  between = u.at(0, h, h, u.n - h);
    return solve_triangular<true, false>(low, T(-1), between) &&
           solve_triangular<false, false>(high, T(1), between) && invert_upper(low) && invert_upper(high);
}

} // namespace

template <class T> bool factor(const Matrix<T> &a, const Pivots &p, int &zero_pivot) {
    return factor_part(Part<T>(a), p.get(), zero_pivot);
}

template <class T> bool substitute(const Matrix<T> &factors, const Pivots &p, const Matrix<T> &b) {
    const int n = factors.rows(), q = b.cols();
    if (too_long<T>(cube(n, n, q))) {
        lapack::laswp(q, b.data(), n, 1, n, p.get());
        return solve_triangular<true, true>(Part<T>(factors), T(1), Part<T>(b)) &&
               solve_triangular<true, false>(Part<T>(factors), T(1), Part<T>(b));
    }
    if (interrupted()) return false;
    BlasCall call(factorisation_of(n, n));
    if (call) lapack::getrs(factors, p.get(), b);
    return static_cast<bool>(call);
}

template <class T> bool substitute_upper(const Matrix<T> &a, int k, const Matrix<T> &b) {
    return solve_triangular<true, false>(Part<T>(a).at(0, 0, k, k), T(1), Part<T>(b).top(k));
}

// inv(a) = inv(u) inv(l) p
template <class T> bool invert(const Matrix<T> &factors, const Pivots &p) {
    const int n = factors.rows();
    if (too_long<T>(cube(n, n, n))) {
        Matrix<T> l(n, n);
        if (!l) return false;
        for (int j = 0; j < n; ++j) {
            T *below = factors.column(j) + j + 1;
            std::copy(below, below + n - j - 1, l.column(j) + j + 1);
        }
        if (!invert_upper(Part<T>(factors))) return false;
        for (int j = 0; j < n; ++j) std::fill(factors.column(j) + j + 1, factors.column(j) + n, T(0));
        if (!solve_triangular<false, true>(Part<T>(l), T(1), Part<T>(factors))) return false;
        for (int j = n - 1; j >= 0; --j)
            if (p[j] != j + 1)
                std::swap_ranges(factors.column(j), factors.column(j) + n, factors.column(p[j] - 1));
        return true;
    }
    T wanted;
    lapack::getri(factors, p.get(), &wanted, -1);
    const int lwork = static_cast<int>(std::real(wanted));
    Scratch<T> work(lwork);
    if (!work || interrupted()) return false;
    BlasCall call(factorisation_of(n, n));
    if (call) lapack::getri(factors, p.get(), work.get(), lwork);
    return static_cast<bool>(call);
}

#define KN_INSTANTIATE(T)                                                                    \
    template bool factor(const Matrix<T> &a, const Pivots &p, int &zero_pivot);              \
    template bool substitute(const Matrix<T> &factors, const Pivots &p, const Matrix<T> &b); \
    template bool substitute_upper(const Matrix<T> &a, int k, const Matrix<T> &b);           \
    template bool invert(const Matrix<T> &factors, const Pivots &p);
KN_INSTANTIATE(double)
KN_INSTANTIATE(complex)
#undef KN_INSTANTIATE

} // namespace kn
