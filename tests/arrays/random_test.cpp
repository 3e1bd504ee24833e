// The random streams against slow models written from the definitions: plain 64-bit and fmod arithmetic, and
// normal tables computed from the construction of the strips instead of copied.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <thread>

#include "support/support.h"

using test::row;

namespace {

const Mm state = TM("state"), seed = TM("seed");

std::vector<double> elements(const Mm &m) { return {m.addr(), m.addr() + m.size()}; }

// Leaves both functions in their start state.
class RandomStreams : public testing::Test {
  protected:
    void SetUp() override { reset(); }
    void TearDown() override { reset(); }
    static void reset() {
        kn_threads_flag = 0;
        randM(seed, 1);
        randn(seed, 1);
        randM(state, 0);
        randn(state, 0);
    }
};

constexpr int64_t two_32 = int64_t{1} << 32;
int64_t shifted(int64_t j) {
    j = (j ^ (j << 13)) % two_32;
    j = j ^ (j >> 17);
    return (j ^ (j << 5)) % two_32;
}
int64_t as_signed(int64_t x) { return x < two_32 / 2 ? x : x - two_32; }

struct UniformModel {
    std::vector<double> u;
    int i;
    bool borrow;
    int64_t j;

    double next() {
        double z = u[(i + 20) % 32] - u[(i + 5) % 32] - (borrow ? std::ldexp(1, -53) : 0);
        borrow = z < 0;
        if (borrow) z += 1;
        u[i] = z;
        i = (i + 1) % 32;
        int64_t before = j;
        j = shifted(j);
        uint32_t words[2];
        std::memcpy(words, &z, sizeof z);
        words[0] ^= static_cast<uint32_t>(before);
        words[1] ^= static_cast<uint32_t>(j % (1 << 20));
        std::memcpy(&z, words, sizeof z);
        return z;
    }

    Mm column() const {
        std::vector<double> y = u;
        y.push_back(borrow * std::ldexp(1, -53));
        y.push_back(i * std::ldexp(1, -52));
        y.push_back(static_cast<double>(as_signed(j)) * std::ldexp(1, -52));
        return test::col(y);
    }
};

struct SeedModel {
    double s;
    double next() {
        s = std::fmod(s * 16807, 2147483647);
        return s * 4.656612875245797e-10;
    }
    double normal() {
        for (;;) {
            double v1 = 2 * next() - 1, v2 = 2 * next() - 1, w = v1 * v1 + v2 * v2;
            if (w > 0 && w <= 1) return v1 * std::sqrt(-2 * std::log(w) / w);
        }
    }
};

// Twice V(0..64) in units of 1e-7, from strips of equal area c below exp(-x^2 / 2): the last four edges are
// the larger root of x f(x) = 3c, cut off after seven decimals; the others are rounded.
std::array<long, 65> edges() {
    auto f = [](long double x) { return std::exp(-x * x / 2); };
    long double c = std::sqrt(std::acos(-1.0L) / 2) / 64;
    long double low = 2, high = 4;
    for (int k = 0; k < 80; k++) {
        long double x = (low + high) / 2;
        (x * f(x) > 3 * c ? low : high) = x;
    }
    std::array<long, 65> e;
    long double v = low;
    for (int k = 64; k > 60; k--) e[k] = 2 * static_cast<long>(v * 1e7L);
    for (int k = 60; k >= 0; k--) {
        v = std::sqrt(-2 * std::log(f(v) + c / v));
        e[k] = 2 * std::lround(v * 1e7L);
    }
    return e;
}

struct NormalModel {
    int64_t congruential, shift_register;
    std::array<long, 65> edge = edges();

    double step() {
        congruential = (congruential * 69069 + 1234567) % two_32;
        shift_register = shifted(shift_register);
        return static_cast<double>(as_signed((congruential + shift_register) % two_32));
    }
    double uniform() { return step() / two_32 + 0.5; }

