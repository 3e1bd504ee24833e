// Sizes of the builders, and the ranges.
#include <cmath>

#include "support/support.h"

using namespace test;

namespace {

std::vector<int> extents(const Mm &m) { return {m.getdims(), m.getdims() + m.getndims()}; }
using Extents = std::vector<int>;

TEST(Builders, sizes) {
    Mm n = 3.7, text = row({2, 3});
    text.setstr(1);
    const std::pair<Mm, Extents> table[] = {
        {zeros(2.9), {2, 2}},
        {ones(1, n), {1, 3}},
        {eye(n), {3, 3}},
        {randM(2.9), {2, 2}},
        {randn(4, 0.9), {0, 0}},
        {zeros(-HUGE_VAL), {0, 0}},
        {zeros(NAN), {0, 0}},
        {zeros(), {1, 1}},
        {ones(test::U8({{2}}), test::sparse_of(1, 1, {{0, 3}})), {2, 3}},
        {randM(2, 3, 4, 1), {2, 3, 4}},
        {randn(2, 3, 1, 2), {2, 3, 1, 2}},
        {zeros(row({2.9, 1})), {3, 1}},
        {randM(test::col({2, 0.4})), {0, 0}},
        {ones(row({2, NAN})), {0, 0}},
        {randn(row({1, 1, 1, 2})), {1, 1, 1, 2}},
        {ones(2, Mm()), {0, 0}},
        {randM(text), {2, 3}}, // a text that is no command
        {randn(text, 5), {2, 3}},
    };
    for (const auto &[m, dims] : table) EXPECT_EQ(extents(m), dims);

    test::Warnings warnings;
    EXPECT_EQ(extents(zeros(2, row({3, 4}))), (Extents{2, 3}));
    EXPECT_EQ(extents(zeros(row({1, 2, 3, 4, 5}))), (Extents{1, 2, 3, 4}));
    EXPECT_EQ(warnings.texts(),
              (std::vector<std::string>{"eye01: expecting scalar argument", "eye01: too many dimensions"}));
}

TEST(Builders, identity_fills_the_first_page_only) {
    Mm e = eye(row({2, 3, 4}));
    EXPECT_EQ(extents(e), (Extents{2, 3, 4}));
    for (int k = 0; k < 24; k++) EXPECT_EQ(e.addr()[k], k == 0 || k == 3) << k;
}

TEST(Builders, impossible_sizes) {
    for (auto build :
         {+[] { return zeros(1e10); }, +[] { return randM(1e5, 1e5); }, +[] { return colon(1, 1e300); },
          +[] { return colon(0, 1, HUGE_VAL); }, +[] { return czeros(1, 1 << 20, 1 << 20); }}) {
        EXPECT_RAISES(build(), "Out of memory!");
        test::Returning returning;
        EXPECT_EQ(build().size(), 0);
    }
}

TEST(Builders, complex_from_the_start) {
    for (int complex : {0, 1}) {
        Mm z = czeros(complex, 2, 3), e = ceye(complex, 3, 2);
        EXPECT_EQ(z.isc(), complex);
        for (int k = 0; complex && k < 6; k++) EXPECT_TRUE(z.addi()[k] == 0 && e.addi()[k] == 0);
        z.getreal(1), e.getreal(1);
        EXPECT_SAME(z, M({{0, 0, 0}, {0, 0, 0}}));
        EXPECT_SAME(e, M({{1, 0}, {0, 1}, {0, 0}}));
    }
}

// ---- Ranges ----

TEST(Ranges, values_and_ends) {
    EXPECT_SAME(colon(1, 3.9), row({1, 2, 3}));
    EXPECT_TRUE(std::signbit(colon(-0.0, 2.0).r(1))) << "the first element is the first number";
    EXPECT_SAME(colon(0, 0.1, 0.3), row({0, 0.1, 0.3 - 0.1, 0.3}));
    EXPECT_SAME(colon(7, 3, 8), Mm(7.0));
    for (const Mm &none : {colon(3, 1), colon(1, 0, 3), colon(1, -1, 3), colon(3, 1, 1), colon(NAN, 2),
                           colon(1, NAN, 3), colon(NAN, 1, 3), colon(HUGE_VAL, HUGE_VAL), colon(Mm(), 3)})
        EXPECT_SAME(none, Mm());
    EXPECT_SAME(colon(row({2, 9}), row({4, 9})), row({2, 3, 4}));
    EXPECT_SAME(colon(test::U8({{1}}), test::sparse_of(1, 1, {{0, 2}}), 5), row({1, 3, 5}));
    EXPECT_EQ(colon(0, 0.1, 1).r(11), 1);
    EXPECT_EQ(colon(0, 1, 3 - 1e-9).r(4), 3 - 1e-9) << "an almost whole count is exact";
    EXPECT_EQ(colon(0, 1, 3 + 1e-9).r(4), 3 + 1e-9);
    EXPECT_EQ(colon(0, 1, 3 - 1e-7).size(), 3);
}

TEST(Ranges, step_1_adds_up) {
    for (double a : {0.1, -7.3, 1e15 + 0.5, 3.0, -0x1p53, 0x1p53}) {
        Mm x = colon(a, a + 50);
        double sum = a;
        for (int k = 1; k <= x.size(); k++, sum += 1) ASSERT_EQ(x.r(k), sum) << a << " + " << k - 1;
    }
}

TEST(Ranges, random_steps) {
    std::mt19937 engine(1);
    std::uniform_real_distribution<double> draw(-100, 100);
    for (int round = 0; round < 2000; round++) {
        double a = draw(engine), s = draw(engine) / 20, b = a + std::abs(draw(engine)) * (s > 0 ? 1 : -1);
        bool whole = round % 2 == 0;
        int steps = static_cast<int>(std::floor((b - a) / s));
        if (whole) b = steps * s + a;

        Mm x = colon(a, s, b);
        int n = x.size();
        ASSERT_EQ(n, steps + 1) << a << " " << s << " " << b;
        const double *v = x.addr();
        double last = whole ? b : (n - 1) * s + a;
        EXPECT_EQ(v[0], a);
        EXPECT_NEAR(v[n - 1], last, 1e-13);
        EXPECT_TRUE(s > 0 ? v[n - 1] <= last && last <= b : v[n - 1] >= last && last >= b);
        for (int k = 1; k < n; k++) {
            EXPECT_NEAR(v[k], a + k * s, 1e-12);
            EXPECT_GT((v[k] - v[k - 1]) / s, 0);
        }
        for (int k = 1; k < n / 2; k++) EXPECT_EQ(v[n - 1 - k], last + a - v[k]) << "symmetry at " << k;
    }
}

TEST(Ranges, linspace_and_logspace) {
    EXPECT_SAME(linspace(1, 3, 5), row({1, 1.5, 2, 2.5, 3}));
    EXPECT_SAME(linspace(1, 2, 0), Mm(2.0));
    EXPECT_SAME(linspace(0, 2, 2.5), row({0, 2 / 1.5}));
    EXPECT_EQ(extents(linspace(0, 1)), (Extents{1, 100}));
    EXPECT_SAME(linspace(0, test::C(0, 2), 3), test::complex_of(row({0, 0, 0}), row({0, 1, 2})));

    EXPECT_NEAR_ULP(logspace(0, 2, 3), row({1, 10, 100}), 1);
    EXPECT_NEAR_ULP(logspace(0, pi, 3), row({1, std::sqrt(M_PI), M_PI}), 4);
    for (double n : {1.0, static_cast<double>(NAN)}) EXPECT_SAME(logspace(0, 2, n), Mm(100.0));
    EXPECT_EQ(extents(logspace(0, 1)), (Extents{1, 50}));
    EXPECT_SAME(logspace(7), Mm(7.0));
}

// ---- Questions ----

TEST(Questions, kinds) {
    Mm one = 1, cell = test::cell_of(1, 1, {one}), record = test::struct_of({{"a", one}}), object = record;
    object.setclassid(1);
    Mm flagged = test::logical_of(one), flagged_complex = test::C(1, 1);
    flagged_complex.setlogical(1);
    struct {
        Mm (*ask)(const Mm &);
        std::vector<Mm> yes, no;
    } cases[] = {
        {isstruct, {record}, {object, cell, one, Mm()}},
        {iscell, {cell}, {record, object, one}},
        {islogical, {flagged}, {one, flagged_complex}},
        {iscomplex, {test::C(1, 2), test::C(1, NAN)}, {one, test::C(1, 0), cell}},
        {isvector, {one, row({1, 2}), zeros(1, 1, 3), cell}, {Mm(), eye(2), ones(2, 1, 2)}},
    };
    for (auto &c : cases) {
        for (const Mm &m : c.yes) EXPECT_SAME(c.ask(m), test::logical_of(1.0)) << testing::PrintToString(m);
        for (const Mm &m : c.no) EXPECT_SAME(c.ask(m), test::logical_of(0.0)) << testing::PrintToString(m);
    }
    Mm zero_plane = test::C(1, 0);
    iscomplex(zero_plane);
    EXPECT_TRUE(zero_plane.isc()) << "asking changes nothing";
}

} // namespace
