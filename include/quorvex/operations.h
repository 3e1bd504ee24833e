// Operators, elementary functions, comparisons, bit operations and reductions: the functions of the element
// engine.
//
// Common to all. Operands of one element are expanded; otherwise the sizes must agree ("%s: incompatible
// dimensions of: %s, %s"). double with uint8 computes in uint8. Comparisons, logical operations and the is...
// predicates give logical values. Of complex operands lt, gt, le and ge compare the real parts, eq and ne
// both parts. A NaN counts as true. Results are complex when an operand is, or when real input is outside the
// real domain of the function (sqrt, log, acos, ...). An empty operand gives the empty 0 by 0, but eq and ne
// give a scalar. Sparse operands give sparse results, but sparse + full and sparse - full are full. Text
// counts as its character codes. Cells report "Operation can not be performed on non-numerical datatypes";
// structures use the method of their class, but times, mtimes, mand, mor, mxor, lt, gt, max, min, atan2,
// gammainc, mbitand, mbitor and bitxor of a structure and a sparse value of the same size report "sparse:
// numeric data expected, but matrix %s is not".
//
// Overloads for temporaries (Mm &&) write the result into an unshared operand of the same type and shape;
// overloads for plain doubles avoid a temporary value. The results are the same.
#ifndef QUORVEX_OPERATIONS_H
#define QUORVEX_OPERATIONS_H

#include "quorvex/counts.h"
#include "quorvex/indexing.h"

// clang-format off

// Functions of one input, element by element; the result has its size. `arg` is angle, `finite` isfinite,
// `kn_isnan` isnan, `mnot` the operator !, `msqrt` sqrt. reallog and realsqrt remain real (NaN below 0).
// expint is E1; below 0 its principal value minus i pi. uint8 input is computed as double, and the result
// truncated to a byte. docs/numerics.md has the largest errors of elementary functions. Sources: erfcx by
// Shepherd and Laframboise, Math. Comp. 36 (1981) 249-253; erfinv and expint by Boost.Math.
#define QUORVEX_UNARY_OPERATIONS(ROW) \
    ROW(abs, "absolute value", 1) \
    ROW(acos, "inverse cosine", 1) \
    ROW(acosh, "inverse hyperbolic cosine", 1) \
    ROW(acot, "inverse cotangent", 1) \
    ROW(acoth, "inverse hyperbolic cotangent", 1) \
    ROW(acsc, "inverse cosecant", 1) \
    ROW(acsch, "inverse hyperbolic cosecant", 1) \
    ROW(angle, "phase angle", 1) \
    ROW(arg, "phase angle", 1) \
    ROW(asec, "inverse secant", 1) \
    ROW(asech, "inverse hyperbolic secant", 1) \
    ROW(asin, "inverse sine", 1) \
    ROW(asinh, "inverse hyperbolic sine", 1) \
    ROW(atan, "inverse tangent", 1) \
    ROW(atanh, "inverse hyperbolic tangent", 1) \
    ROW(ceil, "rounds up", 1) \
    ROW(cos, "cosine", 1) \
    ROW(cosh, "hyperbolic cosine", 1) \
    ROW(cot, "cotangent", 1) \
    ROW(coth, "hyperbolic cotangent", 1) \
    ROW(csc, "cosecant", 1) \
    ROW(csch, "hyperbolic cosecant", 1) \
    ROW(erf, "error function", 1) \
    ROW(erfc, "complementary error function", 1) \
    ROW(erfcx, "scaled complementary error function", 1) \
    ROW(erfinv, "inverse error function", 1) \
    ROW(exp, "exponential", 1) \
    ROW(finite, "where elements are finite", 1) \
    ROW(fix, "rounds towards zero", 1) \
    ROW(floor, "rounds down", 1) \
    ROW(gamma, "gamma function", 1) \
    ROW(gammaln, "logarithm of the gamma function", 1) \
    ROW(imag, "imaginary part", 1) \
    ROW(isfinite, "where elements are finite", 1) \
    ROW(isinf, "where elements are infinite", 1) \
    ROW(isnan, "where elements are NaN", 1) \
    ROW(kn_isnan, "where elements are NaN", 1) \
    ROW(log, "natural logarithm", 1) \
    ROW(log10, "common logarithm", 1) \
    ROW(log2, "logarithm to base 2, or mantissa and exponent", 1, 1_to_2) \
    ROW(mnot, "where elements are zero", 1) \
    ROW(msqrt, "square root", 1) \
    ROW(round, "rounds to integers", 1) \
    ROW(sec, "secant", 1) \
    ROW(sech, "hyperbolic secant", 1) \
    ROW(sign, "sign", 1) \
    ROW(sin, "sine", 1) \
    ROW(sinc, "sin(pi x) / (pi x)", 1) \
    ROW(sinh, "hyperbolic sine", 1) \
    ROW(sqrt, "square root", 1) \
    ROW(tan, "tangent", 1) \
    ROW(tanh, "hyperbolic tangent", 1) \
    ROW(uminus, "negation", 1)
