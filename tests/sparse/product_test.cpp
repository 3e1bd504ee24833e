// Products of sparse values are those of full ones: patterns of every density, empty rows and columns, stored
// zeros, real and complex.
#include <cmath>
#include <map>

#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

TEST(SparseProduct, is_that_of_full_values) {
    Random random(61);
    for (int round = 0; round < 400; ++round) {
        int m = 1 + random.below(7), n = 2 + random.below(7), l = 1 + random.below(5);
        const Mm a = random.thin(m, n, 1 + random.below(6), random.below(3) == 0),
                 b = random.thin(n, l, 1 + random.below(6), random.below(3) == 0), wanted = full(a) * full(b);
        wanted.getreal(0);
        for (const Mm &got : {a * b, full(a) * b, a * full(b), ctranspose(ctranspose(b) * ctranspose(a))}) {
            kn::check(got);
            const Mm dense = full(got);
            dense.getreal(0);
            ASSERT_SAME(dense, wanted) << "round " << round;
        }
    }
}

// By the definition, with the entries that a product forms.
Mm product_of_entries(const Mm &a, const Mm &b) {
    std::map<int, double> sums;
    for (int e = 0; e < b.getnnz(); ++e)
        for (int k = 0; k < a.getnnz(); ++k)
            if (a.getindex()[k] / a.rows() == b.getindex()[e] % b.rows())
                sums[a.getindex()[k] % a.rows() + b.getindex()[e] / b.rows() * a.rows()] +=
                    a.addr()[k] * b.addr()[e];
    return sparse_of(a.rows(), b.cols(), {sums.begin(), sums.end()});
}

TEST(SparseProduct, forms_the_products_of_stored_entries_only) {
    const double inf = INFINITY;
    Random random(62);
    for (int round = 0; round < 300; ++round) {
        int m = 1 + random.below(200), n = 2 + random.below(9), l = 1 + random.below(5);
        Mm a = random.thin(m, n, 1 + random.below(60)), b = random.thin(n, l, 1 + random.below(5));
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
    EXPECT_RAISES(tall * ones(2, 100), "full: matrix too large");
}

} // namespace
