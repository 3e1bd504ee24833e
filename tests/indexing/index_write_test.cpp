// Assignment, growth and deletion with subscripts and through chains: what stays, what is reported, and what
// errors leave behind. Random assignments against a slow model are in index_model_test.cpp.
#include <cmath>
#include <functional>

#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

Mm unset() { return Mm(i_o, "u", 0); }

TEST(IndexWrite, appending_moves_the_block_seldom) {
    Mm x;
    int moves = 0;
    for (int k = 1; k <= 600000; ++k) {
        const double *before = x.addr();
        x(k) = double(k);
        moves += x.addr() != before;
    }
    EXPECT_SAME(x, colon(1.0, 600000.0));
    EXPECT_LT(moves, 30);
}

TEST(IndexWrite, sources_of_another_type) {
    Mm x, bytes = U8({{1, 2}}), c = cell_of(1, 2, {1.0, 2.0}), u = unset(), d = cell(1.0, 3.0), e = cell(0.0);
    x(2) = TM("a");
    EXPECT_SAME(x, row({0, 97}));
    bytes(1) = -1.0;
    EXPECT_SAME(bytes, U8({{255, 2}}));
    c(2) = 7.0;
    EXPECT_SAME(c, cell_of(1, 2, {1.0, 7.0}));
    u(2) = U8({{9}});
    EXPECT_SAME(u, U8({{0, 9}}));
    d(c_p) = sparse(row({0, 7, 0}));
    EXPECT_SAME(d, cell_of(1, 3, {0.0, 7.0, 0.0}));
    e.br(0.5) = 5.0;
    EXPECT_SAME(e, cell_of(1, 1, {5.0})) << "between 0 and 1 is the first element";
    Mm s = sparse_of(2, 2, {{0, 1}, {3, 4}});
    s(1, 1) = 0.0;
    EXPECT_SAME(s, sparse_of(2, 2, {{3, 4}})) << "no zero is stored";
}

TEST(IndexWrite, structures_grow_by_fields_and_elements) {
    Mm s = unset();
    s.member("a") = 1.0;
    EXPECT_SAME(s, struct_of({{"a", 1.0}}));
    s(2).member("b") = TM("x");
    EXPECT_SAME(s.member("b"), cell_of(1, 2, {Mm(), TM("x")}));
    s.member("a") = 5.0;
    EXPECT_SAME(s.member("a"), cell_of(1, 2, {5.0, Mm()})) << "only the first is written";
    s(4) = s(2);
    Mm copy = s, whole = unset(), number = 5.0;
    s(row({1, 3})) = Mm();
    EXPECT_SAME(s.member("b"), cell_of(1, 2, {TM("x"), TM("x")}));
    s(2).member("a").member("deep").br(2)(3) = 6.0;
    EXPECT_SAME(s(2).member("a").member("deep"), cell_of(1, 2, {Mm(), row({0, 0, 6})}));
    EXPECT_SAME(copy.member("a"), cell_of(1, 4, {5.0, Mm(), Mm(), Mm()}));
    whole(2) = copy(1);
    EXPECT_SAME(whole.member("a"), cell_of(1, 2, {Mm(), 5.0}));
    number.member("a") = 1.0;
    EXPECT_SAME(number, struct_of({{"a", 1.0}}));
}

TEST(IndexWrite, braces_store_one_value_as_it_is) {
    Mm c = unset();
    c.br(2) = row({1, 2});
    EXPECT_SAME(c, cell_of(1, 2, {Mm(), row({1, 2})}));
    c.br(1) = Mm();
    c.br(row({2, 4})) = TM("ab");
    EXPECT_SAME(c, cell_of(1, 4, {Mm(), TM("ab"), Mm(), Mm()}));
    c.br(2, 1) = cell_of(1, 1, {1.0});
    c(c_p, row({2, 3, 4})) = Mm();
    EXPECT_SAME(c, cell_of(2, 1, {Mm(), cell_of(1, 1, {1.0})}));
}

// -- Objects.

Mm told;
Mm take_assignment(Mm base, Mm record, Mm value) {
    told = record;
    return mclass(struct_of({{"v", vertcat(base.member("v"), value)}}), TM("writer"));
}

TEST(IndexWrite, a_class_may_assign_by_itself) {
    register_class_function("writer", "subsasgn", take_assignment);
    Mm object = mclass(struct_of({{"v", 1.0}}), TM("writer")), plain = mclass(object, TM("plain"));
    Mm copy = object, c, s;
    object(2, 7) = 5.0;
    EXPECT_SAME(object.member("v"), col({1, 5})) << "what the method gives is the new base";
    EXPECT_SAME(copy.member("v"), Mm(1.0));
    EXPECT_SAME(told.member("type"), TM("()"));
    EXPECT_SAME(told.member("subs"), cell_of(1, 2, {2.0, 7.0}));
    object.member("v")(2) = 6.0;
    EXPECT_SAME(object.member("v"), col({1, 5, 1, 6})) << "the field as a whole is assigned";
    EXPECT_SAME(told.member("type"), TM("."));
    EXPECT_SAME(told.member("subs"), TM("v"));
    c.br(2) = copy;
    c.br(2).br(9) = 3.0;
    EXPECT_SAME(c.br(2).member("v"), col({1, 3})) << "an element of a cell";
    EXPECT_SAME(told.member("type"), TM("{}"));
    s.member("o") = copy;
    s.member("o").member("v") = 4.0;
    EXPECT_SAME(s.member("o").member("v"), col({1, 4})) << "a field";
    plain.member("v") = 8.0;
    EXPECT_SAME(plain.member("v"), Mm(8.0)) << "its class has no such method";
    plain(3) = plain;
    EXPECT_EQ(Mm(plain(2)).getclassid(), plain.getclassid());
    unregister_class_function("writer", "subsasgn");
}

