// The element functions of the operations, one structure for each kernel name of the list of operations:
//
//     r(x), r(x, y)    on real elements
//     z(z), z(z, w)    on complex elements; gives a complex number, or a real one for tests and measures
//     z(z, y), z(x, w) where one side has no imaginary plane, when that is not the same as an imaginary part
//                      of 0
//     of_real(x)       a complex result of a real element, when that is not z of x and an imaginary part of 0
//
// A kernel without z looks at the real planes only. An r that is a template computes in bytes by itself (and
// wraps); every other one sees the value of a byte as a double.
#ifndef QUORVEX_CORE_ELEMENT_KERNELS_H
#define QUORVEX_CORE_ELEMENT_KERNELS_H

#include "core/kernels/complex_math.h"
#include "core/scalar_kernels.h"
#include "core/special_functions.h"
#include "quorvex/operations.h"

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
    static Z z(Z a, Z b) { return a * b; }
    static Z z(Z a, double y) { return y * a; }
    static Z z(double x, Z b) { return x * b; }
};
struct Rdivide {
    static double r(double x, double y) { return x / y; }
    // By zero: 255, and 0 for 0/0.
    static byte r(byte x, byte y) { return static_cast<byte>(y ? x / y : x ? 255 : 0); }
    static Z z(Z a, Z b) { return a / b; }
    static Z z(Z a, double y) { return a / y; }
    static Z z(double x, Z b) { return Z{x, 0} / b; }
};
struct Ldivide {
    static auto r(auto x, auto y) { return Rdivide::r(y, x); }
    static Z z(Z a, Z b) { return Rdivide::z(b, a); }
    static Z z(Z a, double y) { return Rdivide::z(y, a); }
    static Z z(double x, Z b) { return Rdivide::z(b, x); }
};
struct Power {
    static double r(double x, double y) { return real_pow(x, y); }
    static Z z(Z a, Z b) { return complex_pow(a, b); }
};
struct Pow2_1 {
    static double r(double x) { return real_pow(2, x); }
    static Z z(Z z) { return complex_pow({2, 0}, z); }
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
    static double r(double x) { return flag<double>(std::fabs(x) < raw_inf); }
    static double z(Z z) { return r(z.re) * r(z.im); }
};
struct Isinf {
    static double r(double x) { return flag<double>(std::fabs(x) == raw_inf); }
    static double z(Z z) { return flag<double>(std::fabs(z.re) == raw_inf || std::fabs(z.im) == raw_inf); }
};
struct Isnan {
    static double r(double x) { return flag<double>(x != x); }
    static double z(Z z) { return flag<double>(z.re != z.re || z.im != z.im); }
};

// -- Parts, size, rounding.

struct Abs {
    static double r(double x) { return std::fabs(x); }
    static double z(Z z) { return modulus(z); }
};
struct Angle {
    static double r(double x) { return angle_real(x); }
    static double z(Z z) { return angle(z); }
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
    static Z z(Z z) { return complex_sqrt(z); }
    static Z of_real(double x) { return x < 0 ? Z{0, std::sqrt(-x)} : Z{std::sqrt(x), 0}; }
};

// -- Elementary functions: the real one and the complex one.

#define KN_FUNCTION(Name, real, complex)           \
    struct Name {                                  \
        static double r(double x) { return real; } \
        static Z z(Z z) { return complex; }        \
    };
