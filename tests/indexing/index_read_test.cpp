// Reading with subscripts and through chains: shapes, sharing, tolerance, what is reported. Random selections
// against a slow model stand in index_model_test.cpp.
#include <cmath>

#include "support/support.h"
#include "value/constants.h"
#include "value/header.h"

using namespace test;

namespace {

constexpr double nan = NAN;

std::vector<int> dims(const Mm &m) { return {m.getdims(), m.getdims() + m.getndims()}; }
Mm ones_of(const std::vector<int> &d) {
    Mm m = ones(row({d.begin(), d.end()}));
    EXPECT_EQ(dims(m), d);
    return m;
}
Mm structs(const std::vector<double> &x) { // a 1 by n structure array with the fields a, b
    Mm s(0, 0, 0, 1, static_cast<int>(x.size()), kn_Mm);
    s.addfield("a", 0);
    s.addfield("b", 0);
    for (size_t k = 0; k < x.size(); ++k) s.mr(static_cast<int>(k) + 1) = cell_of(2, 1, {x[k], TM("text")});
    return s;
}

// -- Values and shapes.

TEST(IndexRead, numbers_are_cut) {
    Mm x = row({10, 20, 30});
    EXPECT_SAME(x(0.5), Mm(10.0));
    EXPECT_SAME(x(1.99), Mm(10.0));
    EXPECT_SAME(x(1, 2.5), Mm(20.0));
    EXPECT_NE(test::raised([&] { (void)Mm(named("none", Mm())(0.5)); }), "(no error)");
    EXPECT_SAME(Mm(cell(0.0).br(0.5), 0), kn::nothing_M) << "the first element, which there is not";
    EXPECT_SAME(x(row({3, 1, 1})), row({30, 10, 10}));
    EXPECT_SAME(x(C(2, 7)), Mm(20.0)) << "imaginary parts do not count";
    EXPECT_SAME(x(U8({{2, 3}})), row({20, 30}));
    EXPECT_SAME(x(named("k", TM("\2"))), Mm(20.0));
    EXPECT_SAME(TM("hello")(row({5, 1})), TM("oh"));
    EXPECT_SAME(U8({{1, 2}, {3, 4}})(2, c_p), U8({{3, 4}}));
    EXPECT_SAME(cell_of(1, 2, {1.0, C(1, 2)})(2), cell_of(1, 1, {C(1, 2)}));
    EXPECT_SAME(logical_of(x)(3), logical_of(Mm(30.0)));
}

TEST(IndexRead, one_subscript_gives_the_direction_of_a_vector_or_its_own_shape) {
    struct {
        std::vector<int> base, index, result;
    } const table[] = {
        {{1, 6}, {1, 3}, {1, 3}},
        {{1, 6}, {3, 1}, {1, 3}},
        {{6, 1}, {1, 3}, {3, 1}},
        {{6, 1}, {2, 2}, {2, 2}},
        {{2, 3}, {1, 3}, {1, 3}},
        {{2, 3}, {3, 1}, {3, 1}},
        {{2, 3}, {2, 2}, {2, 2}},
        {{1, 1}, {3, 1}, {3, 1}},
        {{1, 1}, {2, 2}, {2, 2}},
        {{1, 6}, {2, 1, 2}, {2, 1, 2}},
        {{1, 1, 6}, {3, 1}, {1, 1, 3}},
        {{2, 3, 2}, {1, 3}, {1, 3}},
        {{1, 1, 6}, {1, 1, 1, 2}, {1, 1, 2}},
        {{2, 3, 2}, {2, 2}, {2, 2}},
    };
    for (const auto &line : table) EXPECT_EQ(dims(ones_of(line.base)(ones_of(line.index))), line.result);
    EXPECT_SAME(M({{1, 2}, {3, 4}})(Mm()), Mm());
    EXPECT_EQ(Mm(structs({1, 2})(Mm())).getnfields(), 2);
}

TEST(IndexRead, masks) {
    Mm x = row({1, 2, 3}), a = M({{1, 2}, {3, 4}});
    EXPECT_SAME(x(logical_of(col({1, 0, 1}))), row({1, 3}));
    EXPECT_SAME(a(logical_of(col({0, 1, 1}))), col({3, 2}));
    EXPECT_SAME(a(logical_of(row({0, 1, 1}))), row({3, 2}));
    EXPECT_SAME(a(logical_of(M({{1, 0}, {1, 1}}))), col({1, 3, 4}));
    EXPECT_SAME(a(logical_of(row({0, 1})), c_p), row({3, 4}));
    EXPECT_SAME(x(logical_of(row({nan, 0, 5}))), Mm(3.0))
        << "NaN selects nothing, any other number something";
    EXPECT_SAME(x(logical_of(row({0, 0, 0}))), Mm());
    EXPECT_SAME(x(logical_of(row({0, 1, 1, 1, 1}))), row({2, 3})) << "stops at the extent";
    EXPECT_SAME(a(logical_of(row({0, 1, 1})), 1.0), Mm(3.0));
    Mm s = logical_of(sparse_of(1, 3, {{0, 1}, {2, 1}}));
    EXPECT_SAME(x(s), row({1, 3}));
    EXPECT_FALSE(s.issparse()) << "it has become full";
}

TEST(IndexRead, a_cell_of_subscripts_stands_for_them) {
    Mm a = M({{1, 2}, {3, 4}});
    EXPECT_SAME(a(cell_of(1, 2, {2.0, row({2, 1})})), row({4, 3}));
    EXPECT_SAME(a(cell_of(1, 1, {U8({{3}})})), Mm(2.0));
    EXPECT_SAME(a(Mm(0, 0, 0, 0, 0, kn_Mm)), a);
    EXPECT_SAME(a(cell_of(1, 5, {1.0, 1.0, 1.0, 1.0, 1.0})), a);
    a(cell_of(1, 2, {2.0, 2.0})) = 9.0;
    EXPECT_SAME(a, M({{1, 2}, {3, 9}}));
}

TEST(IndexRead, whole_values_share_the_block) {
    Mm a = M({{1, 2, 3}, {4, 5, 6}}), cube = nd({1, 2, 2}, {1, 2, 3, 4});
    Mm column = a(c_p), same = a(c_p, c_p), all = a(), deep = cube(c_p, c_p);
    for (const Mm &m : {column, same, all}) EXPECT_EQ(m.addr(), a.addr());
    EXPECT_EQ(dims(column), (std::vector<int>{6, 1}));
    EXPECT_SAME(same, a);
    EXPECT_SAME(deep, cube);
    EXPECT_SAME(Mm()(c_p), Mm());
    EXPECT_SAME(a(Mm(c_p)), Mm()) << "a copy of the marker is none";
    EXPECT_NE(Mm(cube(c_p, c_p, c_p)).addr(), cube.addr());
    Mm s = sparse_of(2, 2, {{1, 5}, {2, 6}});
    EXPECT_SAME(s(c_p), sparse_of(4, 1, {{1, 5}, {2, 6}}));
    a.getflags().global = 1;
    EXPECT_FALSE(Mm(a()).isglobal());
}

TEST(IndexRead, real_parts_alone_are_real) {
    Mm z = complex_of(row({1, 2, 3}), row({0, 5, 0}));
    EXPECT_SAME(z(1), Mm(1.0));
    EXPECT_SAME(z(2), C(2, 5));
    EXPECT_SAME(z(row({1, 3})), row({1, 3}));
    EXPECT_SAME(z(row({1, 2})), complex_of(row({1, 2}), row({0, 5})));
    z.i(2) = 0;
    EXPECT_SAME(z(c_p), col({1, 2, 3}));
    EXPECT_TRUE(z.isc());
}

TEST(IndexRead, sparse_values_stay_sparse) {
    Mm s = sparse_of(3, 3, {{1, 2}, {3, 4}, {8, 9}});
    EXPECT_SAME(s(2), sparse_of(1, 1, {{0, 2}}));
    EXPECT_SAME(s(1), sparse_of(1, 1, {}));
    EXPECT_SAME(s(c_p, row({2, 1, 2})), sparse_of(3, 3, {{0, 4}, {4, 2}, {6, 4}}));
    EXPECT_SAME(s(row({3, 1, 1}), c_p), sparse_of(3, 3, {{4, 4}, {5, 4}, {6, 9}}));
    EXPECT_SAME(s(row({2, 3}), row({1, 3})), sparse_of(2, 2, {{0, 2}, {3, 9}}));
    EXPECT_SAME(s(Mm(), c_p), Mm(0, 1, 0, 0, 0, kn_double));
}

// -- Chains.

TEST(IndexRead, cells_and_fields) {
    Mm c = named("c", cell_of(1, 3, {1.0, TM("ab"), cell_of(1, 1, {C(1, 2)})}));
    EXPECT_SAME(c.br(2), TM("ab"));
    EXPECT_SAME(c.br(row({2, 1})), TM("ab")) << "only the first";
    EXPECT_SAME(c.br(c_p), Mm(1.0));
    EXPECT_SAME(c.br(Mm()), Mm());
    EXPECT_SAME(c.br(2)(2), TM("b"));
    EXPECT_SAME(c.br(3).br(1)(1), C(1, 2));
    EXPECT_SAME(c(row({3, 1})).br(2), Mm(1.0));

    Mm s = named("s", structs({1, 2, 3}));
    EXPECT_SAME(s.member("a"), cell_of(1, 3, {1.0, 2.0, 3.0}));
    EXPECT_SAME(s(2).member("a"), Mm(2.0));
    EXPECT_SAME(s(2).member("b")(3), TM("x"));
    EXPECT_SAME(s(1, 3).member("a"), Mm(3.0));
    EXPECT_SAME(s.br(3), cell_of(2, 1, {3.0, TM("text")}));
    EXPECT_SAME(s(Mm()).member("a"), Mm());
    EXPECT_EQ(s(row({1, 2})).member("a").size(), 2);
}

TEST(IndexRead, a_chain_reads_shared_elements_without_copying_them) {
    Mm big = row({1, 2, 3});
    Mm s = struct_of({{"a", cell_of(1, 1, {big})}});
    EXPECT_EQ(Mm(s.member("a").br(1)).addr(), big.addr());
    EXPECT_EQ(Mm(s(1).member("a").br(1)(c_p)).addr(), big.addr());
}

// -- Tolerant reads: what is missing is of type kn_none, or an empty structure of the right form.

TEST(IndexRead, tolerant_reads_report_nothing) {
    Mm x = row({1, 2}), c = cell_of(1, 1, {1.0}), s = structs({1}), unset(i_o, "unset", 0);
    const Mm zero = 0.0, three = 3.0, thin = sparse_of(1, 2, {{0, 1}});
    for (const Mm &m :
         {Mm(x(three), 0), Mm(x(zero), 0), Mm(x(three, three), 0), Mm(x(1, three), 0), Mm(x(three, 1, 1), 0),
          Mm(ones_of({2, 2, 2})(thin), 0), Mm(c.br(three), 0), Mm(x.br(three), 0), Mm(x.member("a"), 0),
          Mm(s.member("none"), 0), Mm(unset(three), 0), Mm(unset.member("a").br(three), 0),
          Mm(c.br(three).member("a")(three), 0)})
        EXPECT_EQ(m.gettype(), kn_none);
    Mm next(s(three), 0);
    EXPECT_EQ(next.getnfields(), 2);
    EXPECT_SAME(next.member("b"), Mm());
    EXPECT_SAME(Mm(s.br(three), 0), Mm(0, 0, 0, 1, 2, kn_Mm)) << "not set";
}

// -- Errors.

TEST(IndexRead, what_lies_outside_is_reported_in_the_words_of_its_path) {
    Mm x = named("x", row({1, 2, 3})), a = named("a", M({{1, 2}, {3, 4}})), i = named("i", Mm(0.0)),
       j = named("j", row({1, 5})), cube = named("cube", ones_of({2, 2, 2})),
       line = named("line", ones_of({1, 1, 3})), s = named("s", sparse_of(2, 2, {{0, 1}})),
       t = named("t", structs({1, 2})), thin = named("thin", sparse_of(1, 2, {{0, 1}}));
    EXPECT_RAISES(Mm(x(i)),
                  "x(i) : Index out of matrix. Index value was 0 however the indexed matrix has 3 elements.");
    EXPECT_RAISES(
        Mm(x(7)),
        "x(=7) : Index out of matrix. Index value was 7 however the indexed matrix has 3 elements.");
    EXPECT_RAISES(Mm(row({1})(row({1, 2}))),
                  "=1((temporary)) : Index out of matrix. Index value was 2 however the "
                  "indexed matrix has 1 elements.");
    EXPECT_RAISES(Mm(a(j, i)), "a(j,i): row index out of matrix. Index was 5 but indexed matrix has 2 rows.");
    EXPECT_RAISES(Mm(a(c_p, i)),
                  "a(:,i): col index out of matrix. Index was 0 but indexed matrix has 2 columns.");
    EXPECT_RAISES(Mm(a(1, j)),
                  "a(=1,j): col index out of matrix. Index was 5 but indexed matrix has 2 columns.");
    EXPECT_RAISES(Mm(cube(i)), "index i out of matrix cube. Index value was 0 which is not positive.");
    EXPECT_RAISES(Mm(cube(-1.5)), "index =-1 out of matrix cube. Index value was -1 which is not positive.");
    EXPECT_RAISES(
        Mm(cube(9)),
        "Index =9 out of matrix cube. Index value was 9 however the indexed matrix has only 8 elements.");
    EXPECT_RAISES(
        Mm(line(4)),
        "Index =4 out of vector line. Index value was 4 however the indexed vector has only 3 elements.");
    EXPECT_RAISES(Mm(cube(1, j, 1)),
                  "Index j out of matrix cube. Index value was 5 however the indexed matrix has 2 "
                  "elements in this dimension.");
    EXPECT_RAISES(Mm(cube(j, 1, 3)),
                  "Index =3 out of matrix cube. Index value was 3 however the indexed matrix has 2 "
                  "elements in this dimension.")
        << "the last subscript first";
    EXPECT_RAISES(Mm(cube(i, 1, row({1, 3}))),
                  "index i out of matrix cube. Index value was 0 which is not positive.")
        << "the first element first";
    EXPECT_RAISES(Mm(s(1, 3)), "Index =3 out of matrix s. Index value was 3 however the indexed matrix has 2 "
                               "elements in this dimension.");
    EXPECT_RAISES(
        Mm(t(3)),
        "Index =3 out of vector t. Index value was 3 however the indexed vector has only 2 elements.");
    EXPECT_RAISES(Mm(cube(thin)), "Sparse index thin out of matrix cube. Index value was 0.");
    EXPECT_RAISES(
        Mm(cube(named("m", logical_of(col({0, 0, 0, 0, 0, 0, 0, 0, 1}))))),
        "Index m out of matrix cube. Index value was 9 however the indexed matrix has only 8 elements.");
    EXPECT_SAME(cube(9, Mm(), 1), Mm()) << "a selection of nothing is not tested";
}

TEST(IndexRead, huge_and_undefined_numbers_lie_outside) {
    Mm x = named("x", row({1, 2})), cube = named("cube", ones_of({1, 2, 2}));
    for (double k :
         {nan, HUGE_VAL, -HUGE_VAL, 1e300, -1e300, 2147483647.0, 2147483648.0, -2147483648.0, 4294967297.0})
        for (const Mm &i : {Mm(k), row({1, k})}) {
            EXPECT_NE(test::raised([&] { (void)Mm(x(i)); }), "(no error)");
            EXPECT_NE(test::raised([&] { (void)Mm(x(1, i)); }), "(no error)");
            EXPECT_NE(test::raised([&] { (void)Mm(cube(1, i, 1)); }), "(no error)");
        }
    EXPECT_RAISES(Mm(x(1e10)),
                  "x(=2147483647) : Index out of matrix. Index value was 2147483647 however the indexed "
                  "matrix has 2 elements.");
}

TEST(IndexRead, no_extent_is_larger_than_an_int) {
    Mm x = named("x", row({1, 2})), i = colon(1, 20), widest = sparse(1.0, 2147483647.0),
       half = sparse(1.0, 1.2e9);
    i.r(20) = 2147483648.0;
    EXPECT_RAISES(x(i) = 1.0, "Out of memory!") << "among many, too";
    EXPECT_RAISES(x(1, i) = 1.0, "Out of memory!");
    Mm c = cell(1.0);
    EXPECT_RAISES(c.br(3e9) = 1.0, "Out of memory!");
    EXPECT_RAISES(widest(1, 3e9) = 1.0, "Out of memory!");
    EXPECT_RAISES(widest(3e9) = 1.0, "Out of memory!");
    EXPECT_EQ(widest.getnnz(), 0);
    EXPECT_RAISES(Mm((BR(half), half)), "Out of memory!");
    EXPECT_NE(test::raised([&] { (void)Mm(widest(1, 3e9)); }), "(no error)");
}

TEST(IndexRead, wrong_kinds_are_reported) {
    Mm x = named("x", row({1, 2})), unset(i_o, "u", 0), s = named("s", structs({1, 2}));
    EXPECT_RAISES(Mm(unset(1)), "u(...): variable 'u' was used without value.");
    EXPECT_RAISES(Mm(unset()), "u(...): variable 'u' was used without value.");
    EXPECT_RAISES(Mm(x.br(1)), "variable 'x' was {}-indexed, but it is not a cell array");
    EXPECT_RAISES(Mm(x.member("a")), "x.a: not a structure");
    EXPECT_RAISES(Mm(s.member("c")), "s.c: structure field does not exist");
    EXPECT_RAISES(Mm(x(unset)), "variable 'u' was used without a value");
    EXPECT_RAISES(Mm(x(1, named("c", cell_of(1, 1, {1.0})))),
                  "Index c is a cell array or a structure and can't be a subscript.");
    EXPECT_RAISES(Mm(x(named("s", structs({1})))),
                  "Index s is a cell array or a structure and can't be a subscript.");
    EXPECT_RAISES(Mm(Mr()), "nothing(...): variable 'nothing' was used without value.");
    s.mr(2) = cell_of(1, 1, {1.0});
    EXPECT_RAISES(Mm(s.member("a")), "structure 's' is built wrong");
    s.mr(2) = 5.0;
    EXPECT_RAISES(Mm(s(2).member("a")), "structure '(temporary)' is built wrong");
}

TEST(IndexRead, a_failed_read_goes_on_with_nothing) {
    Mm x = named("x", row({1, 2})), s = structs({1, 2}), unset(i_o, "u", 0);
    Returning errors;
    const Mm three = 3.0;
    for (const Mm &m : {Mm(x(three)), Mm(x(1, three)), Mm(x(1, 1, three)), Mm(x.br(1)), Mm(x.member("a")),
                        Mm(s.member("c")), Mm(unset(1)), Mm(Mr())})
        EXPECT_EQ(m.gettype(), kn_none);
    EXPECT_EQ(errors.errors().size(), 8u);
    EXPECT_SAME(x(unset), Mm());
}

// -- Objects.

Mm seen;
Mm take_part(Mm base, Mm record) {
    seen = record;
    return row({42, double(base.getnfields())});
}
Mm as_index(Mm) { return U8({{2}}); }

TEST(IndexRead, a_class_may_read_and_index_by_itself) {
    register_class_function("reader", "subsref", take_part);
    register_class_function("reader", "subsindex", as_index);
    Mm s = struct_of({{"v", 1.0}}), plain = mclass(s, TM("other")), x = row({1, 2, 3});
    Mm object = mclass(s, TM("reader"));
    EXPECT_SAME(object(1, 7), row({42, 1}));
    EXPECT_SAME(seen.member("type"), TM("()"));
    EXPECT_SAME(seen.member("subs"), cell_of(1, 2, {1.0, 7.0}));
    EXPECT_SAME(object.member("any")(2), Mm(1.0));
    EXPECT_SAME(seen.member("type"), TM("."));
    EXPECT_SAME(seen.member("subs"), TM("any"));
    Mm(object.br(5));
    EXPECT_SAME(seen.member("type"), TM("{}"));
    EXPECT_SAME(plain.member("v"), Mm(1.0));
    EXPECT_EQ(Mm(plain(1)).getclassid(), plain.getclassid());
    EXPECT_SAME(x(object), Mm(2.0));
    EXPECT_RAISES(x(plain), "class other has no method named subsindex");
    seen = Mm();
    unregister_class_function("reader", "subsref");
}

} // namespace