#define QUORVEX_UNARY_FUNCTIONS(ROW) \
    QUORVEX_UNARY_OPERATIONS(ROW) \
    ROW(conj, "complex conjugate", 1) \
    ROW(expint, "exponential integral", 1) \
    ROW(real, "real part", 1) \
    ROW(reallog, "natural logarithm of reals", 1) \
    ROW(realsqrt, "square root of reals", 1) \
    ROW(uplus, "unchanged value", 1)

// Functions of two inputs, element by element. dot_mul, dot_div, dot_invdiv and dot_pow are times, rdivide,
// ldivide and power; mand, mor, mxor, mbitand and mbitor are the language's and, or, xor, bitand and bitor.
// gammainc(x, a) is the regularized lower incomplete gamma function (source: Temme, Probab. Engrg. Inform.
// Sci. 8 (1994) 291-307, and continued fractions). mod and rem by 0 are NaN. plus, minus, mtimes and mrdivide
// are the operators + - * /: mtimes is the matrix product, m by n for m by k and k by n operands ("*: wrong
// dimensions of: %s %dx%d, %s %dx%d"), large complex ones by three real products (Higham, SIAM J. Matrix
// Anal. Appl. 13, 1992); mrdivide by a scalar divides the elements, otherwise it solves x * b = a
// (solving.h).
#define QUORVEX_BINARY_OPERATIONS(ROW) \
    ROW(atan2, "angle of the point (y, x)", 2) \
    ROW(betaln, "logarithm of the beta function", 2) \
    ROW(bitcmp, "complement of bits", 2) \
    ROW(bitget, "value of a bit", 2) \
    ROW(bitreset, "clears a bit", 2) \
    ROW(bitset, "sets a bit", 2) \
    ROW(bitshift, "shifts bits", 2) \
    ROW(bitxor, "exclusive or of bits", 2) \
    ROW(dot_div, "division of elements", 2) \
    ROW(dot_invdiv, "division of elements from the left", 2) \
    ROW(dot_mul, "product of elements", 2) \
    ROW(dot_pow, "power of elements", 2) \
    ROW(eq, "equal", 2) \
    ROW(gammainc, "incomplete gamma function", 2) \
    ROW(ge, "greater or equal", 2) \
    ROW(gt, "greater", 2) \
    ROW(ldivide, "division of elements from the left", 2) \
    ROW(le, "less or equal", 2) \
    ROW(lt, "less", 2) \
    ROW(mand, "logical and", 2) \
    ROW(mbitand, "and of bits", 2) \
    ROW(mbitor, "or of bits", 2) \
    ROW(minus, "difference", 2) \
    ROW(mod, "remainder with the sign of the divisor", 2) \
    ROW(mor, "logical or", 2) \
    ROW(mxor, "logical exclusive or", 2) \
    ROW(ne, "not equal", 2) \
    ROW(plus, "sum of two values", 2) \
    ROW(power, "power of elements", 2) \
    ROW(rdivide, "division of elements", 2) \
    ROW(rem, "remainder with the sign of the dividend", 2) \
    ROW(times, "product of elements", 2)