TEST(IndexWrite, the_last_elements_go_without_moving_the_others) {
    Mm cells = cell_of(1, 3, {1.0, 2.0, 3.0}), column = col({1, 2, 3}), structures;
    for (double k : {1.0, 2.0, 3.0}) structures(k).member("a") = k;
    const Mm *counted = &cells.mr(3);
    for (Mm *m : {&cells, &column, &structures}) {
        const void *block = m->addr();
        const Mm first = (*m)(1.0);
        (*m)(3.0) = nop_M;
        (*m)(2.0) = nop_M;
        EXPECT_SAME(*m, first);
        EXPECT_EQ(m->addr(), block);
    }
    EXPECT_EQ(counted->size(), 0) << "what went is freed";
    Mm x = colon(1, 300);
    x(colon(70, 260)) = nop_M; // many positions at once
    EXPECT_SAME(x, horzcat(colon(1, 69), colon(261, 300)));
}

TEST(IndexWrite, what_does_not_fit_is_reported) {
    Mm x = named("x", row({1, 2, 3})), y = named("y", row({1, 2})), i = named("i", row({1, 2, 3})),
       zero = named("z", Mm(0.0)), mask = named("m", logical_of(row({1, 1, 1}))),
       a = named("a", M({{1, 2}, {3, 4}})), cube = named("cube", nd({1, 2, 2}, {1, 2, 3, 4})),
       c = named("c", cell_of(1, 2, {1.0, 2.0})), s = named("s", struct_of({{"a", 1.0}})),
       thin = named("t", sparse_of(3, 2, {})), u = unset(), none = row({1, NAN}),
       zeros = sparse_of(1, 2, {{1, 1}}), three = struct_of({{"a", 1.0}, {"b", 1.0}, {"c", 1.0}});
    const std::pair<std::function<void()>, const char *> table[] = {
        {[&] { x(c_p) = y; }, "x(:)=y: size(x) different than size(y)"},
        {[&] { x(zero) = 1.0; }, "x(z): index is non-positive"},
        {[&] { x(none) = 1.0; }, "x((temporary)): index is non-positive"},
        {[&] { x(i) = y; }, "x(i)=y: size(y) different than size(i)"},
        {[&] { x(mask) = y; }, "x(m)=y: a logical assignment ; source size != number of non zeros in index"},
        {[&] { x(zero) = Mm(); }, "x(0): index is non-positive"},
        {[&] { a(i, 1) = y; }, "a(i,=1)=y: size(row index)*size(col index) is different than size(source)"},
        {[&] { a(c_p, zero) = 1.0; }, "a(:,z)==1: col index is non-positive"},
        {[&] { c.br(1).br(1) = 5.0; }, "'=1' is not a cell array and can't be {}-indexed"},
        {[&] { thin(8) = 1.0; },
         "Index =8 out of matrix t. Index value was 8 however the indexed matrix has only 6 elements."},
        {[&] { cube(c_p, 1, 1) = y; },
         "In indexed assignment to the matrix cube, the index size was 1 but right hand side has 2 elements"},
        {[&] { cube(zero) = 1.0; }, "index z out of matrix cube. Index value was 0 which is not positive."},
        {[&] { cube(5) = 1.0; },
         "Index =5 out of matrix cube. Index value was 5 however the indexed matrix has only 4 elements."},
        {[&] { cube(1, 1, 1) = Mm(); },
         "While assigning empty matrix to the matrix 'cube', there was more than one non-colon index"},
        {[&] { cube(zeros) = 1.0; }, "Sparse index (temporary) out of matrix cube. Index value was 0."},
        {[&] { x.br(1) = 1.0; }, "'x' is not a cell array and can't be {}-indexed"},
        {[&] { x(1) = c; }, "Can not convert c into a numeric matrix"},
        {[&] { s(1) = 5.0; },
         "In the assignment x(...)=y, x was a structure array but y was not a structure"},
        {[&] { s(1) = three; },
         "In the assignment x(...)=y, x and y (structures) must have identical members"},
        {[&] { x(1) = u; }, "variable 'u' was used without a value"},
        {[&] { x(0x1p53) = 1.0; }, "Out of memory!"},
    };
    const Mm *const targets[] = {&x, &a, &cube, &c, &s, &thin};
    std::vector<Mm> before;
    for (const Mm *m : targets) before.push_back(*m);
    for (const auto &[work, text] : table) {
        EXPECT_EQ(test::raised(work), text);
        Returning errors;
        work();
        ASSERT_GE(errors.errors().size(), 1u);
        EXPECT_EQ(errors.errors()[0], text);
        for (size_t k = 0; k < before.size(); ++k) EXPECT_SAME(*targets[k], before[k]) << text;
    }
    EXPECT_RAISES(x(row({5, 6, 7})) = y, "x((temporary))=y: size(y) different than size((temporary))");
    EXPECT_SAME(x, row({1, 2, 3, 0, 0, 0, 0})) << "grown by then";
}

} // namespace
