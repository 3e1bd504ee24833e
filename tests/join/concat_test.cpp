// Brackets, braces and the functions that join values.
#include <deque>
#include <functional>
#include <vector>

#include "base/scratch.h"
#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

// ---- Brackets of plain matrices ----

TEST(Brackets, random_tilings) {
    test::Random random(3);
    for (int round = 0; round < 500; round++) {
        // Rows of blocks that fit, some rows too short.
        std::deque<Mm> blocks;
        Mc list(0, nop_M);
        Mm wanted;
        int top = 0;
        bool complex = false; // an empty one counts
        for (int lines = 1 + random.below(3); lines > 0; lines--) {
            const int height = 1 + random.below(4);
            int left = 0;
            for (int n = 1 + random.below(4); n > 0; n--) {
                blocks.push_back(random.matrix(height, random.below(4), random.below(5) == 0));
                Mm &b = blocks.back();
                b.size() == 1 && !b.isc() ? (list, b.r()) : (list, b); // a number by itself is no value
                complex = complex || b.isc();
                if (b.size() == 0) continue;
                wanted(colon(top + 1, top + height), colon(left + 1, left + b.cols())) = b;
                left += b.cols();
            }
            list, semi;
            if (left > 0) top += height;
        }
        if (complex) wanted.getcomplex();
        ASSERT_SAME(Mm(list), wanted);
    }
}

TEST(Brackets, taller_item_runs_on_inside_the_block) {
    Mm tall = test::col({1, 2, 3});
    EXPECT_SAME(Mm((BR(tall), 9.0)), row({1, 9})) << "the last item decides the height";
    EXPECT_SAME(Mm((BR(M({{1, 2}, {3, 4}})), 9.0)), row({1, 2, 9})) << "column by column";
    EXPECT_SAME(Mm((BR(7.0), tall, 8.0, nop_M, semi, 1.0, 2.0)), M({{7, 1, 8}, {1, 2, 0}}));
    EXPECT_SAME(Mm((BR(nop_M), nop_M, semi, nop_M)), Mm());
    Mm huge = zeros(5000, 3);
    EXPECT_SAME(Mm((BR(huge), 1.0)), row({0, 0, 0, 1}));
}

TEST(Brackets, flags) {
    Mm yes = logical_of(1.0), no = logical_of(0.0), text = TM("ab");
    EXPECT_SAME(Mm((BR(yes), no)), logical_of(row({1, 0})));
    EXPECT_SAME(Mm((BR(yes), 1.0)), row({1, 1}));
    EXPECT_SAME(horzcat(yes, 5.0), row({1, 5}));
    EXPECT_SAME(horzcat(yes, nop_M), yes);
    EXPECT_SAME(cat(1.0, Mm(), Mm()), Mm());
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

TEST(Concatenation, appends_the_second_along_every_dimension) {
    test::Random random(11);
    for (int round = 0; round < 2000; round++) {
        int dim = 1 + random.below(4), ndims = 2 + random.below(3);
        std::vector<kn_size> extents[2];
        for (int k = 0; k < ndims; k++) extents[0].push_back(1 + random.below(3));
        if (ndims > 2) extents[0].back() = 2; // both keep their dimensions
        extents[1] = extents[0];
        if (dim <= 2) extents[1][static_cast<size_t>(dim - 1)] = 1 + random.below(3);
        Mm x[2], at[4];
        for (int p = 0; p < 2; p++) {
            x[p] = Mm(0, 0, 0, ndims, extents[p].data(), kn_double);
            for (int k = 0; k < x[p].size(); k++) x[p].addr()[k] = random.below(5) ? 100 * p + k + 1 : 0;
            if (random.below(2)) x[p] = complex_of(x[p], -x[p]);
        }
        for (int k = 1; k <= 4; k++) at[k - 1] = colon(1, x[1].size(k)) + (k == dim ? x[0].size(k) : 0);
        auto expect = [&](Mm a, const Mm &b) {
            const Mm got = cat(dim, a, b);
            kn::check(got);
            a(at[0], at[1], at[2], at[3]) = b;
            ASSERT_SAME(got, a);
        };
        expect(x[0], x[1]);
        if (dim <= 2 && ndims == 2) expect(sparse(x[0]), sparse(x[1]));
        expect(muint8(real(x[0])), muint8(real(x[1])));
        expect(num2cell(real(x[0])), num2cell(real(x[1])));
    }
}

TEST(Concatenation, structures) {
    Mm a = struct_of({{"x", 1.0}, {"y", 2.0}}), b = struct_of({{"x", 3.0}, {"y", 4.0}}), object = a;
    EXPECT_SAME(Mm(Mm((BR(a), b, a)).member("y")), cell_of(1, 3, {2.0, 4.0, 2.0}));
    EXPECT_EQ(vertcat(a, b).rows(), 2);
    EXPECT_EQ(cat(3.0, a, b).size(3), 2);
    Mm wider = struct_of({{"x", 3.0}, {"y", 4.0}, {"z", 5.0}});
    EXPECT_SAME(Mm(horzcat(a, wider).member("z")), cell_of(1, 2, {Mm(), 5.0}));
    EXPECT_SAME(a, struct_of({{"x", 1.0}, {"y", 2.0}})) << "inputs stay";
    object.setclassid(3);
    EXPECT_EQ(horzcat(object, object).getclassid(), 3);
}

TEST(Concatenation, errors) {
    Mm m = ones(2, 2), s = sparse(m), c = cell_of(1, 1, {1.0}), wide = ones(1, 2), tall = ones(3, 1),
       large = spzeros(1e4), st = struct_of({{"x", 1.0}}), other = struct_of({{"y", 1.0}});
    const std::pair<std::function<Mm()>, const char *> cases[] = {
        {[&] { return cat(5.0, m, m); }, "cat: no such dimension"},
        {[&] { return cat(0.0, ones(2, 2, 2), ones(2, 2, 2)); }, "cat: no such dimension"},
        {[&] { return cat(3.0, nop_M, m); }, "cat: arguments do not have compatible dimensions"},
        {[&] { return cat(1.0, m, ones(2, 2, 2)); },
         "cat: arguments do not have the same number of dimensions"},
        {[&] { return vertcat(1.0, wide); }, "vertcat: # of cols different"},
        {[&] { return Mm((BR(s), tall)); }, "horzcat: # of rows different"},
        {[&] { return Mm((BR(c), 1.0)); }, "Operation can not be performed on mixed cell and numeric matrix"},
        {[&] { return cat(3.0, large, large); }, "full: matrix too large"},
        {[&] { return cat(1.0, st, other); },
         "In the assignment x(...)=y, x and y (structures) must have identical members"},
        {[&] { return cat(2.0, st, c); },
         "In the assignment x(...)=y, x was a structure array but y was not a structure"},
    };
    test::Returning returning;
    for (const auto &[work, text] : cases) {
        EXPECT_TRUE(kn::same_block(work(), x_M)) << text;
        EXPECT_EQ(returning.errors().back(), text);
    }
    EXPECT_EQ(returning.errors().size(), std::size(cases)) << "one report each";
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
