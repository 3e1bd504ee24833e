// Assignment, growth and deletion with subscripts and through chains: what stays, what is reported, and what
// errors leave behind. Random assignments against a slow model stand in index_model_test.cpp.
#include <cmath>
#include <functional>
#include <new>
#include <optional>

#include "base/scratch.h"
#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

Mm unset() { return Mm(i_o, "u", 0); }

// -- Growth.

TEST(IndexWrite, growth_fills_with_zeros_along_the_vector) {
    Mm x, y = zeros(3, 1), a = M({{1, 2}, {3, 4}}), b = a, s = 7.0, cube = nd({1, 2, 2}, {1, 2, 3, 4});
    x(3) = 1.0;
    EXPECT_SAME(x, row({0, 0, 1}));
    y(5) = 1.0;
    EXPECT_SAME(y, col({0, 0, 0, 0, 1}));
    a(7) = 9.0;
    EXPECT_SAME(a, col({1, 3, 2, 4, 0, 0, 9})) << "a matrix becomes a column, in linear order";
    b(3, 4) = 9.0;
    EXPECT_SAME(b, M({{1, 2, 0, 0}, {3, 4, 0, 0}, {0, 0, 0, 9}}));
    s(row({2, 4})) = row({5, 6});
    EXPECT_SAME(s, row({7, 5, 0, 6}));
    cube(2, 2, 3) = 9.0;
    EXPECT_SAME(cube, nd({2, 2, 3}, {1, 0, 2, 0, 3, 0, 4, 0, 0, 0, 0, 9}));
    Mm line = nd({1, 1, 2}, {1, 2}), none;
    line(4) = 5.0;
    EXPECT_SAME(line, nd({1, 1, 4}, {1, 2, 0, 5}));
    none(1, 2, 2) = 3.0;
    EXPECT_SAME(none, nd({1, 2, 2}, {0, 0, 0, 3}));
    Mm c = cell_of(1, 1, {1.0});
    c.br(3) = TM("x");
    EXPECT_SAME(c, cell_of(1, 3, {1.0, Mm(), TM("x")}));
    Mm bytes = U8({{1}});
    bytes(3) = 300.0;
    EXPECT_SAME(bytes, U8({{1, 0, 44}}));
}

TEST(IndexWrite, places_freed_before_are_clear_when_they_come_back) {
    Mm x = row({1, 2, 3, 4}), c = cell_of(1, 3, {1.0, 2.0, 3.0}), z = complex_of(row({1, 2}), row({3, 4}));
    x(row({3, 4})) = Mm();
    c(row({2, 3})) = Mm();
    z(2) = Mm();
    EXPECT_SAME(x, row({1, 2}));
    x(4) = 9.0;
    c.br(4) = 9.0;
    z(3) = 9.0;
    EXPECT_SAME(x, row({1, 2, 0, 9}));
    EXPECT_SAME(c, cell_of(1, 4, {1.0, Mm(), Mm(), 9.0}));
    EXPECT_SAME(z, complex_of(row({1, 0, 9}), row({3, 0, 0})));
}

TEST(IndexWrite, fractions_write_below_themselves_and_grow_rounded) {
    Mm x = row({1, 2});
    x(1.5) = 7.0;
    EXPECT_SAME(x, row({7, 2}));
    x(2.5) = 8.0;
    EXPECT_SAME(x, row({7, 8, 0}));
    x(0.5) = 9.0;
    EXPECT_SAME(x, row({9, 8, 0}));
    x(1, 3.5) = 6.0;
    EXPECT_SAME(x, row({9, 8, 6, 0}));
}

TEST(IndexWrite, appending_moves_the_block_seldom) {
    Mm x;
    int moves = 0;
    for (int k = 1; k <= 10000; ++k) {
        const double *before = x.addr();
        x(k) = double(k);
        moves += x.addr() != before;
    }
    EXPECT_SAME(x, colon(1.0, 10000.0));
    EXPECT_LT(moves, 25);
    Mm fresh;
    fresh(1, 5) = 1.0;
    EXPECT_EQ(fresh.getp(), 13);
    Mm longer;
    longer(1, 20) = 1.0;
    EXPECT_EQ(longer.getp(), 28);
}

