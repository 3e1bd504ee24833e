// Sparse matrices of large orders against a map of their elements: memory and results follow the entries.
#include <map>

#include "quorvex/concat.h"
#include "support/support.h"

using namespace test;

namespace {

using Elements = std::map<std::pair<double, double>, double>; // by column and row, counted from 1

Mm matrix_of(const Elements &x, double m, double n) {
    std::vector<double> i, j, v;
    for (const auto &[at, value] : x) i.push_back(at.second), j.push_back(at.first), v.push_back(value);
    return sparse(col(i), col(j), col(v), m, n);
}

Elements elements_of(const Mm &a) {
    Mm i, j, v;
    find(a, i_o, i, j, v);
    Elements x;
    for (kn_size k = 1; k <= v.size(); ++k) x[{j.addr(k)[0], i.addr(k)[0]}] = v.addr(k)[0];
    return x;
}

class LargeOrders : public testing::TestWithParam<std::pair<double, int>> {};

TEST_P(LargeOrders, laws) {
    const auto [n, entries] = GetParam();
    Random random(81);
    auto place = [&, n = n] {
        const double special[] = {1, n, 46341, 65536};
        return random.below(8) == 0 ? special[random.below(4)]
                                    : 1 + std::floor(n * random.below(1 << 30) / (1 << 30));
    };
    Elements x, y, sum, transposed, doubled, columns, rows, tops;
    while (std::ssize(x) < entries) x[{place(), place()}] = random.below(19) - 9.5;
    for (const auto &[at, v] : x) {
        if (random.below(3) == 0) y[at] = v;
        y[{place(), at.second}] = 0.5;
    }
    sum = x;
    for (const auto &[at, v] : y) sum[at] += v;
    std::erase_if(sum, [](const auto &e) { return e.second == 0; });
    for (const auto &[at, v] : x) {
        transposed[{at.second, at.first}] = v, doubled[at] = 2 * v;
        columns[{at.first, 1}] += v, rows[{1, at.second}] += v;
        double &top = tops.try_emplace({at.first, 1}, 0).first->second;
        top = std::max(top, v);
    }
    for (Elements *e : {&columns, &rows, &tops})
        std::erase_if(*e, [](const auto &v) { return v.second == 0; });
    const Mm a = matrix_of(x, n, n), b = matrix_of(y, n, n);
    EXPECT_EQ(elements_of(a), x);
    EXPECT_EQ(elements_of(a + b), sum);
    EXPECT_EQ(elements_of(transpose(a)), transposed);
    EXPECT_EQ(elements_of(2 * a), doubled);
    EXPECT_EQ(elements_of(::sum(a)), columns);
    EXPECT_EQ(elements_of(::sum(a, 2)), rows);
    EXPECT_EQ(elements_of(max(a, Mm(), 1)), tops);
    EXPECT_EQ(nnz(any(a)).r(), nnz(::sum(spones(a))).r());
    EXPECT_TRUE(istrue(isequal(transpose(transpose(a)), a)) && !istrue(isequal(a, b)));
    EXPECT_EQ(elements_of(horzcat(a, b)(c_p, colon(n + 1, n + 3))), elements_of(b(c_p, colon(1, 3))));
    const auto &[at, v] = *std::next(x.begin(), entries / 2);
    EXPECT_SAME(full(a(at.second, at.first)), v);
    Elements positive, column, line, rest;
    for (const auto &[p, value] : x) {
        if (value > 0) positive[p] = 1;
        if (p.first == at.first) column[{1, p.second}] = value;
        if (p.second == at.second) line[{p.first, 1}] = value;
        if (p.first != at.first) rest[{p.first - (p.first > at.first), p.second}] = value;
    }
    EXPECT_EQ(elements_of(a > 0), positive);
    EXPECT_EQ(elements_of(a(c_p, at.first)), column);
    EXPECT_EQ(elements_of(a * sparse(at.first, 1, 1, n, 1)), column);
    EXPECT_EQ(elements_of(a(at.second, c_p)), line);
    Mm changed = a;
    changed(c_p, at.first) = Mm();
    EXPECT_EQ(elements_of(changed), rest);
    changed = a;
    changed(at.second, at.first) = 0;
    x.erase(at);
    EXPECT_EQ(elements_of(changed), x);
    const Mm none = spalloc(n, n, 5);
    EXPECT_TRUE(none.rows() == n && nnz(none).r() == 0);
    EXPECT_RAISES(full(a), "full: matrix too large");
}

INSTANTIATE_TEST_SUITE_P(, LargeOrders,
                         testing::Values(std::pair{1e5, 100000}, std::pair{1e6, 20000},
                                         std::pair{1e9, 1000}));

TEST(SparseReductions, running_sums_and_positions_of_columns) {
    const Mm a = sparse(row({2, 99999, 3}), row({1, 1, 70000}), row({2, -2, -1}), 1e5, 1e5), b = cumsum(a);
    EXPECT_SAME(nnz(b), Mm(99997.0 + 99998));
    EXPECT_SAME(b(99998, 1) + b(99999, 1) + b(100000, 70000), sparse(1));
    Mm y, i;
    max(a, Mm(), 1, i_o, y, i);
    EXPECT_SAME(y, sparse(1, 1, 2, 1, 1e5));
    EXPECT_EQ(i.r(1) + i.r(70000) + i.r(100000), 2 + 1 + 1);
    EXPECT_SAME(prod(a), sparse(1, 1e5));
    EXPECT_EQ(size(zeros(1e9, 0)).r(), 0);
}

TEST(SparseReductions, positions_at_the_ends_of_words) {
    const Mm at = col({2147483647, 2147483648, 2147483649, 4294967296, 4294967297}), v = col({1, 2, 3, 4, 5});
    Mm tall = sparse(at, 1, v, 5e9, 1), wide = transpose(tall);
    EXPECT_SAME(find(tall), at);
    EXPECT_SAME(find(wide), transpose(at));
    EXPECT_SAME(full(tall(at)), v);
    EXPECT_SAME(sum(tall), sparse(15));
    EXPECT_SAME(nonzeros(horzcat(wide, wide)), col({1, 2, 3, 4, 5, 1, 2, 3, 4, 5}));
    tall(4294967296.0) = 7;
    tall(2147483648.0) = nop_M;
    EXPECT_SAME(find(tall), col({2147483647, 2147483648, 4294967295, 4294967296}));
    EXPECT_SAME(nonzeros(tall), col({1, 3, 7, 5}));
}

} // namespace
