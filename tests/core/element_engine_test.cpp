// The element engine: every operation against its own scalars, against independent formulas and across the
// representations of a value; types, shapes, empties, messages, failures.

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <optional>

#include "core/header.h"
#include "core/op_names.h"
#include "core/scalar_kernels.h"
#include "core/scratch.h"
#include "core/special_functions.h"
#include "support/support.h"

using test::C;
using test::complex_of;
using test::M;
using test::row;
using test::U8;

namespace {

constexpr double inf = HUGE_VAL, nan = NAN;
using Cx = std::complex<double>;
using byte = unsigned char;

constexpr int first_elementwise = op_abs;

// clang-format off
constexpr int binary_ops[] = {
    op_and, op_atan2, op_beta, op_betaln, op_bitand, op_bitcmp, op_bitget, op_bitor, op_bitreset,
    op_bitset, op_bitshift, op_bitxor, op_eq, op_gammainc, op_ge, op_gt, op_ldivide, op_le, op_lt,
    op_max_2, op_minus, op_min_2, op_mod, op_mtimes, op_ne, op_or, op_plus, op_pow2_2, op_power,
    op_rdivide, op_rem, op_times, op_xor,
};
// clang-format on
bool is_binary(int op) { return std::ranges::find(binary_ops, op) != std::end(binary_ops); }

Mm engine(int complex, const Mm &a, const Mm &b, int op) {
    return Mm(complex, a, b, nop_M, static_cast<op_t>(op), 0, l_M);
}

Mm element(const Mm &a, int k) {
    if (a.gettype() == kn_uint8) return U8({{static_cast<double>(a.getpr(static_cast<byte *>(nullptr))[k])}});
    return a.isc() ? C(a.addr()[k], a.addi()[k]) : Mm(a.addr()[k]);
}

// Bit for bit, but that any NaN equals any other.
testing::AssertionResult same_bits(double x, double y) {
    if ((std::isnan(x) && std::isnan(y)) || std::memcmp(&x, &y, sizeof x) == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << std::hexfloat << x << " is not " << y;
}

std::vector<int> random_shape(test::Random &random) {
    std::vector<int> dims;
    for (int k = 0, n = 2 + random.below(3); k < n; ++k) dims.push_back(1 + random.below(4));
    return dims;
}

Mm random_numbers(test::Random &random, const std::vector<int> &dims, bool complex) {
    Mm m(complex, 0, 0, static_cast<int>(dims.size()), dims.data(), kn_double);
    for (int k = 0; k < m.getnnz(); ++k) {
        m.addr()[k] = random.number();
        if (complex) m.addi()[k] = random.below(3) ? random.number() : 0;
    }
    return m;
}

// -- One element at a time.

TEST(ElementEngine, arrays_are_what_their_elements_are) {
    test::Random random(1);
    for (int op = first_elementwise; op < op_count_; ++op)
        for (int round = 0; round < 48; ++round) {
            SCOPED_TRACE(kn::op_name(op) + std::string(" round ") + std::to_string(round));
            int planes = round % 4,
                form = round / 4 % 3; // array and array, array and scalar, scalar and array
            auto dims = random_shape(random);
            Mm a = random_numbers(random, form == 2 ? std::vector<int>{1, 1} : dims, planes & 1);
            Mm b = !is_binary(op)
                       ? zero_M
                       : random_numbers(random, form == 1 ? std::vector<int>{1, 1} : dims, planes & 2);
            int complex = a.isc() || b.isc() || round % 5 == 0;
            Mm whole = engine(complex, a, b, op);
            ASSERT_EQ(whole.isc(), complex);
            for (int k = 0; k < whole.getnnz(); ++k) {
                Mm x = element(a, a.getnnz() == 1 ? 0 : k), y = element(b, b.getnnz() == 1 ? 0 : k);
                Mm one = engine(complex, x, y, op);
                ASSERT_TRUE(same_bits(whole.addr()[k], *one.addr()))
                    << testing::PrintToString(x) << testing::PrintToString(y);
                if (!complex) continue;
                ASSERT_TRUE(same_bits(whole.addi()[k], *one.addi()))
                    << testing::PrintToString(x) << testing::PrintToString(y);
            }
        }
}

TEST(ElementEngine, long_arrays_are_what_their_elements_are) {
    // Where the vector loops leave a rest, and where bytes go through a table.
    for (int op = first_elementwise; op < op_count_; ++op) {
        SCOPED_TRACE(kn::op_name(op));
        Mm a(0, 0, 0, 1, 1003, kn_double), b(0, 0, 0, 1, 1003, kn_double);
        for (int k = 0; k < 1003; ++k) {
            a.addr()[k] = (k % 300) * 0.9;
            b.addr()[k] = 1 + (k * 7 % 11);
        }
        for (const Mm &x : {a, muint8(a)}) {
            const Mm y = x.gettype() == kn_uint8 ? muint8(b) : b;
            Mm both = engine(0, x, is_binary(op) ? y : zero_M, op);
            Mm with_scalar = engine(0, x, is_binary(op) ? element(y, 3) : zero_M, op);
            Mm scalar_with = is_binary(op) ? engine(0, element(x, 500), y, op) : both;
            for (int k : {0, 1, 255, 256, 500, 1001, 1002}) {
                ASSERT_SAME(element(both, k),
                            engine(0, element(x, k), is_binary(op) ? element(y, k) : zero_M, op));
                ASSERT_SAME(element(with_scalar, k),
                            engine(0, element(x, k), is_binary(op) ? element(y, 3) : zero_M, op));
                if (is_binary(op)) {
                    ASSERT_SAME(element(scalar_with, k), engine(0, element(x, 500), element(y, k), op));
                }
            }
        }
    }
}

// -- Independent formulas.

struct Reference {
    int op;
    double (*real)(double);
    Cx (*complex)(Cx);
    double low, high; // where the real function is tried
};

// The principal root of z^2 - 1 is the other one in the left half plane.
Cx acosh_by_root(Cx z) { return z.real() < 0 ? -std::acosh(z) : std::acosh(z); }

TEST(ElementEngine, functions_of_one_operand) {
    // clang-format off
#define REAL(f) [](double x) -> double { return (void)x, f; }
#define COMPLEX(f) [](Cx z) -> Cx { return f; }
    const Reference references[] = {
        {op_sqrt, REAL(std::sqrt(x)), COMPLEX(std::sqrt(z)), 0, 9},
        {op_exp, REAL(std::exp(x)), COMPLEX(std::exp(z)), -5, 5},
        {op_log, REAL(std::log(x)), COMPLEX(std::log(z)), 0.01, 9},
        {op_log2, REAL(std::log2(x)), COMPLEX(std::log(z) / std::log(2.0)), 0.01, 9},
        {op_log10, REAL(std::log10(x)), COMPLEX(std::log10(z)), 0.01, 9},
        {op_sin, REAL(std::sin(x)), COMPLEX(std::sin(z)), -9, 9},
        {op_cos, REAL(std::cos(x)), COMPLEX(std::cos(z)), -9, 9},
        {op_tan, REAL(std::tan(x)), COMPLEX(std::tan(z)), -9, 9},
        {op_sec, REAL(1 / std::cos(x)), COMPLEX(1.0 / std::cos(z)), -9, 9},
        {op_csc, REAL(1 / std::sin(x)), COMPLEX(1.0 / std::sin(z)), 0.1, 3},
        {op_cot, REAL(1 / std::tan(x)), COMPLEX(1.0 / std::tan(z)), 0.1, 3},
        {op_sinh, REAL(std::sinh(x)), COMPLEX(std::sinh(z)), -5, 5},
        {op_cosh, REAL(std::cosh(x)), COMPLEX(std::cosh(z)), -5, 5},
        {op_tanh, REAL(std::tanh(x)), COMPLEX(std::tanh(z)), -5, 5},
        {op_sech, REAL(1 / std::cosh(x)), COMPLEX(1.0 / std::cosh(z)), -5, 5},
        {op_csch, REAL(1 / std::sinh(x)), COMPLEX(1.0 / std::sinh(z)), 0.1, 5},
        {op_coth, REAL(1 / std::tanh(x)), COMPLEX(1.0 / std::tanh(z)), 0.1, 5},
        {op_asin, REAL(std::asin(x)), COMPLEX(std::asin(z)), -1, 1},
        {op_acos, REAL(std::acos(x)), COMPLEX(std::acos(z)), -1, 1},
        {op_atan, REAL(std::atan(x)), COMPLEX(std::atan(z)), -9, 9},
        {op_asinh, REAL(std::asinh(x)), COMPLEX(std::asinh(z)), 0, 9},
        {op_acosh, REAL(std::acosh(x)), COMPLEX(acosh_by_root(z)), 1.1, 9},
        {op_atanh, REAL(std::atanh(x)), COMPLEX(std::atanh(z)), -0.9, 0.9},
        {op_acsc, REAL(std::asin(1 / x)), COMPLEX(std::asin(1.0 / z)), 1, 9},
        {op_asec, REAL(std::acos(1 / x)), COMPLEX(std::acos(1.0 / z)), 1, 9},
        {op_acot, REAL(std::atan(1 / x)), COMPLEX(std::atan(1.0 / z)), 0.1, 9},
        {op_acsch, REAL(std::asinh(1 / x)), COMPLEX(std::asinh(1.0 / z)), 0.1, 9},
        {op_asech, REAL(std::acosh(1 / x)), COMPLEX(acosh_by_root(1.0 / z)), 0.1, 0.9},
        {op_acoth, REAL(std::atanh(1 / x)), COMPLEX(std::atanh(1.0 / z)), 1.1, 9},
        {op_pow2_1, REAL(std::exp2(x)), COMPLEX(std::pow(Cx(2), z)), -9, 9},
        {op_sinc, REAL(std::sin(M_PI * x) / (M_PI * x)), COMPLEX(std::sin(M_PI * z) / (M_PI * z)), 0.1, 3},
        {op_abs, REAL(std::fabs(x)), COMPLEX(Cx(std::abs(z))), -9, 9},
        {op_angle, REAL(x < 0 ? M_PI : 0), COMPLEX(Cx(std::arg(z))), -9, 9},
        {op_imag, [](double) { return 0.0; }, COMPLEX(Cx(z.imag())), -9, 9},
        {op_conj, REAL(x), COMPLEX(std::conj(z)), -9, 9},
        {op_uminus, REAL(-x), COMPLEX(-z), -9, 9},
        {op_uplus, REAL(x), COMPLEX(z), -9, 9},
        {op_sign, REAL(x > 0 ? 1.0 : -1.0), COMPLEX(z / std::abs(z)), -9, 9},
        {op_ceil, REAL(std::ceil(x)), COMPLEX(Cx(std::ceil(z.real()), std::ceil(z.imag()))), -9, 9},
        {op_floor, REAL(std::floor(x)), COMPLEX(Cx(std::floor(z.real()), std::floor(z.imag()))), -9, 9},
        {op_fix, REAL(std::trunc(x)), COMPLEX(Cx(std::trunc(z.real()), std::trunc(z.imag()))), -9, 9},
        {op_round, REAL(std::round(x)), COMPLEX(Cx(std::round(z.real()), std::round(z.imag()))), -9, 9},
        {op_erf, REAL(std::erf(x)), nullptr, -3, 3},
        {op_erfc, REAL(std::erfc(x)), nullptr, -3, 3},
        {op_erfcx, REAL(std::exp(x * x) * std::erfc(x)), nullptr, -2, 2},
        {op_erfinv, REAL(kn::erfinv_real(x)), nullptr, -0.9, 0.9},
        {op_gamma, REAL(std::tgamma(x)), nullptr, 0.1, 9},
        {op_gammaln, REAL(std::lgamma(x)), nullptr, 2.5, 20},
        {op_expint, REAL(-std::expint(-x)), nullptr, 0.1, 5},
    };
#undef REAL
#undef COMPLEX
    // clang-format on
    auto close = [](Cx got, Cx wanted) { return std::abs(got - wanted) <= 1e-12 * (1 + std::abs(wanted)); };
    for (const Reference &r : references) {
        SCOPED_TRACE(kn::op_name(r.op));
        for (int k = 0; k < 60; ++k) {
            double x = r.low + (r.high - r.low) * (k + 0.37) / 60;
            EXPECT_TRUE(close(*engine(0, x, zero_M, r.op).addr(), r.real(x))) << x;
            if (!r.complex) continue;
            Cx z = std::polar(0.2 + k * 0.05, k * 0.7 + 0.1); // all quadrants, off the axes
            Mm got = engine(1, C(z.real(), z.imag()), zero_M, r.op);
            EXPECT_TRUE(close({*got.addr(), *got.addi()}, r.complex(z))) << z;
        }
    }
}

TEST(ElementEngine, functions_of_two_operands) {
    // clang-format off
#define REAL(f) [](double x, double y) -> double { return f; }
    struct {
        int op;
        double (*real)(double, double);
    } references[] = {
        {op_plus, REAL(x + y)},
        {op_minus, REAL(x - y)},
        {op_times, REAL(x * y)},
        {op_mtimes, REAL(x * y)},
        {op_rdivide, REAL(x / y)},
        {op_ldivide, REAL(y / x)},
        {op_power, REAL(std::pow(x, y))},
        {op_pow2_2, REAL(std::isfinite(y) && std::isfinite(x) ? x * std::exp2(std::trunc(y)) : nan)},
        {op_atan2, REAL(std::atan2(x, y))},
        {op_lt, REAL(double(x < y))},
        {op_gt, REAL(double(x > y))},
        {op_le, REAL(double(x <= y))},
        {op_ge, REAL(double(x >= y))},
        {op_eq, REAL(double(x == y))},
        {op_ne, REAL(double(x != y))},
        {op_and, REAL(double(x != 0 && y != 0))},
        {op_or, REAL(double(x != 0 || y != 0))},
        {op_xor, REAL(double((x != 0) != (y != 0)))},
        {op_max_2, REAL(std::fmax(x, y))},
        {op_min_2, REAL(std::fmin(x, y))},
        {op_mod, REAL(kn::mod_real(x, y))},
        {op_rem, REAL(kn::rem_real(x, y))},
        {op_beta, REAL(kn::beta_real(x, y))},
        {op_betaln, REAL(kn::betaln_real(x, y))},
        {op_gammainc, REAL(kn::gammainc_real(x, y))},
        {op_bitand, REAL(kn::bit_logic(x, y, kn::Bits::and_))},
        {op_bitor, REAL(kn::bit_logic(x, y, kn::Bits::or_))},
        {op_bitxor, REAL(kn::bit_logic(x, y, kn::Bits::xor_))},
        {op_bitcmp, REAL(kn::bit_complement(x, y))},
        {op_bitget, REAL(kn::bit_get(x, y))},
        {op_bitset, REAL(kn::bit_set(x, y))},
        {op_bitreset, REAL(kn::bit_reset(x, y))},
        {op_bitshift, REAL(kn::bit_shift(x, y))},
    };
#undef REAL
    // clang-format on
    const double values[] = {-3, -0.5, -0.0, 0, 1, 2, 2.5, 7, nan, inf};
    for (const auto &r : references) {
        SCOPED_TRACE(kn::op_name(r.op));
        for (double x : values)
            for (double y : values) {
                double wanted = r.real(x, y), got = *engine(0, x, y, r.op).addr();
                if (r.op == op_pow2_2 && std::isnan(wanted)) continue;
                EXPECT_TRUE((std::isnan(got) && std::isnan(wanted)) || got == wanted)
                    << x << " " << y << " " << got;
            }
    }
    // Complex arithmetic.
    test::Random random(5);
    for (int k = 0; k < 200; ++k) {
        Cx a(random.below(9) - 4, random.below(9) - 4), b(random.below(9) + 0.5, random.below(9) - 4);
        auto run = [&](int op) {
            Mm z = engine(1, C(a.real(), a.imag()), C(b.real(), b.imag()), op);
            return Cx(*z.addr(), *z.addi());
        };
        EXPECT_EQ(run(op_plus), a + b);
        EXPECT_EQ(run(op_minus), a - b);
        EXPECT_EQ(run(op_times), a * b);
        EXPECT_LT(std::abs(run(op_rdivide) - a / b), 1e-13);
        EXPECT_LT(std::abs(run(op_power) - (a == 0.0 ? 0.0 : std::pow(a, b))),
                  1e-11 * (1 + std::abs(std::pow(a, b))));
        EXPECT_EQ(run(op_max_2), std::norm(b) > std::norm(a) ? b : a);
        EXPECT_EQ(run(op_min_2), std::norm(b) < std::norm(a) ? b : a);
    }
}

// -- The oddities of single kernels.

Mm zz(double re, double im) { return C(re, im); }

TEST(ElementEngine, complex_kernels_at_their_edges) {
    struct {
        Mm got, wanted;
    } cases[] = {
        {abs(zz(3e300, 4e300)), Mm(5e300)},
        {abs(zz(0, nan)), Mm(nan)},
        {abs(zz(nan, 0)), Mm(nan)},
        {angle(zz(-1, -0.0)), Mm(kn::raw_pi)},
        {angle(Mm(nan)), Mm(nan)},
        {sign(zz(-2, 0)), zz(-1, 0)},
        {sign(zz(0, 3)), zz(0, 1)},
        {log(zz(0, 0)), zz(-inf, 0)},
        {log(zz(-1, -0.0)), zz(0, kn::raw_pi)},
        {log(Mm(-1.0)), zz(0, kn::raw_pi)},
        {sqrt(row({4, -4})), complex_of(row({2, 0}), row({0, 2}))},
        {sqrt(zz(-4, -0.0)), zz(-0.0, 2)},
        {sqrt(zz(0, -2)), zz(1, -1)},
        {exp(zz(inf, 0)), zz(inf, nan)},
        {sin(zz(1e300, 0)), complex_of(sin(Mm(1e300)), 0.0)},
        {rdivide(zz(1, 0), zz(0, 0)), zz(inf, 0)},
        {rdivide(zz(1, 0), 0.0), zz(inf, nan)},
        {rdivide(zz(3, 4), zz(3, 4)), zz(1, 0)},
        {ldivide(2.0, zz(2, 4)), zz(1, 2)},
        {minus(1.0, zz(1, 0)), zz(0, -0.0)},
        {power(zz(0, 1), 2.0), zz(-1, 0)},
        {power(zz(0, 0), zz(1, 1)), zz(0, 0)},
        {power(zz(nan, 1), 0.5), zz(nan, 0)},
        {power(zz(2, 0), inf), zz(inf, 0)},
        {power(Mm(-8.0), 3.0), zz(-512, 0)},
        {power(Mm(-2.0), 2.0), Mm(4.0)},
        {power(Mm(0.0), 0.0), Mm(1.0)},
        {acosh(zz(0, -1)), zz(std::log(1 + std::sqrt(2.0)), -kn::raw_pi / 2)},
        {atanh(Mm(1.0)), Mm(inf)},
        {sinc(zz(0, 0)), zz(1, 0)},
        {sinc(Mm(0.0)), Mm(1.0)},
        {isnan(zz(1, nan)), test::logical_of(1.0)},
        {isinf(zz(1, -inf)), test::logical_of(1.0)},
        {isfinite(zz(nan, 1)), test::logical_of(0.0)},
        {imag(Mm(3.0)), Mm(0.0)},
        {max(zz(3, 4), zz(5, 0)), zz(3, 4)}, // equal moduli: the first
        {max(zz(nan, 0), zz(1, 1)), zz(nan, 0)},
        {min(zz(nan, 0), zz(1, 1)), zz(1, 1)},
        {max(Mm(nan), 1.0), Mm(1.0)},
        {max(Mm(1.0), nan), Mm(1.0)},
        {min(Mm(nan), nan), Mm(nan)},
        {asinh(Mm(-1e10)), Mm(std::log(-0.5 / -1e10))},
        {reallog(Mm(-1.0)), Mm(nan)},
        {realsqrt(zz(4, 1)), Mm(0.0)}, // needs a plane it may not have
        {gamma(zz(4, 9)), Mm(6.0)},    // looks at the real plane only
        {expint(row({1, -1})),
         complex_of(row({kn::expint_real(1), kn::expint_real(-1)}), row({0, -kn::raw_pi}))},
    };
    int number = 0;
    for (const auto &c : cases) {
        SCOPED_TRACE(number++);
        EXPECT_SAME(c.got, c.wanted);
    }
    EXPECT_TRUE(std::signbit(minus(1.0, zz(1, 0)).i()));
}

TEST(ElementEngine, comparisons_of_complex_and_nan) {
    Mm a = zz(1, 1), b = zz(1, -1);
    EXPECT_SAME(a < b, test::logical_of(0.0));
    EXPECT_SAME(a <= b, test::logical_of(1.0));
    EXPECT_SAME(a == b, test::logical_of(0.0));
    EXPECT_SAME(a != b, test::logical_of(1.0));
    EXPECT_SAME(a == 1.0, test::logical_of(0.0));
    Mm n = nan;
    for (const Mm &r : {n == n, n < n, n >= n, !n}) EXPECT_SAME(r, test::logical_of(0.0));
    for (const Mm &r : {n != n, n && 1.0, n || 0.0, mxor(n, 0.0)}) EXPECT_SAME(r, test::logical_of(1.0));
    EXPECT_SAME(zz(0, 2) && 1.0, test::logical_of(1.0));
    // A comparison makes its operands forget an imaginary plane of zeros.
    Mm c = zz(3, 0);
    (void)(c < 4.0);
    EXPECT_FALSE(c.isc());
}

// -- The entries.

struct Entry {
    const char *name;
    Mm (*f)(const Mm &);
    op_t op;
    // Whether a real element asks for a complex result.
    bool (*asks)(double);
};
constexpr auto no = [](double) { return false; };
constexpr auto below_0 = [](double x) { return x < 0; };
constexpr auto outside_1 = [](double x) { return x < -1 || x > 1; };
constexpr auto outside_01 = [](double x) { return x < 0 || x > 1; };
constexpr auto inside_1 = [](double x) { return x > -1 && x < 1; };
constexpr auto below_1 = [](double x) { return x < 1; };

#define ENTRY(name, asks) \
    { #name, name, op_##name, asks }
// clang-format off
const Entry keep_complex[] = {
    ENTRY(ceil, no), ENTRY(floor, no), ENTRY(fix, no), ENTRY(round, no), ENTRY(sign, no), ENTRY(exp, no),
    ENTRY(sin, no), ENTRY(cos, no), ENTRY(tan, no), ENTRY(sec, no), ENTRY(csc, no), ENTRY(cot, no),
    ENTRY(sinc, no), ENTRY(atan, no), ENTRY(acot, no), ENTRY(asinh, no), ENTRY(acsch, no), ENTRY(sinh, no),
    ENTRY(cosh, no), ENTRY(tanh, no), ENTRY(sech, no), ENTRY(csch, no), ENTRY(coth, no), ENTRY(uminus, no),
    {"pow2", pow2, op_pow2_1, no}, {"-", operator-, op_uminus, no}, ENTRY(log, below_0),
    ENTRY(log10, below_0), ENTRY(log2, below_0), {"msqrt", msqrt, op_sqrt, below_0}, ENTRY(sqrt, below_0),
    ENTRY(acos, outside_1), ENTRY(asin, outside_1), ENTRY(atanh, outside_1), ENTRY(asech, outside_01),
    ENTRY(asec, inside_1), ENTRY(acsc, inside_1), ENTRY(acoth, inside_1), ENTRY(acosh, below_1),
};
const Entry stay_real[] = {
    ENTRY(abs, no), ENTRY(angle, no), {"arg", arg, op_angle, no}, ENTRY(imag, no), ENTRY(erf, no),
    ENTRY(erfc, no), ENTRY(erfcx, no), ENTRY(erfinv, no), ENTRY(gamma, no), ENTRY(gammaln, no),
    {"reallog", reallog, op_log, no}, {"realsqrt", realsqrt, op_sqrt, no},
};
const Entry logical[] = {
    ENTRY(isfinite, no), ENTRY(isinf, no), ENTRY(isnan, no), {"finite", finite, op_isfinite, no},
    {"kn_isnan", kn_isnan, op_isnan, no}, {"mnot", mnot, op_not, no}, {"!", operator!, op_not, no},
};
// clang-format on

// What the fast path of a scalar gives, and what the engine gives with the same request.
void expect_entry(const Entry &e, const Mm &x, bool complex, bool is_logical) {
    SCOPED_TRACE(e.name + testing::PrintToString(x));
    Mm wanted = engine(complex, x, zero_M, e.op);
    wanted.setlogical(is_logical);
    Mm got = e.f(x);
    EXPECT_SAME(got, wanted);
    EXPECT_EQ(std::memcmp(&got.getflags(), &wanted.getflags(), sizeof(M_types)), 0);
    for (int k = 0; k < got.getnnz() && got.gettype() == kn_double; ++k)
        EXPECT_TRUE(same_bits(got.addr()[k], wanted.addr()[k]));
}

TEST(ElementEntries, ask_for_complex_results_where_reals_end) {
    const double probes[] = {-inf, -2, -1, -0.5, -0.0, 0, 0.5, 1, 1.5, inf, nan};
    for (const Entry &e : keep_complex) {
        for (double x : probes) {
            expect_entry(e, x, e.asks(x), false);
            expect_entry(e, row({x, 1}), e.asks(x) || e.asks(1), false);
        }
        expect_entry(e, zz(0.25, 0), true, false);
        expect_entry(e, TM("AB"), e.asks(65), false);
        for (double v : {0.0, 1.0, 7.0}) expect_entry(e, U8({{v}}), e.asks(v), false);
        // Unstored zeros count.
        EXPECT_EQ(e.f(test::sparse_of(1, 3, {{1, 1.0}})).isc() != 0, e.asks(0) || e.asks(1)) << e.name;
    }
    for (const Entry &e : stay_real)
        for (double x : probes) expect_entry(e, x, false, false);
    for (const Entry &e : logical)
        for (const Mm &x : {Mm(2.0), Mm(nan), zz(0, inf), row({0, 1, -inf}), U8({{0, 3}})})
            expect_entry(e, x, false, true);
}

struct Entry2 {
    const char *name;
    Mm (*f)(const Mm &, const Mm &);
    op_t op;
    bool complex, logical;
};
// clang-format off
const Entry2 entries2[] = {
    {"+", operator+, op_plus, true, false}, {"-", operator-, op_minus, true, false},
    {"*", operator*, op_mtimes, true, false}, {"mtimes", mtimes, op_mtimes, true, false},
    {"/", operator/, op_rdivide, true, false}, {"mrdivide", mrdivide, op_rdivide, true, false},
    {"plus", plus, op_plus, true, false}, {"minus", minus, op_minus, true, false},
    {"times", times, op_times, true, false}, {"dot_mul", dot_mul, op_times, true, false},
    {"rdivide", rdivide, op_rdivide, true, false}, {"dot_div", dot_div, op_rdivide, true, false},
    {"ldivide", ldivide, op_ldivide, true, false}, {"dot_invdiv", dot_invdiv, op_ldivide, true, false},
    {"power", power, op_power, true, false}, {"dot_pow", dot_pow, op_power, true, false},
    {"max", max, op_max_2, true, false}, {"min", min, op_min_2, true, false},
    {"<", operator<, op_lt, false, true}, {"lt", lt, op_lt, false, true},
    {">", operator>, op_gt, false, true}, {"gt", gt, op_gt, false, true},
    {"<=", operator<=, op_le, false, true}, {"le", le, op_le, false, true},
    {">=", operator>=, op_ge, false, true}, {"ge", ge, op_ge, false, true},
    {"==", operator==, op_eq, false, true}, {"eq", eq, op_eq, false, true},
    {"!=", operator!=, op_ne, false, true}, {"ne", ne, op_ne, false, true},
    {"&&", operator&&, op_and, false, true}, {"mand", mand, op_and, false, true},
    {"||", operator||, op_or, false, true}, {"mor", mor, op_or, false, true},
    {"mxor", mxor, op_xor, false, true}, {"atan2", atan2, op_atan2, false, false},
    {"rem", rem, op_rem, false, false}, {"mod", mod, op_mod, false, false},
    {"pow2", pow2, op_pow2_2, false, false}, {"beta", beta, op_beta, false, false},
    {"betaln", betaln, op_betaln, false, false}, {"gammainc", gammainc, op_gammainc, false, false},
    {"mbitand", mbitand, op_bitand, false, false}, {"mbitor", mbitor, op_bitor, false, false},
    {"bitxor", bitxor, op_bitxor, false, false}, {"bitcmp", bitcmp, op_bitcmp, false, false},
    {"bitget", bitget, op_bitget, false, false}, {"bitset", bitset, op_bitset, false, false},
    {"bitreset", bitreset, op_bitreset, false, false}, {"bitshift", bitshift, op_bitshift, false, false},
};
// clang-format on

TEST(ElementEntries, of_two_operands_agree_with_the_engine) {
    const double probes[] = {-3, -0.5, -0.0, 0, 2, 3.5, inf, nan};
    for (const Entry2 &e : entries2) {
        auto expect = [&e](const Mm &a, const Mm &b, bool complex) {
            SCOPED_TRACE(e.name + testing::PrintToString(a) + testing::PrintToString(b));
            Mm wanted = engine(complex, a, b, e.op);
            wanted.setlogical(e.logical);
            Mm got = e.f(a, b);
            EXPECT_SAME(got, wanted);
            EXPECT_EQ(std::memcmp(&got.getflags(), &wanted.getflags(), sizeof(M_types)), 0);
            for (int k = 0; k < got.getnnz() && got.gettype() == kn_double; ++k)
                EXPECT_TRUE(same_bits(got.addr()[k], wanted.addr()[k]));
        };
        for (double x : probes)
            for (double y : probes) {
                bool complex = e.op == op_power && x < 0 && y != 2;
                expect(x, y, complex);
                expect(row({x, 1}), y, complex);
            }
        expect(zz(1, 2), 3.0, e.complex);
        expect(3.0, zz(1, 2), e.complex);
        expect(zz(1, 2), zz(2, 1), e.complex);
        expect(U8({{7, 200}}), 3.0, false);
        EXPECT_EQ(e.f(Mm(0, 0, 0, 1, 1, kn_uint8), 1.0).gettype(), kn_uint8);
    }
    EXPECT_TRUE(power(row({-1, 4}), row({2, 2})).isc()); // only the scalar 2 keeps a power real
    EXPECT_FALSE(power(row({-1, 4}), 2.0).isc());
    EXPECT_TRUE(power(row({-1, 4}), 3.0).isc());
    EXPECT_FALSE(power(2.0, row({-1, 4})).isc());
}

TEST(ElementEntries, that_do_not_enter_the_engine) {
    Mm a = test::named("a", row({1, 2})), z = zz(1, 2);
    EXPECT_EQ(real(a).addr(), a.addr()); // the block is shared
    EXPECT_EQ(conj(a).addr(), a.addr());
    EXPECT_EQ(uplus(z).addr(), z.addr());
    EXPECT_EQ((+z).addi(), z.addi());
    EXPECT_SAME(real(z), Mm(1.0));
    EXPECT_SAME(conj(z), zz(1, -2));
    EXPECT_SAME(real(test::sparse_of(1, 3, {{1, 4.0}})), test::sparse_of(1, 3, {{1, 4.0}}));
    EXPECT_SAME(arg(zz(0, 1)), Mm(kn::raw_pi / 2));
}

TEST(ElementEntries, of_plain_doubles) {
    EXPECT_EQ(power(3.0, 2.0), 9);
    EXPECT_EQ(plus(1.0, 2.0) + minus(3.0, 1.0) + mtimes(2.0, 2.0) + mrdivide(6.0, 2.0), 12);
    EXPECT_EQ(abs(-2.5), 2.5);
    EXPECT_EQ(round(-2.5), -3);
    EXPECT_EQ(log2(8.0), std::log(8.0) / std::log(2.0));
}

TEST(ElementEntries, log2_with_two_outputs) {
    Mm f, e;
    log2(row({8, -0.75, 0, inf, nan}), i_o, f, e);
    EXPECT_SAME(f, row({0.5, -0.75, 0, inf, nan}));
    EXPECT_SAME(e, row({4, 0, 0, 0, 0}));
    log2(test::sparse_of(2, 2, {{1, 8.0}, {3, 0.5}}), i_o, f, e);
    EXPECT_SAME(f, test::sparse_of(2, 2, {{1, 0.5}, {3, 0.5}}));
    EXPECT_SAME(e, test::sparse_of(2, 2, {{1, 4.0}})); // zeros are not stored
    Mm x = test::nd({2, 1, 2}, {1, 2, 3, 4});
    log2(x, i_o, f, x);
    EXPECT_SAME(times(f, pow2(x)), test::nd({2, 1, 2}, {1, 2, 3, 4}));
    EXPECT_RAISES(log2(test::cell_of(1, 1, {1.0}), i_o, f, e),
                  "Operation can not be performed on non-numerical datatypes");
}

TEST(ElementEntries, betainc_expands_scalars) {
    Mm x = row({0.25, 0.5}), wanted = row({kn::betainc_real(0.25, 2, 3), kn::betainc_real(0.5, 2, 3)});
    EXPECT_SAME(betainc(x, 2.0, 3.0), wanted);
    EXPECT_SAME(beta(x, row({2, 2}), 3.0), wanted);
    EXPECT_SAME(betainc(0.5, 2.0, row({1, 3})),
                row({kn::betainc_real(0.5, 2, 1), kn::betainc_real(0.5, 2, 3)}));
    EXPECT_SAME(betainc(x, Mm(), 3.0), Mm());
    EXPECT_RAISES(betainc(x, 2.0, M({{1}, {2}})),
                  "betainc: incompatible dimensions of: (temporary), (temporary)");
}

TEST(ElementEntries, wrong_counts_are_reported) {
    Mm x = 1.0;
    EXPECT_RAISES(lt(x), "lt does not accept 1 input");
    EXPECT_RAISES(sin(x, x), "sin does not accept 2 inputs");
    EXPECT_RAISES(max(x, x, x, x), "max does not accept 4 inputs");
}

// -- Bytes.

TEST(ElementEngine, bytes_compute_in_bytes) {
    EXPECT_SAME(U8({{200}}) + U8({{100}}), U8({{44}}));
    EXPECT_SAME(U8({{5}}) + 1000.0, U8({{(5 + 1000) % 256}}));
    EXPECT_SAME(1000.9 - U8({{5, 6}}), U8({{(1000 - 5) % 256, (1000 - 6) % 256}}));
    EXPECT_SAME(times(U8({{20}}), -1.0), U8({{256 - 20}}));
    EXPECT_SAME(U8({{7, 9, 0}}) / 2.0, U8({{3, 4, 0}}));
    EXPECT_SAME(rdivide(U8({{7, 0}}), 0.0), U8({{255, 0}}));
    EXPECT_SAME(ldivide(U8({{2}}), 9.0), U8({{4}}));
    EXPECT_SAME(-U8({{1, 0}}), U8({{255, 0}}));
    EXPECT_SAME(U8({{3, 4}}) > 3.0, test::logical_of(U8({{0, 1}})));
    EXPECT_SAME(U8({{3}}) == 259.0, test::logical_of(U8({{1}}))); // narrowed first
    EXPECT_SAME(max(U8({{3, 9}}), 5.0), U8({{5, 9}}));
    EXPECT_SAME(sqrt(U8({{10}})), U8({{3}}));
    EXPECT_SAME(exp(U8({{6, 200}})), U8({{403 % 256, 0}}));
    EXPECT_SAME(bitshift(U8({{3}}), 7.0), U8({{128}}));
    // Bytes are not meant to be complex.
    EXPECT_SAME(engine(1, U8({{4}}), zero_M, op_acos), acos(U8({{4}})));
    EXPECT_TRUE(acos(U8({{4}})).isc());
    EXPECT_EQ(acos(U8({{4}})).ur(1), 0);
}

// -- Sparse values.

TEST(ElementEngine, sparse_operands_give_what_full_ones_give) {
    test::Random random(9);
    auto some = [&](int m, int n, bool complex) {
        Mm a(complex, 0, 0, m, n, kn_double);
        for (int k = 0; k < a.getnnz(); ++k) {
            bool stored = random.below(3) == 0;
            a.addr()[k] = stored ? random.below(9) - 3 : 0;
            if (complex) a.addi()[k] = stored && random.below(2) ? random.below(5) - 2 : 0;
        }
        return a;
    };
    for (int op = 0; op < op_count_; ++op)
        for (int round = 0; round < 24; ++round) {
            SCOPED_TRACE(kn::op_name(op) + std::string(" round ") + std::to_string(round));
            bool along = op < first_elementwise, two = !along && is_binary(op);
            int form = two ? round % 4 : 0;
            Mm a = form == 2 ? Mm(random.below(4) - 1.0) : some(3, 4, round & 4);
            Mm b = !two        ? (op == op_del2 || op == op_gradient ? row({0, 1, 2, 3}) : zero_M)
                   : form == 1 ? Mm(random.below(4) - 1.0)
                               : some(3, 4, round & 8);
            // In the union of positions both zeros stay out, whatever the function makes of them.
            if (op == op_gammainc) continue;
            int complex = a.isc() || b.isc();
            Mm sa = form == 3 ? a : sparse(a), sb = two ? sparse(b) : b;
            if (form == 1 && round & 16) sb = b;
            Mm wanted = Mm(complex, a, b, zero_M, static_cast<op_t>(op), along, l_M);
            Mm got = Mm(complex, sa, sb, zero_M, static_cast<op_t>(op), along, l_M);
            bool mixed = sa.issparse() != sb.issparse() && (op == op_plus || op == op_minus);
            ASSERT_EQ(got.issparse() != 0, !mixed);
            if (got.getnnz() == 0 && !got.isc()) wanted.getreal(0); // nothing was computed
            ASSERT_SAME(mixed ? got : full(got), wanted.getnnz() ? wanted : Mm());
            for (int k = 0; k < got.getnnz() && !mixed; ++k)
                ASSERT_TRUE(!(got.addr()[k] == 0) || (got.isc() && !(got.addi()[k] == 0)));
            ASSERT_TRUE(form == 3 || sa.issparse());
        }
}

TEST(ElementEngine, sparse_results) {
    Mm s = test::sparse_of(2, 3, {{1, 2.0}, {4, -3.0}});
    EXPECT_FALSE((s + M({{1, 1, 1}, {1, 1, 1}})).issparse());
    EXPECT_SAME(s + 1.0, M({{1, 1, -2}, {3, 1, 1}}));
    EXPECT_SAME(s + s, test::sparse_of(2, 3, {{1, 4.0}, {4, -6.0}}));
    EXPECT_SAME(s - s, test::sparse_of(2, 3, {}));
    EXPECT_SAME(times(s, 2.0), test::sparse_of(2, 3, {{1, 4.0}, {4, -6.0}}));
    EXPECT_SAME(times(s, nan), test::sparse_of(2, 3, {{1, nan}, {4, nan}})); // the pattern is kept
    EXPECT_SAME(times(0.0, s), test::sparse_of(2, 3, {}));
    EXPECT_SAME(s > 0.0, test::logical_of(test::sparse_of(2, 3, {{1, 1.0}})));
    EXPECT_SAME(sign(s), test::sparse_of(2, 3, {{1, 1.0}, {4, -1.0}}));
    EXPECT_EQ(cos(s).getnnz(), 6);
    EXPECT_SAME(sum(s), test::sparse_of(1, 3, {{0, 2.0}, {2, -3.0}}));
    EXPECT_SAME(abs(test::sparse_of(2, 2, {})), test::sparse_of(2, 2, {}));
    EXPECT_SAME(muint8(2.0) == test::sparse_of(1, 2, {{1, 2.0}}),
                test::logical_of(test::sparse_of(1, 2, {{1, 1.0}})));
    EXPECT_SAME(expint(test::sparse_of(1, 2, {{0, -1.0}})), sparse(expint(row({-1, 0}))));
    Mm y, i;
    max(s, i_o, y, i);
    EXPECT_SAME(y, test::sparse_of(1, 3, {{0, 2.0}}));
    EXPECT_SAME(i, row({2, 1, 2}));
    EXPECT_RAISES(s + test::sparse_of(3, 2, {{5, 1.0}}),
                  "plus: incompatible dimensions of: (temporary), (temporary)");
    EXPECT_SAME(s, test::sparse_of(2, 3, {{1, 2.0}, {4, -3.0}})); // untouched by all that
}

// -- Shapes and empty operands.

TEST(ElementEngine, shapes) {
    EXPECT_SAME(row({1, 2, 3}) + 1.0, row({2, 3, 4}));
    EXPECT_SAME(1.0 + row({1, 2, 3}), row({2, 3, 4}));
    Mm cube = test::nd({2, 1, 2}, {1, 2, 3, 4});
    EXPECT_SAME(cube * 2.0, test::nd({2, 1, 2}, {2, 4, 6, 8}));
    EXPECT_SAME(cube + cube, test::nd({2, 1, 2}, {2, 4, 6, 8}));
    // A code of a dimension without one looks at one element, and a code of one operand can be expanded.
    EXPECT_SAME(engine(0, row({5, 6, 7}), zero_M, op_sum), row({5, 0, 0}));
    EXPECT_SAME(engine(0, 4.0, row({1, 1}), op_sqrt), row({2, 2}));
    EXPECT_FALSE((TM("ab") + 1.0).isstr());
}

TEST(ElementEngine, empty_operands) {
    Mm none;
    EXPECT_SAME(none == none, test::logical_of(1.0));
    EXPECT_SAME(none == 1.0, test::logical_of(0.0));
    EXPECT_SAME(none != none, test::logical_of(0.0));
    EXPECT_SAME(row({1, 2}) != none, test::logical_of(1.0));
    EXPECT_SAME(none + 1.0, none);
    EXPECT_SAME(none < 1.0, test::logical_of(none));
    EXPECT_SAME(sqrt(none), none);
    EXPECT_SAME(none * row({1, 2}), none);
    EXPECT_SAME(Mm(0, 0, 0, 0, 0, kn_uint8) + 1.0, none); // double
    EXPECT_SAME(engine(1, none, none, op_plus), none);
}

// -- Messages.

Mm answer_struct(Mm, Mm) { return 42.0; }

TEST(ElementEngine, messages) {
    Mm a = test::named("a", row({1, 2, 3})), b = test::named("b", M({{1}, {2}})),
       cell = test::cell_of(1, 2, {1.0, 2.0});
    EXPECT_RAISES(a + b, "plus: incompatible dimensions of: a, b");
    EXPECT_RAISES(max(a, b), "max_2: incompatible dimensions of: a, b");
    EXPECT_RAISES(times(a, cell), "Operation can not be performed on non-numerical datatypes");
    EXPECT_RAISES(sin(cell), "Operation can not be performed on non-numerical datatypes");
    EXPECT_RAISES(cell * cell, "Operation can not be performed on non-numerical datatypes");
    EXPECT_RAISES(Mm(i_o, "x", 0) + 1.0, "variable 'x' was used without a value");
    EXPECT_RAISES(-Mm(i_o, "x", 0), "variable 'x' was used without a value");
    EXPECT_RAISES(engine(0, 1.0, 1.0, 99), "op_core: unknown op");
    EXPECT_RAISES(engine(0, 1.0, 1.0, -1), "op_core: unknown op");
    EXPECT_STREQ(kn::op_name(99), "???");
    EXPECT_STREQ(kn::op_name(75), "mtimes");
    EXPECT_STREQ(kn::op_name(20), "and");

    test::Returning handler;
    EXPECT_SAME(a + b, Mm());
    EXPECT_SAME(sin(cell), Mm());
    EXPECT_SAME(Mm(i_o, "x", 0) + 1.0, Mm());
    EXPECT_SAME(engine(1, row({1, 2}), 1.0, 99), complex_of(row({0, 0}), row({0, 0})));
    EXPECT_EQ(handler.errors().size(), 5u);
    EXPECT_EQ(handler.errors()[3], "M::M(op): inconsistent datatypes");
}

TEST(ElementEngine, classes_are_called_by_the_name_of_the_operation) {
    register_class_function("enginetest", "plus", answer_struct);
    register_class_function("enginetest", "sin", answer_struct);
    register_class_function("enginetest", "mrdivide", answer_struct);
    register_class_function("enginetest", "mtimes", answer_struct);
    Mm object = mclass(test::struct_of({{"f", 1.0}}), TM("enginetest"));
    for (const Mm &r : {object + 1.0, 1.0 + object, sin(object), object / 2.0, 3.0 * object})
        EXPECT_SAME(r, Mm(42.0));
    EXPECT_RAISES(cos(object), "class enginetest has no method named cos");
}

// -- Failing memory, and handlers that throw.

#ifdef QUORVEX_ALLOC_PROBE
TEST(ElementEngine, every_allocation_may_fail) {
    const Mm a = row({3, -1, 2, 8}), z = complex_of(a, a), u = muint8(a), s = sparse(row({0, 1, 0, -2})),
             m = M({{2, 1}, {4, 3}}), mz = complex_of(m, m), x = row({1, 2});
    std::vector<std::function<void()>> work = {
        [&] { (void)(a + 1.0); },
        [&] { (void)sqrt(a); },
        [&] { (void)(z - a); },
        [&] { (void)(u + a); },
        [&] { (void)(s + a); },
        [&] { (void)(s + s); },
        [&] { (void)times(s, 2.0); },
        [&] { (void)cos(s); },
        [&] { (void)sum(u); },
        [&] { (void)median(m, 2.0); },
        [&] { (void)median(mz, 1.0); },
        [&] { (void)expint(a); },
        [&] { (void)(m * m); },
        [&] { (void)(mz * mz); },
        [&] { (void)(Mm(2.0) + 3.0); },
        [&] { (void)betainc(u, 2.0, s); },
        [&] { (void)gradient(m, x); },
        [&] { (void)del2(m); },
        [&] { (void)unwrap(z); },
        [&] { (void)diff(a, 2.0); },
        [&] { (void)(sparse(m) * m); },
        [&] {
            Mm y, i;
            max(m, i_o, y, i);
        },
        [&] {
            Mm f, e;
            log2(s, i_o, f, e);
        },
        [&] {
            Mm gx, gy;
            gradient(u, i_o, gx, gy);
        },
    };
    for (size_t w = 0; w < work.size(); ++w)
        for (bool returning : {false, true})
            for (long n = 1;; ++n) {
                SCOPED_TRACE("work " + std::to_string(w) + " allocation " + std::to_string(n));
                long live = kn::alloc_probe.live;
                std::optional<test::Returning> handler;
                if (returning) handler.emplace();
                kn::alloc_probe.allocations = 0;
                kn::alloc_probe.fail_at = n;
                kn::alloc_probe.fail_after = returning && n % 2;
                try {
                    work[w]();
                } catch (const test::Raised &r) {
                    EXPECT_EQ(r.text, "Out of memory!");
                }
                bool reached = kn::alloc_probe.allocations >= n;
                kn::alloc_probe.fail_at = 0;
                ASSERT_EQ(kn::alloc_probe.live, live);
                if (!reached) break;
            }
    EXPECT_SAME(s, sparse(row({0, 1, 0, -2})));
}
#endif

TEST(ElementEngine, a_thrown_error_leaves_nothing_behind) {
    long live = kn::alloc_probe.live;
    {
        Mm s = test::sparse_of(1, 3, {{0, 1.0}}), cell = test::cell_of(1, 1, {1.0});
        for (int k = 0; k < 3; ++k) {
            EXPECT_NE(test::raised([&] { (void)times(s, cell); }), "(no error)");
            EXPECT_NE(test::raised([&] { (void)(s + row({1, 2})); }), "(no error)");
            EXPECT_NE(test::raised([&] { (void)sum(s, 9.0); }), "(no error)");
        }
        EXPECT_SAME(s, test::sparse_of(1, 3, {{0, 1.0}}));
    }
    EXPECT_EQ(kn::alloc_probe.live, live);
}

} // namespace

TEST(Elementary, square_root_of_reals_in_the_complex_plane) {
    EXPECT_SAME(sqrt(row({-1, NAN, 1.7e308, 4})),
                test::complex_of(row({0, NAN, std::sqrt(1.7e308), 2}), row({1, 0, 0, 0})));
}

TEST(SparsePlan, dense_plan_passes_a_report_on) {
    test::Returning returning;
    EXPECT_TRUE(kn::same_block(sum(sparse(test::M({{1, 2}, {3, 4}})), 7), x_M));
    EXPECT_EQ(returning.errors().size(), 1u);
}