#define QUORVEX_BINARY_FUNCTIONS(ROW) \
    QUORVEX_BINARY_OPERATIONS(ROW) \
    ROW(mrdivide, "matrix division from the right", 2) \
    ROW(mtimes, "matrix product", 2)

// Functions along a dimension: f(a) along the first one with a size above 1, f(a, dim) along dim, whose size
// becomes 1 (cumsum and cumprod keep it). "%s: dim argument may not be empty", "%s: dimension=%d does not
// exist for matrix %s". Results keep uint8 (modulo 256), but sum of uint8 is double. For an empty value
// without dim, all and prod give 1, any and sum 0, the others empty. median is NaN when an element is. sumabs
// is sum(abs(a)).
//
// sum adds groups of eight elements and compensates the rounding of their total, so that it is at least as
// accurate as pairwise summation. The order (kernels/loops/sums.cpp), and so every bit, is the same on all
// processors and for any number of threads. cumsum, prod and cumprod use the elements in order.
#define QUORVEX_REDUCTION_FUNCTIONS(ROW) \
    ROW(all, "whether all elements are nonzero", 1, 2) \
    ROW(any, "whether any element is nonzero", 1, 2) \
    ROW(cumprod, "running product", 1, 2) \
    ROW(cumsum, "running sum", 1, 2) \
    ROW(median, "median", 1, 2) \
    ROW(prod, "product", 1, 2) \
    ROW(sum, "sum", 1, 2) \
    ROW(sumabs, "sum of the absolute values", 1, 2)

// clang-format on

#define QUORVEX_ONE(name, ...)        \
    QUORVEX_API Mm name(const Mm &a); \
    QUORVEX_API Mm name(Mm &&a);
#define QUORVEX_TWO(name, ...)                     \
    QUORVEX_API Mm name(const Mm &a, const Mm &b); \
    QUORVEX_API Mm name(Mm &&a, const Mm &b);      \
    QUORVEX_API Mm name(const Mm &a, Mm &&b);      \
    QUORVEX_API Mm name(Mm &&a, Mm &&b);
#define QUORVEX_ONE_OR_TWO(name, ...) \
    QUORVEX_API Mm name(const Mm &a); \
    QUORVEX_API Mm name(const Mm &a, const Mm &dim);
QUORVEX_UNARY_FUNCTIONS(QUORVEX_ONE)
QUORVEX_BINARY_FUNCTIONS(QUORVEX_TWO)
QUORVEX_REDUCTION_FUNCTIONS(QUORVEX_ONE_OR_TWO)

// -- Operators. There is no operator^: generated code calls power or mpower.

#define QUORVEX_OPERATOR(name)                  \
    QUORVEX_TWO(name)                           \
    QUORVEX_API Mm name(const Mm &a, double b); \
    QUORVEX_API Mm name(Mm &&a, double b);      \
    QUORVEX_API Mm name(double a, const Mm &b); \
    QUORVEX_API Mm name(double a, Mm &&b);
QUORVEX_OPERATOR(operator+)
QUORVEX_OPERATOR(operator-)
QUORVEX_OPERATOR(operator*)
QUORVEX_OPERATOR(operator/)
QUORVEX_OPERATOR(operator<)
QUORVEX_OPERATOR(operator>)
QUORVEX_OPERATOR(operator<=)
QUORVEX_OPERATOR(operator>=)
QUORVEX_OPERATOR(operator==)
QUORVEX_OPERATOR(operator!=)
QUORVEX_OPERATOR(operator&&)
QUORVEX_OPERATOR(operator||)
QUORVEX_ONE(operator!)
QUORVEX_ONE(operator+)
QUORVEX_ONE(operator-)
#undef QUORVEX_OPERATOR

