// Brackets, braces and the functions that join values.
#include <algorithm>
#include <functional>
#include <vector>

#include "base/scratch.h"
#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

// ---- Brackets of plain matrices ----

TEST(Brackets, shapes) {
    EXPECT_SAME(Mm((BR(1.0), 2.0, semi, 3.0)), M({{1, 2}, {3, 0}})) << "filled with zeros, no message";
    EXPECT_SAME(Mm((BR(nop_M), nop_M, semi, nop_M)), Mm());
}

TEST(Brackets, random_tilings) {
    test::Random random(3);
    for (int round = 0; round < 500; round++) {
        // Rows of blocks that fit, some rows too short.
        std::vector<std::vector<Mm>> blocks(1 + random.below(3));
        int rows = 0, cols = 0;
        for (auto &line : blocks) {
            int height = 1 + random.below(4), width = 0, n = 1 + random.below(4);
            for (int k = 0; k < n; k++) {
                line.push_back(random.matrix(height, random.below(4), random.below(5) == 0));
                width += line.back().cols();
            }
            if (width > 0) rows += height;
            cols = std::max(cols, width);
        }
        Mc list(0, nop_M);
        bool complex = false;
        for (auto &line : blocks) {
            for (Mm &block : line) // a number by itself is no value
                block.size() == 1 && !block.isc() ? (list, block.r()) : (list, block);
            list, semi;
            for (Mm &block : line) complex = complex || block.isc();
        }
        Mm got = list;

        Mm wanted = czeros(complex, rows, cols);
        int top = 0;
        for (auto &line : blocks) {
            int left = 0, height = 0;
            for (Mm &b : line) {
                for (int c = 1; c <= b.cols(); c++)
                    for (int r = 1; r <= b.rows(); r++) {
                        wanted.r(top + r, left + c) = b.r(r, c);
                        if (b.isc()) wanted.i(top + r, left + c) = b.i(r, c);
                    }
                left += b.cols();
                height = std::max(height, b.rows());
            }
            top += height;
        }
        ASSERT_TRUE(test::same(got, wanted));
    }
}

TEST(Brackets, taller_item_runs_on_inside_the_block) {
    Mm tall = test::col({1, 2, 3});
    EXPECT_SAME(Mm((BR(tall), 9.0)), row({1, 9})) << "the last item decides the height";
    EXPECT_SAME(Mm((BR(9.0), tall, 8.0)), row({9, 1, 8}));
    EXPECT_SAME(Mm((BR(M({{1, 2}, {3, 4}})), 9.0)), row({1, 2, 9})) << "column by column";
    EXPECT_SAME(Mm((BR(7.0), tall, 8.0, nop_M, semi, 1.0, 2.0)), M({{7, 1, 8}, {1, 2, 0}}));
    Mm huge = zeros(5000, 3);
    EXPECT_SAME(Mm((BR(huge), 1.0)), row({0, 0, 0, 1}));
}

TEST(Brackets, flags) {
    Mm yes = logical_of(1.0), no = logical_of(0.0), text = TM("ab");
    EXPECT_SAME(Mm((BR(yes), no)), logical_of(row({1, 0})));
    EXPECT_SAME(Mm((BR(yes), 1.0)), row({1, 1}));
    EXPECT_SAME(Mm((BR(yes), nop_M)), Mm(1.0)) << "[] is not logical";
    EXPECT_SAME(Mm((BR(text), semi, TM("cd"))), setstr(M({{97, 98}, {99, 100}})));
    EXPECT_TRUE(Mm((BR(TM("")), TM(""))).isstr());
}

// ---- Joining ----

TEST(Brackets, other_types_are_joined) {
    Mm s = sparse_of(1, 2, {{1, 5}}), c = cell_of(1, 1, {TM("x")}), unset = Mm(i_o, "u", 0);
    EXPECT_SAME(Mm((BR(row({1, 0})), semi, s)), sparse_of(2, 2, {{0, 1}, {3, 5}}));
    EXPECT_SAME(Mm((BR(s), 7.0, semi, nop_M, semi)), sparse_of(1, 3, {{1, 5}, {2, 7}}));
    EXPECT_SAME(Mm((BR(300.0), U8({{1, 2}}))), U8({{44, 1, 2}}));
    EXPECT_SAME(Mm((BR(c), c, semi, c, c)), cell_of(2, 2, {TM("x"), TM("x"), TM("x"), TM("x")}));
    EXPECT_SAME(Mm((BR(nop_M), c)), c);
    EXPECT_EQ(Mm(BR(unset)).gettype(), kn_none);
    EXPECT_SAME(Mm((BR(ones(1, 2, 2)), ones(1, 1, 2))), ones(1, 3, 2));
    Mm flagged = Mm((BR(sparse(logical_of(s))), sparse(logical_of(s))));
    EXPECT_TRUE(flagged.islogical());
}