TEST(IndexWrite, colons_count_the_target_or_the_source) {
    Mm x, a = zeros(3, 3), b = zeros(2, 2), none, cube;
    x(c_p, 3) = col({1, 2});
    EXPECT_SAME(x, M({{0, 0, 1}, {0, 0, 2}}));
    a(c_p, 1) = 7.0;
    EXPECT_SAME(a, M({{7, 0, 0}, {7, 0, 0}, {7, 0, 0}}));
    a(c_p, 2) = col({1, 2});
    EXPECT_SAME(a, M({{7, 1, 0}, {7, 2, 0}, {7, 0, 0}})) << "as many rows as the source has";
    b(c_p, 1) = col({1, 2, 3});
    EXPECT_SAME(b, M({{1, 0}, {2, 0}, {3, 0}}));
    none(c_p) = row({1, 2});
    EXPECT_SAME(none, Mm());
    cube(c_p, c_p, 2) = M({{1, 2}});
    EXPECT_SAME(cube, nd({1, 2, 2}, {0, 0, 1, 2}));
}

// -- What stays and what changes.

TEST(IndexWrite, the_target_keeps_its_type_and_flags) {
    Mm text = TM("abc"), flags = logical_of(row({1, 0})), x, bytes = U8({{1, 2}}),
       c = cell_of(1, 2, {1.0, 2.0}), u = unset();
    text(2) = 65.0;
    EXPECT_SAME(text, TM("aAc"));
    flags(2) = 5.0;
    EXPECT_SAME(flags, logical_of(row({1, 5})));
    x(2) = TM("a");
    EXPECT_SAME(x, row({0, 97}));
    bytes(1) = -1.0;
    EXPECT_SAME(bytes, U8({{255, 2}}));
    c(2) = 7.0;
    EXPECT_SAME(c, cell_of(1, 2, {1.0, 7.0}));
    u(2) = U8({{9}});
    EXPECT_SAME(u, U8({{0, 9}}));
    Mm sparse_source = row({1, 2});
    sparse_source(2) = sparse_of(1, 1, {});
    EXPECT_SAME(sparse_source, row({1, 0}));
    Mm z = row({1, 2, 3});
    z(2) = C(5, 6);
    EXPECT_SAME(z, complex_of(row({1, 5, 3}), row({0, 6, 0})));
    z(2) = 4.0;
    EXPECT_TRUE(z.isc()) << "the next read makes it real";
    EXPECT_SAME(z(), row({1, 4, 3}));
    z(c_p) = 1.0;
    EXPECT_FALSE(z.isc());
}

TEST(IndexWrite, all_elements_of_equal_number_take_the_block_of_the_source) {
    Mm x = row({1, 2}), y = logical_of(col({5, 6})), shared = row({1, 2}), other = shared;
    x(c_p) = y;
    EXPECT_EQ(x.addr(), y.addr());
    EXPECT_SAME(x, logical_of(row({5, 6}))) << "with the flags";
    shared(c_p) = y;
    EXPECT_SAME(shared, row({5, 6}));
    EXPECT_SAME(other, row({1, 2}));
    x(1) = 0.0;
    EXPECT_SAME(y, logical_of(col({5, 6})));
    x(c_p) = Mm();
    EXPECT_SAME(x, logical_of(Mm()));
}

TEST(IndexWrite, repeated_positions_keep_the_last) {
    Mm x = row({1}), s = sparse_of(1, 2, {}), c = cell_of(1, 1, {1.0});
    x(row({1, 1})) = row({5, 6});
    s(row({1, 1})) = row({5, 6});
    c(row({1, 1})) = cell_of(1, 2, {5.0, 6.0});
    EXPECT_SAME(x, Mm(6.0));
    EXPECT_SAME(s, sparse_of(1, 2, {{0, 6}}));
    EXPECT_SAME(c, cell_of(1, 1, {6.0}));
}

TEST(IndexWrite, the_target_may_be_source_and_subscript) {
    Mm x = row({3, 1, 2}), y = row({2, 2, 1}), c = cell_of(1, 2, {1.0, 2.0}),
       d = cell_of(1, 1, {cell_of(1, 1, {8.0})});
    x(x) = x;
    EXPECT_SAME(x, row({1, 2, 3}));
    y(y) = row({100, 200, 300});
    EXPECT_SAME(y, row({300, 200, 1}));
    y(row({3, 2, 1})) = y;
    EXPECT_SAME(y, row({1, 200, 300}));
    c.br(2) = c;
    EXPECT_SAME(c, cell_of(1, 2, {1.0, cell_of(1, 2, {1.0, 2.0})}));
    c.br(c.mr(1)) = 5.0;
    EXPECT_SAME(c.br(1), Mm(5.0));
    d.br(1) = d.mr(1).mr(1);
    EXPECT_SAME(d, cell_of(1, 1, {8.0}));
    d.br(1) = d;
    EXPECT_SAME(d, cell_of(1, 1, {cell_of(1, 1, {8.0})}));
    d.br(1).br(2) = d;
    EXPECT_SAME(d.br(1).br(2), cell_of(1, 1, {cell_of(1, 1, {8.0})}));
}

