// Sparse values from triplets, sizes and patterns, and what can be read of them.
#include <climits>
#include <cmath>

#include "support/support.h"

using namespace test;

namespace {

const Mm none = sparse_of(0, 0, {});

TEST(SparseTriplets, duplicates_and_zeros) {
    auto numbers = [](int most) { return fix(1 + most * randM(5000, 1)); };
    Mm i = numbers(40), j = numbers(60), s = numbers(9), sums = zeros(40, 60);
    for (int k = 1; k <= i.size(); ++k) sums.r(i.r(k), j.r(k)) += s.r(k);
    EXPECT_SAME(sparse(i, j, s, 40.0, 60.0), sparse(sums));
    Mm cancelled = sparse(row({1, 1}), row({1, 1}), row({1, -1}));
    EXPECT_SAME(cancelled, sparse_of(1, 1, {{0, 0}}));
    EXPECT_SAME(nzmax(cancelled), Mm(2.0));
    EXPECT_SAME(sparse(col({2, 1, 2}), col({2, 1, 2}), complex_of(col({1, 0, 2}), col({0, 0, 5})), 2.0, 3.0),
                sparse(complex_of(M({{0, 0, 0}, {0, 3, 0}}), M({{0, 0, 0}, {0, 5, 0}}))));
}

TEST(SparseTriplets, shapes_and_classes) {
    EXPECT_SAME(sparse(2.0, row({3, 1}), 5.0), sparse_of(2, 3, {{1, 5}, {5, 5}})) << "scalars stand for all";
    EXPECT_SAME(sparse(U8({{1, 2}}), sparse(row({2, 1})), TM("ab"), U8({{2}}), 2.0, 99.0),
                sparse_of(2, 2, {{1, 98}, {2, 97}}));
    EXPECT_SAME(sparse(0.6, 1.4, 7.0, 1.5, 0.5), sparse_of(2, 1, {{0, 7}})) << "rounded";
    EXPECT_SAME(sparse(Mm(), Mm(), Mm()), sparse(0.0)) << "no largest index";
    EXPECT_SAME(sparse(Mm(), Mm(), Mm(), -4.0, 2.0), none);
}

TEST(SparseTriplets, messages) {
    const std::string negative = "sparse: non-positive row index encountered";
    struct {
        Mm i, j;
        std::string text;
    } table[] = {{row({1, 0}), 1.0, negative},
                 {-INFINITY, 9.0, negative},
                 {3.0, 0.0, "sparse: out of bounds row index encountered"},
                 {2.0, 0.0, "sparse: non-positive column index encountered"},
                 {row({1, 1}), row({1, 4}), "sparse: out of bounds column index encountered"},
                 {row({1, 2, 3}), row({1, 2}), "sparse: i,j and v must be same size"}};
    for (const auto &c : table) EXPECT_RAISES(sparse(c.i, c.j, 1.0, 2.0, 3.0), c.text);
    EXPECT_RAISES(sparse(1.0, 1.0, 1.0, 1e10, 1e10), "Out of memory!");
    EXPECT_RAISES(spconvert(named("d", M({{1, 2}}))), "spconvert: matrix 'd' must have 3 or 4 columns");
    EXPECT_RAISES(spalloc(1.0), "spalloc does not accept 2 inputs");
}

TEST(SparseTriplets, spconvert) {
    Mm d = M({{1, 2, 5}, {2, 1, 6}, {3, 4, 0}});
    EXPECT_SAME(spconvert(d), sparse_of(3, 4, {{1, 6}, {3, 5}})) << "the last row gives the extents";
    EXPECT_SAME(spconvert(Mm()), none);
    Mm z = sparse(complex_of(M({{0, 5}}), M({{0, 7}})));
    EXPECT_SAME(spconvert(complex_of(M({{1, 2, 5}}), M({{0, 0, 7}}))), z);
}

TEST(SparseBuilders, shapes) {
    for (const auto &[got, wanted] : {std::pair<Mm, Mm>{speye(3.9), eye(3)},
                                      {speye(row({3.6, 2})), eye(4, 2)},
                                      {spzeros(-1.0, 5.0), Mm()},
                                      {spalloc(3.0, 3.0, 2.0), zeros(3.0)}})
        EXPECT_TRUE(got.issparse() && test::same(full(got), wanted));
    EXPECT_EQ(spalloc(3.0, 3.0, 2.0).getnnz(), 2);
    EXPECT_EQ(spalloc(2.0, 2.0, -3.0).getnnz(), 0);
}

TEST(SparseBuilders, random_patterns) {
    for (double d : {0.0, 2.0, -1.0}) {
        const Mm x = sprandn(3.0, 4.0, d);
        EXPECT_TRUE(x.issparse() && x.rows() == 3 && x.cols() == 4 && x.getnnz() <= std::max(0.0, 12 * d));
    }
    EXPECT_SAME(spones(sparse_of(2, 2, {{1, 0}, {3, NAN}})), sparse_of(2, 2, {{1, 1}, {3, 1}}));

    // The stream: rows, columns, then values in the order of rows.
    randM(TM("state"), 5.0);
    Mm got = sprand(9.0, 7.0, 0.3);
    randM(TM("state"), 5.0);
    const Mm i = fix(1 + 9 * randM(19.0, 1.0)), j = fix(1 + 7 * randM(19.0, 1.0));
    EXPECT_SAME(spones(got), spones(sparse(i, j, 1.0, 9.0, 7.0)));
    EXPECT_SAME(nonzeros(transpose(got)), randM(got.getnnz(), 1));
}

TEST(SparseReaders, counts_elements_and_functions) {
    Mm s = sparse_of(2, 3, {{1, 5}, {2, 0}, {4, NAN}}), z = sparse(C(0, 2));
    EXPECT_SAME(nnz(s), Mm(2.0));
    EXPECT_SAME(nzmax(s), Mm(4.0));
    EXPECT_SAME(nonzeros(s), col({5, NAN}));
    EXPECT_SAME(nonzeros(z), C(0, 2));

    kn_feval_hook old = feval_func;
    feval_func = kn_feval;
    EXPECT_SAME(spfun(TM("exp"), s), sparse_of(2, 3, {{1, std::exp(5.0)}, {4, NAN}}));
    feval_func = old;
}

TEST(SparseReaders, orderings) {
    EXPECT_SAME(colperm(M({{1, 0, 1, 0}, {1, 0, 0, 2}})), row({2, 3, 4, 1}));
    EXPECT_SAME(colmmd(sparse_of(2, 3, {{4, 0}})), row({1, 2, 3})) << "a stored zero counts";
    randM(TM("state"), 3.0);
    const Mm p = randperm(20.0);
    randM(TM("state"), 3.0);
    EXPECT_TRUE(istrue(diff(Mm(randM(1.0, 20.0)(p))) > 0.0));
}

TEST(SparseColumns, views) {
    struct {
        Mm a;
        std::vector<kn_size> ir, jc, bounds;
    } table[] = {{sparse_of(3, 4, {{1, 1}, {6, 1}, {8, 1}}), {1, 0, 2}, {0, 1, 1, 3, 3, -1}, {0, 2, 0, 2}},
                 {sparse_of(2, 2, {}), {}, {0, 0, 0, -1}, {PTRDIFF_MAX, -1, PTRDIFF_MAX, -1}},
                 {sparse(nd({2, 2, 2}, {0, 1, 0, 0, 0, 0, 0, 9})), {1, 1}, {0, 1, 1, 1, 2, -1}, {1, 1, 0, 3}},
                 {sparse_of(1, 3, {{1, 1}, {2, 0}}), {0, 0}, {0, 0, 1, 2, -1}, {0, 0, 1, 2}}};
    for (auto &c : table) {
        std::vector<kn_size> b(4);
        kn_size *ir = getIr(c.a), *jc = sparse_bounds(c.a, b[0], b[1], b[2], b[3]), *again = getJc(c.a);
        EXPECT_EQ(std::vector<kn_size>(ir, ir + c.ir.size()), c.ir);
        EXPECT_EQ(std::vector<kn_size>(jc, jc + c.jc.size()), c.jc);
        EXPECT_EQ(std::vector<kn_size>(again, again + c.jc.size()), c.jc);
        EXPECT_EQ(b, c.bounds);
        Mm back = spones(c.a), shared = back;
        std::fill_n(c.a.getindex(), c.a.getnnz(), 0);
        setIrJc(c.a, ir, jc);
        EXPECT_SAME(spones(c.a), shared);
        freeIrJc(ir, jc);
        freeIrJc(nullptr, again);
    }
    Mm s = named("s", sparse_of(2, 2, {{1, 1}}));
    const kn_size ir[] = {2, 0}, jc[] = {0, 1, 1};
    EXPECT_RAISES(setIrJc(s, ir, jc), "IrJc: entry outside of matrix s");
    s = 1.0;
    EXPECT_RAISES(setIrJc(s, ir, jc), "IrJc: sparse matrix expected, but matrix s is full");
}

} // namespace
