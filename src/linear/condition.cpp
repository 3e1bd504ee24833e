// The estimate of the reciprocal condition number.
//
// With a = l u (rows interchanged), a' y = e and a z = y are solved for a right-hand side e of elements of
// modulus 1, chosen during the first substitution so that y grows. Then |z| / |y| is close to |inv(a)|, in
// the 1-norm, and the estimate is 1 / (|a| |inv(a)|). Vectors are scaled down before they would grow past the
// pivot, so nothing overflows; `ynorm` includes the scaling.
#include <algorithm>
#include <cmath>

#include "linear/blocked_lu.h"
#include "linear/lapack.h"
#include "linear/lu.h"
#include "linear/solvers.h"
#include "quorvex/solving.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

double conjugate(double x) { return x; }
complex conjugate(const complex &x) { return std::conj(x); }

// |x| in the direction of y, which isn't zero.
double toward(double x, double y) { return std::copysign(x, y); }
complex toward(const complex &x, const complex &y) { return modulus(x) * (y / modulus(y)); }

template <class T> class Estimate {
  public:
    Estimate(const Matrix<T> &packed, const Pivots &p, T *z) : f_(packed), p_(p), n_(f_.rows()), z_(z) {}

    double inverse_norm_reciprocal() {
        std::fill_n(z_, n_, T(0));
        solve_upper_transposed();
        solve_lower_transposed();
        norm_ = 1;
        solve_lower();
        solve_upper();
        return norm_;
    }

  private:
    void scale(double s) {
        for (int i = 0; i < n_; ++i) z_[i] *= s;
        norm_ *= s;
    }
    void normalise() {
        double sum = 0;
        for (int i = 0; i < n_; ++i) sum += modulus(z_[i]);
        scale(1 / sum);
    }
    void interchange(int k) { std::swap(z_[k], z_[p_[k] - 1]); }
    void keep_below_one(int k) {
        if (modulus(z_[k]) > 1) scale(1 / modulus(z_[k]));
    }

    // u' w = e. Of the two candidates for each element of e chooses the one that makes the rest grow more.
    void solve_upper_transposed() {
        T e = 1;
        for (int k = 0; k < n_; ++k) {
            const T pivot = conjugate(f_(k, k));
            if (modulus(z_[k]) != 0) e = toward(e, -z_[k]);
            if (modulus(e - z_[k]) > modulus(pivot)) {
                double s = modulus(pivot) / modulus(e - z_[k]);
                scale(s);
                e *= s;
            }
            T w = e - z_[k], other = -e - z_[k];
            double growth = modulus(w), other_growth = modulus(other);
            if (modulus(pivot) != 0) {
                w /= pivot;
                other /= pivot;
            } else {
                w = other = 1;
            }
            for (int j = k + 1; j < n_; ++j) {
                T u = conjugate(f_(k, j));
                other_growth += modulus(z_[j] + other * u);
                z_[j] += w * u;
                growth += modulus(z_[j]);
            }
            if (growth < other_growth) {
                T change = other - w;
                w = other;
                for (int j = k + 1; j < n_; ++j) z_[j] += change * conjugate(f_(k, j));
            }
            z_[k] = w;
        }
        normalise();
    }

    // l' y = w
    void solve_lower_transposed() {
        for (int k = n_ - 1; k >= 0; --k) {
            const T *multipliers = f_.column(k);
            for (int i = k + 1; i < n_; ++i) z_[k] += conjugate(multipliers[i]) * z_[i];
            keep_below_one(k);
            interchange(k);
        }
        normalise();
    }

    // l v = y
    void solve_lower() {
        for (int k = 0; k < n_; ++k) {
            interchange(k);
            const T *multipliers = f_.column(k), t = z_[k];
            for (int i = k + 1; i < n_; ++i) z_[i] += t * multipliers[i];
            keep_below_one(k);
        }
        normalise();
    }

    // u z = v
    void solve_upper() {
        for (int k = n_ - 1; k >= 0; --k) {
            const T *u = f_.column(k), pivot = u[k];
            if (modulus(z_[k]) > modulus(pivot)) scale(modulus(pivot) / modulus(z_[k]));
            if (modulus(pivot) != 0)
                z_[k] /= pivot;
            else
                z_[k] = 1;
            for (int i = 0; i < k; ++i) z_[i] -= z_[k] * u[i];
        }
        normalise();
    }

    const Matrix<T> &f_;
    const Pivots &p_;
    int n_;
    T *z_;
    double norm_ = 1;
};

template <class T> Mm reciprocal_condition(const Mm &a) {
    Matrix<T> f(a);
    if (!f) return x_M;
    const int n = f.rows();
    double norm = 0;
    for (int j = 0; j < n; ++j) {
        double sum = 0;
        for (int i = 0; i < n; ++i) sum += modulus(f(i, j));
        norm = std::max(norm, sum);
    }
    Pivots p(n);
    Scratch<T> z(n);
    if (!p || !z || !factor(f, p)) return x_M;
    pack_multipliers(f, p);
    double reciprocal = Estimate<T>(f, p, z.get()).inverse_norm_reciprocal();
    return norm != 0 ? reciprocal / norm : 0.0;
}

} // namespace
} // namespace kn

Mm rcond(const Mm &a) {
    a.warn_uninit();
    Mm x;
    if (error_square(a, "rcond") || !kn::doubles_of(a, "rcond", x)) return x_M;
    if (x.size() == 0) return nop_M;
    return x.isc() ? kn::reciprocal_condition<kn::complex>(x) : kn::reciprocal_condition<double>(x);
}
