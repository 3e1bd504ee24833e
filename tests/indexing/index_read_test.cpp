// Reading with subscripts and through chains: shapes, sharing, tolerance, what is reported. Random selections
// against a slow model stand in index_model_test.cpp.
#include <cmath>
#include <functional>

#include "support/support.h"
#include "value/constants.h"
#include "value/header.h"

using namespace test;

namespace {

constexpr double nan = NAN;

Mm structs(const std::vector<double> &x) { // a 1 by n structure array with the fields a, b
    return mstruct(cell_of(1, 4, {TM("a"), num2cell(row(x)), TM("b"), TM("text")}));
}

// -- Values and shapes.

TEST(IndexRead, subscripts_of_any_kind) {
    Mm x = row({10, 20, 30}), thin = logical_of(sparse_of(1, 3, {{0, 1}, {2, 1}}));
    EXPECT_NE(test::raised([&] { (void)Mm(named("none", Mm())(0.5)); }), "(no error)");
    EXPECT_SAME(Mm(cell(0.0).br(0.5), 0), kn::nothing_M) << "the first element, which there is not";
    EXPECT_SAME(x(C(2, 7)), Mm(20.0)) << "imaginary parts do not count";
    EXPECT_SAME(x(U8({{2, 3}})), row({20, 30}));
    EXPECT_SAME(x(named("k", TM("\2"))), Mm(20.0));
    EXPECT_SAME(x(linspace(1.5, 3.5, 101)), x(floor(linspace(1.5, 3.5, 101)))) << "fractions are cut off";
    EXPECT_SAME(x(thin), row({10, 30}));
    EXPECT_FALSE(thin.issparse()) << "it has become full";
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
    EXPECT_SAME(column, col({1, 4, 2, 5, 3, 6}));
    EXPECT_SAME(same, a);
    EXPECT_SAME(deep, cube);
    EXPECT_SAME(Mm()(c_p), Mm());
    EXPECT_SAME(a(Mm(c_p)), Mm()) << "a copy of the marker is none";
    EXPECT_NE(Mm(cube(c_p, c_p, c_p)).addr(), cube.addr());
    Mm s = struct_of({{"a", cell_of(1, 1, {a})}});
    EXPECT_EQ(Mm(s(1).member("a").br(1)(c_p)).addr(), a.addr());
    a.getflags().global = 1;
    EXPECT_FALSE(Mm(a()).isglobal());
}

// -- Chains.

TEST(IndexRead, cells_and_fields) {
    Mm c = cell_of(1, 3, {1.0, TM("ab"), cell_of(1, 1, {C(1, 2)})}), s = structs({1, 2, 3});
    EXPECT_SAME(c.br(row({2, 1})), TM("ab")) << "only the first";
    EXPECT_SAME(c.br(c_p), Mm(1.0));
    EXPECT_SAME(c.br(Mm()), Mm());
    EXPECT_SAME(c.br(3).br(1)(1), C(1, 2));
    EXPECT_SAME(s.member("a"), cell_of(1, 3, {1.0, 2.0, 3.0}));
    EXPECT_SAME(s(2).member("b")(3), TM("x"));
    EXPECT_SAME(s.br(3), cell_of(1, 2, {3.0, TM("text")}));
    EXPECT_SAME(s(Mm()).member("a"), Mm());
}

// -- Tolerant reads: what is missing is of type kn_none, or an empty structure of the right form.

TEST(IndexRead, tolerant_reads_report_nothing_and_failed_ones_go_on_with_it) {
    Mm x = row({1, 2}), c = cell_of(1, 1, {1.0}), s = structs({1}), unset(i_o, "unset", 0);
    const Mm zero = 0.0, three = 3.0, thin = sparse_of(1, 2, {{0, 1}});
    for (int strict : {0, 1}) {
        Returning errors;
        for (const Mm &m :
             {Mm(x(three), strict), Mm(x(zero), strict), Mm(x(three, three), strict), Mm(x(1, three), strict),
              Mm(x(three, 1, 1), strict), Mm(ones(2, 2, 2)(thin), strict), Mm(c.br(three), strict),
              Mm(x.br(three), strict), Mm(x.member("a"), strict), Mm(s.member("none"), strict),
              Mm(unset(three), strict), Mm(unset.member("a").br(three), strict),
              Mm(c.br(three).member("a")(three), strict)})
            EXPECT_EQ(m.gettype(), kn_none);
        EXPECT_EQ(errors.errors().empty(), strict == 0);
    }
    Mm next(s(three), 0);
    EXPECT_EQ(next.getnfields(), 2);
    EXPECT_SAME(next.member("b"), Mm());
    EXPECT_SAME(Mm(s.br(three), 0), Mm(0, 0, 0, 1, 2, kn_Mm)) << "not set";
}

// -- Errors.

TEST(IndexRead, what_lies_outside_is_reported_in_the_words_of_its_path) {
    Mm x = named("x", row({1, 2, 3})), a = named("a", M({{1, 2}, {3, 4}})), i = named("i", Mm(0.0)),
       j = named("j", row({1, 5})), cube = named("cube", ones(2, 2, 2)), line = named("line", ones(1, 1, 3)),
       thin = named("thin", sparse_of(1, 2, {{0, 1}}));
    EXPECT_RAISES(Mm(x(i)),
                  "x(i) : Index out of matrix. Index value was 0 however the indexed matrix has 3 elements.");
    EXPECT_RAISES(Mm(a(j, i)), "a(j,i): row index out of matrix. Index was 5 but indexed matrix has 2 rows.");
    EXPECT_RAISES(Mm(a(c_p, i)),
                  "a(:,i): col index out of matrix. Index was 0 but indexed matrix has 2 columns.");
    EXPECT_RAISES(Mm(cube(i)), "index i out of matrix cube. Index value was 0 which is not positive.");
    EXPECT_RAISES(Mm(cube(-1.5)), "index =-1 out of matrix cube. Index value was -1 which is not positive.");
    EXPECT_RAISES(
        Mm(cube(9)),
        "Index =9 out of matrix cube. Index value was 9 however the indexed matrix has only 8 elements.");
    EXPECT_RAISES(
        Mm(line(4)),
        "Index =4 out of vector line. Index value was 4 however the indexed vector has only 3 elements.");
    EXPECT_RAISES(Mm(cube(j, 1, 3)),
                  "Index =3 out of matrix cube. Index value was 3 however the indexed matrix has 2 "
                  "elements in this dimension.")
        << "the last subscript first";
    EXPECT_RAISES(Mm(cube(i, 1, row({1, 3}))),
                  "index i out of matrix cube. Index value was 0 which is not positive.")
        << "the first element first";
    EXPECT_RAISES(Mm(cube(thin)), "Sparse index thin out of matrix cube. Index value was 0.");
    EXPECT_SAME(cube(9, Mm(), 1), Mm()) << "a selection of nothing is not tested";
}

TEST(IndexRead, huge_and_undefined_numbers_lie_outside) {
    Mm x = named("x", row({1, 2})), cube = ones(1, 2, 2), many = colon(1, 20), widest = sparse(1.0, 0x1p53);
    for (double k : {nan, HUGE_VAL, -1e300, 0x1p53, 0x1p53 + 2, -0x1p53, 4294967297.0})
        for (const Mm &i : {Mm(k), row({1, k})})
            for (auto read : std::initializer_list<std::function<void()>>{
                     [&] { (void)Mm(x(i)); }, [&] { (void)Mm(x(1, i)); }, [&] { (void)Mm(cube(1, i, 1)); }})
                EXPECT_NE(test::raised(read), "(no error)");
    EXPECT_RAISES(Mm(x(1e10)),
                  "x(=10000000000) : Index out of matrix. Index value was 10000000000 however the indexed "
                  "matrix has 2 elements.");
    EXPECT_RAISES(Mm(x(1e300)),
                  "x(=9007199254740992) : Index out of matrix. Index value was 9007199254740992 however the "
                  "indexed matrix has 2 elements.");
    many.r(20) = 0x1p53 + 2;
    EXPECT_RAISES(x(many) = 1.0, "Out of memory!") << "among many, too";
    EXPECT_RAISES(x(1, many) = 1.0, "Out of memory!");
    EXPECT_RAISES(widest(1, 1e16) = 1.0, "Out of memory!");
    EXPECT_RAISES(widest(1e16) = 1.0, "Out of memory!");
}

TEST(IndexRead, wrong_kinds_are_reported) {
    Mm x = named("x", row({1, 2})), unset(i_o, "u", 0), s = named("s", structs({1, 2}));
    EXPECT_RAISES(Mm(unset(1)), "u(...): variable 'u' was used without value.");
    EXPECT_RAISES(Mm(x.br(1)), "variable 'x' was {}-indexed, but it is not a cell array");
    EXPECT_RAISES(Mm(x.member("a")), "x.a: not a structure");
    EXPECT_RAISES(Mm(s.member("c")), "s.c: structure field does not exist");
    EXPECT_RAISES(Mm(x(unset)), "variable 'u' was used without a value");
    EXPECT_RAISES(Mm(x(1, named("c", cell_of(1, 1, {1.0})))),
                  "Index c is a cell array or a structure and can't be a subscript.");
    EXPECT_RAISES(Mm(Mr()), "nothing(...): variable 'nothing' was used without value.");
    s.mr(2) = cell_of(1, 1, {1.0});
    EXPECT_RAISES(Mm(s.member("a")), "structure 's' is built wrong");
    s.mr(2) = 5.0;
    EXPECT_RAISES(Mm(s(2).member("a")), "structure '(temporary)' is built wrong");
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
    const Mm s = struct_of({{"v", 1.0}}), plain = mclass(s, TM("other")), x = row({1, 2, 3}),
             object = mclass(s, TM("reader"));
    auto record = [](const char *type, const Mm &subs) {
        return struct_of({{"type", TM(type)}, {"subs", subs}});
    };
    EXPECT_SAME(object(1, 7), row({42, 1}));
    EXPECT_SAME(seen, record("()", cell_of(1, 2, {1.0, 7.0})));
    EXPECT_SAME(object.member("any")(2), Mm(1.0));
    EXPECT_SAME(seen, record(".", TM("any")));
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