TEST(IndexWrite, elements_are_shared_until_written) {
    Mm big = row({1, 2, 3}), c = cell_of(1, 2, {big, 0.0}), copy = c;
    c.br(1)(2) = 9.0;
    EXPECT_SAME(big, row({1, 2, 3}));
    EXPECT_SAME(copy, cell_of(1, 2, {row({1, 2, 3}), 0.0}));
    EXPECT_SAME(c, cell_of(1, 2, {row({1, 9, 3}), 0.0}));
    const double *before = c.mr(1).addr();
    c.br(1)(3) = 7.0;
    EXPECT_EQ(c.mr(1).addr(), before) << "an element of its own is written where it stands";
    c(2) = cell_of(1, 1, {big});
    EXPECT_EQ(c.mr(2).addr(), big.addr());
}

// -- Sparse targets.

TEST(IndexWrite, into_cells) {
    Mm c = cell(0.0), d = cell(1.0, 3.0);
    c.br(0.5) = 5.0;
    EXPECT_SAME(c, cell_of(1, 1, {5.0})) << "between 0 and 1 is the first element";
    d(c_p) = sparse(row({0, 7, 0}));
    EXPECT_SAME(d, cell_of(1, 3, {0.0, 7.0, 0.0}));
}

TEST(IndexWrite, sparse_targets) {
    Mm s = sparse_of(2, 2, {{0, 1}, {3, 4}});
    s(1, 2) = 7.0;
    EXPECT_SAME(s, sparse_of(2, 2, {{0, 1}, {2, 7}, {3, 4}}));
    s(1, 1) = 0.0;
    EXPECT_SAME(s, sparse_of(2, 2, {{2, 7}, {3, 4}}));
    s(3, 3) = 9.0;
    EXPECT_SAME(s, sparse_of(3, 3, {{3, 7}, {4, 4}, {8, 9}}));
    s(c_p, 2) = col({0, 0, 6});
    EXPECT_SAME(s, sparse_of(3, 3, {{5, 6}, {8, 9}}));
    s(c_p, 2) = Mm();
    EXPECT_SAME(s, sparse_of(3, 2, {{5, 9}}));
    s(logical_of(sparse_of(3, 2, {{0, 1}, {5, 1}}))) = C(0, 1);
    EXPECT_TRUE(s.issparse() && s.isc());
    EXPECT_SAME(full(s), complex_of(zeros(3, 2), M({{1, 0}, {0, 0}, {0, 1}})));
    EXPECT_RAISES(named("s", s)(8) = 1.0,
                  "Index =8 out of matrix s. Index value was 8 however the indexed matrix has "
                  "only 6 elements.");
}

// -- Structures and cells.

TEST(IndexWrite, structures_grow_by_fields_and_elements) {
    Mm s = unset();
    s.member("a") = 1.0;
    EXPECT_SAME(s, struct_of({{"a", 1.0}}));
    s(2).member("b") = TM("x");
    EXPECT_EQ(s.size(), 2);
    EXPECT_SAME(s(1).member("b"), Mm());
    EXPECT_SAME(s(2).member("a"), Mm());
    EXPECT_SAME(s.member("b"), cell_of(1, 2, {Mm(), TM("x")}));
    s.member("a") = 5.0;
    EXPECT_SAME(s.member("a"), cell_of(1, 2, {5.0, Mm()})) << "only the first is written";
    s(4) = s(2);
    EXPECT_SAME(s.member("b"), cell_of(1, 4, {Mm(), TM("x"), Mm(), TM("x")}));
    Mm copy = s;
    s(row({1, 3})) = Mm();
    EXPECT_SAME(s.member("b"), cell_of(1, 2, {TM("x"), TM("x")}));
    EXPECT_EQ(copy.size(), 4);
    s(2).member("a").member("deep").br(2)(3) = 6.0;
    EXPECT_SAME(s(2).member("a").member("deep"), cell_of(1, 2, {Mm(), row({0, 0, 6})}));
    EXPECT_SAME(copy.member("a"), cell_of(1, 4, {5.0, Mm(), Mm(), Mm()}));
    Mm whole = unset();
    whole(2) = copy(1);
    EXPECT_SAME(whole.member("a"), cell_of(1, 2, {Mm(), 5.0}));
    copy.member("self") = copy;
    EXPECT_EQ(Mm(copy(1).member("self")).getnfields(), 2);
    Mm number = 5.0;
    number.member("a") = 1.0;
    EXPECT_SAME(number, struct_of({{"a", 1.0}}));
}

