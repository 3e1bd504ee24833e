// The element engine: every operation against its own scalars, against independent formulas and across the
// representations of a value; types, shapes, empties, messages.

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
#include <map>

#include "kernels/kernel_table.h"
#include "kernels/op_rows.h"
#include "special/scalar_kernels.h"
#include "special/special_functions.h"
#include "support/functions.h"
#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

constexpr double inf = HUGE_VAL, nan = NAN;
using Cx = std::complex<double>;
using byte = unsigned char;

constexpr int first_elementwise = op_abs;

bool is_binary(int op) { return kn::kernels().numbers[op].binary; }

Mm engine(int complex, const Mm &a, const Mm &b, int op) {
    return Mm(complex, a, b, nop_M, static_cast<op_t>(op), 0, l_M);
}

Mm element(const Mm &a, int k) {
    if (a.gettype() == kn_uint8) return U8({{static_cast<double>(a.getpr(static_cast<byte *>(nullptr))[k])}});
    return a.isc() ? C(a.addr()[k], a.addi()[k]) : Mm(a.addr()[k]);
}

// -- One element at a time.

TEST(ElementEngine, arrays_are_what_their_elements_are) {
    test::Random random(1);
    for (int op = first_elementwise; op < op_count_; ++op)
        for (int round = 0; round < 48; ++round) {
            SCOPED_TRACE(kn::op_name(op) + std::string(" round ") + std::to_string(round));
            // Array and array, array and scalar, scalar and array; long ones leave a rest of vectors.
            const int planes = round % 4, form = round / 4 % 3;
            const bool is_long = round >= 44 - 8 * !planes, bytes = !planes && round % 8;
            auto extent = [&] { return 1.0 + random.below(5); };
            const Mm dims = is_long ? row({1, 1003}) : row({extent(), extent(), extent()});
            auto some = [&](bool scalar, bool complex) {
                if (scalar) return random.matrix(1, 1, complex);
                return reshape(random.matrix(1, prod(dims).r(), complex), dims);
            };
            Mm a = some(form == 2, planes & 1), b = some(form == 1, planes & 2);
            if (bytes) a = muint8(a), b = muint8(b);
            if (!is_binary(op)) b = zero_M;
            int complex = a.isc() || b.isc() || (!bytes && round % 5 == 0);
            Mm whole = engine(complex, a, b, op);
            ASSERT_EQ(whole.isc(), complex);
            for (int k = 0; k < whole.getnnz(); k += is_long && k < 1000 ? 25 : 1) {
                Mm x = element(a, a.getnnz() == 1 ? 0 : k), y = element(b, b.getnnz() == 1 ? 0 : k);
                Mm one = engine(complex, x, y, op), got = element(whole, k);
                SCOPED_TRACE(testing::PrintToString(x) + testing::PrintToString(y));
                if (bytes) {
                    ASSERT_SAME(got, one);
                    continue;
                }
                ASSERT_PRED2(same_bits, *got.addr(), *one.addr());
                ASSERT_TRUE(!complex || same_bits(*got.addi(), *one.addi()));
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
double acosh_by_root(double x) { return std::acosh(x); }
Cx acosh_by_root(Cx z) { return z.real() < 0 ? -std::acosh(z) : std::acosh(z); }

double parts(double (*f)(double), double x) { return f(x); }
Cx parts(double (*f)(double), Cx z) { return {f(z.real()), f(z.imag())}; }

TEST(ElementEngine, functions_of_one_operand) {
    // clang-format off
#define OF(f) [](auto t) -> decltype(t) { return f; }
#define BOTH(op, f, low, high) {op_##op, OF(f), OF(f), low, high}
#define REAL(op, f, low, high) {op_##op, [](double t) -> double { return f; }, nullptr, low, high}
    const Reference references[] = {
        BOTH(sqrt, std::sqrt(t), 0, 9), BOTH(exp, std::exp(t), -5, 5), BOTH(log, std::log(t), 0.01, 9),
        BOTH(log2, std::log(t) / std::log(2.0), 0.01, 9), BOTH(log10, std::log10(t), 0.01, 9),
        BOTH(sin, std::sin(t), -9, 9), BOTH(cos, std::cos(t), -9, 9), BOTH(tan, std::tan(t), -9, 9),
        BOTH(sec, 1.0 / std::cos(t), -9, 9), BOTH(csc, 1.0 / std::sin(t), 0.1, 3),
        BOTH(cot, 1.0 / std::tan(t), 0.1, 3), BOTH(sinh, std::sinh(t), -5, 5),
        BOTH(cosh, std::cosh(t), -5, 5), BOTH(tanh, std::tanh(t), -5, 5),
        BOTH(sech, 1.0 / std::cosh(t), -5, 5), BOTH(csch, 1.0 / std::sinh(t), 0.1, 5),
        BOTH(coth, 1.0 / std::tanh(t), 0.1, 5), BOTH(asin, std::asin(t), -1, 1),
        BOTH(acos, std::acos(t), -1, 1), BOTH(atan, std::atan(t), -9, 9), BOTH(asinh, std::asinh(t), 0, 9),
        BOTH(acosh, acosh_by_root(t), 1.1, 9), BOTH(atanh, std::atanh(t), -0.9, 0.9),
        BOTH(acsc, std::asin(1.0 / t), 1, 9), BOTH(asec, std::acos(1.0 / t), 1, 9),
        BOTH(acot, std::atan(1.0 / t), 0.1, 9), BOTH(acsch, std::asinh(1.0 / t), 0.1, 9),
        BOTH(asech, acosh_by_root(1.0 / t), 0.1, 0.9), BOTH(acoth, std::atanh(1.0 / t), 1.1, 9),
        BOTH(pow2_1, std::pow(2.0, t), -9, 9), BOTH(sinc, std::sin(M_PI * t) / (M_PI * t), 0.1, 3),
        BOTH(abs, std::abs(t), -9, 9), BOTH(angle, std::arg(t), -9, 9), BOTH(imag, std::imag(t), -9, 9),
        BOTH(conj, 2 * std::real(t) - t, -9, 9), BOTH(uminus, -t, -9, 9), BOTH(uplus, t, -9, 9),
        BOTH(sign, t / std::abs(t), -9, 9), BOTH(ceil, parts(std::ceil, t), -9, 9),
        BOTH(floor, parts(std::floor, t), -9, 9), BOTH(fix, parts(std::trunc, t), -9, 9),
        BOTH(round, parts(std::round, t), -9, 9), REAL(erf, std::erf(t), -3, 3),
        REAL(erfc, std::erfc(t), -3, 3),
        REAL(erfcx, std::exp(t * t) * std::erfc(t), -2, 2), REAL(erfinv, kn::erfinv_real(t), -0.9, 0.9),
        REAL(gamma, std::tgamma(t), 0.1, 9), REAL(gammaln, std::lgamma(t), 2.5, 20),
        REAL(expint, -std::expint(-t), 0.1, 5),
    };
#undef BOTH
#undef OF
#undef REAL
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
#define REAL(op, f) {op_##op, [](double x, double y) -> double { return f; }}
    const struct {
        int op;
        double (*real)(double, double);
    } references[] = {
        REAL(plus, x + y), REAL(minus, x - y), REAL(times, x * y), REAL(mtimes, x * y), REAL(rdivide, x / y),
        REAL(ldivide, y / x), REAL(power, std::pow(x, y)), REAL(atan2, std::atan2(x, y)),
        REAL(pow2_2, std::isfinite(y) && std::isfinite(x) ? x * std::exp2(std::trunc(y)) : nan),
        REAL(lt, x < y), REAL(gt, x > y), REAL(le, x <= y), REAL(ge, x >= y), REAL(eq, x == y),
        REAL(ne, x != y), REAL(and, x != 0 && y != 0), REAL(or, x != 0 || y != 0),
        REAL(xor, (x != 0) != (y != 0)),
        REAL(max_2, std::fmax(x, y)), REAL(min_2, std::fmin(x, y)), REAL(mod, kn::mod_real(x, y)),
        REAL(rem, kn::rem_real(x, y)), REAL(beta, kn::beta_real(x, y)), REAL(gammainc, kn::gammainc_real(x, y)),
        REAL(bitand, kn::bit_logic(x, y, kn::Bits::and_)), REAL(bitxor, kn::bit_logic(x, y, kn::Bits::xor_)),
        REAL(bitset, kn::bit_set(x, y)), REAL(bitshift, kn::bit_shift(x, y)),
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
                double apart = r.op == op_power || r.op == op_atan2 ? 0x1p-52 * std::fabs(wanted) : 0;
                EXPECT_TRUE(same_bits(got, wanted) || std::fabs(got - wanted) <= apart)
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

TEST(ElementEngine, kernels_at_their_edges) {
    // clang-format off
    const std::pair<Mm, Mm> cases[] = {
        {abs(C(3e300, 4e300)), 5e300}, {abs(C(0, nan)), nan}, {abs(C(nan, 0)), nan},
        {angle(C(-1, -0.0)), kn::raw_pi}, {angle(Mm(nan)), nan}, {sign(C(-2, 0)), C(-1, 0)},
        {sign(C(0, 3)), C(0, 1)}, {log(C(0, 0)), C(-inf, 0)}, {log(C(-1, -0.0)), C(0, kn::raw_pi)},
        {log(Mm(-1.0)), C(0, kn::raw_pi)}, {sqrt(C(-4, -0.0)), C(-0.0, 2)}, {sqrt(C(0, -2)), C(1, -1)},
        {sqrt(row({-1, nan, 1.7e308, 4})),
         complex_of(row({0, nan, std::sqrt(1.7e308), 2}), row({1, 0, 0, 0}))},
        {exp(C(inf, 0)), C(inf, nan)}, {sin(C(1e300, 0)), complex_of(sin(Mm(1e300)), 0.0)},
        {rdivide(C(1, 0), C(0, 0)), C(inf, 0)}, {rdivide(C(1, 0), 0.0), C(inf, nan)},
        {ldivide(2.0, C(2, 4)), C(1, 2)}, {power(C(0, 1), 2.0), C(-1, 0)}, {power(C(0, 0), C(1, 1)), C(0, 0)},
        {power(C(nan, 1), 0.5), C(nan, 0)}, {power(C(2, 0), inf), C(inf, 0)},
        {power(Mm(-8.0), 3.0), C(-512, 0)}, {power(Mm(-2.0), 2.0), 4.0},
        {acosh(C(0, -1)), C(std::log(1 + std::sqrt(2.0)), -kn::raw_pi / 2)},
        {atanh(Mm(1.0)), inf}, {sinc(C(0, 0)), C(1, 0)}, {sinc(Mm(0.0)), 1.0},
        {isnan(C(1, nan)), test::logical_of(1.0)}, {isinf(C(1, -inf)), test::logical_of(1.0)},
        {isfinite(C(nan, 1)), test::logical_of(0.0)},
        {max(C(3, 4), C(5, 0)), C(3, 4)}, // equal moduli: the first
        {max(C(nan, 0), C(1, 1)), C(nan, 0)}, {min(C(nan, 0), C(1, 1)), C(1, 1)}, {max(Mm(nan), 1.0), 1.0},
        {max(Mm(1.0), nan), 1.0}, {min(Mm(nan), nan), nan}, {asinh(Mm(-1e10)), std::log(-0.5 / -1e10)},
        {reallog(Mm(-1.0)), nan},
        {realsqrt(C(4, 1)), 0.0}, // needs a plane it may not have
        {gamma(C(4, 9)), 6.0},    // looks at the real plane only
        {expint(row({1, -1})),
         complex_of(row({kn::expint_real(1), kn::expint_real(-1)}), row({0, -kn::raw_pi}))},
    };
    // clang-format on
    int number = 0;
    for (const auto &[got, wanted] : cases) {
        SCOPED_TRACE(number++);
        EXPECT_SAME(got, wanted);
    }
    EXPECT_TRUE(std::signbit(minus(1.0, C(1, 0)).i()));
    Mm many = ones(1, 100000); // shared among threads
    EXPECT_SAME(sqrt(many), many);
    many(many.size()) = -1;
    EXPECT_SAME(sqrt(many), complex_of(max(many, 0.0), max(-many, 0.0)));
}

TEST(ElementEngine, comparisons_of_complex_and_nan) {
    const Mm a = C(1, 1), b = C(1, -1);
    for (const Mm &r : {a < b, a == b, a == 1.0, !Mm(nan)}) EXPECT_SAME(r, test::logical_of(0.0));
    for (const Mm &r : {a <= b, a != b, C(0, 2) && 1.0}) EXPECT_SAME(r, test::logical_of(1.0));
    // A comparison makes its operands forget an imaginary plane of zeros.
    Mm c = C(3, 0);
    (void)(c < 4.0);
    EXPECT_FALSE(c.isc());
}

// -- The entries.

bool is_among(std::string list, int op) {
    return (" " + list + " ").find(std::string(" ") + kn::op_name(op) + " ") != std::string::npos;
}

// Whether the function of a real number x is complex.
bool leaves_reals(int op, double x) {
    return is_among("log log2 log10 sqrt", op) ? x < 0
           : is_among("acos asin atanh", op)   ? x < -1 || x > 1
           : is_among("asec acsc acoth", op)   ? x > -1 && x < 1
           : is_among("acosh", op)             ? x < 1
                                               : is_among("asech", op) && (x < 0 || x > 1);
}
bool is_logical(int op) { return is_among("isfinite isinf isnan not lt gt le ge eq ne and or xor", op); }
// Whether it can be complex at all.
bool keeps_complex(int op) {
    return !is_logical(op) && !is_among("abs angle imag erf erfc erfcx erfinv gamma gammaln atan2 rem mod "
                                        "beta betaln gammainc pow2_2 bitand bitor bitxor bitcmp bitget "
                                        "bitset bitreset bitshift",
                                        op);
}

// The operation code of a function with this many inputs; -1 when it is no element operation.
int op_of(std::string word, int inputs) {
    static const std::map<std::string, std::string> others = {
        {"dot_mul", "times"}, {"dot_div", "rdivide"}, {"dot_invdiv", "ldivide"}, {"dot_pow", "power"},
        {"arg", "angle"},     {"finite", "isfinite"}, {"kn_isnan", "isnan"},     {"msqrt", "sqrt"}};
    if (others.contains(word)) word = others.at(word);
    for (int op = first_elementwise; op < op_count_; ++op)
        if (is_among(word + " " + word + "_" + std::to_string(inputs), op) && is_binary(op) == (inputs == 2))
            return op;
    return -1;
}

TEST(ElementEntries, agree_with_the_engine_and_ask_for_complex_results_where_reals_end) {
    const double probes[] = {-inf, -3, -1, -0.5, -0.0, 0, 0.5, 1, 2, 3.5, inf, nan};
    int unary = 0, binary = 0;
    for (const Function &f : functions()) {
        const int op =
            f.form && f.outputs == 1 && (f.count == 1 || f.count == 2) ? op_of(f.about.word, f.count) : -1;
        if (op < 0 || is_among("expint uplus conj", op)) continue;
        auto expect = [&](const Mm &a, const Mm &b, bool complex) {
            SCOPED_TRACE(f.title() + testing::PrintToString(a) + testing::PrintToString(b));
            const Mm inputs[] = {a, b};
            Mm got = f.call(inputs), wanted = engine(complex, a, b, op);
            wanted.setlogical(is_logical(op));
            EXPECT_SAME(got, wanted);
            EXPECT_EQ(std::memcmp(&got.getflags(), &wanted.getflags(), sizeof(M_types)), 0);
            for (int k = 0; k < got.getnnz() && got.gettype() == kn_double; ++k)
                EXPECT_PRED2(same_bits, got.addr()[k], wanted.addr()[k]);
        };
        if (f.count == 1) {
            ++unary;
            for (double x : probes) {
                expect(x, zero_M, leaves_reals(op, x));
                expect(row({x, 1}), zero_M, leaves_reals(op, x) || leaves_reals(op, 1));
            }
            expect(C(0.25, 0), zero_M, keeps_complex(op));
            expect(TM("AB"), zero_M, leaves_reals(op, 65));
            for (double v : {0.0, 7.0}) expect(U8({{v}}), zero_M, leaves_reals(op, v));
            const Mm thin = test::sparse_of(1, 3, {{1, 1.0}}); // unstored zeros count
            EXPECT_EQ(f.call(&thin).isc() != 0, leaves_reals(op, 0) || leaves_reals(op, 1)) << f.title();
        } else {
            ++binary;
            for (double x : probes)
                for (double y : probes) {
                    const bool complex = op == op_power && x < 0 && y != 2;
                    expect(x, y, complex);
                    expect(row({x, 1}), y, complex);
                }
            expect(C(1, 2), 3.0, keeps_complex(op));
            expect(3.0, C(1, 2), keeps_complex(op));
            expect(U8({{7, 200}}), 3.0, false);
        }
    }
    EXPECT_TRUE(unary >= 49 && binary >= 34) << unary << " " << binary;
    EXPECT_TRUE(power(row({-1, 4}), row({2, 2})).isc()); // only the scalar 2 keeps a power real
    EXPECT_FALSE(power(2.0, row({-1, 4})).isc() || power(row({-1, 4}), muint8(2.0)).isc());
    using Two = Mm (*)(const Mm &, const Mm &);
    const std::pair<Two, Two> operators[] = {{operator+, plus},    {operator-, minus}, {operator*, mtimes},
                                             {operator/, rdivide}, {operator<, lt},    {operator>, gt},
                                             {operator<=, le},     {operator>=, ge},   {operator==, eq},
                                             {operator!=, ne},     {operator&&, mand}, {operator||, mor}};
    for (auto [f, g] : operators)
        for (double x : {0.0, 1.0, 2.0}) EXPECT_SAME(f(x, 1.0), g(x, 1.0));
}

TEST(ElementEntries, that_change_nothing_share_the_block) {
    const Mm a = row({1, 2}), z = C(1, 2);
    EXPECT_TRUE(real(a).addr() == a.addr() && conj(a).addr() == a.addr() && (+z).addi() == z.addi());
    EXPECT_SAME(real(z), Mm(1.0));
}

TEST(ElementEntries, log2_with_two_outputs) {
    Mm f, e;
    log2(row({8, -0.75, 0, inf, nan}), i_o, f, e);
    EXPECT_SAME(f, row({0.5, -0.75, 0, inf, nan}));
    EXPECT_SAME(e, row({4, 0, 0, 0, 0}));
    log2(test::sparse_of(2, 2, {{1, 8.0}, {3, 0.5}}), i_o, f, e);
    EXPECT_SAME(f, test::sparse_of(2, 2, {{1, 0.5}, {3, 0.5}}));
    EXPECT_SAME(e, test::sparse_of(2, 2, {{1, 4.0}})); // zeros are not stored
    Mm x = row({3, 5});
    log2(x, i_o, f, x);
    EXPECT_SAME(times(f, pow2(x)), row({3, 5}));
}

TEST(ElementEntries, betainc_expands_scalars) {
    Mm x = row({0.25, 0.5}), wanted = row({kn::betainc_real(0.25, 2, 3), kn::betainc_real(0.5, 2, 3)});
    EXPECT_SAME(beta(x, row({2, 2}), 3.0), wanted);
    EXPECT_SAME(betainc(x, Mm(), 3.0), Mm());
    EXPECT_RAISES(betainc(x, 2.0, M({{1}, {2}})),
                  "betainc: incompatible dimensions of: (temporary), (temporary)");
}

// -- Bytes.

TEST(ElementEngine, bytes_compute_in_bytes) {
    const std::pair<Mm, Mm> cases[] = {
        {U8({{5}}) + 1000.0, U8({{(5 + 1000) % 256}})},
        {1000.9 - U8({{5, 6}}), U8({{(1000 - 5) % 256, (1000 - 6) % 256}})},
        {U8({{7, 9, 0}}) / 2.0, U8({{3, 4, 0}})},
        {rdivide(U8({{7, 0}}), 0.0), U8({{255, 0}})},
        {-U8({{1, 0}}), U8({{255, 0}})},
        {U8({{3}}) == 259.0, test::logical_of(U8({{1}}))}, // narrowed first
        {exp(U8({{6, 200}})), U8({{403 % 256, 0}})},
        {bitshift(U8({{3}}), 7.0), U8({{128}})},
        {engine(1, U8({{4}}), zero_M, op_acos), acos(U8({{4}}))}, // not meant to be complex
    };
    for (const auto &[got, wanted] : cases) EXPECT_SAME(got, wanted);
    EXPECT_TRUE(acos(U8({{4}})).isc());
}

// -- Sparse values.

TEST(ElementEngine, sparse_operands_give_what_full_ones_give) {
    test::Random random(9);
    for (int op = 0; op < op_count_; ++op)
        for (int round = 0; round < 48; ++round) {
            SCOPED_TRACE(kn::op_name(op) + std::string(" round ") + std::to_string(round));
            // In the union of positions both zeros stay out, whatever the function makes of them.
            if (op == op_gammainc) continue;
            const bool along = op < first_elementwise, two = !along && is_binary(op);
            const int form = two ? round % 4 : 0, m = along ? 3 : 1 + random.below(5),
                      n = along ? 4 : 2 + random.below(5);
            Mm sa = form == 2 ? sparse(random.below(4) - 1.0) : random.thin(m, n, 1 + round % 5, round & 4),
               a = full(sa);
            Mm sb = form == 1 ? sparse(random.below(4) - 1.0) : random.thin(m, n, 1 + round % 5, round & 8),
               b = full(sb);
            if (!two) sb = b = op == op_del2 || op == op_gradient ? row({0, 1, 2, 3}) : zero_M;
            if (form == 3) sa = a;
            if (form == 1 && round & 16) sb = b;
            const int complex = a.isc() || b.isc();
            Mm wanted = Mm(complex, a, b, zero_M, static_cast<op_t>(op), along, l_M);
            Mm got = Mm(complex, sa, sb, zero_M, static_cast<op_t>(op), along, l_M);
            bool mixed = sa.issparse() != sb.issparse() && (op == op_plus || op == op_minus);
            ASSERT_EQ(got.issparse() != 0, !mixed);
            kn::check(got);
            ASSERT_SAME(mixed ? got : full(got), wanted.getnnz() ? wanted : Mm());
            for (int k = 0; k < got.getnnz() && !mixed; ++k)
                ASSERT_TRUE(!(got.addr()[k] == 0) || (got.isc() && !(got.addi()[k] == 0)));
            ASSERT_TRUE(form == 3 || sa.issparse());
        }
}

TEST(ElementEngine, sparse_results) {
    Mm s = test::sparse_of(2, 3, {{1, 2.0}, {4, -3.0}}), y, i;
    EXPECT_SAME(times(s, nan), test::sparse_of(2, 3, {{1, nan}, {4, nan}})); // the pattern is kept
    EXPECT_SAME(muint8(2.0) == test::sparse_of(1, 2, {{1, 2.0}}),
                test::logical_of(test::sparse_of(1, 2, {{1, 1.0}})));
    max(s, i_o, y, i);
    EXPECT_SAME(y, test::sparse_of(1, 3, {{0, 2.0}}));
    EXPECT_SAME(i, row({2, 1, 2}));
}

// -- Shapes and empty operands.

TEST(ElementEngine, shapes_and_empty_operands) {
    // A code of a dimension without one looks at one element, and a code of one operand can be expanded.
    EXPECT_SAME(engine(0, row({5, 6, 7}), zero_M, op_sum), row({5, 0, 0}));
    EXPECT_SAME(engine(0, 4.0, row({1, 1}), op_sqrt), row({2, 2}));
    EXPECT_FALSE((TM("ab") + 1.0).isstr());
    const Mm none, yes = test::logical_of(1.0), no = test::logical_of(0.0);
    const std::pair<Mm, Mm> cases[] = {{none == none, yes},
                                       {none == 1.0, no},
                                       {none != none, no},
                                       {row({1, 2}) != none, yes},
                                       {none + 1.0, none},
                                       {none < 1.0, test::logical_of(none)},
                                       {none * row({1, 2}), none},
                                       {engine(1, none, none, op_plus), none},
                                       {Mm(0, 0, 0, 0, 0, kn_uint8) + 1.0, none}};
    for (const auto &[got, wanted] : cases) EXPECT_SAME(got, wanted);
}

// -- Messages.

Mm answer_struct(Mm, Mm) { return 42.0; }

TEST(ElementEngine, messages) {
    const Mm a = test::named("a", row({1, 2, 3})), b = test::named("b", M({{1}, {2}})), s = sparse(a),
             cell = test::cell_of(1, 2, {1.0, 2.0}), none;
    test::Returning handler;
    for (const Mm &m :
         {a + b, max(a, b), times(sparse(b), test::named("s", s)), sin(cell), Mm(i_o, "x", 0) + 1.0})
        EXPECT_SAME(m, none);
    EXPECT_SAME(engine(1, row({1, 2}), 1.0, 99), complex_of(row({0, 0}), row({0, 0})));
    EXPECT_TRUE(kn::same_block(sum(s, 7), x_M)) << "the plan of a sparse value";
    EXPECT_EQ(handler.errors(),
              (std::vector<std::string>{
                  "plus: incompatible dimensions of: a, b", "max_2: incompatible dimensions of: a, b",
                  "times: incompatible dimensions of: (temporary), s",
                  "Operation can not be performed on non-numerical datatypes",
                  "variable 'x' was used without a value", "M::M(op): inconsistent datatypes",
                  "op_core: unknown op", "sum: dimension=7 does not exist for matrix (temporary)"}));
    EXPECT_RAISES(median(a, cell), "median: Operation can not be performed on non-numerical datatypes");
}

TEST(ElementEngine, classes_are_called_by_the_name_of_the_operation) {
    for (const char *name : {"plus", "sin", "mrdivide", "mtimes"})
        register_class_function("enginetest", name, answer_struct);
    Mm object = mclass(test::struct_of({{"f", 1.0}}), TM("enginetest"));
    for (const Mm &r : {object + 1.0, 1.0 + object, sin(object), object / 2.0, 3.0 * object})
        EXPECT_SAME(r, Mm(42.0));
    EXPECT_RAISES(cos(object), "class enginetest has no method named cos");
}

} // namespace