    double next() {
        double sum = step();
        int k = static_cast<int>(static_cast<int64_t>(sum) & 63);
        double lower = edge[k] / 1e7, upper = edge[k + 1] / 1e7, width = (edge[k + 1] - edge[k]) / 1e7;
        double x = sum * (upper / two_32);
        double a2 = 2 * std::abs(x);
        if (a2 <= lower) return x;
        double t = (upper - a2) / width, w = 1 - uniform(), s = w + t, xn = t * 0.4878992;
        double xs = x < 0 ? -xn : xn;
        if (s <= 0.698802) return xs;
        if (s >= 1.0310721) return x;
        if (12.37586 * std::exp(-xn * xn / 2) > w + 11.67706) return xs;
        if (std::exp(-upper * upper / 8) + (1 - w) * 0.03916606 / upper <= std::exp(-a2 * a2 / 8)) return x;
        for (;;) {
            double p = std::log(uniform()), q = std::log(uniform());
            if (q * -15.423391352072002 < p * p) continue;
            return x >= 0 ? 2.776994 - p * 0.3601016062692249 : p * 0.3601016062692249 - 2.776994;
        }
    }
};

// Draws from both, singly and by arrays, and compares bit by bit.
template <class Model> void expect_stream(bool normal, Model model) {
    for (int round = 0; round < 300; round++) {
        ASSERT_EQ(normal ? randn() : randM(), model()) << "round " << round;
        Mm x = normal ? randn(7, 13) : randM(7, 13);
        for (double v : elements(x)) ASSERT_EQ(v, model()) << "round " << round;
    }
}

TEST_F(RandomStreams, uniform_from_a_state_column) {
    std::mt19937_64 engine(4);
    for (int64_t j : {int64_t{1}, int64_t{0x80000000}, int64_t{0xFFFFFFFF}, int64_t{123456789}}) {
        UniformModel model{{}, static_cast<int>(engine() % 32), engine() % 2 == 1, j};
        for (int k = 0; k < 32; k++) model.u.push_back(std::ldexp(static_cast<double>(engine() >> 11), -53));
        randM(state, model.column());
        EXPECT_SAME(randM(state), model.column());
        expect_stream(false, [&] { return model.next(); });
        EXPECT_SAME(randM(state), model.column());
    }
}

TEST_F(RandomStreams, scalar_states) {
    constexpr double all = 4294967295.0;
    const std::pair<double, double> cases[] = {{0, 0x80000000}, {1, 1},           {5.9, 5},    {all, all},
                                               {0x1p32, all},   {1e300, all},     {-0.5, all}, {-all, 1},
                                               {-0x1p32, all},  {-HUGE_VAL, all}, {NAN, 0}};
    Mm start = randM(state);
    for (auto [s, j] : cases) {
        randM(state, s);
        std::vector<double> y = elements(start), got = elements(randM(state));
        EXPECT_EQ(got[34] * 0x1p52, j < 0x1p31 ? j : j - 0x1p32) << s;
        got.pop_back(), y.pop_back();
        EXPECT_EQ(got, y) << s;
    }
    randn(state, 5);
    Mm five = randn(3);
    randn(state, 6);
    EXPECT_SAME(randn(3), five) << "any number resets the normal stream";
}

TEST_F(RandomStreams, states_of_wrong_size) {
    randM(seed, 7);
    Mm before = randM(state);
    for (const Mm &y : {Mm(), row({1, 2}), Mm(row(std::vector<double>(34)))})
        EXPECT_RAISES(randM(state, y), "rand('state',y): y must be scalar or 35-element state vector");
    EXPECT_RAISES(randn(state, row({1, 2, 3})),
                  "randn('state',y): y must be scalar or 2-element state vector");
    EXPECT_SAME(randM(state), before);
    UniformModel model{elements(before), 0, false, 0x80000000};
    model.u.resize(32);
    EXPECT_EQ(randM(), model.next()) << "the state's generator is selected all the same";
}

TEST_F(RandomStreams, damaged_states_stay_in_bounds) {
    for (double x : {1e300, static_cast<double>(NAN), -1.0})
        randM(state, row(std::vector<double>(35, x))), randM(100);
    randn(state, row({NAN, -HUGE_VAL}));
    EXPECT_SAME(randn(state), test::col({0, 0}));
    randn(100);
    randn(seed, 2147483647), randM(seed, 2147483647);
    EXPECT_SAME(randn(1, 3), row({0, 0, 0})) << "the modulus ends the stream";
    EXPECT_SAME(randM(1, 3), row({0, 0, 0}));
}

TEST_F(RandomStreams, seeds) {
    for (double s : {1.0, 32768.0, 65535.0, 2147483646.0, 1234.9}) {
        randM(seed, s);
        EXPECT_EQ(scalar(randM(seed)), std::trunc(s));
    }
    randM(seed, 0);
    EXPECT_EQ(scalar(randM(seed)), 931316785);

    // 12345 = 0x3039 has its 16-bit halves swapped; 0x8000 of the low half moves to the top bit first.
    randM(seed, 12345);
    SeedModel model{double(0x30390000)};
    expect_stream(false, [&] { return model.next(); });
    randn(seed, 0x9001);
    SeedModel normal{double(0x10018000)};
    expect_stream(true, [&] { return normal.normal(); });
}

TEST_F(RandomStreams, normal_from_a_state) {
    for (auto [c, s] :
         {std::pair<int64_t, int64_t>{362436069, 521288629}, {4294967295, 1}, {7, 4000000000}}) {
        randn(state, row({static_cast<double>(c), static_cast<double>(s)}));
        NormalModel model{c, s};
        for (int k = 0; k < 30000; k++) ASSERT_EQ(randn(), model.next()) << k;
        expect_stream(true, [&] { return model.next(); });
        EXPECT_SAME(randn(state), test::col({double(model.congruential), double(model.shift_register)}));
    }
}

TEST_F(RandomStreams, threads_share_one_stream) {
    constexpr int n = 20000;
    std::vector<double> alone(2 * n), shared[2] = {std::vector<double>(n), std::vector<double>(n)};
    auto draw = [](std::vector<double> *x) {
        for (double &v : *x) v = randM();
    };
    draw(&alone);
    randM(state, 0);
    kn_threads_flag = 1;
    std::thread other(draw, &shared[1]);
    draw(&shared[0]);
    other.join();
    shared[0].insert(shared[0].end(), shared[1].begin(), shared[1].end());
    std::sort(alone.begin(), alone.end());
    std::sort(shared[0].begin(), shared[0].end());
    EXPECT_EQ(shared[0], alone);
}

TEST_F(RandomStreams, distributions) { // limits at about six standard deviations
    auto moment = [](const Mm &x, double centre, int power) {
        double sum = 0;
        for (double v : elements(x)) sum += std::pow(v - centre, power) / x.size();
        return sum;
    };
    for (const Mm &mode : {state, seed}) {
        randM(mode, 1), randn(mode, 1);
        Mm u = randM(1000), g = randn(1000);
        EXPECT_NEAR(moment(u, 0, 1), 0.5, 0.002);
        EXPECT_NEAR(moment(u, 0.5, 2), 1 / 12.0, 0.0005);
        EXPECT_NEAR(moment(u, 0.5, 4), 1 / 80.0, 0.0002);
        EXPECT_NEAR(moment(g, 0, 1), 0, 0.006);
        EXPECT_NEAR(moment(g, 0, 2), 1, 0.009);
        EXPECT_NEAR(moment(g, 0, 4), 3, 0.06);
        EXPECT_GT(*std::max_element(g.addr(), g.addr() + g.size()), 4) << "the tail beyond the last strip";
    }
}

} // namespace
