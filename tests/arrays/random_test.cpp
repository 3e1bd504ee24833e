// The random streams: their numbers, states, seeds and threads.
#include <algorithm>
#include <cmath>
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

// How far a stream has come, after a million numbers drawn one by one and by arrays in turn: a sum to which
// every number adds with a different weight.
double drawn(bool normal) {
    double total = 0, weight = 1;
    auto add = [&](double x) { total += x * weight, weight = weight < 7 ? weight + 1 : 1; };
    for (int round = 0; round < 10000; round++) {
        add(normal ? randn() : randM());
        for (double x : elements(normal ? randn(9, 11) : randM(9, 11))) add(x);
    }
    return total;
}

// The sums were those of slow models too: plain 64-bit and fmod arithmetic, and normal tables computed from
// the strips of equal area under the curve.
TEST_F(RandomStreams, sums_of_a_million_numbers) {
    const struct {
        bool normal;
        const Mm &command;
        Mm start;
        double sum;
        long long end; // the last number of the state, or the seed
    } streams[] = {{false, state, 0, 1998568.7759176346, 1299552638},
                   {false, state, -7, 1997816.880652504, 993645699},
                   {false, seed, 12345, 1998732.4305547944, 631574346},
                   {true, state, 0, 6119.8508851085226, 4140858059},
                   {true, state, row({4294967295, 1}), 7844.7628419797265, 3578685754},
                   {true, state, row({7, 4000000000}), -669.8422867502054, 1764267875},
                   {true, seed, 0x9001, 1535.0750591710062, 705660828}};
    for (const auto &s : streams) {
        auto f = s.normal ? +[](const Mm &a, const Mm &b) { return randn(a, b); }
                          : +[](const Mm &a, const Mm &b) { return randM(a, b); };
        f(s.command, s.start);
        EXPECT_NEAR(drawn(s.normal), s.sum, 1e-7) << testing::PrintToString(s.start);
        const Mm at = s.normal ? randn(s.command) : randM(s.command);
        EXPECT_EQ(static_cast<long long>(at.r(at.size()) * (at.size() == 35 ? 0x1p52 : 1)), s.end);
    }
}

TEST_F(RandomStreams, go_on_from_their_state) {
    for (int round = 1; round <= 40; round++) {
        randM(1, round), randn(1, round);
        const Mm u = randM(state), g = randn(state), x = randM(9), y = randn(9);
        randM(state, u), randn(state, g);
        EXPECT_SAME(randM(state), u);
        EXPECT_SAME(randn(state), g);
        EXPECT_SAME(randM(9), x);
        EXPECT_SAME(randn(9), y);
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
        start(35) = (j < 0x1p31 ? j : j - 0x1p32) * 0x1p-52;
        EXPECT_SAME(randM(state), start) << s;
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
    randM();
    EXPECT_FALSE(test::same(randM(state), before)) << "the state's generator is selected all the same";
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
    for (auto [given, kept] : {std::pair{2147483646.0, 2147483646}, {1234.9, 1234}, {0, 931316785}}) {
        randM(seed, given);
        EXPECT_EQ(scalar(randM(seed)), kept);
    }
}

TEST_F(RandomStreams, threads_share_one_stream) {
    constexpr int n = 20000;
    std::vector<double> alone = elements(randM(1, 2 * n)), shared(2 * n);
    randM(state, 0);
    kn_threads_flag = 1;
    auto draw = [&](int from) {
        for (int k = from; k < from + n; ++k) shared[k] = randM();
    };
    std::thread other(draw, 0);
    draw(n);
    other.join();
    std::ranges::sort(alone);
    std::ranges::sort(shared);
    EXPECT_EQ(shared, alone);
}

} // namespace
