// Sparse values from triplets, sizes and patterns, and what can be read of them.
#include <climits>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "support/support.h"

using namespace test;

namespace {

const Mm none = sparse_of(0, 0, {});

TEST(SparseTriplets, duplicates_and_zeros) {
    EXPECT_SAME(sparse(row({1, 1}), row({1, 1}), row({1, 2})), sparse_of(1, 1, {{0, 3}}));
    Mm cancelled = sparse(row({1, 1}), row({1, 1}), row({1, -1}));
    EXPECT_SAME(cancelled, sparse_of(1, 1, {{0, 0}}));
    EXPECT_SAME(nnz(cancelled), Mm(0.0));
    EXPECT_SAME(nzmax(cancelled), Mm(2.0));
    EXPECT_SAME(sparse(1.0, 1.0, 0.0, 3.0, 3.0), sparse_of(3, 3, {}));
    EXPECT_SAME(sparse(col({2, 1, 2}), col({2, 1, 2}), complex_of(col({1, 0, 2}), col({0, 0, 5})), 2.0, 3.0),
                sparse(complex_of(M({{0, 0, 0}, {0, 3, 0}}), M({{0, 0, 0}, {0, 5, 0}}))));
}

TEST(SparseTriplets, shapes_and_classes) {
    EXPECT_SAME(sparse(2.0, 3.0), sparse_of(2, 3, {}));
    EXPECT_SAME(nzmax(sparse(2.0, 3.0)), Mm(1.0));
    EXPECT_SAME(sparse(2.0, row({3, 1}), 5.0), sparse_of(2, 3, {{1, 5}, {5, 5}})) << "scalars stand for all";
    EXPECT_SAME(sparse(M({{1, 2}, {1, 2}}), M({{1, 2}, {2, 1}}), row({1, 2, 3, 4})),
                sparse(M({{1, 2}, {4, 3}})));
    EXPECT_SAME(sparse(U8({{1, 2}}), sparse(row({2, 1})), TM("ab"), U8({{2}}), 2.0, 99.0),
                sparse_of(2, 2, {{1, 98}, {2, 97}}));
    EXPECT_SAME(sparse(0.6, 1.4, 7.0, 1.5, 0.5), sparse_of(2, 1, {{0, 7}})) << "rounded";
    EXPECT_SAME(sparse(Mm(), Mm(), Mm()), sparse(0.0)) << "no largest index";
    EXPECT_SAME(sparse(1.0, 1.0, 1.0, Mm(), 2.0), sparse(0.0));
    EXPECT_SAME(sparse(Mm(), Mm(), Mm(), -4.0, 2.0), none);
    EXPECT_SAME(sparse(1.0, 1.0, Mm(), 2.0, 2.0), sparse_of(2, 2, {})) << "no times";
}

TEST(SparseTriplets, messages) {
    const std::string negative = "sparse: non-positive row index encountered";
    struct {
        Mm i, j;
        std::string text;
    } table[] = {{row({1, 0}), 1.0, negative},
                 {0.4, 1.0, negative},
                 {NAN, 1.0, negative},
                 {-INFINITY, 9.0, negative},
                 {3.0, 0.0, "sparse: out of bounds row index encountered"},
                 {INFINITY, 1.0, "sparse: out of bounds row index encountered"},
                 {2.0, 0.0, "sparse: non-positive column index encountered"},
                 {row({1, 1}), row({1, 4}), "sparse: out of bounds column index encountered"},
                 {row({1, 2, 3}), row({1, 2}), "sparse: i,j and v must be same size"}};
    for (const auto &c : table) EXPECT_RAISES(sparse(c.i, c.j, 1.0, 2.0, 3.0), c.text);
    EXPECT_RAISES(sparse(1.0, 1.0, 1.0, 1.0), "sparse does not accept 4 inputs");
    EXPECT_RAISES(sparse(1.0, 1.0, 1.0, 1e5, 1e5), "Out of memory!");
    EXPECT_RAISES(sparse(Mm(), Mm(), Mm(), 1e300, 2.0), "Out of memory!");
    EXPECT_RAISES(spconvert(named("d", M({{1, 2}}))), "spconvert: matrix 'd' must have 3 or 4 columns");
    EXPECT_RAISES(spalloc(1.0), "spalloc does not accept 2 inputs");
    EXPECT_RAISES(spalloc(1.0, 1.0), "spalloc does not accept 1 input");
    EXPECT_RAISES(sparsfun(1.0, 1.0), "sparsfun called");
    EXPECT_RAISES(colperm(ones(2.0, 2.0, 2.0)),
                  test::raised([] { error_2d(ones(2.0, 2.0, 2.0), "colperm"); }));
    EXPECT_RAISES(speye(1e6, 1e6), "Out of memory!");
}

TEST(SparseTriplets, spconvert) {
    Mm d = M({{1, 2, 5}, {2, 1, 6}, {3, 4, 0}});
    EXPECT_SAME(spconvert(d), sparse_of(3, 4, {{1, 6}, {3, 5}})) << "the last row gives the extents";
    EXPECT_SAME(spconvert(Mm()), none);
    Mm z = sparse(complex_of(M({{0, 5}}), M({{0, 7}})));
    EXPECT_SAME(spconvert(M({{1, 2, 5, 7}})), z);
    EXPECT_SAME(spconvert(complex_of(M({{1, 2, 5}}), M({{0, 0, 7}}))), z);
}

TEST(SparseBuilders, shapes) {
    struct {
        Mm got;
        int m, n, entries;
    } table[] = {{speye(), 1, 1, 1},
                 {speye(3.9), 3, 3, 3},
                 {speye(2.0, 4.0), 2, 4, 2},
                 {speye(row({3.6, 2})), 4, 2, 2},
                 {speye(Mm()), 0, 0, 0},
                 {speye(3.0, Mm()), 0, 0, 0},
                 {speye(1.0, 3.0), 1, 3, 1},
                 {speye(U8({{2}})), 2, 2, 2},
                 {spzeros(2.0), 2, 2, 0},
                 {spzeros(2.0, 5.0), 2, 5, 0},
                 {spzeros(-1.0, 5.0), 0, 0, 0},
                 {spalloc(3.0, 3.0, 2.0), 3, 3, 2},
                 {spalloc(1.0, 2.0, 9.0), 1, 2, 2},
                 {spalloc(2.0, 2.0, -3.0), 2, 2, 0}};
    for (const auto &c : table) {
        EXPECT_TRUE(c.got.issparse());
        EXPECT_EQ(std::vector<int>({c.got.rows(), c.got.cols(), c.got.getnnz()}),
                  std::vector<int>({c.m, c.n, c.entries}));
    }
    EXPECT_SAME(full(speye(3.0, 2.0)), eye(3, 2));
    EXPECT_SAME(nnz(spalloc(3.0, 3.0, 2.0)), Mm(0.0));
    EXPECT_RAISES(full(speye(20000.0)), "full: matrix too large");
}

TEST(SparseBuilders, random_patterns) {
    for (double d : {0.0, 0.1, 2.0, -1.0}) {
        Mm s = sprand(3.0, 4.0, d), t = sprandn(3.0, 4.0, d);
        for (const Mm &x : {s, t}) {
            EXPECT_TRUE(x.issparse() && x.rows() == 3 && x.cols() == 4 &&
                        x.getnnz() <= std::max(0.0, 12 * d));
            for (int k = 1; k < x.getnnz(); ++k) EXPECT_LT(x.getindex()[k - 1], x.getindex()[k]);
        }
    }
    EXPECT_EQ(sprand(Mm(), 3.0).size(), 0);
    EXPECT_SAME(spones(sprandn(speye(4.0))), speye(4.0));
    EXPECT_SAME(spones(sparse_of(2, 2, {{1, 0}, {3, NAN}})), sparse_of(2, 2, {{1, 1}, {3, 1}}));
    EXPECT_SAME(spones(sparse(C(2, 3))), sparse(1.0)) << "real";

    // The stream: rows, columns, then values in the order of rows.
    randM(TM("state"), 5.0);
    Mm got = sprand(9.0, 7.0, 0.3);
    randM(TM("state"), 5.0);
    Mm i = fix(1 + 9 * randM(19.0, 1.0)), j = fix(1 + 7 * randM(19.0, 1.0)), grid = zeros(9.0, 7.0);
    for (int k = 1; k <= 19; ++k) grid.r(i.r(k), j.r(k)) = 1;
    Mm values = randM(got.getnnz(), 1);
    int k = 0;
    for (int r = 1; r <= 9; ++r)
        for (int c = 1; c <= 7; ++c)
            if (grid.r(r, c) != 0) {
                EXPECT_EQ(full(got).r(r, c), values.r(++k));
            }
    EXPECT_EQ(k, got.getnnz());
}

TEST(SparseReaders, counts_elements_and_functions) {
    Mm s = sparse_of(2, 3, {{1, 5}, {2, 0}, {4, NAN}}), z = sparse(C(0, 2));
    EXPECT_SAME(nnz(s), Mm(2.0));
    EXPECT_SAME(nzmax(s), Mm(4.0));
    EXPECT_SAME(nonzeros(s), col({5, NAN}));
    EXPECT_SAME(nonzeros(row({0, 3, 4})), col({3, 4}));
    EXPECT_SAME(nnz(z), Mm(1.0));
    EXPECT_SAME(nonzeros(z), C(0, 2));
    EXPECT_SAME(nnz(U8({{0, 2, 255}})), Mm(2.0));
    EXPECT_SAME(nzmax(ones(2.0, 3.0, 4.0)), Mm(24.0));
    EXPECT_SAME(nnz(Mm()), Mm(0.0));

    kn_feval_hook old = feval_func;
    feval_func = kn_feval;
    EXPECT_SAME(spfun(TM("exp"), s), sparse_of(2, 3, {{1, std::exp(5.0)}, {4, NAN}}));
    EXPECT_SAME(spfun(TM("cos"), sparse_of(2, 2, {})), sparse_of(2, 2, {}));
    feval_func = old;
}

TEST(SparseReaders, orderings) {
    EXPECT_SAME(colperm(M({{1, 0, 1, 0}, {1, 0, 0, 2}})), row({2, 3, 4, 1}));
    EXPECT_SAME(colmmd(sparse_of(2, 3, {{4, 0}})), row({1, 2, 3})) << "a stored zero counts";
    EXPECT_EQ(colperm(Mm()).size(), 0);
    Mm p = randperm(50.0), seen = zeros(1, 50);
    ASSERT_EQ(p.size(), 50);
    seen(p) = 1.0;
    EXPECT_SAME(seen, ones(1, 50));
    randM(TM("state"), 3.0);
    p = randperm(20.0);
    randM(TM("state"), 3.0);
    Mm keys = randM(1.0, 20.0);
    for (int k = 2; k <= 20; ++k) EXPECT_LT(keys.r(p.r(k - 1)), keys.r(p.r(k)));
}

TEST(SparseColumns, views) {
    struct {
        Mm a;
        std::vector<int> ir, jc, bounds;
    } table[] = {{sparse_of(3, 4, {{1, 1}, {6, 1}, {8, 1}}), {1, 0, 2}, {0, 1, 1, 3, 3, -1}, {0, 2, 0, 2}},
                 {sparse_of(2, 2, {}), {}, {0, 0, 0, -1}, {INT_MAX, -1, INT_MAX, -1}},
                 {none, {0, 0}, {0, -1}, {INT_MAX, -1, INT_MAX, -1}},
                 {sparse_of(5, 1, {{4, 1}}), {4}, {0, 1, -1}, {4, 4, 0, 0}},
                 {sparse(nd({2, 2, 2}, {0, 1, 0, 0, 0, 0, 0, 9})), {1, 1}, {0, 1, 1, 1, 2, -1}, {1, 1, 0, 3}},
                 {sparse_of(1, 3, {{1, 1}, {2, 0}}), {0, 0}, {0, 0, 1, 2, -1}, {0, 0, 1, 2}}};
    for (auto &c : table) {
        std::vector<int> b(4);
        int *ir = getIr(c.a), *jc = sparse_bounds(c.a, b[0], b[1], b[2], b[3]), *again = getJc(c.a);
        EXPECT_EQ(std::vector<int>(ir, ir + c.ir.size()), c.ir);
        EXPECT_EQ(std::vector<int>(jc, jc + c.jc.size()), c.jc);
        EXPECT_EQ(std::vector<int>(again, again + c.jc.size()), c.jc);
        EXPECT_EQ(b, c.bounds);
        Mm back = spones(c.a), shared = back;
        std::fill_n(c.a.getindex(), c.a.getnnz(), 0);
        setIrJc(c.a, ir, jc);
        EXPECT_SAME(spones(c.a), shared);
        freeIrJc(ir, jc);
        freeIrJc(nullptr, again);
    }
    EXPECT_RAISES(getIr(M({{1}})), "getIr: sparse matrix expected, but matrix =1 is full");
    Mm s = named("s", sparse_of(2, 2, {{1, 1}}));
    const int ir[] = {2, 0}, jc[] = {0, 1, 1};
    EXPECT_RAISES(setIrJc(s, ir, jc), "IrJc: entry outside of matrix s");
    Mm a = 1.0;
    EXPECT_RAISES(setIrJc(a, ir, jc), "IrJc: sparse matrix expected, but matrix =1 is full");
}

} // namespace