// References, and numbers other than double, as operands of !, && and ||. These overloads are needed because
// C++ has built-in operators for everything convertible to a condition.
namespace kn {
template <class T> inline constexpr int operand_kind = !__is_class(T) && requires(T x) { 1.0 * x; }
? 3 : 0;
template <class T> inline constexpr int operand_kind<T &> = operand_kind<T>;
template <class T> inline constexpr int operand_kind<const T> = operand_kind<T>;
template <> inline constexpr int operand_kind<double> = 0; // needs no help
template <> inline constexpr int operand_kind<Mm> = 1;
template <> inline constexpr int operand_kind<Mr> = 2;

template <int product> inline constexpr bool mixed_operands = product == 3 || product == 4 || product == 6;

inline const Mm &operand(const Mm &x) { return x; }
inline Mm &&operand(Mm &&x) { return static_cast<Mm &&>(x); }
inline Mm operand(const Mr &x) { return x; }
inline double operand(double x) { return x; }
} // namespace kn

template <class A>
requires(kn::operand_kind<A> == 2) Mm operator!(A &&a) { return !Mm(a); }
#define QUORVEX_OF_MIXED_OPERANDS(op)                                                  \
    template <class A, class B>                                                        \
    requires kn::mixed_operands < kn::operand_kind<A>                                  \
    *kn::operand_kind < B >> Mm operator op(A &&a, B &&b) {                            \
        return kn::operand(static_cast<A &&>(a)) op kn::operand(static_cast<B &&>(b)); \
    }
QUORVEX_OF_MIXED_OPERANDS(&&)
QUORVEX_OF_MIXED_OPERANDS(||)
#undef QUORVEX_OF_MIXED_OPERANDS

// The largest and the smallest elements: of one input along a dimension, as for sum, with their indices in it
// as second output; of two inputs element by element. NaN is skipped (all NaN gives -Inf or +Inf); complex
// elements compare by modulus. In max(a, [], dim) the second input is ignored.
QUORVEX_API Mm max(const Mm &a);
QUORVEX_TWO(max)
QUORVEX_API Mm max(const Mm &a, const Mm &none, const Mm &dim);
QUORVEX_API Mm max(const Mm &a, i_o_t, Mm &y, Mm &i);
QUORVEX_API Mm max(const Mm &a, const Mm &none, const Mm &dim, i_o_t, Mm &y, Mm &i);
QUORVEX_API Mm min(const Mm &a);
QUORVEX_TWO(min)
QUORVEX_API Mm min(const Mm &a, const Mm &none, const Mm &dim);
QUORVEX_API Mm min(const Mm &a, i_o_t, Mm &y, Mm &i);
QUORVEX_API Mm min(const Mm &a, const Mm &none, const Mm &dim, i_o_t, Mm &y, Mm &i);

// Powers of two: pow2(x) is 2 .^ x, pow2(f, e) is f .* 2 .^ e. [f, e] = log2(x) gives x = f .* 2 .^ e with
// 0.5 <= abs(f) < 1; f = x and e = 0 where x is not finite.
QUORVEX_ONE(pow2)
QUORVEX_TWO(pow2)
QUORVEX_API Mm log2(const Mm &x, i_o_t, Mm &f, Mm &e);

// The beta function beta(a, b), and the regularized incomplete one, beta(x, a, b) or betainc(x, a, b),
// element by element. x outside [0, 1] gives NaN. Sources: DiDonato and Morris, ACM Trans. Math. Software 18
// (1992) 360-373; Temme, Probab. Engrg. Inform. Sci. 8 (1994) 291-307.
QUORVEX_TWO(beta)
QUORVEX_API Mm beta(const Mm &x, const Mm &a, const Mm &b);
QUORVEX_API Mm betainc(const Mm &x, const Mm &a, const Mm &b);
#undef QUORVEX_ONE
#undef QUORVEX_TWO
#undef QUORVEX_ONE_OR_TWO

