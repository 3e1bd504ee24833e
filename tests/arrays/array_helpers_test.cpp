// Sizes, shapes, parts, grids, positions and sums of arrays, against obvious models.
#include <algorithm>
#include <array>
#include <cmath>

#include "base/parallel.h"
#include "kernels/kernel_table.h"
#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

// An array of one of the element types, whose elements tell their position.
Mm numbered(test::Random &random, int round) {
    auto extent = [&] { return 1.0 + random.below(4); };
    const double pages = random.below(3) ? extent() : 1, last = random.below(3) ? 1 : extent();
    const Mm d = row({extent(), extent(), pages, last}), x = reshape(colon(1, prod(d)), d);
    return round % 3 == 0 ? complex_of(x, -x) : round % 3 == 1 ? muint8(x) : num2cell(x);
}

Mm extents(const Mm &m) { return row({1.0 * m.size(1), 1.0 * m.size(2), 1.0 * m.size(3), 1.0 * m.size(4)}); }

Mm some_sparse(test::Random &random, int m, int n) {
    return full(sprandn(m, n, 0.5)) + (random.below(2) ? C(0, 1) : zero_M);
}

// ---- Questions and sizes ----

TEST(ArrayHelpers, sizes) {
    Mm x = named("x", ones(2, 3, 4)), m, n, p, q;
    EXPECT_SAME(size(x), row({2, 3, 4}));
    EXPECT_SAME(size(x, 3.0), Mm(4.0));
    EXPECT_SAME(size(x, 100.0), row({4, 3, 2}));
    EXPECT_RAISES(size(x, 5.0), "x.size(dim): no such dimension=5");
    size(x, i_o, m, n);
    EXPECT_TRUE(m.r() == 2 && n.r() == 12);
    size(x, i_o, m, n, p, q);
    EXPECT_TRUE(m.r() == 2 && n.r() == 3 && p.r() == 4 && q.r() == 1);
    EXPECT_SAME(size(sparse_of(3, 5, {})), row({3, 5}));
    EXPECT_SAME(length(ones(2, 7, 4)), Mm(7.0));
}

TEST(ArrayHelpers, isequal_by_value) {
    Mm x = M({{1, 0, 3}}), s = test::struct_of({{"a", x}, {"b", TM("t")}}),
       turned = test::struct_of({{"b", TM("t")}, {"a", x}}), c = cell_of(1, 2, {x, s});
    Mm stored_zero = sparse_of(1, 3, {{0, 1}, {1, 0}, {2, 3}});
    std::vector<std::pair<Mm, Mm>> same = {{x, U8({{1, 0, 3}})}, {TM("a"), 97.0},
                                           {C(1, 0), 1.0},       {sparse(x), stored_zero},
                                           {Mm(), TM("")},       {c, cell_of(1, 2, {sparse(x), turned})}};
    std::vector<std::pair<Mm, Mm>> different = {{x, transpose(x)},
                                                {Mm(NAN), Mm(NAN)},
                                                {C(1, 2), 1.0},
                                                {Mm(), cell(0.0)},
                                                {s, c},
                                                {s, test::struct_of({{"a", x}})},
                                                {sparse(x), sparse(M({{1, 3, 0}}))},
                                                {cell_of(1, 1, {s}), s}};
    for (bool equal : {true, false})
        for (const auto &[a, b] : equal ? same : different)
            for (const Mm &answer : {isequal(a, b), isequal(b, a), isequal(a, a, b, b)})
                EXPECT_SAME(answer, logical_of(equal))
                    << testing::PrintToString(a) << testing::PrintToString(b);
}

// ---- Shapes ----

