// The kernels of the special functions: reference values, edges, laws and closed forms.
//
// The reference table has 25 digits for the exact doubles. Tolerances are relative and stand at the errors
// that special_functions.h promises; the laws allow a few roundings more, for the arithmetic of the law
// itself.

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <span>
#include <sstream>

#include "special/special_functions.h"
#include "support/support.h"

using namespace kn;

namespace {

using wide = long double;

constexpr double inf = std::numeric_limits<double>::infinity(),
                 nan = std::numeric_limits<double>::quiet_NaN();
constexpr double tiny = std::numeric_limits<double>::denorm_min(), huge = std::numeric_limits<double>::max();

template <auto f> double call(double x, double y, double z) noexcept {
    if constexpr (requires { f(x); })
        return f(x);
    else if constexpr (requires { f(x, y); })
        return f(x, y);
    else
        return f(x, y, z);
}
struct Function {
    int inputs;
    double (*f)(double, double, double) noexcept; // which ignores other inputs
    double tolerance;                             // of the reference table
};
const std::map<std::string, Function> functions = {
    {"gamma", {1, call<gamma_real>, 7e-16}},   {"gammaln", {1, call<gammaln_real>, 8e-16}},
    {"erf", {1, call<erf_real>, 3e-16}},       {"erfc", {1, call<erfc_real>, 6e-16}},
    {"erfcx", {1, call<erfcx_real>, 7e-16}},   {"erfinv", {1, call<erfinv_real>, 4e-16}},
    {"expint", {1, call<expint_real>, 2e-15}}, {"beta", {2, call<beta_real>, 3e-16}},
    {"betaln", {2, call<betaln_real>, 3e-16}}, {"gammainc", {2, call<gammainc_real>, 6e-16}},
    {"betainc", {3, call<betainc_real>, 0}}};

/// Equal within `tolerance` relative to `want`; infinities and NaN must be the same, zeros also in sign.
testing::AssertionResult near(double got, double want, double tolerance = 0) {
    bool same = got == want && std::signbit(got) == std::signbit(want);
    if (std::isnan(want)) same = std::isnan(got);
    if (std::isfinite(want) && want != 0) same = std::fabs(got - want) <= tolerance * std::fabs(want);
    if (same) return testing::AssertionSuccess();
    return testing::AssertionFailure() << std::hexfloat << got << " instead of " << want;
}

/// Reproducible arguments, uniform or uniform in the logarithm.
struct Draw {
    std::mt19937_64 engine{20240229};
    double uniform(double a, double b) { return a + (b - a) * 0x1p-64 * static_cast<double>(engine()); }
    double spread(double a, double b) { return std::exp(uniform(std::log(a), std::log(b))); }
};

constexpr int draws = 20000;

/// x cut to 30 binary places, so that x + 1 and 1 - x are exact.
double cut(double x) { return std::floor(x * 0x1p30) * 0x1p-30; }

TEST(SpecialFunctions, reference_values) {
    std::ifstream table(QUORVEX_TEST_DATA "/special_values.csv");
    std::string line, cell;
    int rows = 0;
    for (std::getline(table, line); std::getline(table, line); ++rows) {
        std::vector<std::string> cells;
        for (std::istringstream row(line); std::getline(row, cell, ',');) cells.push_back(cell);
        ASSERT_EQ(cells.size(), 4u) << line;
        const auto &[inputs, f, tolerance] = functions.at(cells[0]);
        const double y = inputs == 2 ? std::stod(cells[2]) : 0;
        EXPECT_TRUE(near(f(std::stod(cells[1]), y, 0), std::stod(cells[3]), tolerance)) << line;
    }
    EXPECT_EQ(rows, 120);
}

TEST(SpecialFunctions, edges) {
    const struct {
        const char *name;
        double at[3], want;
        // clang-format off
    } rows[] = {
        {"gamma", {-0.0}, inf}, {"gamma", {-3}, inf}, {"gamma", {-inf}, nan}, {"gamma", {171.7}, inf},
        {"gamma", {tiny}, inf}, {"gamma", {-190.5}, -0.0}, {"gammaln", {2}, 0.0}, {"gammaln", {-7}, inf},
        {"gammaln", {-inf}, inf}, {"gammaln", {huge}, inf}, {"erf", {-0.0}, -0.0}, {"erf", {-inf}, -1},
        {"erf", {tiny}, tiny}, {"erfc", {-inf}, 2}, {"erfc", {30}, 0.0}, {"erfcx", {tiny}, 1},
        {"erfcx", {-26.64}, inf}, {"erfcx", {inf}, 0.0}, {"erfinv", {-0.0}, -0.0}, {"erfinv", {-1}, -inf},
        {"erfinv", {-1.5}, nan}, {"erfinv", {tiny}, tiny}, {"expint", {-0.0}, inf}, {"expint", {-inf}, -inf},
        {"expint", {800}, 0.0}, {"expint", {-717}, -inf}, {"expint", {inf}, 0.0}, {"gammainc", {0, 2}, 0.0},
        {"gammainc", {2, 0}, 1}, {"gammainc", {0, 0}, 0.0}, {"gammainc", {2, inf}, 0.0},
        {"gammainc", {inf, inf}, nan}, {"gammainc", {-1, 2}, nan}, {"gammainc", {1, -2}, nan},
        {"gammainc", {tiny, tiny}, 1}, {"gammainc", {1, huge}, 0.0}, {"gammainc", {huge, 1}, 1},
        {"beta", {-0.0, 3}, inf}, {"beta", {0, inf}, inf}, {"beta", {-1.5, 3}, nan},
        {"beta", {1e4, 1e4}, 0.0}, {"betaln", {inf, 3}, -inf}, {"betainc", {0, 2, 3}, 0},
        {"betainc", {1, 2, 3}, 1}, {"betainc", {-0.1, 2, 3}, nan}, {"betainc", {1.1, 2, 3}, nan},
        {"betainc", {0.5, 2, -1}, nan}, {"betainc", {0.5, 0, 3}, 1}, {"betainc", {0.5, 0, 0}, nan},
        {"betainc", {0, 0, 0}, 0}, {"betainc", {0.5, inf, 3}, 0}, {"betainc", {0.5, inf, inf}, nan},
        {"betainc", {0.5, 2, inf}, 1}, {"betainc", {0.5, tiny, tiny}, 0.5},
        {"betainc", {0.5, huge, huge}, 0.5}, {"betainc", {0.6, huge, huge}, 1}};
    // clang-format on
    for (const auto &[name, at, want] : rows)
        EXPECT_TRUE(near(functions.at(name).f(at[0], at[1], at[2]), want)) << name << " " << at[0];

    // At the ends of the range, and below the smallest normal double.
    EXPECT_TRUE(near(expint_real(720), 0x0.00000036682bp-1022, 1e-13));
    EXPECT_TRUE(near(erfcx_real(1e308), 5.641895835477563e-309, 1e-13));
    EXPECT_TRUE(near(expint_real(-0.37250741078136663), 5.1196989365556847e-17, 2e-15));
    EXPECT_TRUE(near(erfinv_real(1 - 0x1p-53), 5.863584748755168, 4e-16));
    EXPECT_TRUE(near(betaln_real(tiny, 1), 744.4400719213812, 3e-16));
    EXPECT_TRUE(near(betaln_real(1e300, 1e300), -2e300 * std::log(2.0), 3e-16));
}

// Every function of every combination of extremes: no invalid operation, no division by zero, NaN from NaN,
// and the probabilities within 0..1.
TEST(SpecialFunctions, extremes_are_quiet) {
    std::vector<double> grid{0.0, tiny, 1e-310, 1e-200, 1e-16, 1e-3, 0.5,   0.99999, 1,   1.5, 3,
                             26,  27,   170.5,  710,    1e5,   1e16, 1e100, huge,    inf, nan};
    for (std::size_t i = grid.size(); i-- > 0;) grid.push_back(-grid[i]);
    std::feclearexcept(FE_ALL_EXCEPT);
    for (const auto &[name, of] : functions) {
        const bool fraction = name == "gammainc" || name == "betainc";
        const auto others = [&](int from) {
            return std::span(grid).first(of.inputs < from ? 1 : grid.size());
        };
        for (double x : grid)
            for (double y : others(2))
                for (double z : others(3)) {
                    const double got = of.f(x, y, z);
                    const bool of_nan = std::isnan(x) || std::isnan(y) || std::isnan(z);
                    const bool quiet = std::fetestexcept(FE_INVALID | FE_DIVBYZERO) == 0;
                    std::feclearexcept(FE_ALL_EXCEPT);
                    EXPECT_TRUE(quiet &&
                                (std::isnan(got) || (!of_nan && (!fraction || (got >= 0 && got <= 1)))))
                        << name << " " << x << " " << y << " " << z << ": " << got;
                }
    }
}

// P and I where the expansion for large parameters takes over, and where only it can answer; values by series
// of 60 digits and by quadrature of 50.
TEST(SpecialFunctions, large_parameters) {
    const double sets[][5] = {
        {0.007495310967425319, 21.12339505757826, 1703.4074344305511, 0.021589045641805818, 9e-16},
        {0.9080823105306132, 3300.0837563115806, 213.62120915094084, 5.7193727992071915e-12, 9e-16},
        {0.7531978344213544, 5953.775608578977, 1235.458970332076, 1.9526373807969224e-53, 9e-16},
        {0.499999, 1e12, 1e12, 0.0023388674910585045589, 6e-16},
        {0.24999924, 1e12, 3e12, 0.00022380758178458985596, 6e-16},
        {9.9e-8, 1e5, 1e12, 0.00075750170998045311979, 6e-16}};
    for (const auto &[x, a, b, want, tolerance] : sets)
        EXPECT_TRUE(near(betainc_real(x, a, b), want, tolerance)) << x;
    EXPECT_TRUE(near(gammainc_real(999994e6, 1e12), 9.8651676196455504863e-10, 6e-16));
    EXPECT_TRUE(near(gammainc_real(1000002e6, 1e12), 0.97724981406088127512, 6e-16));
    for (double a : {1e10, 1e15, 1e20, 1e100, 1e300}) {
        // P(a, a) = 1/2 + 1 / (3 sqrt(2 pi a)) + O(a^-3/2)
        EXPECT_TRUE(near(gammainc_real(a, a), 0.5 + 0.13298076013381091 / std::sqrt(a), 3e-16)) << a;
        EXPECT_TRUE(near(betainc_real(0.5, a, a), 0.5, 2e-16)) << a;
    }
}

TEST(SpecialFunctions, gamma_and_beta_laws) {
    wide factorial = 1;
    for (int n = 1; n <= 22; ++n) EXPECT_EQ(gamma_real(n + 1), static_cast<double>(factorial *= n)) << n;
    Draw draw;
    for (int i = 0; i < draws; ++i) {
        const double x = cut(draw.uniform(-20, 170)) + 0x1p-31, ln = std::log(std::fabs(gamma_real(x)));
        EXPECT_TRUE(near(gamma_real(x + 1), x * gamma_real(x), 2e-15)) << x;
        EXPECT_NEAR(gammaln_real(x), ln, 1e-15 + 5e-16 * std::fabs(ln)) << x;
        const double a = draw.spread(1e-5, 1e5), b = std::ceil(draw.spread(1e-5, 1e5)),
                     beta = betaln_real(b, a);
        EXPECT_NEAR(betaln_real(a, b + 1), beta - std::log1p(a / b), 1e-15 + 4e-16 * std::fabs(beta))
            << a << ", " << b;
        EXPECT_TRUE(near(beta_real(a, 1), 1 / a, 3e-16)) << a;
    }
}

TEST(SpecialFunctions, error_function_laws) {
    Draw draw;
    for (int i = 0; i < draws; ++i) {
        const double x = draw.uniform(-6, 6);
        EXPECT_NEAR(erf_real(x) + erfc_real(x), 1, 3e-16) << x;
        EXPECT_EQ(erf_real(-x), -erf_real(x)) << x;

        const wide w = draw.uniform(-26.6, 26.6);
        EXPECT_TRUE(near(erfcx_real(w), std::exp(w * w) * std::erfc(w), 7e-16)) << w;
        const wide z = draw.spread(1e3, 1e12), r = 1 / (2 * z * z); // DLMF 7.12.1
        EXPECT_TRUE(
            near(erfcx_real(z), (1 - r * (1 - 3 * r * (1 - 5 * r))) / z / 1.77245385090551602730L, 7e-16))
            << z;

        // A rounding of erf(y) moves its inverse by slope times as much.
        const double y = draw.spread(1e-300, 5), slope = 0.8862269254527580 * std::exp(y * y);
        EXPECT_NEAR(erfinv_real(erf_real(y)), y, 1e-15 * y + 4e-16 * slope * erf_real(y)) << y;
    }
}

// E1 and Ei by their series, DLMF 6.6.2, where it does not cancel.
TEST(SpecialFunctions, expint_law) {
    constexpr wide euler = 0.577215664901532860606512090082402431L;
    Draw draw;
    for (int i = 0; i < draws; ++i) {
        const wide x = i % 2 ? draw.uniform(-30, 2) : draw.spread(1e-300, 2);
        wide sum = -euler - std::log(std::fabs(x)), term = -1;
        for (int n = 1; n < 150; ++n) sum += (term *= -x / n) / n;
        EXPECT_TRUE(near(expint_real(x), sum, 2e-15)) << x;
    }
}

// P(a, x) - P(a + 1, x) = x^a e^-x / Gamma(a + 1), across all places where the method changes; closed forms.
TEST(SpecialFunctions, gammainc_laws) {
    Draw draw;
    for (int i = 0; i < draws; ++i) {
        const double a = cut(i % 2 ? draw.spread(1e-3, 2000) : draw.uniform(10, 40)),
                     x = a * draw.spread(0.3, 4);
        const double p = gammainc_real(x, a);
        const wide step = std::exp(wide{a} * std::log(wide{x}) - x - std::lgamma(wide{a} + 1));
        EXPECT_NEAR(p, gammainc_real(x, a + 1) + step, 2e-15 * p) << x << ", " << a;
        EXPECT_TRUE(near(gammainc_real(x, 1), -std::expm1(-x), 1e-15)) << x;
        EXPECT_TRUE(near(gammainc_real(x * x, 0.5), erf_real(x), 2e-15)) << x;
    }
}

// Symmetry; I_x(a, b) - I_x(a + 1, b) = x^a y^b / (a B(a, b)) across all places where the method changes;
// closed forms.
TEST(SpecialFunctions, betainc_laws) {
    Draw draw;
    for (int i = 0; i < draws; ++i) {
        const double top = i % 2 ? 20 : 5e4, a = cut(draw.spread(1, top)), b = draw.spread(1e-3, top);
        const double mean = a / (a + b), deviation = std::sqrt(mean * (1 - mean) / (a + b + 1));
        const double x = cut(std::clamp(mean + draw.uniform(-8, 8) * deviation, 1e-8, 1 - 1e-8));
        const double p = betainc_real(x, a, b), log_b = betaln_real(a, b);
        EXPECT_NEAR(p + betainc_real(1 - x, b, a), 1, 4e-16) << x << ", " << a << ", " << b;
        const wide step = std::exp(a * std::log(wide{x}) + b * std::log1p(-wide{x}) - log_b) / a;
        EXPECT_NEAR(p, betainc_real(x, a + 1, b) + step, (2e-15 + 4e-16 * std::fabs(log_b)) * p)
            << x << ", " << a << ", " << b;

        // Also where I is tiny beside a tiny b.
        const double small = draw.spread(1e-300, 1);
        EXPECT_TRUE(near(betainc_real(x, 1, small), -std::expm1(small * std::log1p(-x)), 1e-15))
            << x << ", " << small;
        EXPECT_TRUE(near(betainc_real(x, small, 1), std::pow(x, small), 4e-16)) << x << ", " << small;
    }
}

} // namespace
