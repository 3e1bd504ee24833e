// Sizes of the builders, and the ranges.
#include <cmath>

#include "support/support.h"

using namespace test;

namespace {

TEST(Builders, sizes) {
    Mm n = 3.7, text = row({2, 3});
    text.setstr(1);
    const std::pair<Mm, Mm> table[] = {
        {eye(n), row({3, 3})},
        {randn(4, 0.9), row({0, 0})},
        {ones(test::U8({{2}}), test::sparse_of(1, 1, {{0, 3}})), row({2, 3})},
        {randn(2, 3, 1, 2), row({2, 3, 1, 2})},
        {zeros(row({2.9, 1})), row({3, 1})},
        {ones(row({2, NAN})), row({0, 0})},
        {ones(2, Mm()), row({0, 0})},
        {randM(text), row({2, 3})}, // a text that is no command
        {randn(text, 5), row({2, 3})},
    };
    for (const auto &[m, dims] : table) EXPECT_SAME(size(m), dims);

    test::Warnings warnings;
    EXPECT_SAME(size(zeros(2, row({3, 4}))), row({2, 3}));
    EXPECT_SAME(size(zeros(row({1, 2, 3, 4, 5}))), row({1, 2, 3, 4}));
    EXPECT_EQ(warnings.texts(),
              (std::vector<std::string>{"eye01: expecting scalar argument", "eye01: too many dimensions"}));
}

TEST(Builders, impossible_sizes) {
    for (auto build :
         {+[] { return zeros(1e10); }, +[] { return randM(1e5, 1e5); }, +[] { return colon(1, 1e300); },
          +[] { return colon(0, 1, HUGE_VAL); }, +[] { return czeros(1, 1 << 20, 1 << 20); }})
        EXPECT_RAISES(build(), "Out of memory!");
}

TEST(Builders, complex_from_the_start) {
    Mm e = ceye(1, 3, 2), page = eye(row({2, 3, 4}));
    EXPECT_EQ(czeros(1, 2, 3).isc(), 1);
    EXPECT_SAME(e, complex_of(M({{1, 0}, {0, 1}, {0, 0}}), zeros(3, 2)));
    EXPECT_TRUE(page.r(1) == 1 && page.r(4) == 1 && sum(page(c_p)).r() == 2) << "the first page only";
}

// ---- Ranges ----

TEST(Ranges, values_and_ends) {
    for (double a : {0.1, 1e15 + 0.5, -0x1p53, 0x1p53}) EXPECT_EQ(colon(a, a + 9).r(3), a + 1 + 1);
    EXPECT_SAME(colon(1, 3.9), row({1, 2, 3}));
    EXPECT_TRUE(std::signbit(colon(-0.0, 2.0).r(1))) << "the first element is the first number";
    EXPECT_SAME(colon(0, 0.1, 0.3), row({0, 0.1, 0.3 - 0.1, 0.3}));
    for (const Mm &none : {colon(1, 0, 3), colon(3, 1, 1), colon(1, NAN, 3), colon(HUGE_VAL, HUGE_VAL)})
        EXPECT_SAME(none, Mm());
    EXPECT_SAME(colon(row({2, 9}), row({4, 9})), row({2, 3, 4}));
    EXPECT_SAME(colon(test::U8({{1}}), test::sparse_of(1, 1, {{0, 2}}), 5), row({1, 3, 5}));
    EXPECT_EQ(colon(0, 1, 3 - 1e-9).r(4), 3 - 1e-9) << "an almost whole count is exact";
    EXPECT_EQ(colon(0, 1, 3 - 1e-7).size(), 3);
}

TEST(Ranges, random_steps) {
    std::mt19937 engine(1);
    std::uniform_real_distribution<double> draw(-100, 100);
    for (int round = 0; round < 2000; round++) {
        double a = draw(engine), s = draw(engine) / 20, b = a + std::abs(draw(engine)) * (s > 0 ? 1 : -1);
        const int steps = static_cast<int>(std::floor((b - a) / s));
        const double last = steps * s + a;
        if (round % 2 == 0) b = last;
        Mm x = colon(a, s, b);
        int n = x.size();
        ASSERT_EQ(n, steps + 1) << a << " " << s << " " << b;
        const double *v = x.addr();
        EXPECT_NEAR(v[n - 1], last, 1e-13);
        EXPECT_TRUE(s > 0 ? v[n - 1] <= last && last <= b : v[n - 1] >= last && last >= b);
        for (int k = 0; k < n; k++) EXPECT_NEAR(v[k], a + k * s, k ? 1e-12 : 0);
        for (int k = 1; k < n / 2; k++) EXPECT_EQ(v[n - 1 - k], last + a - v[k]) << "symmetry at " << k;
    }
}

TEST(Ranges, linspace_and_logspace) {
    EXPECT_SAME(linspace(1, 2, 0), Mm(2.0));
    EXPECT_SAME(size(linspace(0, 1)), row({1, 100}));
    EXPECT_SAME(linspace(0, test::C(0, 2), 3), test::complex_of(row({0, 0, 0}), row({0, 1, 2})));

    EXPECT_NEAR_ULP(logspace(0, pi, 3), row({1, std::sqrt(M_PI), M_PI}), 4);
    for (double n : {1.0, static_cast<double>(NAN)}) EXPECT_SAME(logspace(0, 2, n), Mm(100.0));
    EXPECT_SAME(size(logspace(0, 1)), row({1, 50}));
}

// ---- Questions ----

TEST(Questions, kinds) {
    Mm one = 1, cell = test::cell_of(1, 1, {one}), record = test::struct_of({{"a", one}}), object = record;
    object.setclassid(1);
    Mm flagged = test::logical_of(one), flagged_complex = test::C(1, 1);
    flagged_complex.setlogical(1);
    const struct {
        Mm (*ask)(const Mm &);
        std::vector<Mm> yes, no;
    } cases[] = {
        {isstruct, {record}, {object, cell, one, Mm()}},
        {iscell, {cell}, {record, object, one}},
        {islogical, {flagged}, {one, flagged_complex}},
        {iscomplex, {test::C(1, 2), test::C(1, NAN)}, {one, test::C(1, 0), cell}},
        {isreal, {TM("a"), test::C(1, 0)}, {test::C(1, 2), cell}},
        {isnumeric, {U8({{1}})}, {TM("a")}},
        {ischar, {TM("a")}, {U8({{97}})}},
        {isempty, {TM("")}, {Mm(0.0)}},
        {isvector, {one, row({1, 2}), zeros(1, 1, 3), cell}, {Mm(), eye(2), ones(2, 1, 2)}},
    };
    for (auto &c : cases) {
        for (const Mm &m : c.yes) EXPECT_SAME(c.ask(m), test::logical_of(1.0)) << testing::PrintToString(m);
        for (const Mm &m : c.no) EXPECT_SAME(c.ask(m), test::logical_of(0.0)) << testing::PrintToString(m);
    }
    EXPECT_RAISES(isempty(Mm(i_o, "u", 0)), "variable 'u' was used without a value");
    Mm zero_plane = test::C(1, 0);
    iscomplex(zero_plane);
    EXPECT_TRUE(zero_plane.isc()) << "asking changes nothing";
}

TEST(Questions, truth_of_a_condition) {
    for (const Mm &x :
         {Mm(3.0), Mm(NAN), C(0, 1), M({{1, 2}, {3, 4}}), U8({{1}}), TM("a"), sparse_of(1, 1, {{0, 2}})})
        EXPECT_TRUE(istrue(x));
    for (const Mm &x : {Mm(0.0), Mm(), C(0, 0), M({{1, 0}}), U8({{0}}), sparse_of(2, 2, {{0, 2}})})
        EXPECT_FALSE(istrue(x));
    EXPECT_RAISES(istrue(cell_of(1, 1, {1.0})),
                  "istrue: numeric data expected, but matrix (temporary) is not");
}

} // namespace