TEST(ArrayHelpers, reshape) {
    Mm x = colon(1, 12);
    EXPECT_SAME(size(reshape(x, nop_M, 2.0, 3.0)), row({2, 2, 3}));
    EXPECT_SAME(size(reshape(x, row({2, 3, 2, 1}))), row({2, 3, 2}));
    EXPECT_TRUE(kn::same_block(x, reshape(x, 4.0, 3.0)));
    EXPECT_SAME(reshape(sparse_of(2, 3, {{4, 7}}), 3.0, 2.0), sparse_of(3, 2, {{4, 7}}));
    EXPECT_SAME(reshape(Mm(), 0.0, nop_M), Mm());
    EXPECT_RAISES(reshape(x, 5.0, 3.0), "reshape: size=12 is different than 5*3");
    EXPECT_RAISES(reshape(x, row({5, 3, 1})),
                  "reshape: size=12 is different than the product of new dimensions");
    EXPECT_RAISES(reshape(x, 5.0, nop_M),
                  "reshape: size=12 is no multiple of the product of the sizes given");
    EXPECT_RAISES(reshape(x, nop_M, nop_M), "reshape: only one size may be []");
    EXPECT_RAISES(reshape(x, 12.0), "reshape: size vector must have at least two elements");
    EXPECT_SAME(squeeze(ones(1, 1, 5)), ones(5, 1));
}

TEST(ArrayHelpers, permute_moves_every_element) {
    test::Random random(21);
    for (int round = 0; round < 1500; round++) {
        Mm x = numbered(random, round);
        Mm order = randperm(std::max(x.getndims(), 2 + random.below(3))), y = permute(x, order);
        kn::check(y);
        Mm s[] = {1, 1, 1, 1}, at[] = {1, 1, 1, 1};
        ind2sub(extents(y), colon(1, y.size()), i_o, s[0], s[1], s[2], s[3]);
        for (int d = 0; d < 4; d++) at[d < order.size() ? static_cast<int>(order.r(d + 1)) - 1 : d] = s[d];
        ASSERT_SAME(y, reshape(x(sub2ind(extents(x), at[0], at[1], at[2], at[3])), size(y)));
        ASSERT_SAME(ipermute(y, order), x);
    }
    for (const Mm &wrong : {row({1, 1}), row({1}), row({1, 2.5}), row({0, 1}), row({1, 2, 3, 4, 5})})
        EXPECT_EQ(test::raised([&] { permute(ones(2, 2), wrong); }).substr(0, 23), "permute: order must nam");
}

// By tiles, with what is left beside them, streamed and shared among threads.
TEST(ArrayHelpers, transposes_of_all_extents_with_all_instruction_sets) {
    std::vector<std::array<int, 2>> extents = {{70, 45}, {3, 500}, {500, 3}, {728, 728}, {731, 725}};
    for (int m = 2; m < 20; m++)
        for (int n = 2; n < 20; n++) extents.push_back({m, n});
    const kn::KernelTable &last = kn::kernels();
    for (auto table = kn::available_kernels(); *table; ++table)
        for (auto [m, n] : extents) {
            kn::use_kernels(**table);
            kn::set_thread_count(1 + n % 2);
            Mm x = reshape(colon(1, m * n), m, n), wanted = zeros(n, m), two = C(1, 2);
            for (int k = 0; k < m * n; k++) wanted.addr()[k / m + k % m * n] = k + 1;
            ASSERT_SAME(transpose(x), wanted) << (*table)->name << " " << m << " by " << n;
            ASSERT_SAME(transpose(x * two), wanted * two);
            ASSERT_SAME(ctranspose(x * two), wanted * conj(two));
            ASSERT_SAME(transpose(muint8(x)), muint8(wanted));
        }
    kn::use_kernels(last);
    kn::set_thread_count(0);
}