TEST(IndexWrite, braces_store_one_value_as_it_is) {
    Mm c = unset(), e;
    c.br(2) = row({1, 2});
    EXPECT_SAME(c, cell_of(1, 2, {Mm(), row({1, 2})}));
    c.br(1) = Mm();
    c.br(row({2, 4})) = TM("ab");
    EXPECT_SAME(c, cell_of(1, 4, {Mm(), TM("ab"), Mm(), Mm()}));
    c.br(2, 1) = cell_of(1, 1, {1.0});
    EXPECT_SAME(c.br(2, 1), cell_of(1, 1, {1.0}));
    e.br(1) = 1.0;
    EXPECT_SAME(e, cell_of(1, 1, {1.0}));
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
    told = Mm();

    plain.member("v") = 8.0;
    EXPECT_TRUE(told.size() == 0) << "its class has no such method";
    EXPECT_SAME(plain.member("v"), Mm(8.0));
    plain(3) = plain;
    EXPECT_EQ(Mm(plain(2)).getclassid(), plain.getclassid());
    unregister_class_function("writer", "subsasgn");
}

// -- Deletion.

TEST(IndexWrite, deletion) {
    Mm x = row({1, 2, 3, 4}), a = M({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}), b = a, c = a, d = M({{1, 2}, {3, 4}}),
       e = d, cube = nd({2, 1, 3}, {1, 2, 3, 4, 5, 6}), column = col({1, 2, 3}), copy = x;
    x(row({2, 99, 2})) = Mm();
    EXPECT_SAME(x, row({1, 3, 4}));
    EXPECT_SAME(copy, row({1, 2, 3, 4}));
    x(99) = Mm();
    EXPECT_SAME(x, row({1, 3, 4}));
    x(logical_of(row({1, 0, 1, 1}))) = Mm();
    EXPECT_SAME(x, Mm(3.0));
    x(1) = Mm();
    EXPECT_SAME(x, Mm());
    column(2) = Mm();
    EXPECT_SAME(column, col({1, 3}));
    a(2, c_p) = Mm();
    EXPECT_SAME(a, M({{1, 2, 3}, {7, 8, 9}}));
    b(2) = Mm();
    EXPECT_SAME(b, row({1, 7, 2, 5, 8, 3, 6, 9}));
    c(c_p, row({1, 7, -3})) = Mm();
    EXPECT_SAME(c, M({{2, 3}, {5, 6}, {8, 9}}));
    c(c_p, c_p) = Mm();
    EXPECT_SAME(c, M({{2, 3}, {5, 6}, {8, 9}})) << "two colons remove nothing";
    d(1, 1) = Mm();
    EXPECT_SAME(d, Mm(4.0)) << "row and column both";
    e(c_p) = Mm();
    EXPECT_SAME(e, Mm());
    cube(c_p, c_p, 2) = Mm();
    EXPECT_SAME(cube, nd({2, 1, 2}, {1, 2, 5, 6}));
    cube(3) = TM("");
    EXPECT_SAME(cube, row({1, 2, 6}));
}

// -- Errors.

TEST(IndexWrite, the_last_elements_go_without_moving_the_others) {
    Mm cells = cell_of(1, 3, {1.0, 2.0, 3.0}), column = col({1, 2, 3}), structures;
    for (double k : {1.0, 2.0, 3.0}) structures(k).member("a") = k;
    const Mm two = row({2, 3}), *counted = &cells.mr(3);
    for (Mm *m : {&cells, &column, &structures}) {
        const void *block = m->addr();
        const Mm before = *m, first = (*m)(1.0);
        (*m)(two) = nop_M;
        EXPECT_SAME(*m, first);
        EXPECT_NE(m->addr(), block) << "another holder keeps all";
        *m = before;
    }
    for (Mm *m : {&cells, &column, &structures}) {
        const void *block = m->addr();
        const Mm first = (*m)(1.0);
        (*m)(3.0) = nop_M;
        (*m)(2.0) = nop_M;
        EXPECT_SAME(*m, first);
        EXPECT_EQ(m->addr(), block);
        (*m)(1.0) = nop_M;
        EXPECT_EQ(m->size(), 0);
    }
    EXPECT_EQ(counted->size(), 0) << "what went is freed";
}

