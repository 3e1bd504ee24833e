// The matrix product against sums of products, its special numbers and its messages.

#include <cmath>

#include "support/support.h"

using namespace test;

namespace {

Mm product(const Mm &a, const Mm &b) {
    Mm c = zeros(a.rows(), b.cols());
    for (int i = 1; i <= c.rows(); ++i)
        for (int j = 1; j <= c.cols(); ++j) c(i, j) = sum(times(transpose(a(i, c_p)), b(c_p, j)));
    return c;
}

// Small ones, so that every order of the additions gives the same.
Mm whole_numbers(int m, int n, bool complex) {
    const Mm x = fix(19 * randM(m, n)) - 9;
    return complex ? x + i * (fix(19 * randM(m, n)) - 9) : x;
}

TEST(Multiply, is_the_sum_of_products) {
    const int sizes[][3] = {{2, 2, 2}, {1, 5, 3}, {4, 3, 1}, {1, 6, 1}, {7, 9, 8}, {33, 5, 40}};
    for (auto [m, k, n] : sizes)
        for (int planes = 0; planes < 4; ++planes) {
            Mm a = whole_numbers(m, k, planes & 1), b = whole_numbers(k, n, planes & 2);
            EXPECT_SAME(a * b, product(a, b));
        }
}

TEST(Multiply, large_complex_products) {
    Mm a = whole_numbers(150, 140, true), b = whole_numbers(140, 130, true);
    Mm wanted = product(a, b);
    EXPECT_SAME(a * b, wanted);
    // An infinity reaches its row only, as by the definition.
    a.addr(3, 7)[0] = HUGE_VAL;
    Mm got = a * b, expected = product(a, b);
    for (int j = 1; j <= 130; ++j) {
        EXPECT_FALSE(std::isfinite(got.r(3, j)));
        EXPECT_EQ(std::isnan(got.r(3, j)), std::isnan(expected.r(3, j)));
        EXPECT_TRUE(got.r(4, j) == wanted.r(4, j) && got.i(2, j) == wanted.i(2, j));
    }
    // Sums of the planes that overflow do not spoil a product that does not.
    Mm big(1, 0, 0, 150, 140, kn_double), one(1, 0, 0, 140, 130, kn_double);
    big.r(1, 1) = big.i(1, 1) = 1.5e308;
    one.r(1, 1) = 1;
    EXPECT_EQ((big * one).r(1, 1), 1.5e308);
    EXPECT_EQ((big * one).i(1, 1), 1.5e308);
}

TEST(Multiply, other_kinds_of_operands) {
    const Mm a = M({{1, 0}, {3, 4}});
    EXPECT_SAME(C(0, 1) * a, complex_of(zeros(2, 2), a));
    EXPECT_SAME(U8({{100}}) * U8({{2, 3}}), U8({{200, 44}}));
    EXPECT_SAME(U8({{100, 200}, {0, 1}}) * M({{3, 0}, {1, 1}}), M({{500, 200}, {1, 1}})); // in doubles
}

TEST(Multiply, messages) {
    Mm a = test::named("a", row({1, 2, 3})), b = test::named("b", M({{1, 2}, {3, 4}}));
    EXPECT_RAISES(a * b, "*: wrong dimensions of: a 1x3, b 2x2");
    EXPECT_RAISES(b * test::nd({2, 1, 2}, {1, 2, 3, 4}), "*: wrong dimensions of: b 2x2, (temporary) 2x1");
}

} // namespace
