// The element loops, as templates over the kernels: which loop runs is settled by the operands' planes and
// steps before it starts, and what a kernel can do is read off its functions at compile time.
#ifndef QUORVEX_CORE_OP_LOOPS_H
#define QUORVEX_CORE_OP_LOOPS_H

#include <algorithm>
#include <concepts>

#include "core/kernels/complex_math.h"
#include "core/kernels/dimension_ops.h"
#include "core/kernels/isa.h"
#include "core/op_core.h"

namespace kn::inline KN_ISA {

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

    // One operand. An expanded one is computed once.
    static void unary(const Elements<D> &e) {
        ptrdiff_t n = e.a.step ? e.n : std::min<ptrdiff_t>(e.n, 1);
        one(e.re, e.im, e.a.re, e.a.im, n);
        for (D *plane : {e.re, e.im})
            if (plane && n == 1) std::fill(plane + 1, plane + e.n, plane[0]);
    }

    static Z complex_of_real(D x) {
        if constexpr (requires { K::of_real(x); })
            return K::of_real(x);
        else
            return K::z({x, 0});
    }

    static void one(D *__restrict re, D *__restrict im, const D *__restrict x, const D *__restrict y,
                    ptrdiff_t n) {
        if constexpr (to_complex<K>) {
            auto store = [=](ptrdiff_t k, Z v) {
                re[k] = v.re;
                im[k] = v.im;
            };
            if (y && im)
                for (ptrdiff_t k = 0; k < n; ++k) store(k, K::z({x[k], y[k]}));
            else if (im)
                for (ptrdiff_t k = 0; k < n; ++k) store(k, complex_of_real(x[k]));
            else if (y)
                clear(re, im, n);
            else
                for (ptrdiff_t k = 0; k < n; ++k) re[k] = K::r(x[k]);
            return;
        } else if constexpr (to_real<K>) {
            if (y)
                for (ptrdiff_t k = 0; k < n; ++k) re[k] = K::z({x[k], y[k]});
            else
                for (ptrdiff_t k = 0; k < n; ++k) re[k] = K::r(x[k]);
        } else {
            for (ptrdiff_t k = 0; k < n; ++k) re[k] = K::r(x[k]);
        }
        if (im) std::fill(im, im + n, 0.0);
    }

    // Two operands.
    static void binary(const Elements<D> &e) {
        const Operand<D> &a = e.a, &b = e.b;
        bool complex = a.im || b.im;
        if constexpr (to_complex<K>) {
            if (complex && !e.im)
                clear(e.re, e.im, e.n);
            else if (complex || e.im)
                planes(e);
            else
                real(e.re, a.re, a.step, b.re, b.step, e.n);
            return;
        } else if constexpr (to_real<K>) {
            if (complex)
                measures(e);
            else
                real(e.re, a.re, a.step, b.re, b.step, e.n);
        } else {
            real(e.re, a.re, a.step, b.re, b.step, e.n);
        }
        if (e.im) std::fill(e.im, e.im + e.n, 0.0);
    }

    static void real(D *__restrict out, const D *__restrict a, ptrdiff_t sa, const D *__restrict b,
                     ptrdiff_t sb, ptrdiff_t n) {
        if (sa && sb) {
            for (ptrdiff_t k = 0; k < n; ++k) out[k] = K::r(a[k], b[k]);
        } else if (sa) {
            const D y = *b;
            for (ptrdiff_t k = 0; k < n; ++k) out[k] = K::r(a[k], y);
        } else {
            const D x = *a;
            for (ptrdiff_t k = 0; k < n; ++k) out[k] = K::r(x, b[k]);
        }
    }

    // What a complex loop reads: planes, one plane, one element of either kind.
    struct Planes {
        const D *re, *im;
        Z operator[](ptrdiff_t k) const { return {re[k], im[k]}; }
    };
    struct Plane {
        const D *re;
        D operator[](ptrdiff_t k) const { return re[k]; }
    };
    template <class V> struct Same {
        V v;
        V operator[](ptrdiff_t) const { return v; }
    };
    // Any operand, a missing imaginary plane read as zeros.
    struct Strided {
        const D *re, *im;
        ptrdiff_t step, im_step;
        explicit Strided(const Operand<D> &o)
            : re(o.re), im(o.im ? o.im : &zero), step(o.step), im_step(o.im ? o.step : 0) {}
        Z operator[](ptrdiff_t k) const { return {re[k * step], im[k * im_step]}; }
        static constexpr D zero = 0;
    };