TEST(IndexWrite, what_does_not_fit_is_reported) {
    Mm x = named("x", row({1, 2, 3})), y = named("y", row({1, 2})), i = named("i", row({1, 2, 3})),
       zero = named("z", Mm(0.0)), mask = named("m", logical_of(row({1, 1, 1}))),
       a = named("a", M({{1, 2}, {3, 4}})), cube = named("cube", nd({1, 2, 2}, {1, 2, 3, 4})),
       c = named("c", cell_of(1, 2, {1.0, 2.0})), s = named("s", struct_of({{"a", 1.0}})), u = unset();
    struct {
        std::function<void()> work;
        const char *text;
    } const table[] = {
        {[&] { x(c_p) = y; }, "x(:)=y: size(x) different than size(y)"},
        {[&] { x(zero) = 1.0; }, "x(z): index is non-positive"},
        {[&] { x(0.4) = 1.0; }, "x(=0): index is non-positive"},
        {[&] {
             x(row({1, NAN})) = 1.0;
         },
         "x((temporary)): index is non-positive"},
        {[&] { x(i) = y; }, "x(i)=y: size(y) different than size(i)"},
        {[&] { x(mask) = y; }, "x(m)=y: a logical assignment ; source size != number of non zeros in index"},
        {[&] { x(zero) = Mm(); }, "x(0): index is non-positive"},
        {[&] { a(i, 1) = y; }, "a(i,=1)=y: size(row index)*size(col index) is different than size(source)"},
        {[&] { a(zero, 1) = y(1); }, "a(z,=1)==1: row index is non-positive"},
        {[&] { a(c_p, zero) = 1.0; }, "a(:,z)==1: col index is non-positive"},
        {[&] { cube(c_p, 1, 1) = y; },
         "In indexed assignment to the matrix cube, the index size was 1 but right hand side has 2 elements"},
        {[&] { cube(zero) = 1.0; }, "index z out of matrix cube. Index value was 0 which is not positive."},
        {[&] { cube(5) = 1.0; },
         "Index =5 out of matrix cube. Index value was 5 however the indexed matrix has only 4 elements."},
        {[&] { cube(1, 1, 1) = Mm(); },
         "While assigning empty matrix to the matrix 'cube', there was more than one non-colon index"},
        {[&] {
             cube(sparse_of(1, 2, {{1, 1}})) = 1.0;
         },
         "Sparse index (temporary) out of matrix cube. Index value was 0."},
        {[&] { x.br(1) = 1.0; }, "'x' is not a cell array and can't be {}-indexed"},
        {[&] { x(1) = c; }, "Can not convert c into a numeric matrix"},
        {[&] { c.br(0.5, zero) = 1.0; }, "index z out of matrix c. Index value was 0 which is not positive."},
        {[&] { s(1) = 5.0; },
         "In the assignment x(...)=y, x was a structure array but y was not a structure"},
        {[&] {
             s(1) = struct_of({{"b", 1.0}});
         },
         "In the assignment x(...)=y, x and y (structures) must have identical members"},
        {[&] {
             s(1) = struct_of({{"a", 1.0}, {"b", 1.0}, {"c", 1.0}});
         },
         "In the assignment x(...)=y, x and y (structures) must have identical members"},
        {[&] { x(1) = u; }, "variable 'u' was used without a value"},
        {[&] { x(1) = y(5); },
         "y(=5) : Index out of matrix. Index value was 5 however the indexed matrix has 2 elements."},
        {[&] { x.vwcopy1(y, i); }, "x(i)=y: size(y) different than size(i)"},
        {[&] { u.vwcopy1(y, i); }, "variable 'u' was used without a value"},
        {[&] { x(65536.0, 65536.0) = 1.0; }, "Out of memory!"},
        {[&] { x(2147483647.0) = 1.0; }, "Out of memory!"},
        {[&] { x(1e300) = 1.0; }, "Out of memory!"},
    };
    Mm x0 = row({1, 2, 3}), a0 = a, cube0 = cube, c0 = c, s0 = s;
    for (const auto &line : table) {
        EXPECT_EQ(test::raised(line.work), line.text);
        Returning errors;
        line.work();
        ASSERT_GE(errors.errors().size(), 1u);
        EXPECT_EQ(errors.errors()[0], line.text);
        for (const Mm &m : {x, a, cube, c, s, u}) kn::check(m);
        EXPECT_SAME(x, x0) << line.text;
        EXPECT_SAME(a, a0) << line.text;
        EXPECT_SAME(cube, cube0) << line.text;
        EXPECT_SAME(c, c0) << line.text;
        EXPECT_SAME(s, s0) << line.text;
    }
    EXPECT_RAISES(x(row({5, 6, 7})) = y, "x((temporary))=y: size(y) different than size((temporary))");
    EXPECT_SAME(x, row({1, 2, 3, 0, 0, 0, 0})) << "grown by then";
}