TEST(Concatenation, matches_a_model_along_every_dimension) {
    test::Random random(11);
    for (int round = 0; round < 2000; round++) {
        int dim = 1 + random.below(4), ndims = 2 + random.below(3), extents[2][4] = {};
        for (int k = 0; k < 4; k++) extents[0][k] = extents[1][k] = k < ndims ? 1 + random.below(3) : 1;
        if (ndims > 2) extents[0][ndims - 1] = extents[1][ndims - 1] = 2; // both keep their dimensions
        extents[1][dim - 1] = dim <= 2 ? 1 + random.below(3) : extents[0][dim - 1];
        // Elements with their number, the second value's from 101 on; imaginary parts are the negative.
        const bool complex[2] = {random.below(2) == 1, random.below(2) == 1};
        Mm x[2];
        for (int p = 0; p < 2; p++) {
            x[p] = Mm(complex[p], 0, 0, ndims, extents[p], kn_double);
            for (int k = 1; k <= x[p].getnnz(); k++) {
                x[p].r(k) = 100 * p + k;
                if (complex[p]) x[p].i(k) = -x[p].r(k);
            }
        }
        int d[4];
        std::copy_n(extents[0], 4, d);
        d[dim - 1] += extents[1][dim - 1];
        Mm wanted(complex[0] || complex[1], 0, 0, 4, d, kn_double);
        for (int k = 0; k < wanted.getnnz(); k++) {
            int rest = k, sub[4], position = 0;
            for (int l = 0; l < 4; rest /= d[l++]) sub[l] = rest % d[l];
            const int p = sub[dim - 1] >= extents[0][dim - 1];
            if (p) sub[dim - 1] -= extents[0][dim - 1];
            for (int l = 3; l >= 0; l--) position = position * extents[p][l] + sub[l];
            wanted.r(k + 1) = 100 * p + position + 1;
            if (wanted.isc()) wanted.i(k + 1) = complex[p] ? -wanted.r(k + 1) : 0;
        }
        ASSERT_SAME(cat(dim, x[0], x[1]), wanted);
        wanted.getreal(1);
        ASSERT_SAME(cat(dim, muint8(real(x[0])), muint8(real(x[1]))), muint8(wanted));
        ASSERT_SAME(cat(dim, num2cell(real(x[0])), num2cell(real(x[1]))), num2cell(wanted));
    }
}

TEST(Concatenation, sparse_matches_full) {
    test::Random random(12);
    for (int round = 0; round < 1000; round++) {
        int dim = 1 + random.below(2), common = 1 + random.below(4);
        Mm x[2];
        for (Mm &m : x) {
            int other = 1 + random.below(4);
            m = random.matrix(dim == 1 ? other : common, dim == 1 ? common : other, random.below(3) == 0);
            for (int k = 1; k <= m.getnnz(); k++)
                if (random.below(2)) *m.addr(k) = 0;
        }
        Mm a = random.below(2) ? sparse(x[0]) : x[0],
           b = a.issparse() && random.below(2) ? x[1] : sparse(x[1]);
        Mm got = cat(dim, a, b);
        ASSERT_TRUE(got.issparse());
        kn::check(got);
        ASSERT_TRUE(test::same(full(got), cat(dim, x[0], x[1])));
    }
}

TEST(Concatenation, empty_and_logical_sides) {
    Mm x = logical_of(M({{1, 0}}));
    EXPECT_SAME(horzcat(x, nop_M), x);
    EXPECT_SAME(cat(1.0, Mm(), Mm()), Mm());
    EXPECT_SAME(horzcat(x, 5.0), row({1, 0, 5})) << "logical only when both are";
}

TEST(Concatenation, structures) {
    Mm a = struct_of({{"x", 1.0}, {"y", 2.0}}), b = struct_of({{"x", 3.0}, {"y", 4.0}}), object = a;
    EXPECT_SAME(Mm(Mm((BR(a), b, a)).member("y")), cell_of(1, 3, {2.0, 4.0, 2.0}));
    EXPECT_EQ(vertcat(a, b).rows(), 2);
    EXPECT_EQ(cat(3.0, a, b).size(3), 2);
    Mm wider = struct_of({{"x", 3.0}, {"y", 4.0}, {"z", 5.0}});
    EXPECT_SAME(Mm(horzcat(a, wider).member("z")), cell_of(1, 2, {Mm(), 5.0}));
    EXPECT_RAISES(horzcat(a, cell_of(1, 1, {1.0})),
                  "In the assignment x(...)=y, x was a structure array but y was not a structure");
    EXPECT_SAME(a, struct_of({{"x", 1.0}, {"y", 2.0}})) << "inputs stay";
    object.setclassid(3);
    EXPECT_EQ(horzcat(object, object).getclassid(), 3);
}

