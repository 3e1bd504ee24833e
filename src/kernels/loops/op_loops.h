// The element loops, as templates over the kernels: which loop runs is settled by the operands' planes and
// steps before it starts, and what a kernel can do is read off its functions at compile time. The result may
// be an operand itself (kernels/op_core.h).
#ifndef QUORVEX_KERNELS_LOOPS_OP_LOOPS_H
#define QUORVEX_KERNELS_LOOPS_OP_LOOPS_H

#include <algorithm>
#include <concepts>

#include "base/instruction_set.h"
#include "kernels/loops/complex_math.h"
#include "kernels/loops/dimension_ops.h"
#include "kernels/loops/element_kernels.h"
#include "kernels/op_core.h"

namespace kn::inline KN_ISA {

using math::one_nan;

template <class K>
concept along_dimension = requires(const Slices<double> &s) {
    K::along(s);
};
template <class K>
concept unary = requires {
    K::r(0.0);
};

// z gives a complex result, or a real one.
template <class K>
concept to_complex = requires {
    { K::z(Z()) } -> std::same_as<Z>;
}
|| requires {
    { K::z(Z(), Z()) } -> std::same_as<Z>;
};
template <class K>
concept to_real = requires {
    { K::z(Z()) } -> std::same_as<double>;
}
|| requires {
    { K::z(Z(), Z()) } -> std::same_as<double>;
};

// -- Doubles.

template <class K> struct DoubleLoops {
    using D = double;

    // What a loop reads: a plane or two, one element of either kind; at k, or at as many elements as a vector
    // has lanes.
    struct Row {
        const D *re;
        auto operator[](auto k) const { return math::load(re, k); }
    };
    struct Rows {
        const D *re, *im;
        auto operator[](auto k) const {
            return Complex<decltype(math::load(re, k))>{math::load(re, k), math::load(im, k)};
        }
    };
    template <class X> struct Same {
        X x;
        auto operator[](auto k) const {
            using T = decltype(math::load(&zero, k));
            if constexpr (std::same_as<X, D>)
                return math::same<T>(x);
            else
                return number<T>(x.re, x.im);
        }
    };
    // Any operand, a missing imaginary plane read as zeros.
    struct Strided {
        Z first;
        const D *re, *im;
        explicit Strided(const Operand<D> &o)
            : first{*o.re, o.im ? *o.im : 0}, re(o.step ? o.re : nullptr), im(o.step ? o.im : nullptr) {}
        auto operator[](auto k) const {
            using T = decltype(math::load(&zero, k));
            return Complex<T>{re ? math::load(re, k) : math::same<T>(first.re),
                              im ? math::load(im, k) : math::same<T>(first.im)};
        }
    };
    static constexpr D zero = 0;

    // re[k] = f(x[k]...), or both parts of it.
    static void put(D *re, D *, auto k, D x) { re[k] = x; }
    static void put(D *re, D *im, auto k, Z z) {
        re[k] = z.re;
        im[k] = z.im;
    }
    template <class F, class... X> [[gnu::flatten]] static void run(D *re, D *im, ptrdiff_t n, F f, X... x) {
        KN_INDEPENDENT
        for (ptrdiff_t k = 0; k < n; ++k) put(re, im, k, f(x[k]...));
    }
#ifdef KN_VECTOR_BYTES
    static void put(D *re, D *, auto k, math::V x) { math::store(re, k, x); }
    static void put(D *re, D *im, auto k, Complex<math::V> z) {
        math::store(re, k, z.re);
        math::store(im, k, z.im);
    }
    template <class F, class... X>
    [[gnu::flatten]] static void run_vectors(D *re, D *im, ptrdiff_t n, F f, X... x) {
        math::for_lanes(n, [=](auto k) { put(re, im, k, f(x[k]...)); });
    }
#else
    template <class F, class... X> static void run_vectors(D *re, D *im, ptrdiff_t n, F f, X... x) {
        run(re, im, n, f, x...);
    }
#endif

    // Real elements, Row or Same<D>, and complex ones.
    template <class... X> static void real(D *re, ptrdiff_t n, X... x) {
        if constexpr (kernel::real_vectors<K>)
            run_vectors(
                re, nullptr, n, [](auto... v) { return one_nan(K::v(v...)); }, x...);
        else
            run(
                re, nullptr, n, [](auto... v) { return K::r(v...); }, x...);
    }
    template <class... X> static void complex(D *re, D *im, ptrdiff_t n, X... x) {
        if constexpr (kernel::complex_vectors<K>)
            run_vectors(
                re, im, n, [](auto... z) { return one_nan(K::w(z...)); }, x...);
        else
            run(
                re, im, n, [](auto... z) { return K::z(z...); }, x...);
    }

    // One operand. An expanded one is computed once.
    static void unary(const Elements<D> &e) {
        if (e.n < 1) return;
        ptrdiff_t n = e.a.step ? e.n : 1;
        one(e.re, e.im, e.a.re, e.a.im, n);
        for (D *plane : {e.re, e.im})
            if (plane && n == 1) std::fill(plane + 1, plane + e.n, plane[0]);
    }

    static void one(D *re, D *im, const D *x, const D *y, ptrdiff_t n) {
        if constexpr (to_complex<K>) {
            if (y && im)
                complex(re, im, n, Rows{x, y});
            else if (y)
                clear(re, im, n);
            else if (!im)
                real(re, n, Row{x});
            else if constexpr (requires { K::of_real(0.0); })
                run(
                    re, im, n, [](D v) { return K::of_real(v); }, Row{x});
            else
                complex(re, im, n, Strided({x, nullptr, 1}));
            return;
        }
        if constexpr (to_real<K>) {
            if (y)
                complex(re, nullptr, n, Rows{x, y});
            else
                real(re, n, Row{x});
        } else {
            real(re, n, Row{x});
        }
        if (im) std::fill(im, im + n, 0.0);
    }

    // Two operands.
    static void binary(const Elements<D> &e) {
        if (e.n < 1) return;
        const Operand<D> &a = e.a, &b = e.b;
        bool planes_in = a.im || b.im;
        if constexpr (to_complex<K>) {
            if (planes_in && !e.im)
                clear(e.re, e.im, e.n);
            else if (planes_in || e.im)
                planes(e);
            else
                real(e.re, a.re, a.step, b.re, b.step, e.n);
            return;
        } else if constexpr (to_real<K>) {
            if (planes_in)
                complex(e.re, nullptr, e.n, Strided(a), Strided(b));
            else
                real(e.re, a.re, a.step, b.re, b.step, e.n);
        } else {
            real(e.re, a.re, a.step, b.re, b.step, e.n);
        }
        if (e.im) std::fill(e.im, e.im + e.n, 0.0);
    }

    static void real(D *out, const D *a, ptrdiff_t sa, const D *b, ptrdiff_t sb, ptrdiff_t n) {
        if (sa && sb) return real(out, n, Row{a}, Row{b});
        if (!sa) return real(out, n, Same<D>{*a}, Row{b});
        if constexpr (requires { K::square; })
            if (*b == K::square)
                return run(
                    out, nullptr, n, [](D x) { return x * x; }, Row{a});
        real(out, n, Row{a}, Same<D>{*b});
    }

    static void planes(const Elements<D> &e) {
        const Operand<D> &a = e.a, &b = e.b;
        if constexpr (requires { K::z(Z(), 0.0); }) {
            auto with = [&](const auto &x, const auto &y) { complex(e.re, e.im, e.n, x, y); };
            auto with_b = [&](const auto &x) {
                if (b.im && b.step)
                    with(x, Rows{b.re, b.im});
                else if (b.im)
                    with(x, Same<Z>{{*b.re, *b.im}});
                else if constexpr (requires { K::z(x[ptrdiff_t(0)], 0.0); }) {
                    if (b.step)
                        with(x, Row{b.re});
                    else
                        with(x, Same<D>{*b.re});
                }
            };
            if (a.im && a.step)
                with_b(Rows{a.re, a.im});
            else if (a.im)
                with_b(Same<Z>{{*a.re, *a.im}});
            else if (!b.im)
                with(Strided(a), Strided(b));
            else if (a.step)
                with_b(Row{a.re});
            else
                with_b(Same<D>{*a.re});
        } else {
            complex(e.re, e.im, e.n, Strided(a), Strided(b));
        }
    }
};

// -- Bytes. There is no complex arithmetic of bytes: it gives zeros. Functions that do not compute in bytes
// themselves are looked up in a table of their 256 values when that is shorter than the array.

template <class K> struct ByteLoops {
    using B = unsigned char;

    static B as_byte(B x) { return x; }
    static B as_byte(double x) { return to_byte(x); }
    static B value(B x) { return as_byte(K::r(x)); }
    static B value(B x, B y) { return as_byte(K::r(x, y)); }

    template <class F> static void map(B *out, const B *x, ptrdiff_t n, F f) {
        if (n <= 256) {
            KN_INDEPENDENT
            for (ptrdiff_t k = 0; k < n; ++k) out[k] = f(x[k]);
            return;
        }
        B table[256];
        for (int v = 0; v < 256; ++v) table[v] = f(static_cast<B>(v));
        KN_INDEPENDENT
        for (ptrdiff_t k = 0; k < n; ++k) out[k] = table[x[k]];
    }

    static bool no_values(const Elements<B> &e) {
        bool none = (to_complex<K> || to_real<K>)&&(e.im || e.a.im || e.b.im);
        if (none) clear(e.re, e.im, e.n);
        return none;
    }

    static void unary(const Elements<B> &e) {
        if (e.n < 1 || no_values(e)) return;
        if (e.a.step)
            map(e.re, e.a.re, e.n, [](B x) { return value(x); });
        else
            std::fill(e.re, e.re + e.n, value(*e.a.re));
        if (e.im) std::fill(e.im, e.im + e.n, B(0));
    }

    static void binary(const Elements<B> &e) {
        if (e.n < 1 || no_values(e)) return;
        const B *a = e.a.re, *b = e.b.re;
        B *out = e.re;
        if (e.a.step && e.b.step) {
            KN_INDEPENDENT
            for (ptrdiff_t k = 0; k < e.n; ++k) out[k] = value(a[k], b[k]);
        } else if (e.a.step) {
            map(out, a, e.n, [y = *b](B x) { return value(x, y); });
        } else {
            map(out, b, e.n, [x = *a](B y) { return value(x, y); });
        }
        if (e.im) std::fill(e.im, e.im + e.n, B(0));
    }
};

// -- The row of a kernel.

template <class K> constexpr int real_cost() {
    if constexpr (requires { K::cost; })
        return K::cost;
    else
        return kernel::real_vectors<K> ? 8 : 1;
}

template <class T, template <class> class Family, class K> constexpr Loops<T> loops_for() {
    constexpr int real = sizeof(T) == 1 ? 1 : real_cost<K>();
    constexpr int complex = sizeof(T) == 1 ? 1 : kernel::complex_vectors<K> ? 40 : std::max(real, 2);
    if constexpr (along_dimension<K>)
        return {nullptr, K::along, {}};
    else if constexpr (unary<K>)
        return {Family<K>::unary, nullptr, {real, complex}};
    else
        return {Family<K>::binary, nullptr, {real, complex}};
}

} // namespace kn::inline KN_ISA

#endif