TEST(ArrayHelpers, transposes) {
    EXPECT_SAME(transpose(TM("ab")), setstr(col({97, 98})));
    Mm s = test::struct_of({{"a", 1.0}});
    EXPECT_SAME(transpose(horzcat(s, s)), vertcat(s, s));
    EXPECT_RAISES(transpose(named("x", ones(2, 2, 2))),
                  "transpose: 2-d matrix expected, but matrix x has 3 dimensions");
    test::Random random(22);
    for (int round = 0; round < 300; round++) {
        Mm full_x = some_sparse(random, 1 + random.below(9), 1 + random.below(9)), x = sparse(full_x);
        ASSERT_TRUE(test::same(full(transpose(x)), transpose(full_x)));
        kn::check(transpose(x));
        ASSERT_TRUE(test::same(full(permute(x, row({3, 2, 1}))), permute(full_x, row({3, 2, 1}))));
    }
    Mm wide = sparse_of(40000, 50000, {{7, 1}, {1999999999, 2}});
    EXPECT_SAME(transpose(wide), sparse_of(50000, 40000, {{350000, 1}, {1999999999, 2}}))
        << "few entries, many rows";
}

TEST(ArrayHelpers, turns_and_flips) {
    Mm x = M({{1, 2, 3}, {4, 5, 6}});
    EXPECT_SAME(fliplr(x), M({{3, 2, 1}, {6, 5, 4}}));
    EXPECT_SAME(rot90(x), flipud(transpose(x)));
    EXPECT_SAME(rot90(x, 7.0), fliplr(transpose(x)));
    EXPECT_SAME(rot90(x, NAN), x);
    EXPECT_SAME(flipud(cell_of(2, 1, {1.0, 2.0})), cell_of(2, 1, {2.0, 1.0}));
    EXPECT_SAME(full(flipud(sparse(x))), flipud(x));
    EXPECT_RAISES(flipud(named("x", ones(2, 2, 2))),
                  "flipud: 2-d matrix expected, but matrix x has 3 dimensions");
}

TEST(ArrayHelpers, repmat_repeats_every_element) {
    test::Random random(23);
    for (int round = 0; round < 1000; round++) {
        Mm x = numbered(random, round);
        double n[4];
        for (double &count : n) count = 1 + random.below(3);
        Mm y = round % 2 ? repmat(x, n[0], n[1], n[2], n[3]) : repmat(x, row({n[0], n[1], n[2], n[3]}));
        kn::check(y);
        auto again = [&](int d) { return rem(colon(0.0, x.size(d) * n[d - 1] - 1), double(x.size(d))) + 1; };
        ASSERT_SAME(y, Mm(x(again(1), again(2), again(3), again(4))));
    }
    EXPECT_SAME(repmat(logical_of(1.0), 1.0, 2.0), logical_of(row({1, 1})));
    EXPECT_TRUE(repmat(cell(1.0), 0.0).gettype() == kn_Mm);
    Mm s = sparse_of(2, 3, {{1, 5}, {4, 6}});
    EXPECT_SAME(repmat(s, 2.0, 3.0), sparse(repmat(full(s), 2.0, 3.0)));
    EXPECT_RAISES(repmat(ones(2, 2), 1e5, 1e5), "Out of memory!");
}

// ---- Parts ----

TEST(ArrayHelpers, diagonals_and_triangles) {
    EXPECT_SAME(diag(col({1, 2}), 1.0), M({{0, 1, 0}, {0, 0, 2}, {0, 0, 0}}));
    EXPECT_SAME(diag(C(1, 2), 1.0), complex_of(M({{0, 1}, {0, 0}}), M({{0, 2}, {0, 0}})));
    EXPECT_SAME(diag(U8({{7, 8}})), U8({{7, 0}, {0, 8}}));
    EXPECT_SAME(diag(sparse_of(1, 3, {{1, 5}}), -1.0), sparse_of(4, 4, {{6, 5}}));
    EXPECT_RAISES(diag(row({1, 2}), 1e9), "Out of memory!");
    EXPECT_RAISES(tril(named("c", cell(2.0))), "tril: numeric data expected, but matrix c is not");

    test::Random random(24);
    for (int round = 0; round < 500; round++) {
        int m = 2 + random.below(4), n = 2 + random.below(4), k = random.below(11) - 5;
        Mm x = some_sparse(random, m, n), s = sparse(x), low = x, up = x, r, c;
        ndgrid(colon(1, m), colon(1, n), i_o, r, c);
        const Mm wanted = x(find(c - r == k));
        low(find(c - r > k)) = 0;
        up(find(c - r < k)) = 0;
        for (const Mm &y : {tril(x, k), full(tril(s, k))}) ASSERT_SAME(y, low);
        for (const Mm &y : {triu(x, k), full(triu(s, k))}) ASSERT_SAME(y, up);
        for (const Mm &d : {diag(x, k), full(diag(s, k))})
            ASSERT_TRUE(wanted.size() == 0 ? d.size() == 0 : test::same(d, wanted));
    }
    EXPECT_SAME(tril(M({{NAN, INFINITY}, {1, NAN}})), M({{NAN, 0}, {1, NAN}}));
}

