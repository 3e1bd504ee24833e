// The element functions of the operations, one structure for each kernel name of the list of operations:
//
//     r(x), r(x, y)    on real elements
//     z(z), z(z, w)    on complex elements; gives a complex number, or a real one for tests and measures
//     z(z, y), z(x, w) where one side has no imaginary plane, when that is not the same as an imaginary part
//                      of 0
//     of_real(x)       a complex result of a real element, when that is not z of x and an imaginary part of 0
//
//     v(x), v(x, y)    r of a double and of a vector of doubles, where that takes elementary functions, the
//                      only ones here whose results depend on the instruction set
//     w(z), w(z, w)    z, in the same way
//
// A kernel without z looks at the real planes only. An r that is a template computes in bytes by itself (and
// wraps); every other one sees the value of a byte as a double.
#ifndef QUORVEX_KERNELS_LOOPS_ELEMENT_KERNELS_H
#define QUORVEX_KERNELS_LOOPS_ELEMENT_KERNELS_H

#include "kernels/loops/complex_math.h"
#include "kernels/loops/elementary.h"
#include "quorvex/operations.h"
#include "special/scalar_kernels.h"
#include "special/special_functions.h"

namespace kn::inline KN_ISA::kernel {

using byte = unsigned char;

// NaN is true.
template <class T> bool truth(T x) { return !(x == 0); }
inline bool truth(Z z) { return truth(z.re) || truth(z.im); }
template <class T> T flag(bool on) { return on ? T(1) : T(0); }

// -- Arithmetic.

struct Plus {
    template <class T> static T r(T x, T y) { return static_cast<T>(x + y); }
    static Z z(Z a, Z b) { return a + b; }
    static Z z(Z a, double y) { return {a.re + y, a.im}; }
    static Z z(double x, Z b) { return {x + b.re, b.im}; }
};
struct Minus {
    template <class T> static T r(T x, T y) { return static_cast<T>(x - y); }
    static Z z(Z a, Z b) { return a - b; }
    static Z z(Z a, double y) { return {a.re - y, a.im}; }
    static Z z(double x, Z b) { return {x - b.re, -b.im}; }
};
struct Times {
    template <class T> static T r(T x, T y) { return static_cast<T>(x * y); }
    static Z z(Z a, Z b) { return one_nan(a * b); }
    static Z z(Z a, double y) { return y * a; }
    static Z z(double x, Z b) { return x * b; }
};
struct Rdivide {
    static double r(double x, double y) { return x / y; }
    // By zero: 255, and 0 for 0/0.
    static byte r(byte x, byte y) { return static_cast<byte>(y ? x / y : x ? 255 : 0); }
    static Z z(Z a, Z b) { return one_nan(a / b); }
    static Z z(Z a, double y) { return a / y; }
    static Z z(double x, Z b) { return one_nan(Z{x, 0} / b); }
};
struct Ldivide {
    static auto r(auto x, auto y) { return Rdivide::r(y, x); }
    static Z z(Z a, Z b) { return Rdivide::z(b, a); }
    static Z z(Z a, double y) { return Rdivide::z(y, a); }
    static Z z(double x, Z b) { return Rdivide::z(b, x); }
};
struct Power {
    static constexpr double square = 2; // the exponent that makes a product of it
    template <class T> static T v(T x, T y) { return math::pow(x, y); }
    template <class T> static Complex<T> w(Complex<T> a, Complex<T> b) { return complex_pow(a, b); }
    static double r(double x, double y) { return v(x, y); }
    static Z z(Z a, Z b) { return w(a, b); }
};
struct Pow2_1 {
    template <class T> static T v(T x) { return math::pow(math::same<T>(2), x); }
    template <class T> static Complex<T> w(Complex<T> z) { return complex_pow(number<T>(2), z); }
    static double r(double x) { return v(x); }
    static Z z(Z z) { return w(z); }
};
struct Uminus {
    template <class T> static T r(T x) { return static_cast<T>(-x); }
    static Z z(Z z) { return {-z.re, -z.im}; }
};
struct Uplus {
    template <class T> static T r(T x) { return x; }
    static Z z(Z z) { return z; }
};

// -- Comparisons and logic. Order is that of the real parts.

#define KN_ORDER(Name, op)                                                  \
    struct Name {                                                           \
        template <class T> static T r(T x, T y) { return flag<T>(x op y); } \
        static double z(Z a, Z b) { return flag<double>(a.re op b.re); }    \
    };
KN_ORDER(Lt, <)
KN_ORDER(Gt, >)
KN_ORDER(Le, <=)
KN_ORDER(Ge, >=)
#undef KN_ORDER

struct Eq {
    template <class T> static T r(T x, T y) { return flag<T>(x == y); }
    static double z(Z a, Z b) { return flag<double>(a.re == b.re && a.im == b.im); }
};
struct Ne {
    template <class T> static T r(T x, T y) { return flag<T>(x != y); }
    static double z(Z a, Z b) { return flag<double>(a.re != b.re || a.im != b.im); }
};

#define KN_LOGIC(Name, op)                                                                \
    struct Name {                                                                         \
        template <class T> static T r(T x, T y) { return flag<T>(truth(x) op truth(y)); } \
        static double z(Z a, Z b) { return flag<double>(truth(a) op truth(b)); }          \
    };
KN_LOGIC(And, &&)
KN_LOGIC(Or, ||)
KN_LOGIC(Xor, !=)
#undef KN_LOGIC

struct Not {
    template <class T> static T r(T x) { return flag<T>(!truth(x)); }
    static double z(Z z) { return flag<double>(!truth(z)); }
};
struct Isfinite {
    static double r(double x) { return flag<double>(math::abs(x) < raw_inf); }
    static double z(Z z) { return r(z.re) * r(z.im); }
};
struct Isinf {
    static double r(double x) { return flag<double>(math::abs(x) == raw_inf); }
    static double z(Z z) { return flag<double>(math::abs(z.re) == raw_inf || math::abs(z.im) == raw_inf); }
};
struct Isnan {
    static double r(double x) { return flag<double>(x != x); }
    static double z(Z z) { return flag<double>(z.re != z.re || z.im != z.im); }
};

// -- Parts, size, rounding.

struct Abs {
    static double r(double x) { return math::abs(x); }
    static double z(Z z) { return modulus(z); }
};
struct Angle {
    static double r(double x) { return angle_real(x); }
    template <class T> static T w(Complex<T> z) { return angle(z); }
    static double z(Z z) { return w(z); }
};
struct Imag {
    static double r(double) { return 0; }
    static double z(Z z) { return z.im; }
};
struct Conj {
    template <class T> static T r(T x) { return x; }
    static Z z(Z z) { return {z.re, -z.im}; }
};
struct Sign {
    static double r(double x) { return sign_real(x); }
    static Z z(Z z) {
        if (z.im == 0) return {sign_real(z.re), 0};
        return z / modulus(z);
    }
};

// A real function on each plane.
#define KN_PLANEWISE(Name, f)                          \
    struct Name {                                      \
        static double r(double x) { return f(x); }     \
        static Z z(Z z) { return {f(z.re), f(z.im)}; } \
    };
KN_PLANEWISE(Ceil, std::ceil)
KN_PLANEWISE(Floor, std::floor)
KN_PLANEWISE(Fix, fix_real)
KN_PLANEWISE(Round, round_half_away)
#undef KN_PLANEWISE

// The larger and smaller modulus. Equal ones give a. An unordered pair gives a in max, b in min.
struct Max2 {
    static double r(double x, double y) { return max2_real(y, x); }
    static Z z(Z a, Z b) { return squared_modulus(b) > squared_modulus(a) ? b : a; }
};
struct Min2 {
    static double r(double x, double y) { return min2_real(y, x); }
    static Z z(Z a, Z b) { return squared_modulus(b) >= squared_modulus(a) ? a : b; }
};

// A real operand has its own way into the complex plane, without the modulus.
struct Sqrt {
    static double r(double x) { return std::sqrt(x); }
    static Z z(Z z) { return one_nan(complex_sqrt(z)); }
    static Z of_real(double x) { return x < 0 ? Z{0, std::sqrt(-x)} : Z{std::sqrt(x), 0}; }
};

// -- Elementary functions: the real one and the complex one.

#define KN_FUNCTION(Name, real, complex)                                         \
    struct Name {                                                                \
        template <class T> static T v(T x) { return real; }                      \
        template <class T> static Complex<T> w(Complex<T> z) { return complex; } \
        static double r(double x) { return v(x); }                               \
        static Z z(Z z) { return w(z); }                                         \
    };
KN_FUNCTION(Exp, math::exp(x), complex_exp(z))
KN_FUNCTION(Log, math::log(x), complex_log(z))
KN_FUNCTION(Log2, math::log2(x), complex_log(z) / raw_ln2)
KN_FUNCTION(Log10, math::log10(x), complex_log(z) / raw_ln10)
KN_FUNCTION(Sin, math::sin_of_reduced(x), complex_sin(z))
KN_FUNCTION(Cos, math::cos_of_reduced(x), complex_cos(z))
KN_FUNCTION(Tan, math::tan(math::reduced(x)), complex_tan(z))
KN_FUNCTION(Sinh, math::sinh(x), complex_sinh(z))
KN_FUNCTION(Cosh, math::cosh(x), complex_cosh(z))
KN_FUNCTION(Tanh, math::tanh(x), complex_tanh(z))
KN_FUNCTION(Asin, math::asin(x), complex_asin(z))
KN_FUNCTION(Acos, math::acos(x), complex_acos(z))
KN_FUNCTION(Atan, math::atan(x), complex_atan(z))
KN_FUNCTION(Asinh, math::asinh(x), complex_asinh(z))
KN_FUNCTION(Acosh, math::acosh(x), complex_acosh(z))
KN_FUNCTION(Atanh, math::atanh(x), complex_atanh(z))
KN_FUNCTION(Sinc, math::sinc(x), complex_sinc(z))
// The inverse functions of a reciprocal.
KN_FUNCTION(Acsc, Asin::v(1.0 / x), Asin::w(reciprocal(z)))
KN_FUNCTION(Asec, Acos::v(1.0 / x), Acos::w(reciprocal(z)))
KN_FUNCTION(Acot, Atan::v(1.0 / x), Atan::w(reciprocal(z)))
KN_FUNCTION(Acsch, Asinh::v(1.0 / x), Asinh::w(reciprocal(z)))
KN_FUNCTION(Asech, Acosh::v(1.0 / x), Acosh::w(reciprocal(z)))
KN_FUNCTION(Acoth, Atanh::v(1.0 / x), Atanh::w(reciprocal(z)))
// The reciprocals; large real angles are not reduced.
#define KN_RECIPROCAL(Name, f, Of)      \
    KN_FUNCTION(Name, 1.0 / math::f(x), \
                by_part(                \
                    z, [](T x) { return v(x); }, [](Complex<T> y) { return reciprocal(Of::w(y)); }))
KN_RECIPROCAL(Csc, sin, Sin)
KN_RECIPROCAL(Sec, cos, Cos)
KN_RECIPROCAL(Cot, tan, Tan)
KN_RECIPROCAL(Csch, sinh, Sinh)
KN_RECIPROCAL(Sech, cosh, Cosh)
KN_RECIPROCAL(Coth, tanh, Tanh)
#undef KN_RECIPROCAL
#undef KN_FUNCTION

// Whether the loops of a kernel for real or for complex elements run over vectors.
template <class K>
concept real_vectors = requires {
    K::v(0.0);
}
|| requires { K::v(0.0, 0.0); };
template <class K>
concept complex_vectors = requires {
    K::w(Z());
}
|| requires { K::w(Z(), Z()); };

// -- Functions of real numbers only. cost: as in Loops.

struct Atan2 {
    template <class T> static T v(T y, T x) { return math::atan2(y, x); }
    static double r(double y, double x) { return v(y, x); }
};

#define KN_REAL(Name, quarters, f)                 \
    struct Name {                                  \
        static constexpr int cost = quarters;      \
        static double r(double x) { return f(x); } \
    };
KN_REAL(Erf, 16, erf_real)
KN_REAL(Erfc, 16, erfc_real)
KN_REAL(Erfcx, 50, erfcx_real)
KN_REAL(Erfinv, 50, erfinv_real)
KN_REAL(Expint, 30, expint_real)
KN_REAL(Gamma, 100, gamma_real)
KN_REAL(Gammaln, 40, gammaln_real)
#undef KN_REAL

#define KN_REAL(Name, quarters, ...)                                \
    struct Name {                                                   \
        static constexpr int cost = quarters;                       \
        static double r(double x, double y) { return __VA_ARGS__; } \
    };
KN_REAL(Beta, 1000, beta_real(x, y))
KN_REAL(Betaln, 1000, betaln_real(x, y))
KN_REAL(Gammainc, 1000, gammainc_real(x, y))
KN_REAL(Rem, 16, rem_real(x, y))
KN_REAL(Mod, 16, mod_real(x, y))
KN_REAL(Pow2_2, 20, pow2_2(x, y))
KN_REAL(Bitand, 20, bit_logic(x, y, Bits::and_))
KN_REAL(Bitor, 20, bit_logic(x, y, Bits::or_))
KN_REAL(Bitxor, 20, bit_logic(x, y, Bits::xor_))
KN_REAL(Bitcmp, 70, bit_complement(x, y))
KN_REAL(Bitget, 70, bit_get(x, y))
KN_REAL(Bitset, 70, bit_set(x, y))
KN_REAL(Bitreset, 70, bit_reset(x, y))
KN_REAL(Bitshift, 20, bit_shift(x, y))
#undef KN_REAL

} // namespace kn::inline KN_ISA::kernel

#endif
