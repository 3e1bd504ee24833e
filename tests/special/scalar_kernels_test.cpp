// The kernels on one number, and the overloads on plain doubles.

#include <cmath>

#include "special/scalar_kernels.h"
#include "support/support.h"

namespace {

constexpr double inf = HUGE_VAL, nan = NAN;

TEST(ScalarKernels, conversions) {
    struct {
        double x;
        int as_int, as_byte;
        // clang-format off
    } cases[] = {
        {2.9, 2, 2}, {-2.9, -2, 254}, {300.5, 300, 44}, {inf, 2147483647, 0}, {-inf, -2147483647, 0},
        {nan, -2147483647, 0}, {2147483647.5, 2147483647, 255}, {-2147483648.0, -2147483647, 0},
        {-2147483647.0, -2147483647, 1}, {0x1p62 + 0x1p20, 2147483647, 0}, {4294967297.0, 2147483647, 1},
        {1e300, 2147483647, 0}, {-1e300, -2147483647, 0}};
    // clang-format on
    for (auto &c : cases) {
        EXPECT_EQ(double_to_int(c.x), c.as_int) << c.x;
        EXPECT_EQ(kn::to_byte(c.x), c.as_byte) << c.x;
    }
}

// Of equal numbers max2 and min2 take the second. 0.7 / 0.1 falls just below 7 and counts as 7; in rem of
// negative quotients it does not.
TEST(ScalarKernels, at_their_edges) {
    // clang-format off
    const double cases[][2] = {
        {kn::round_real(2.5), 3}, {kn::round_real(-2.5), -3}, {kn::round_real(-0.4), -0.0}, {fix(-0.5), -0.0},
        {kn::round_real(nan), nan}, {fix(-inf), -inf}, {sign(-3.0), -1}, {sign(-0.0), 0}, {sign(nan), -1},
        {max2(1.0, nan), 1}, {max2(nan, -inf), -inf}, {min2(1.0, nan), 1}, {min2(nan, inf), inf},
        {max2(nan, nan), nan}, {max2(0.0, -0.0), -0.0}, {min2(-0.0, 0.0), 0.0},
        {kn::pow2_2(0.75, 4), 12}, {kn::pow2_2(-1, 1024), -inf}, {kn::pow2_2(0.5, 1024), 0x1p1023},
        {kn::pow2_2(kn::raw_realmax, 1), inf}, {kn::pow2_2(3, -1e300), 0}, {kn::pow2_2(3, nan), nan},
        {kn::pow2_2(-3, inf), inf}, {kn::pow2_2(3, -inf), -inf},
        {rem(0.7, 0.1), 0}, {mod(0.7, 0.1), 0}, {rem(-0.7, 0.1), -0.7 + 6 * 0.1}, {mod(5.0, 0.0), nan},
        {rem(5.0, 0.0), nan}, {rem(1.0, inf), nan}, {mod(-inf, 2.0), nan},
    };
    // clang-format on
    for (auto [got, wanted] : cases) EXPECT_PRED2(test::same_bits, got, wanted);
}

TEST(ScalarKernels, remainders_of_whole_numbers) {
    for (int x = -20; x <= 20; ++x)
        for (int y : {-6, -5, -3, -1, 1, 2, 4, 6}) {
            EXPECT_EQ(rem(x, y), x % y) << x << " " << y;
            EXPECT_EQ(mod(x, y), (x % y + y) % y) << x << " " << y;
        }
}

TEST(ScalarKernels, range_reduce_keeps_the_angle) {
    std::mt19937_64 random(7);
    for (int k = 0; k < 2000; ++k) {
        double x =
            std::ldexp(1 + static_cast<double>(random() >> 12) * 0x1p-52, static_cast<int>(random() % 1020));
        if (k % 2) x = -x;
        double r = kn::range_reduce(x);
        ASSERT_LT(std::fabs(r), 54 * 2 * M_PI);
        ASSERT_EQ(std::signbit(r), std::signbit(x));
        // The sum of at most 53 terms below 2 pi, each rounded.
        ASSERT_NEAR(std::sin(r), std::sin(x), 1e-12) << x;
        ASSERT_NEAR(std::cos(r), std::cos(x), 1e-12) << x;
    }
    EXPECT_EQ(kn::range_reduce(0.3), 0.3);
    EXPECT_EQ(kn::range_reduce(8), 1.7168146928204135);
    EXPECT_TRUE(std::isnan(kn::range_reduce(inf)));
}

TEST(ScalarKernels, bits_are_those_of_whole_numbers) {
    std::mt19937_64 random(11);
    for (int k = 0; k < 500; ++k) {
        uint64_t a = random() >> 11, b = random() >> 11;
        double x = static_cast<double>(a), y = static_cast<double>(b);
        EXPECT_EQ(kn::bit_logic(x, y, kn::Bits::and_), static_cast<double>(a & b));
        EXPECT_EQ(kn::bit_logic(x, y, kn::Bits::or_), static_cast<double>(a | b));
        EXPECT_EQ(kn::bit_logic(x, y, kn::Bits::xor_), static_cast<double>(a ^ b));
        EXPECT_EQ(kn::bit_complement(x, 53), static_cast<double>(~a & ((uint64_t{1} << 53) - 1)));
        unsigned n = 1 + static_cast<unsigned>(b % 53);
        uint64_t bit = uint64_t{1} << (n - 1);
        EXPECT_EQ(kn::bit_get(x, n), (a & bit) != 0);
        EXPECT_EQ(kn::bit_set(x, n), static_cast<double>(a | bit));
        EXPECT_EQ(kn::bit_reset(x, n), static_cast<double>(a & ~bit));
        EXPECT_EQ(kn::bit_shift(x, -static_cast<double>(n)), static_cast<double>(a >> n));
    }
    EXPECT_EQ(kn::bit_shift(3, 4), 48);
    EXPECT_EQ(kn::bit_logic(nan, 1, kn::Bits::or_), 1);
}

} // namespace
