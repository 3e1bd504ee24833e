// Operations along a dimension, against slices picked out one by one.

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <complex>
#include <cstring>
#include <numeric>

#include "base/parallel.h"
#include "kernels/kernel_table.h"
#include "kernels/op_rows.h"
#include "special/scalar_kernels.h"
#include "support/support.h"

using namespace test;

namespace {

constexpr double inf = HUGE_VAL, nan = NAN;
using Cx = std::complex<double>;
using Line = std::vector<Cx>;

// What the operation makes of one slice.
using Model = Line (*)(const Line &);

bool is_true(Cx z) { return !(z.real() == 0) || !(z.imag() == 0); }
// By the formula, also where parts are infinite.
Cx product(Cx a, Cx b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

// The model of every slice along d.
Mm by_slices(const Mm &a, int d, Model model, bool complex) {
    Mm order = row({1, 2, 3, 4});
    order(1) = d, order(d) = 1; // which undoes itself
    const Mm turned = permute(mdouble(a), order);
    const int len = turned.rows(), slices = turned.size() / len;
    std::vector<double> re, im;
    for (int s = 0; s < slices; ++s) {
        Line line;
        for (int k = s * len; k < s * len + len; ++k)
            line.push_back({turned.addr()[k], turned.isc() ? turned.addi()[k] : 0});
        for (Cx z : model(line)) re.push_back(z.real()), im.push_back(z.imag());
    }
    Mm dims = size(turned);
    dims(1) = static_cast<int>(re.size()) / slices;
    return permute(reshape(complex ? complex_of(row(re), row(im)) : row(re), dims), order);
}

template <class Step> Line running(const Line &x, Cx v, Step step) {
    Line y;
    for (Cx z : x) y.push_back(v = step(v, z));
    return y;
}
bool smaller(Cx a, Cx b) {
    return a.imag() == 0 && b.imag() == 0 ? a.real() < b.real() : std::norm(a) < std::norm(b);
}

Line model_diff(const Line &x) {
    Line y;
    for (size_t k = 1; k < x.size(); ++k) y.push_back(x[k] - x[k - 1]);
    return y;
}
Line model_all(const Line &x) { return {std::ranges::all_of(x, is_true) ? 1.0 : 0.0}; }
Line model_any(const Line &x) { return {std::ranges::any_of(x, is_true) ? 1.0 : 0.0}; }
Line model_cumsum(const Line &x) { return running(x, 0, std::plus<Cx>()); }
Line model_cumprod(const Line &x) { return running(x, 1, product); }
Line model_sum(const Line &x) { return {model_cumsum(x).back()}; }
Line model_prod(const Line &x) { return {model_cumprod(x).back()}; }
Line model_max(const Line &x) { return {*std::ranges::max_element(x, smaller)}; }
Line model_min(const Line &x) { return {*std::ranges::min_element(x, smaller)}; }
Line model_median(const Line &given) {
    Line x = given;
    std::ranges::sort(x, smaller);
    size_t n = x.size();
    return {n % 2 ? x[n / 2] : (x[n / 2 - 1] + x[n / 2]) * 0.5};
}

struct Reduction {
    const char *name;
    Mm (*f)(const Mm &, const Mm &);
    Model model;
    bool complex, bytes; // whether complex input gives a complex result, bytes give bytes
};
Mm diff_along(const Mm &a, const Mm &dim) { return diff(a, 1.0, dim); }
Mm max_along(const Mm &a, const Mm &dim) { return max(a, Mm(), dim); }
Mm min_along(const Mm &a, const Mm &dim) { return min(a, Mm(), dim); }
const Reduction reductions[] = {
    {"diff", diff_along, model_diff, true, true},
    {"all", all, model_all, false, true},
    {"any", any, model_any, false, true},
    {"cumsum", cumsum, model_cumsum, true, true},
    {"cumprod", cumprod, model_cumprod, true, true},
    {"sum", sum, model_sum, true, false},
    {"prod", prod, model_prod, true, true},
    {"max", max_along, model_max, true, true},
    {"min", min_along, model_min, true, true},
    {"median", median, model_median, true, true},
};

Mm random_array(const std::vector<kn_size> &shape, bool complex) {
    const Mm dims = row({shape.begin(), shape.end()}), n = prod(dims);
    auto numbers = [&] { return floor(2001 * randM(1, n)) / 256 - 4; };
    Mm a = times(numbers(), randM(1, n) > 0.1);
    // Distinct sizes, so that the order of complex numbers is by modulus alone.
    if (complex) a = a + i * (numbers() + 0x1p-12 * colon(1, n));
    return reshape(a, dims);
}

TEST(DimensionOps, every_dimension_is_worked_slice_by_slice) {
    // Widths beyond the pieces that rows are worked in, and counts that leave groups of four incomplete.
    const std::vector<std::vector<kn_size>> shapes = {
        {1, 1},    {1, 7},       {6, 1},       {4, 4},    {5, 9},    {9, 2},       {3, 4, 2},
        {2, 1, 5}, {2, 3, 2, 3}, {1, 1, 1, 4}, {1030, 3}, {3, 1030}, {1025, 2, 2}, {2050, 1, 3}};
    for (const auto &shape : shapes)
        for (bool complex : {false, true}) {
            Mm a = random_array(shape, complex);
            Mm bytes = muint8(a);
            for (int d = 1; d <= 4; ++d)
                for (const Reduction &r : reductions) {
                    SCOPED_TRACE(r.name + (" along " + std::to_string(d)) + testing::PrintToString(shape));
                    bool logical = r.model == model_all || r.model == model_any;
                    bool gone = r.model == model_diff && a.size(d) == 1;
                    Mm wanted = gone ? Mm() : by_slices(a, d, r.model, complex && r.complex);
                    wanted.setlogical(logical);
                    ASSERT_SAME(r.f(a, d), wanted);
                    if (d == a.nsingleton()) {
                        ASSERT_SAME(r.f(a, 0.0), wanted);
                    }
                    if (complex) continue;
                    wanted = gone ? Mm() : by_slices(bytes, d, r.model, false);
                    if (r.bytes && !gone) {
                        // The products of the model are exact only modulo 256 step by step.
                        if (r.model == model_prod || r.model == model_cumprod) continue;
                        wanted = muint8(wanted);
                    }
                    wanted.setlogical(logical);
                    ASSERT_SAME(r.f(bytes, d), wanted);
                }
        }
}

TEST(DimensionOps, products_and_medians_of_bytes_wrap) {
    EXPECT_SAME(cumprod(U8({{200, 200, 3}})), U8({{200, 64, 192}}));
    EXPECT_SAME(median(U8({{200, 201}})), U8({{200}}));
}

struct Best {
    Mm y, i;
    Best(bool most, const Mm &a, const Mm &dim = zero_M) {
        most ? max(a, Mm(), dim, i_o, y, i) : min(a, Mm(), dim, i_o, y, i);
    }
};
Best max_of(const Mm &a, const Mm &dim = zero_M) { return {true, a, dim}; }
Best min_of(const Mm &a, const Mm &dim = zero_M) { return {false, a, dim}; }

TEST(DimensionOps, positions_of_the_first_best) {
    const std::pair<Mm, Mm> cases[] = {{row({nan, nan}), row({-inf, 1, inf, 1})},
                                       {row({-inf, nan}), row({-inf, 1, -inf, 1})},
                                       {row({nan, -inf, inf}), row({inf, 3, -inf, 2})},
                                       {Mm(nan), row({nan, 1, nan, 1})}};
    for (const auto &[a, wanted] : cases) {
        const Best most = max_of(a), least = min_of(a);
        EXPECT_SAME(Mm((BR(most.y), most.i, least.y, least.i)), wanted) << testing::PrintToString(a);
    }
}

// Slices that end around the limits of lanes, groups and parts, neighbours and side by side.
TEST(DimensionOps, best_of_long_slices_is_the_first_one) {
    test::Random random(11);
    for (int stride : {1, 3, 20})
        for (int len : {7, 9, 31, 63, 65, 200, 8191, 8193, 16500}) {
            if (stride == 20 && len > 200) continue;
            for (double zeros : {0.0, -0.0}) {
                SCOPED_TRACE(std::to_string(stride) + " of " + std::to_string(len));
                // Few values, the largest a zero of either sign, or its negative the smallest.
                Mm a(0, 0, 0, stride, len, kn_double);
                for (int k = 0; k < a.getnnz(); ++k) {
                    int n = random.below(400);
                    a.addr()[k] = n == 0 ? zeros : n == 1 ? -zeros : n < 20 ? nan : -1 - n % 3;
                }
                Best most = max_of(a, 2.0), least = min_of(-a, 2.0);
                Mm values = max(a, Mm(), 2.0);
                for (int i = 0; i < stride; ++i) {
                    int at = 0;
                    double best = std::isnan(a.addr()[i]) ? -inf : a.addr()[i];
                    for (int k = 0; k < len; ++k)
                        if (a.addr()[k * stride + i] > best) best = a.addr()[k * stride + i], at = k;
                    for (double got : {most.y.addr()[i], -least.y.addr()[i], values.addr()[i]}) {
                        ASSERT_EQ(got, best);
                        ASSERT_EQ(std::signbit(got), std::signbit(best));
                    }
                    ASSERT_EQ(most.i.addr()[i], at + 1);
                    ASSERT_EQ(least.i.addr()[i], at + 1);
                }
            }
        }
}

TEST(DimensionOps, one_element_decides_wherever_it_is) {
    for (int stride : {1, 3, 20})
        for (int len : {5, 8, 9, 70, 1500, 140000}) {
            if (stride == 20 && len > 1500) continue;
            Mm a = zeros(stride, len), b = a + 1.0, wanted = zeros(stride, 1);
            wanted.addr()[stride - 1] = 1;
            for (int k : {0, len / 2, len - 2, len - 1}) {
                int last = k * stride + stride - 1;
                a.addr()[last] = nan;
                b.addr()[last] = -0.0;
                ASSERT_SAME(any(a, 2.0), test::logical_of(wanted)) << stride << " of " << len;
                ASSERT_SAME(all(b, 2.0), test::logical_of(1.0 - wanted)) << stride << " of " << len;
                a.addr()[last] = 0;
                b.addr()[last] = 1;
            }
        }
}

// -- Sums: their error, and the same bits in every instruction set and for any number of threads.

double pairwise(const double *x, size_t n) {
    return n == 1 ? *x : pairwise(x, n / 2) + pairwise(x + n / 2, n - n / 2);
}

TEST(DimensionOps, sums_are_at_least_as_accurate_as_pairwise_ones) {
    static_assert(LDBL_MANT_DIG >= 64);
    std::mt19937_64 random(5);
    std::vector<double> x(1000000);
    for (size_t k = 0; k < x.size(); k += 2) { // what is left where large numbers cancel
        x[k] = std::ldexp(random() >> 14, -30);
        x[k + 1] = std::ldexp(random() >> 54, -30) - x[k];
    }
    std::ranges::shuffle(x, random);
    for (int rows : {100, 20000, 250000, 1000000}) {
        const Mm slices = reshape(col(x), rows, 1000000 / rows), down = sum(slices, 1.0),
                 across = sum(transpose(slices), 2.0);
        const auto n = static_cast<size_t>(rows);
        double errors[3] = {}; // sums of squares
        for (int k = 0; k < slices.cols(); ++k) {
            const double *from = slices.addr() + static_cast<size_t>(k) * n;
            const long double exact = std::accumulate(from, from + n, 0.0L); // multiples of 2^-30 below 2^33
            const double sums[] = {down.addr()[k], across.addr()[k], pairwise(from, n)};
            for (int s = 0; s < 3; ++s) errors[s] += std::pow(static_cast<double>(sums[s] - exact), 2);
        }
        EXPECT_LE(std::max(errors[0], errors[1]), errors[2]) << rows;
    }
}

TEST(DimensionOps, sums_that_are_not_finite) {
    for (int len : {5, 20, 100, 70000})
        for (int stride : {1, 20}) {
            SCOPED_TRACE(std::to_string(stride) + " of " + std::to_string(len));
            Mm a(0, 0, 0, stride, len, kn_double);
            // The sums of elements that take turns, after a first one.
            auto sum_is = [&](double first, double even, double odd, double wanted) {
                for (int k = 0; k < a.size(); ++k)
                    a.addr()[k] = k < stride ? first : k / stride % 2 ? odd : even;
                const Mm s = sum(a, 2.0);
                return std::all_of(s.addr(), s.addr() + stride,
                                   [=](double x) { return same_bits(x, wanted); });
            };
            EXPECT_TRUE(sum_is(-0.0, -0.0, -0.0, 0.0));
            EXPECT_TRUE(
                sum_is(1.7e308, 1.7e308, -1.7e308, len % 2 ? 1.7e308 : 0.0)); // no two of one sign are finite
            EXPECT_TRUE(sum_is(1.7e308, 1.7e308, 1.7e308, inf));
            EXPECT_TRUE(sum_is(-inf, 1, 2, -inf));
            EXPECT_FALSE(sum_is(-inf, inf, 1, -inf) || sum_is(-inf, inf, 1, inf));
        }
}

// All reductions of one array in one row of bits. Any NaN is the same.
std::vector<double> all_of_them(const Mm &a, const Mm &d) {
    std::vector<double> bits;
    auto take = [&](const Mm &m) {
        for (const double *plane : {m.addr(), m.addi()})
            for (int k = 0; plane && k < m.getnnz(); ++k)
                bits.push_back(std::isnan(plane[k]) ? 0.5 : plane[k]);
    };
    for (const Reduction &r : reductions)
        if (r.model != model_median) take(r.f(a, d));
    for (const Best &b : {max_of(a, d), min_of(a, d)}) take(b.y), take(b.i);
    return bits;
}

TEST(DimensionOps, same_bits_in_all_instruction_sets_and_for_any_threads) {
    const std::vector<std::vector<kn_size>> shapes = {
        {9, 40},     {255, 9},    {256, 9},    {257, 9},    {65535, 1},  {65536, 1},  {65537, 2},
        {700000, 1}, {3, 130000}, {15, 70000}, {16, 20000}, {1030, 300}, {2, 70, 40}, {40, 2500, 4}};
    const kn::KernelTable &last = kn::kernels();
    std::mt19937 random(7);
    std::normal_distribution<double> normal;
    for (bool complex : {false, true})
        for (bool special : {false, true})
            for (const auto &shape : shapes) {
                Mm a(complex, 0, 0, std::ssize(shape), shape.data(), kn_double);
                if (complex && a.getnnz() > 100000) continue;
                for (double *plane : {a.addr(), a.addi()})
                    for (int k = 0; plane && k < a.getnnz(); ++k) {
                        plane[k] = normal(random) * 1.5;
                        if (special && random() % 4096 == 0)
                            plane[k] = std::initializer_list<double>{0, -0.0, inf, nan}.begin()[random() % 4];
                    }
                for (int d = 1; d <= static_cast<int>(shape.size()); ++d) {
                    std::vector<double> wanted;
                    for (auto table = kn::available_kernels(); *table; ++table)
                        for (int threads : {1, 2}) {
                            kn::use_kernels(**table);
                            kn::set_thread_count(threads);
                            std::vector<double> got = all_of_them(a, d);
                            if (wanted.empty()) wanted = got;
                            ASSERT_EQ(got.size(), wanted.size());
                            ASSERT_EQ(std::memcmp(got.data(), wanted.data(), sizeof(double) * got.size()), 0)
                                << (*table)->name << threads << testing::PrintToString(shape) << d;
                        }
                }
            }
    kn::use_kernels(last);
    kn::set_thread_count(0);
}

TEST(DimensionOps, complex_best_is_by_modulus_and_a_nan_wins) {
    Mm a = test::complex_of(row({3, 0, 4}), row({0, -5, 3}));
    EXPECT_SAME(max_of(a).y, C(0, -5));
    EXPECT_SAME(max_of(a).i, Mm(2.0));
    EXPECT_SAME(min(C(3, 4), C(4, 3)), C(3, 4)) << "the first of equal ones";
    // A NaN replaces the best, and the next element replaces the NaN.
    Mm b = test::complex_of(row({9, nan, 2, 1}), row({1, 1, 1, 2}));
    EXPECT_SAME(max_of(b).i, Mm(3.0));
    // An imaginary plane of zeros is forgotten.
    Mm c = test::complex_of(row({-3, 2}), row({0, 0})), y;
    max(c, i_o, y, c); // an output may be the input
    EXPECT_SAME(y, Mm(2.0));
    EXPECT_SAME(c, Mm(2.0));
}

TEST(DimensionOps, nan_and_signed_zeros) {
    const std::pair<Mm, Mm> cases[] = {
        {all(Mm(nan)), test::logical_of(1.0)},
        {any(row({0, nan})), test::logical_of(1.0)},
        {any(test::complex_of(row({0, 0}), row({0, -0.0}))), test::logical_of(0.0)},
        {all(test::complex_of(row({0, 1}), row({2, 0}))), test::logical_of(1.0)},
        {median(M({{3, nan}, {1, 2}, {2, 5}})), row({2, nan})},
        {median(test::complex_of(row({1, nan}), row({1, 0}))), C(nan, nan)},
    };
    for (const auto &[got, wanted] : cases) EXPECT_SAME(got, wanted);
    // Running values start from 0 and 1.
    EXPECT_FALSE(std::signbit(cumsum(Mm(-0.0)).r()));
    EXPECT_TRUE(std::isnan(prod(C(inf, 1)).i() + prod(C(1, inf)).r())); // (1, 0) times an infinite number
}

TEST(DimensionOps, unwrap_turns_jumps_back) {
    const double turn = 2 * kn::raw_pi;
    const Mm smooth = 0.7 * colon(0, 39);
    EXPECT_NEAR_ULP(unwrap(smooth - turn * round(smooth / turn)) + 1.0, smooth + 1.0, 64);
    EXPECT_SAME(unwrap(Mm(7.0)), Mm(7.0 - turn)) << "the first element is reduced too";
    EXPECT_SAME(unwrap(test::complex_of(row({0, 4}), row({0, 4})), C(5, 3)),
                test::complex_of(row({0, 4}), row({0, 4 - turn})))
        << "each plane has its own tolerance";
    EXPECT_SAME(unwrap(row({1, nan, 1})), row({1, nan, nan}));
}

TEST(DimensionOps, slopes_and_second_differences) {
    const Mm square = row({0, 1, 4, 9, 16}), x = row({0, 2, 4, 6, 8});
    EXPECT_SAME(gradient(square, x), row({0.5, 1, 2, 3, 3.5}));
    EXPECT_SAME(gradient(U8({{0}, {200}, {100}})), M({{200}, {50}, {-100}}));
    // A quarter of the second derivative; of both directions for a matrix.
    EXPECT_SAME(del2(square, x), row({0.125, 0.125, 0.125, 0.125, 0.125}));
    Mm i = M({{1, 1, 1}, {2, 2, 2}, {3, 3, 3}}), j = transpose(i), gx, gy;
    gradient(2.0 * i + 5.0 * j, i_o, gx, gy);
    EXPECT_SAME(gx, 0.0 * i + 5.0);
    EXPECT_SAME(gy, 0.0 * i + 2.0);
    EXPECT_SAME(del2(times(i, i) + 3.0 * times(j, j)), 0.0 * i + 2.0);
    // The engine's own rows: ends one-sided, and a short coordinate vector is no reason to read past it.
    Mm d2(0, row({1, 2, 4, 8}), row({0, 1, 3, 4}), 2.0, op_del2, 1, l_M);
    EXPECT_SAME(d2, row({1.0 / 3, 1.0 / 3, 2.0 / 3, 2.0 / 3}));
    EXPECT_RAISES(gradient(square, row({1, 2})),
                  "gradient: incompatible dimensions of: (temporary), (temporary)");
}

TEST(DimensionOps, diff_goes_on_until_nothing_is_left) {
    EXPECT_SAME(diff(row({1, 8, 27, 64, 125}), 3.0), row({6, 6}));
    EXPECT_SAME(diff(row({1, 8, 27, 64, 125}), 9.0), Mm());
}

TEST(DimensionOps, empty_values) {
    Mm none;
    const std::pair<Mm, Mm> cases[] = {
        {sum(none), 0.0},      {prod(none), 1.0},       {all(none), test::logical_of(1.0)},
        {sum(none, 0.0), 0.0}, {sum(none, none), none}, {any(none), test::logical_of(0.0)},
        {max(none), none},     {max_of(none).i, none},  {median(none), none}};
    for (const auto &[got, wanted] : cases) EXPECT_SAME(got, wanted);
    for (const Reduction &r : reductions) {
        bool logical = r.model == model_all || r.model == model_any;
        EXPECT_SAME(r.f(none, 1.0), logical ? test::logical_of(none) : none);
    }
}

TEST(DimensionOps, messages) {
    Mm x = test::named("x", row({1, 2, 3}));
    EXPECT_RAISES(sum(x, 5.0), "sum: dimension=5 does not exist for matrix x");
    EXPECT_RAISES(cumsum(x, -1.0), "cumsum: dim argument may not be empty");
    EXPECT_RAISES(Mm(0, x, zero_M, zero_M, op_sin, 1, l_M), "op_dims: wrong do_dim");
    test::Returning handler;
    EXPECT_SAME(sum(x, 5.0), Mm());
    EXPECT_SAME(Mm(0, x, zero_M, zero_M, op_uminus, 1, l_M), row({-1, -2, -3})); // goes on
    EXPECT_EQ(handler.errors().size(), 2u);
}

} // namespace