// ---- Grids and positions ----

TEST(ArrayHelpers, grids) {
    Mm x, y, z;
    Mm a = row({1, 2}), b = row({3, 4, 5}), c = row({6, 7, 8, 9});
    ndgrid(a, b, c, i_o, x, y, z);
    Mm mx, my, mz;
    meshgrid(b, a, c, i_o, mx, my, mz);
    EXPECT_SAME(mx, y);
    EXPECT_SAME(my, x);
    EXPECT_SAME(mz, z);
    Mm i, j, k;
    ind2sub(size(z), reshape(colon(1, 24), 2, 3, 4), i_o, i, j, k);
    EXPECT_SAME(x, i);
    EXPECT_SAME(y, j + 2);
    EXPECT_SAME(z, k + 5);
    meshgrid(a, i_o, a, y); // an output that is an input
    EXPECT_SAME(y, M({{1, 1}, {2, 2}}));
}

TEST(ArrayHelpers, positions_and_subscripts) {
    Mm d = row({2, 3, 4}), i, j, k, all = colon(1, 24);
    ind2sub(d, all, i_o, i, j, k);
    EXPECT_SAME(sub2ind(d, i, j, k), all);
    ind2sub(row({2, 3}), 5.0, i_o, i, j, k);
    EXPECT_TRUE(i.r() == 1 && j.r() == 3 && k.r() == 1);
    EXPECT_SAME(sub2ind(row({2, 3}), U8({{2}}), 3.0), Mm(6.0));
    EXPECT_RAISES(ind2sub(d, 25.0), "ind2sub: index out of range");
    EXPECT_RAISES(sub2ind(d, 3.0, 1.0), "sub2ind: subscript out of range");
    EXPECT_RAISES(ind2sub(d, Mm(NAN)), "ind2sub: index out of range");
    EXPECT_RAISES(sub2ind(d, 1.0, Mm(NAN)), "sub2ind: subscript out of range");
    EXPECT_RAISES(sub2ind(5.0, 1.0), "sub2ind: size vector must have at least two elements");
}

TEST(ArrayHelpers, find) {
    EXPECT_SAME(find(row({0, 3, NAN, -0.0})), row({2, 3}));
    EXPECT_SAME(find(U8({{0, 9}})), Mm(2.0));
    EXPECT_SAME(find(complex_of(row({0, 0, 1}), row({0, 2, 0}))), row({2, 3}));
    EXPECT_SAME(find(sparse_of(2, 3, {{1, 5}, {3, 0}, {4, 6}})), col({2, 5})) << "a stored zero is none";
    EXPECT_RAISES(find(named("c", cell(1.0))), "find: numeric data expected, but matrix c is not");

    Mm i, j, v;
    find(ones(2, 2, 2), i_o, i, j);
    EXPECT_EQ(j.r(8), 4);
    test::Random random(25);
    for (int round = 0; round < 300; round++) {
        Mm m = some_sparse(random, 1 + random.below(6), 1 + random.below(6)), s = sparse(m);
        Mm k = find(m);
        ASSERT_TRUE(test::same(find(s), k));
        find(round % 2 ? m : s, i_o, i, j, v);
        Mm rebuilt = zeros(m.rows(), m.cols());
        rebuilt(sub2ind(size(m), i, j)) = v;
        ASSERT_TRUE(istrue(isequal(rebuilt, m)));
    }
}

