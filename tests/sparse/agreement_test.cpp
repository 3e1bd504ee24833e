// What sparse values give is what full ones give: patterns of every density, empty rows and columns, stored
// zeros, real and complex.
#include <cmath>
#include <vector>

#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

// Whole numbers, of which products and sums are exact; about one in `thin` is stored, some as zeros.
Mm pattern(Random &random, int m, int n, int thin, bool complex) {
    std::vector<std::pair<int, double>> entries;
    for (int k = 0; k < m * n; ++k)
        if (random.below(thin) == 0) entries.push_back({k, random.below(7) - 2.0});
    Mm s = sparse_of(m, n, entries);
    if (!complex || s.getnnz() == 0) return s;
    Mm z;
    z.deepcopy(1, s, kn_double);
    for (int k = 0; k < z.getnnz(); ++k) z.addi()[k] = random.below(3) - 1.0;
    z.addi()[0] = 1; // a plane of zeros may go at any time
    return z;
}

Mm plain(const Mm &x) {
    Mm y = full(x);
    y.getreal(0);
    y.setlogical(0);
    return y;
}

std::vector<Mm> answers(const Mm &a, const Mm &b) {
    Mm written = a, cut = a;
    written(c_p, 1.0) = b(c_p, b.cols());
    written(2.0) = 0.0;
    written(a.rows() + 1.0, 1.0) = 4.0;
    cut(c_p, 1.0) = Mm();
    return {a + b,         times(a, b),   max(a, b),        a == b,
            a || b,        cos(a),        nonzeros(a),      written,
            cut,           sum(a, 2.0),   prod(a),          cumsum(a, 2.0),
            horzcat(a, b), vertcat(a, b), a * transpose(b), ctranspose(a) * b,
            ctranspose(a), a(1.0, c_p),   a(c_p, 1.0),      a(colon(1.0, a.size() - 1.0))};
}

TEST(SparseAgreement, operators_functions_and_subscripts) {
    Random random(61);
    for (int round = 0; round < 400; ++round) {
        int m = 1 + random.below(7), n = 2 + random.below(7), thin = 1 + random.below(6);
        Mm a = pattern(random, m, n, thin, random.below(3) == 0);
        Mm b = pattern(random, m, n, thin, random.below(3) == 0);
        const std::vector<Mm> wanted = answers(full(a), full(b));
        for (const auto &got : {answers(a, b), answers(full(a), b), answers(a, full(b))})
            for (size_t k = 0; k < got.size(); ++k) {
                kn::check(got[k]);
                ASSERT_SAME(plain(got[k]), plain(wanted[k])) << "answer " << k << " round " << round;
            }
    }
}

// By the definition, with the entries that a product forms.
Mm product_of_entries(const Mm &a, const Mm &b) {
    Mm out = zeros(a.rows(), b.cols()), at = zeros(a.rows(), b.cols());
    for (int e = 0; e < b.getnnz(); ++e)
        for (int k = 0; k < a.getnnz(); ++k) {
            int r = b.getindex()[e] % b.rows(), c = b.getindex()[e] / b.rows();
            if (a.getindex()[k] / a.rows() != r) continue;
            int to = a.getindex()[k] % a.rows() + c * a.rows();
            out.addr()[to] += a.addr()[k] * b.addr()[e];
            at.addr()[to] = 1;
        }
    std::vector<std::pair<int, double>> entries;
    for (int k = 0; k < out.size(); ++k)
        if (at.addr()[k] != 0) entries.push_back({k, out.addr()[k]});
    return sparse_of(a.rows(), b.cols(), entries);
}

TEST(SparseProduct, forms_the_products_of_stored_entries_only) {
    const double inf = INFINITY;
    Random random(62);
    for (int round = 0; round < 300; ++round) {
        int m = 1 + random.below(200), n = 2 + random.below(9), l = 1 + random.below(5);
        Mm a = pattern(random, m, n, 1 + random.below(60), false),
           b = pattern(random, n, l, 1 + random.below(5), false);
        for (Mm *x : {&a, &b})
            if (x->getnnz() > 0 && random.below(2))
                x->addr()[random.below(x->getnnz())] = random.below(2) ? inf : NAN;
        Mm got = sparse_product(a, b), wanted = product_of_entries(a, b);
        kn::check(got);
        ASSERT_SAME(got, wanted);
        if (n * l < 2 || m * n < 2) continue;
        ASSERT_SAME(full(a) * b, full(product_of_entries(sparse(full(a)), b)));
        ASSERT_SAME(a * full(b), full(product_of_entries(a, sparse(full(b)))));
    }
}

TEST(SparseProduct, sizes) {
    Mm s = named("s", sparse_of(2, 3, {{1, 4}}));
    EXPECT_RAISES(s * s, "*: wrong dimensions of: s 2x3, s 2x3");
    EXPECT_SAME(s * U8({{1}, {2}, {3}}), col({0, 4}));
    Mm tall = sparse_of(1000000, 2, {{5, 1}, {999999, 2}, {1000000, 3}, {1500000, 4}});
    EXPECT_SAME(
        tall * sparse_of(2, 2, {{0, 1}, {1, 1}, {3, 2}}),
        sparse_of(1000000, 2, {{0, 3}, {5, 1}, {500000, 4}, {999999, 2}, {1000000, 6}, {1500000, 8}}));
    EXPECT_RAISES(tall * sparse_of(2, 3000, {{0, 1}}), "Out of memory!");
    EXPECT_RAISES(tall * ones(2, 100), "full: matrix too large");
}

} // namespace