TEST(Concatenation, errors) {
    Mm m = ones(2, 2), s = sparse(m), c = cell_of(1, 1, {1.0});
    const std::pair<std::function<Mm()>, const char *> cases[] = {
        {[&] { return cat(5.0, m, m); }, "cat: no such dimension"},
        {[&] { return cat(0.0, ones(2, 2, 2), ones(2, 2, 2)); }, "cat: no such dimension"},
        {[&] { return cat(3.0, nop_M, m); }, "cat: arguments do not have compatible dimensions"},
        {[&] { return cat(1.0, m, ones(2, 2, 2)); },
         "cat: arguments do not have the same number of dimensions"},
        {[&] {
             return vertcat(1.0, row({1, 2}));
         },
         "vertcat: # of cols different"},
        {[&] {
             return Mm((BR(s), test::col({1, 2, 3})));
         },
         "horzcat: # of rows different"},
        {[&] { return Mm((BR(c), 1.0)); }, "Operation can not be performed on mixed cell and numeric matrix"},
    };
    test::Returning returning;
    for (const auto &[work, text] : cases) {
        EXPECT_EQ(work().size(), 0) << text;
        EXPECT_EQ(returning.errors().back(), text);
    }
    EXPECT_EQ(cat(4.0, m, m).getndims(), 4);
    EXPECT_SAME(cat(2.0, m, m, m), ones(2, 6));
}

// ---- Cells ----

TEST(Braces, rows_and_short_rows) {
    Mm text = TM("a"), c = Mm((CL(1.0), text, semi, 2.0));
    EXPECT_SAME(c, cell_of(2, 2, {1.0, 2.0, text, Mm()}));
    EXPECT_TRUE(kn::same_block(c.mr(1, 2), text)) << "elements are shared";
    EXPECT_SAME(Mm(Mc()), cell(0.0));
    EXPECT_SAME(Mm(CL(nop_M)), cell_of(1, 1, {Mm()}));
}

TEST(Braces, argument_lists_are_spliced) {
    Mm varargin = named("varargin", cell_of(1, 3, {1.0, TM("b"), 3.0})),
       args = named("args", Mm(0, 0, 0, 0, 0, kn_Mm));
    EXPECT_SAME(Mm((CL(varargin), 1.0)), cell_of(1, 4, {1.0, TM("b"), 3.0, 1.0}));
    EXPECT_SAME(Mm((CL(0.0), varargin, semi, args, 7.0)),
                cell_of(2, 4, {0.0, 7.0, 1.0, Mm(), TM("b"), Mm(), 3.0, Mm()}));
    EXPECT_EQ(Mm(CL(args)).size(), 0);
    EXPECT_EQ(Mm(CL(Mm(i_o, "varargin", 0))).size(), 0) << "without a value";
    EXPECT_RAISES(Mm(CL(named("args", 5.0))), "varargin must be cell array");
    EXPECT_SAME(Mm((BR(1.0), named("args", 5.0))), row({1, 5})) << "braces only";
}

TEST(Lists, of_values_numbers_and_texts_at_any_length) {
    long live = kn::alloc_probe.live;
    {
        Mm x = row({1, 2});
        EXPECT_SAME(Mm((BR(0), x, 3, semi, M({{4, 5}}), 6, 0L)), M({{0, 1, 2, 3}, {4, 5, 6, 0}}));
        EXPECT_SAME(Mm((BR("ab"), 67, "")), TM("abC"));
        EXPECT_SAME(Mm((BR(mlogical(1)), 1)), row({1, 1})) << "not logical";
        EXPECT_SAME(Mm((CL("a"), 1.5, semi, x, "b")), cell_of(2, 2, {TM("a"), x, 1.5, TM("b")}));
        for (int n : {1, 15, 16, 17, 32, 33, 100}) {
            std::vector<Mm> values(static_cast<size_t>(n), x);
            Mc list(1, 2.0);
            for (const Mm &m : values) list, m, "text", 7;
            EXPECT_SAME(list.item(2), TM("text")); // is made now, and again of the copy
            Mc copy = list;
            for (const Mc *l : {&list, &copy}) {
                ASSERT_EQ(l->count(), 3 * n + 1);
                for (int k = 0; k < n; k++) EXPECT_EQ(&l->item(3 * k + 1), &values[static_cast<size_t>(k)]);
                EXPECT_SAME(l->item(3 * n), Mm(7.0));
            }
            EXPECT_RAISES(copy = list, "Mc=Mc called");
            EXPECT_SAME(Mm(copy), Mm(list));
        }
    }
    EXPECT_EQ(kn::alloc_probe.live, live);
}

} // namespace