    template <class A, class B>
    static void loop(D *__restrict re, D *__restrict im, const A a, const B b, ptrdiff_t n) {
        for (ptrdiff_t k = 0; k < n; ++k) {
            Z v = K::z(a[k], b[k]);
            re[k] = v.re;
            im[k] = v.im;
        }
    }

    static void planes(const Elements<D> &e) {
        const Operand<D> &a = e.a, &b = e.b;
        if constexpr (requires { K::z(Z(), 0.0); }) {
            auto with = [&](const auto &x, const auto &y) { loop(e.re, e.im, x, y, e.n); };
            auto with_b = [&](const auto &x) {
                if (b.im && b.step)
                    with(x, Planes{b.re, b.im});
                else if (b.im)
                    with(x, Same<Z>{{*b.re, *b.im}});
                else if constexpr (requires { K::z(x[0], 0.0); }) {
                    if (b.step)
                        with(x, Plane{b.re});
                    else
                        with(x, Same<D>{*b.re});
                }
            };
            if (a.im && a.step)
                with_b(Planes{a.re, a.im});
            else if (a.im)
                with_b(Same<Z>{{*a.re, *a.im}});
            else if (!b.im)
                with(Strided(a), Strided(b));
            else if (a.step)
                with_b(Plane{a.re});
            else
                with_b(Same<D>{*a.re});
        } else {
            loop(e.re, e.im, Strided(a), Strided(b), e.n);
        }
    }

    static void measures(const Elements<D> &e) {
        Strided a(e.a), b(e.b);
        D *__restrict re = e.re;
        for (ptrdiff_t k = 0; k < e.n; ++k) re[k] = K::z(a[k], b[k]);
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

    template <class F> static void map(B *__restrict out, const B *__restrict x, ptrdiff_t n, F f) {
        if (n <= 256) {
            for (ptrdiff_t k = 0; k < n; ++k) out[k] = f(x[k]);
            return;
        }
        B table[256];
        for (int v = 0; v < 256; ++v) table[v] = f(static_cast<B>(v));
        for (ptrdiff_t k = 0; k < n; ++k) out[k] = table[x[k]];
    }

    static bool no_values(const Elements<B> &e) {
        bool none = (to_complex<K> || to_real<K>)&&(e.im || e.a.im || e.b.im);
        if (none) clear(e.re, e.im, e.n);
        return none;
    }

    static void unary(const Elements<B> &e) {
        if (no_values(e)) return;
        if (e.a.step)
            map(e.re, e.a.re, e.n, [](B x) { return value(x); });
        else
            std::fill(e.re, e.re + e.n, value(*e.a.re));
        if (e.im) std::fill(e.im, e.im + e.n, B(0));
    }

    static void binary(const Elements<B> &e) {
        if (no_values(e)) return;
        const B *__restrict a = e.a.re, *__restrict b = e.b.re;
        B *__restrict out = e.re;
        if (e.a.step && e.b.step)
            for (ptrdiff_t k = 0; k < e.n; ++k) out[k] = value(a[k], b[k]);
        else if (e.a.step)
            map(out, a, e.n, [y = *b](B x) { return value(x, y); });
        else
            map(out, b, e.n, [x = *a](B y) { return value(x, y); });
        if (e.im) std::fill(e.im, e.im + e.n, B(0));
    }
};

// -- The row of a kernel.

template <class T, template <class> class Family, class K> constexpr Loops<T> loops_for() {
    if constexpr (along_dimension<K>)
        return {nullptr, K::along};
    else if constexpr (unary<K>)
        return {Family<K>::unary, nullptr};
    else
        return {Family<K>::binary, nullptr};
}

} // namespace kn::inline KN_ISA

#endif