KN_FUNCTION(Exp, std::exp(x), complex_exp(z))
KN_FUNCTION(Log, std::log(x), complex_log(z))
KN_FUNCTION(Log2, std::log(x) / raw_ln2, complex_log(z) / raw_ln2)
KN_FUNCTION(Log10, std::log(x) / raw_ln10, complex_log(z) / raw_ln10)
KN_FUNCTION(Sin, sin_real(x), complex_sin(z))
KN_FUNCTION(Cos, cos_real(x), complex_cos(z))
KN_FUNCTION(Tan, tan_real(x), complex_tan(z))
KN_FUNCTION(Sinh, std::sinh(x), complex_sinh(z))
KN_FUNCTION(Cosh, std::cosh(x), complex_cosh(z))
KN_FUNCTION(Tanh, std::tanh(x), complex_tanh(z))
KN_FUNCTION(Asin, std::asin(x), complex_asin(z))
KN_FUNCTION(Acos, std::acos(x), complex_acos(z))
KN_FUNCTION(Atan, std::atan(x), complex_atan(z))
KN_FUNCTION(Asinh, asinh_real(x), complex_asinh(z))
KN_FUNCTION(Acosh, acosh_real(x), complex_acosh(z))
KN_FUNCTION(Atanh, atanh_real(x), complex_atanh(z))
// The inverse functions of a reciprocal.
KN_FUNCTION(Acsc, Asin::r(1 / x), Asin::z(reciprocal(z)))
KN_FUNCTION(Asec, Acos::r(1 / x), Acos::z(reciprocal(z)))
KN_FUNCTION(Acot, Atan::r(1 / x), Atan::z(reciprocal(z)))
KN_FUNCTION(Acsch, Asinh::r(1 / x), Asinh::z(reciprocal(z)))
KN_FUNCTION(Asech, Acosh::r(1 / x), Acosh::z(reciprocal(z)))
KN_FUNCTION(Acoth, Atanh::r(1 / x), Atanh::z(reciprocal(z)))
#undef KN_FUNCTION

// The reciprocals: of the run-time library's function for real numbers, large angles not reduced.
#define KN_RECIPROCAL(Name, real, Of)                     \
    struct Name {                                         \
        static double r(double x) { return 1 / real(x); } \
        static Z z(Z z) {                                 \
            if (z.im == 0) return {r(z.re), 0};           \
            return reciprocal(Of::z(z));                  \
        }                                                 \
    };
KN_RECIPROCAL(Csc, std::sin, Sin)
KN_RECIPROCAL(Sec, std::cos, Cos)
KN_RECIPROCAL(Cot, std::tan, Tan)
KN_RECIPROCAL(Csch, std::sinh, Sinh)
KN_RECIPROCAL(Sech, std::cosh, Cosh)
KN_RECIPROCAL(Coth, std::tanh, Tanh)
#undef KN_RECIPROCAL

struct Sinc {
    static double r(double x) {
        if (x == 0) return 1;
        return std::sin(raw_pi * x) / (raw_pi * x);
    }
    static Z z(Z z) {
        if (z.re == 0 && z.im == 0) return {1, 0};
        Z pz = raw_pi * z;
        return complex_sin(pz) / pz;
    }
};

// -- Functions of real numbers only.

#define KN_REAL(Name, f)                           \
    struct Name {                                  \
        static double r(double x) { return f(x); } \
    };
KN_REAL(Erf, erf_real)
KN_REAL(Erfc, erfc_real)
KN_REAL(Erfcx, erfcx_real)
KN_REAL(Erfinv, erfinv_real)
KN_REAL(Expint, expint_real)
KN_REAL(Gamma, gamma_real)
KN_REAL(Gammaln, gammaln_real)
#undef KN_REAL

#define KN_REAL(Name, ...)                                          \
    struct Name {                                                   \
        static double r(double x, double y) { return __VA_ARGS__; } \
    };
KN_REAL(Atan2, std::atan2(x, y))
KN_REAL(Beta, beta_real(x, y))
KN_REAL(Betaln, betaln_real(x, y))
KN_REAL(Gammainc, gammainc_real(x, y))
KN_REAL(Rem, rem_real(x, y))
KN_REAL(Mod, mod_real(x, y))
KN_REAL(Pow2_2, pow2_2(x, y))
KN_REAL(Bitand, bit_logic(x, y, Bits::and_))
KN_REAL(Bitor, bit_logic(x, y, Bits::or_))
KN_REAL(Bitxor, bit_logic(x, y, Bits::xor_))
KN_REAL(Bitcmp, bit_complement(x, y))
KN_REAL(Bitget, bit_get(x, y))
KN_REAL(Bitset, bit_set(x, y))
KN_REAL(Bitreset, bit_reset(x, y))
KN_REAL(Bitshift, bit_shift(x, y))
#undef KN_REAL

} // namespace kn::inline KN_ISA::kernel

#endif