// Differences and slopes of numbers.
//
// diff(a, n, dim): the differences of neighbours, applied n times (default 1; below 1 gives a itself) while
// elements remain. unwrap(a, tol, dim): phase angles without jumps, each step reduced modulo 2 pi and, where
// it still exceeds tol (default pi), changed by 2 pi.
//
// gradient(f, x): slopes, by central differences inside and one-sided ones at the ends; x has the
// coordinates, or is a scalar step (default 1). With one output they run across the columns, in a column
// vector along its elements; [gx, gy] = gradient(f, x, y) runs across columns and down rows. del2(f, x, y):
// the sum of second derivatives divided by twice the number of dimensions, from second differences over x
// across columns and y down rows, evenly spaced; an end repeats its neighbour, and a direction with fewer
// than 3 elements counts as 0. gradient and del2 give zeros for complex values and compute uint8 as double;
// "%s: incompatible dimensions of: %s, %s" when there are too few coordinates.
QUORVEX_API Mm diff(const Mm &a);
QUORVEX_API Mm diff(const Mm &a, const Mm &n);
QUORVEX_API Mm diff(const Mm &a, const Mm &n, const Mm &dim);
QUORVEX_API Mm unwrap(const Mm &a);
QUORVEX_API Mm unwrap(const Mm &a, const Mm &tol);
QUORVEX_API Mm unwrap(const Mm &a, const Mm &tol, const Mm &dim);
QUORVEX_API Mm gradient(const Mm &f);
QUORVEX_API Mm gradient(const Mm &f, const Mm &x);
QUORVEX_API Mm gradient(const Mm &f, const Mm &x, const Mm &y);
QUORVEX_API Mm gradient(const Mm &f, i_o_t, Mm &gx, Mm &gy);
QUORVEX_API Mm gradient(const Mm &f, const Mm &x, const Mm &y, i_o_t, Mm &gx, Mm &gy);
QUORVEX_API Mm del2(const Mm &f);
QUORVEX_API Mm del2(const Mm &f, const Mm &x);
QUORVEX_API Mm del2(const Mm &f, const Mm &x, const Mm &y);

// -- The same on plain doubles, with the element kernels. abs, log2 and round are templates, so that they can
// coexist with those of <math.h>.

QUORVEX_API double fix(double x);
QUORVEX_API double sign(double x); // sign(NaN) is -1
QUORVEX_API double max2(double x, double y);
QUORVEX_API double min2(double x, double y);
QUORVEX_API double mod(double x, double y);
QUORVEX_API double rem(double x, double y);
QUORVEX_API double power(double x, double y);
inline double plus(double x, double y) { return x + y; }
inline double minus(double x, double y) { return x - y; }
inline double mtimes(double x, double y) { return x * y; }
inline double mrdivide(double x, double y) { return x / y; }

namespace kn {
template <class T> inline constexpr bool is_plain_number = false;
template <> inline constexpr bool is_plain_number<double> = true;
template <> inline constexpr bool is_plain_number<float> = true;
template <> inline constexpr bool is_plain_number<int> = true;
QUORVEX_API double round_real(double x); // halves away from zero
QUORVEX_API double log2_real(double x);
} // namespace kn

template <class T>
requires kn::is_plain_number<T>
double abs(T x) { return x < 0 ? -static_cast<double>(x) : x + 0.0; }
template <class T>
requires kn::is_plain_number<T>
double log2(T x) { return kn::log2_real(x); }
template <class T>
requires kn::is_plain_number<T>
double round(T x) { return kn::round_real(x); }

// -- The rows of all these functions.

// clang-format off
#define QUORVEX_OPERATION_COUNTS(ROW)                                                    \
    QUORVEX_UNARY_FUNCTIONS(ROW)                                                         \
    QUORVEX_BINARY_FUNCTIONS(ROW)                                                        \
    QUORVEX_REDUCTION_FUNCTIONS(ROW) \
    ROW(max, "largest element", 1, 2, 3, 1_to_2, 3_to_2) \
    ROW(min, "smallest element", 1, 2, 3, 1_to_2, 3_to_2) \
    ROW(pow2, "power of two", 1, 2) \
    ROW(beta, "beta function", 2, 3) \
    ROW(betainc, "incomplete beta function", 3) \
    ROW(diff, "differences of neighbours", 1, 2, 3) \
    ROW(unwrap, "phase angles without jumps of 2 pi", 1, 2, 3) \
    ROW(gradient, "slopes", 1, 2, 3, 1_to_2, 3_to_2) \
    ROW(del2, "discrete Laplacian", 1, 2, 3)
// clang-format on
QUORVEX_OPERATION_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
