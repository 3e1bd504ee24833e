// Real and complex elements under one name, for kernels that multiply and add: a product of a real and a
// complex number forms two products, not four.
#ifndef QUORVEX_VALUE_PLANES_AS_NUMBERS_H
#define QUORVEX_VALUE_PLANES_AS_NUMBERS_H

#include "base/number_tests.h"
#include "quorvex/values.h"

namespace kn {

struct Complex {
    double re = 0, im = 0;
    Complex &operator+=(Complex z) {
        re += z.re;
        im += z.im;
        return *this;
    }
};
inline Complex operator*(Complex x, double y) { return {x.re * y, x.im * y}; }
inline Complex operator*(double x, Complex y) { return {x * y.re, x * y.im}; }
inline Complex operator*(Complex x, Complex y) {
    return {x.re * y.re - x.im * y.im, x.re * y.im + x.im * y.re};
}
template <class A, class B> using ProductOf = decltype(A() * B());

inline bool is_finite(Complex z) { return is_finite(z.re) && is_finite(z.im); }
inline bool is_nonzero(Complex z) { return is_nonzero(z.re) || is_nonzero(z.im); }

// The planes of a value as an array of numbers.
template <class T> class PlanesOf;
template <> class PlanesOf<double> {
  public:
    explicit PlanesOf(const Mm &m) : re_(m.addr()) {}
    double operator[](ptrdiff_t k) const { return re_[k]; }
    void set(ptrdiff_t k, double x) const { re_[k] = x; }
    void add(ptrdiff_t k, double x) const { re_[k] += x; }

  private:
    double *re_;
};
template <> class PlanesOf<Complex> {
  public:
    explicit PlanesOf(const Mm &m) : re_(m.addr()), im_(m.addi()) {}
    Complex operator[](ptrdiff_t k) const { return {re_[k], im_[k]}; }
    void set(ptrdiff_t k, Complex z) const {
        re_[k] = z.re;
        im_[k] = z.im;
    }
    void add(ptrdiff_t k, Complex z) const {
        re_[k] += z.re;
        im_[k] += z.im;
    }

  private:
    double *re_, *im_;
};

// f(a, b, A(), B()) with the kinds of numbers in a and b.
template <class F> auto by_planes(const Mm &a, const Mm &b, F f) {
    if (a.isc()) return b.isc() ? f(a, b, Complex(), Complex()) : f(a, b, Complex(), double());
    return b.isc() ? f(a, b, double(), Complex()) : f(a, b, double(), double());
}

} // namespace kn

#endif