// ---- Sums ----

TEST(ArrayHelpers, means_and_variances) {
    Mm x = M({{1, 2}, {3, 8}});
    EXPECT_SAME(mean(x, 2.0), col({1.5, 5.5}));
    EXPECT_SAME(var(x, 0.0, 2.0), col({0.5, 12.5}));
    EXPECT_SAME(stdM(x, 1.0), row({1, 3}));
    EXPECT_SAME(stdM(x, nop_M, 1.0), sqrt(row({2, 18})));
    EXPECT_SAME(var(complex_of(row({1, -1}), row({1, -1}))), Mm(4.0));
    EXPECT_SAME(var(7.0), Mm(0.0));
    for (const Mm &none : {mean(Mm()), var(Mm()), stdM(Mm()), cov(Mm())}) EXPECT_SAME(none, Mm(NAN));
    EXPECT_RAISES(var(x, 2.0), "var: flag must be 0 or 1");
    EXPECT_RAISES(stdM(named("x", x), 0.0, 5.0), "std: dimension=5 does not exist for matrix x");

    EXPECT_SAME(cov(row({1, 3}), col({2, 8}), 1.0), M({{1, 3}, {3, 9}}));
    EXPECT_SAME(cov(5.0), Mm(0.0));
    EXPECT_RAISES(cov(row({1, 2}), row({1, 2, 3})), "cov: x and y must have the same number of elements");

    Mm z = complex_of(M({{1, 2}, {3, 5}, {4, 4}}), M({{0, 1}, {2, 2}, {1, 0}})), s = cov(z);
    EXPECT_TRUE(istrue(isequal(s, ctranspose(s)))) << "Hermitian";
    EXPECT_NEAR_ULP(real(diag(s)), transpose(var(z)), 4);
}

TEST(ArrayHelpers, products) {
    EXPECT_SAME(dot(C(0, 1), C(0, 1)), C(1, 0));
    EXPECT_SAME(dot(M({{1, 2}, {3, 4}}), M({{1, 1}, {2, 2}}), 2.0), col({3, 14}));
    EXPECT_RAISES(dot(row({1, 2}), row({1, 2, 3})), "dot: a and b must be same size");
    Mm a = M({{1, 2, 3}, {0, 1, 0}}), b = M({{4, 5, 6}, {0, 0, 1}});
    EXPECT_SAME(cross(a, b), M({{-3, 6, -3}, {1, 0, 0}}));
    EXPECT_SAME(cross(transpose(a), transpose(b), 1.0), transpose(cross(a, b)));
    EXPECT_RAISES(cross(ones(2, 2), ones(2, 2)), "cross: a and b must have 3 elements in the dimension");
    EXPECT_RAISES(cross(ones(3, 2), ones(2, 3)), "cross: a and b must be same size");
}

TEST(ArrayHelpers, trapezoids) {
    Mm y = M({{1, 2}, {3, 6}, {5, 4}}), x = row({0, 1, 3});
    EXPECT_SAME(cumtrapz(x, y), M({{0, 0}, {2, 4}, {10, 14}}));
    EXPECT_SAME(trapz(x, transpose(y), 2.0), col({10, 14}));
    EXPECT_SAME(cumtrapz(nop_M, transpose(y), 2.0), transpose(cumtrapz(y)));
    EXPECT_SAME(trapz(repmat(transpose(x), 1.0, 2.0), y), row({10, 14}));
    EXPECT_SAME(trapz(Mm()), Mm(0.0));
    EXPECT_RAISES(trapz(row({1, 2}), y), "trapz: length of x must equal the size of y in the dimension");
}

} // namespace