TEST(IndexWrite, an_error_in_a_chain_leaves_the_root_alone) {
    Mm s = struct_of({{"a", row({1, 2})}}), c = cell_of(1, 1, {row({1, 2})});
    Mm s0 = s, c0 = c;
    EXPECT_RAISES(s.member("a")(row({5, 6, 7})) = row({1, 2}),
                  "(temporary)((temporary))=(temporary): size((temporary)) "
                  "different than size((temporary))");
    EXPECT_RAISES(c.br(1).br(1) = 5.0, "'(temporary)' is not a cell array and can't be {}-indexed");
    EXPECT_RAISES(c.br(3).br(0.0) = 5.0,
                  "index =0 out of matrix (temporary). Index value was 0 which is not positive.");
    EXPECT_SAME(s, s0);
    EXPECT_SAME(c, c0);
}

#ifdef QUORVEX_ALLOC_PROBE
// Every allocation of a workload fails once, with a handler that throws and with one that returns.
template <class F> void fail_each_allocation(F work) {
    for (bool returning : {false, true})
        for (long k = 1;; ++k) {
            ASSERT_LT(k, 2000);
            long live = kn::alloc_probe.live;
            bool failed;
            {
                std::optional<Returning> errors;
                if (returning) errors.emplace();
                kn::alloc_probe.fail_at = kn::alloc_probe.allocations + k;
                try {
                    work();
                } catch (const test::Raised &) {
                } catch (const std::bad_alloc &) {
                }
                failed = kn::alloc_probe.allocations >= kn::alloc_probe.fail_at;
                kn::alloc_probe.fail_at = 0;
            }
            EXPECT_EQ(kn::alloc_probe.live, live) << "allocation " << k;
            if (!failed) break;
        }
}

TEST(IndexWrite, exhausted_memory_leaves_whole_values) {
    const Mm x = row({1, 2, 3}), a = M({{1, 2}, {3, 4}}), s = struct_of({{"a", 1.0}, {"b", x}}),
             c = cell_of(1, 2, {x, a}), thin = sparse_of(3, 3, {{1, 2}, {5, 6}}), many = colon(1.0, 40.0);
    auto on = [](const Mm &m, auto work) {
        Mm t = m;
        struct Check {
            Mm &t;
            ~Check() {
                long at = kn::alloc_probe.fail_at;
                kn::alloc_probe.fail_at = 0;
                kn::check(t);
                kn::alloc_probe.fail_at = at;
            }
        } check{t};
        work(t);
    };
    const Mm one = 1.0, two = 2.0, three = 3.0, fifty = 50.0, z = C(1, 2), pair = row({3, 1}), none;
    fail_each_allocation([&] { on(x, [&](Mm &t) { t(fifty) = z; }); });
    fail_each_allocation([&] { on(x, [&](Mm &t) { t(many) = many; }); });
    fail_each_allocation([&] { on(a, [&](Mm &t) { t(three, many) = one; }); });
    fail_each_allocation([&] { on(a, [&](Mm &t) { t(two, two, two) = z; }); });
    fail_each_allocation([&] { on(a, [&](Mm &t) { t(one, c_p) = none; }); });
    fail_each_allocation([&] { on(c, [&](Mm &t) { t.br(fifty) = t; }); });
    fail_each_allocation([&] { on(c, [&](Mm &t) { t(one) = three; }); });
    fail_each_allocation([&] { on(s, [&](Mm &t) { t(three).member("c") = one; }); });
    fail_each_allocation([&] { on(s, [&](Mm &t) { t(two) = t(one); }); });
    fail_each_allocation([&] { on(thin, [&](Mm &t) { t(c_p, pair) = three; }); });
    fail_each_allocation([&] { on(thin, [&](Mm &t) { t = Mm(t(pair, c_p)); }); });
    fail_each_allocation([&] { on(many, [&](Mm &t) { t = Mm(t(many, one)); }); });
    fail_each_allocation([&] { on(s, [&](Mm &t) { t = Mm(t(pair), 0); }); });
}
#endif

} // namespace
