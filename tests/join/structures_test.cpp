// The functions of the language on structures and cells.
#include <string>

#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

// 1 by 3, fields a (1, 2, 3) and b ("x" in all).
Mm three() { return mstruct(cell_of(1, 4, {TM("a"), cell_of(1, 3, {1.0, 2.0, 3.0}), TM("b"), TM("x")})); }

// ---- Cells ----

TEST(Cells, sizes) {
    EXPECT_SAME(cell(2.0, nop_M), Mm());
    EXPECT_SAME(cells(2.9, 1.0), cell_of(2, 1, {}));
    EXPECT_RAISES(cell(1e6, 1e6), "Out of memory!");
    Mm one = 1.0, two = TM("b");
    const Mm *list[] = {&one, &two};
    EXPECT_SAME(cell_from_array(2, list), cell_of(1, 2, {one, two}));
}

TEST(Cells, text) {
    EXPECT_SAME(num2cell(TM("ab")), Mm((CL("a"), "b")));
    EXPECT_SAME(cellstr(strvcat(TM("ab "), TM("c"))), Mm((CL("ab"), semi, "c")));
    EXPECT_SAME(iscellstr(Mm((CL("a "), "b"))), test::logical_of(1.0));
    for (const Mm &m : {cell_of(1, 2, {TM("a"), 1.0}), TM("a")})
        EXPECT_SAME(iscellstr(m), test::logical_of(0.0));
    EXPECT_SAME(deblank(TM("a b \t\n")), TM("a b"));
    EXPECT_SAME(deblank(strvcat(TM("a   "), TM("bc"))), strvcat(TM("a"), TM("bc")));
    EXPECT_SAME(deblank(cell_of(1, 2, {TM("a "), TM("   ")})), Mm((CL("a"), "")));
    EXPECT_RAISES(deblank(1.0), "deblank: input is not a string");
}

// ---- Structures ----

TEST(Structures, from_pairs) {
    Mm s = three();
    EXPECT_SAME(Mm(s.member("a")), cell_of(1, 3, {1.0, 2.0, 3.0}));
    EXPECT_SAME(mstruct(cell_of(1, 1, {s})), s);
    EXPECT_SAME(Mm(mstruct(cell_of(1, 4, {TM("a"), 1.0, TM("a"), 2.0})).member("a")), Mm(2.0))
        << "the last one";
    Mm wrapped = mstruct(cell_of(1, 2, {TM("a"), cell_of(1, 1, {cell_of(1, 2, {1.0, 2.0})})}));
    EXPECT_SAME(Mm(wrapped.member("a")), cell_of(1, 2, {1.0, 2.0})) << "a cell as value";
    std::string longer(60, 'n');
    EXPECT_EQ(mstruct(cell_of(1, 2, {TM(longer.c_str()), 1.0})).getfields()[0], longer.substr(0, 40));
    EXPECT_RAISES(mstruct(cell_of(1, 3, {TM("a"), 1.0, TM("b")})), "struct: odd numbers of inputs");
    Mm pair = cell_of(1, 2, {1.0, 2.0}), triple = cell_of(1, 3, {1.0, 2.0, 3.0});
    for (const Mm &args :
         {cell_of(1, 4, {TM("a"), pair, TM("b"), triple}), cell_of(1, 4, {TM("a"), triple, TM("b"), pair})})
        EXPECT_RAISES(mstruct(args), "struct: all cell arrays must be of same size");
}

TEST(Structures, names) {
    EXPECT_SAME(isfield(three(), TM("b")), test::logical_of(1.0));
    EXPECT_SAME(isfield(three(), TM("c")), test::logical_of(0.0));
    EXPECT_SAME(isfield(1.0, TM("b")), Mm(0.0)) << "plain, not logical";
    EXPECT_RAISES(fieldnames(named("x", 1.0)), "fieldnames: structure expected, but matrix x is not");
}

TEST(Structures, rmfield_takes_the_values_too) {
    Mm s = three(), rest = rmfield(s, TM("a"));
    EXPECT_SAME(Mm(rest.member("b")), Mm((CL("x"), "x", "x"))) << "still readable";
    EXPECT_SAME(s, three()) << "a copy is changed";
    EXPECT_EQ(rmfield(s, Mm((CL("b"), "a"))).getnfields(), 0);
    EXPECT_RAISES(rmfield(s, TM("c")), "rmfield: structure has no field named 'c'");
    EXPECT_SAME(fieldnames(setfield(rest, TM("c"), 1.0)), Mm((CL("b"), semi, "c")));
}

TEST(Structures, fields_by_steps) {
    Mm s = struct_of({{"m", M({{1, 2}, {3, 4}})}, {"s", struct_of({{"t", 7.0}})}});
    EXPECT_SAME(getfield(s, TM("s"), TM("t")), Mm(7.0));
    EXPECT_SAME(getfield(s, TM("m"), cell_of(1, 2, {2.0, 1.0})), Mm(3.0));
    EXPECT_SAME(getfield(three(), cell_of(1, 1, {2.0}), TM("a")), Mm(2.0));
    EXPECT_RAISES(getfield(s, TM("m"), 2.0), "getfield: index must be a string or cell array");
    EXPECT_RAISES(getfield(named("s", s), TM("zz")), "s.zz: structure field does not exist");
    Mm t = setfield(s, TM("m"), 9.0);
    EXPECT_SAME(Mm(t.member("m")), Mm(9.0));
    EXPECT_SAME(Mm(s.member("m")), M({{1, 2}, {3, 4}}));
}

TEST(Structures, to_cells_and_back) {
    Mm s = three(), c = struct2cell(s);
    EXPECT_SAME(size(c), row({2, 1, 3}));
    Mm grid = repmat(s, 2.0, 1.0, 2.0);
    EXPECT_SAME(cell2struct(struct2cell(grid), fieldnames(s), 1.0), grid);

    Mm table = cell_of(3, 2, {1.0, 2.0, 3.0, TM("x"), TM("x"), TM("x")}), names = Mm((CL("a"), "b"));
    EXPECT_SAME(cell2struct(table, names, 2.0), reshape(s, 3.0, 1.0));
    EXPECT_RAISES(cell2struct(1.0, names, 1.0), "cell2struct: first argument is not a cell");
    EXPECT_RAISES(cell2struct(table, TM("a"), 1.0), "cell2struct: second argument is not a cell");
    EXPECT_RAISES(cell2struct(table, names, 1.0), "cell2struct: length(fields)!=size(x,dim)");
    EXPECT_RAISES(cell2struct(table, Mm((CL("a"), "a")), 2.0), "cell2struct: duplicate field 'a'");
}

TEST(Structures, badly_built) {
    Mm s = named("s", three());
    s.mr(2) = cell_of(1, 1, {1.0});
    EXPECT_RAISES(struct2cell(s), "structure 's' is built wrong");
    EXPECT_RAISES(rmfield(s, TM("a")), "structure 's' is built wrong");
    EXPECT_SAME(isequal(s, three()), test::logical_of(0.0));
    EXPECT_RAISES(mlogical(test::C(1, 2)), "logical: argument is complex");
    EXPECT_RAISES(mlogical(named("c", cell(1.0))), "logical: numeric data expected, but matrix c is not");
}

} // namespace
