// What sparse values give is what full ones give: patterns of every density, empty rows and columns, stored
// zeros, real and complex.
#include <cmath>
#include <functional>
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
    if (!complex) return s;
    Mm z;
    z.deepcopy(1, s, kn_double);
    for (int k = 0; k < z.getnnz(); ++k) z.addi()[k] = random.below(3) - 1.0;
    return z;
}

Mm plain(const Mm &x) {
    Mm y = full(x);
    y.getreal(0);
    y.setlogical(0);
    return y;
}

TEST(SparseAgreement, operators_functions_and_subscripts) {
    const std::function<Mm(const Mm &, const Mm &)> work[] = {
        [](const Mm &a, const Mm &b) { return a + b; },
        [](const Mm &a, const Mm &b) { return a - b; },
        [](const Mm &a, const Mm &b) { return times(a, b); },
        [](const Mm &a, const Mm &b) { return max(a, b); },
        [](const Mm &a, const Mm &b) { return a == b; },
        [](const Mm &a, const Mm &b) { return a != b; },
        [](const Mm &a, const Mm &b) { return a && b; },
        [](const Mm &a, const Mm &b) { return a || b; },
        [](const Mm &a, const Mm &b) { return a * transpose(b); },
        [](const Mm &a, const Mm &b) { return ctranspose(a) * b; },
        [](const Mm &a, const Mm &) { return ctranspose(a); },
        [](const Mm &a, const Mm &) { return -2.0 * a; },
        [](const Mm &a, const Mm &) { return a + 1.0; },
        [](const Mm &a, const Mm &) { return abs(a); },
        [](const Mm &a, const Mm &) { return cos(a); },
        [](const Mm &a, const Mm &) { return sum(a); },
        [](const Mm &a, const Mm &) { return sum(a, 2.0); },
        [](const Mm &a, const Mm &) { return prod(a); },
        [](const Mm &a, const Mm &) { return any(a); },
        [](const Mm &a, const Mm &) { return cumsum(a, 2.0); },
        [](const Mm &a, const Mm &b) { return horzcat(a, b); },
        [](const Mm &a, const Mm &b) { return vertcat(a, b); },
        [](const Mm &a, const Mm &) { return Mm(a(c_p, colon(a.cols(), -1.0, 1.0))); },
        [](const Mm &a, const Mm &) { return Mm(a(1.0, c_p)); },
        [](const Mm &a, const Mm &) { return Mm(a(c_p, 1.0)); },
        [](const Mm &a, const Mm &) { return Mm(a(colon(1.0, a.size() - 1.0))); },
        [](const Mm &a, const Mm &b) {
            Mm x = a;
            x(c_p, 1.0) = b(c_p, b.cols());
            x(2.0) = 0.0;
            x(a.rows() + 1.0, 1.0) = 4.0;
            return x;
        },
        [](const Mm &a, const Mm &) {
            Mm x = a;
            x(c_p, 1.0) = Mm();
            return x;
        },
        [](const Mm &a, const Mm &) { return nonzeros(a); },
    };
    Random random(61);
    for (int round = 0; round < 400; ++round) {
        int m = 1 + random.below(7), n = 2 + random.below(7), thin = 1 + random.below(6);
        Mm a = pattern(random, m, n, thin, random.below(3) == 0);
        Mm b = pattern(random, m, n, thin, random.below(3) == 0);
        int number = 0;
        for (const auto &f : work) {
            Mm wanted = plain(f(full(a), full(b)));
            for (const Mm &got : {f(a, b), f(full(a), b), f(a, full(b))}) {
                kn::check(got);
                ASSERT_SAME(plain(got), wanted) << "work " << number << " round " << round;
            }
            ++number;
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
    EXPECT_SAME(sparse_of(1, 2, {{0, 1}, {1, 1}}) * sparse_of(2, 2, {{0, 3}, {1, -3}}),
                sparse_of(1, 2, {{0, 0}}))
        << "cancelled entries stay";
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
    EXPECT_RAISES(s * ones(2, 2), "*: wrong dimensions of: s 2x3, (temporary) 2x2");
    EXPECT_SAME(sparse_product(Mm(), Mm()), sparse_of(0, 0, {}));
    EXPECT_SAME(sparse(ones(200, 1)) * sparse(ones(1, 9)), sparse(ones(200, 9)))
        << "more entries than both have";
    EXPECT_SAME(s * U8({{1}, {2}, {3}}), col({0, 4}));
    Mm tall = sparse_of(1000000, 2, {{5, 1}, {999999, 2}, {1000000, 3}, {1500000, 4}});
    EXPECT_SAME(
        tall * sparse_of(2, 2, {{0, 1}, {1, 1}, {3, 2}}),
        sparse_of(1000000, 2, {{0, 3}, {5, 1}, {500000, 4}, {999999, 2}, {1000000, 6}, {1500000, 8}}));
    EXPECT_RAISES(tall * sparse_of(2, 3000, {{0, 1}}), "Out of memory!");
    EXPECT_RAISES(tall * ones(2, 3000), "Out of memory!");
    EXPECT_RAISES(tall * ones(2, 100), "full: matrix too large");
}

TEST(SparseSort, many_entries) {
    Random random(63);
    for (int n : {500, 5000}) {
        Mm i = zeros(n, 1), j = zeros(n, 1), s = zeros(n, 1), sums = zeros(40, 60);
        for (int k = 0; k < n; ++k) {
            i.addr()[k] = 1 + random.below(40);
            j.addr()[k] = 1 + random.below(60);
            s.addr()[k] = 1 + random.below(9);
            sums.r(i.addr()[k], j.addr()[k]) += s.addr()[k];
        }
        EXPECT_SAME(sparse(i, j, s, 40.0, 60.0), sparse(sums));
    }
}

} // namespace
