// The value class itself: construction, sharing, shape, access, conversions, and what each reports.
#include <cmath>
#include <cstring>
#include <vector>

#include "support/support.h"
#include "value/constants.h"
#include "value/header.h"

using namespace test;

namespace {

constexpr unsigned char *bytes = nullptr;

std::vector<kn_size> dims(const Mm &m) { return {m.getdims(), m.getdims() + 4}; }

Mm blank(const std::vector<kn_size> &d, kn_matrix_types t = kn_double) {
    return Mm(0, 0, 0, std::ssize(d), d.data(), t);
}

// -- Construction.

TEST(ValueConstruction, extents) {
    const kn_size cube[] = {3, 0, 2};
    for (kn_matrix_types t : {kn_none, kn_double, kn_uint8, kn_Mm})
        for (const Mm &m : {Mm(0, 0, 0, 5, -1, t), Mm(1, 0, 0, 3, cube, t), Mm(1, 0, 7, 0, 0, t)})
            EXPECT_EQ(dims(m), (std::vector<kn_size>{0, 0, 0, 0}));
    EXPECT_EQ(blank({1, 1, 1, 1}).getndims(), 2);
}

TEST(ValueConstruction, both_planes_have_room_for_p_elements) {
    for (kn_matrix_types t : {kn_double, kn_uint8}) {
        Mm m(1, 0, 0, 7, 1, t);
        size_t plane = static_cast<size_t>(m.getp()) * (t == kn_uint8 ? 1 : 8);
        std::memset(m.getpr(bytes), 1, plane);
        std::memset(m.getpi(bytes), 2, plane);
        EXPECT_EQ(m.getpr(bytes)[plane - 1], 1) << "the planes overlap";
        EXPECT_EQ(m.dirty(), 0) << "the count is overwritten";
    }
}

TEST(ValueConstruction, sparse_entries_are_cut_to_the_size) {
    EXPECT_EQ(Mm(0, 1, 30, 4, 5, kn_double).getnnz(), 20);
    EXPECT_EQ(Mm(0, 1, 30, 4, 5, kn_double).getp(), 38) << "the room asked for stays";
    EXPECT_EQ(Mm(0, 1, -3, 4, 5, kn_double).getnnz(), 0);
    Mm none(1, 1, 0, 4, 5, kn_double);
    EXPECT_EQ(dims(none), (std::vector<kn_size>{4, 5, 1, 1})) << "no entries, but extents";
    EXPECT_TRUE(none.getindex() && none.isc());
}

TEST(ValueConstruction, a_size_that_can_not_be_counted_is_out_of_memory) {
    constexpr kn_size huge = PTRDIFF_MAX / 2;
    EXPECT_RAISES(Mm(0, 1, 1, huge, 4, kn_double), "Out of memory!");
    EXPECT_RAISES(Mm(0, 0, 0, PTRDIFF_MAX, 1, kn_uint8), "Out of memory!");
    EXPECT_EQ(blank({huge, huge, 2, 0}).size(), 0);
    Returning errors;
    Mm m(1, 1, 5, huge, huge, kn_double);
    EXPECT_EQ(errors.errors().size(), 1u);
    EXPECT_SAME(m, Mm());
    EXPECT_TRUE(kn::lacks(m, 5));
}

// -- Sharing.

TEST(ValueSharing, copies_share_the_block_and_not_the_name) {
    Mm a = named("a", M({{1, 2}}));
    a.getflags().persistent = a.getflags().global = 1;
    a.setstr(1);
    {
        Mm b = a, c(a, "c");
        EXPECT_EQ(b.addr(), a.addr());
        EXPECT_EQ(a.dirty(), 2);
        EXPECT_EQ(b.getname(), nullptr);
        EXPECT_TRUE(b.isstr() && !b.isglobal() && !b.getflags().persistent);
        EXPECT_STREQ(c.getname(), "c");
        EXPECT_TRUE(c.isglobal() && !c.getflags().persistent);
    }
    EXPECT_EQ(a.dirty(), 0);
}

TEST(ValueSharing, a_cell_may_become_its_own_element) {
    Mm c = cell_of(1, 2, {cell_of(1, 1, {5.0}), 6.0});
    c = c.mr(1);
    EXPECT_SAME(c, cell_of(1, 1, {5.0}));
    c = cell_of(1, 1, {M({{4, 5}})});
    c = std::move(c.mr(1)); // lives in the block that the target drops
    EXPECT_SAME(c, M({{4, 5}}));
}

TEST(ValueSharing, assignment_keeps_what_belongs_to_the_variable) {
    Mm x(i_o, "x", 1), y = M({{1, 2, 3}}), n(i_o, "n", 0), s = sparse_of(3, 3, {{4, 7}});
    x.getflags().persistent = 1;
    double *elements = y.addr();
    x = s;
    x = std::move(y);
    EXPECT_EQ(s.dirty(), 0) << "the block it held before was given back";
    EXPECT_EQ(x.addr(), elements) << "that of a temporary is taken";
    EXPECT_EQ(x.dirty(), 0);
    EXPECT_STREQ(x.getname(), "x");
    EXPECT_TRUE(x.isglobal() && x.getflags().persistent && !x.getflags().scalar_only);
    n = TM("a");
    n = 5; // no longer text
    EXPECT_SAME(n, Mm(5.0));
}

TEST(ValueSharing, scalar_only_lasts_while_full_real_scalars_come) {
    for (const Mm &other :
         {M({{1, 2}}), C(1, 2), U8({{1}}), Mm(), cell_of(1, 1, {1.0}), sparse_of(1, 1, {{0, 1}})}) {
        Mm w(i_o, "w", 0);
        w = 5.0;
        EXPECT_TRUE(w.getflags().scalar_only);
        w = other;
        w = 5.0;
        EXPECT_FALSE(w.getflags().scalar_only) << "it does not come back";
    }
}

std::string told; // by the hooks

TEST(ValueSharing, released_scalars_are_told_to_the_debug_handler) {
    kn_code_handler old =
        kn_set_debug_handler([](int code, const char *text) { (told += static_cast<char>(code)) += text; });
    told.clear();
    for (int flag : {0, 1}) {
        kn_set_default_error_flags(8, flag);
        EXPECT_EQ(told, "") << "the flag was off";
        Mm v(i_o, "v", 0), w(i_o, "w", 0), unnamed = 3.0;
        v = 1.0;
        v = 2.0;
        w = M({{1, 2}});
        Mm keeps_block = v;
        v = 4.0; // the block lives on: nothing is released
    }
    kn_set_default_error_flags(8, 0);
    kn_set_debug_handler(old);
    EXPECT_EQ(told, "svsv");
}

// -- Shape.

TEST(ValueShape, questions) {
    EXPECT_EQ(blank({2, 5}).length(), 5);
    EXPECT_EQ(blank({0, 3}).length(), 0);
    EXPECT_EQ(blank({1, 1, 4}).nsingleton(), 3);
    EXPECT_EQ(blank({0, 3}).nsingleton(), 1);
    for (auto [d, along] :
         {std::pair{std::vector<kn_size>{1, 1}, 2}, {{0, 3}, 2}, {{5, 1}, 1}, {{2, 3}, 0}, {{1, 1, 1, 4}, 4}})
        EXPECT_EQ(blank(d).vectordim(), along);
}

TEST(ValueShape, reshape_touches_one_header) {
    Mm a = nd({3, 2}, {1, 2, 3, 4, 5, 6}), b = a;
    b.reshape(2, 3);
    EXPECT_SAME(b, nd({2, 3}, {1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(a.rows(), 3);
    EXPECT_EQ(a.addr(), b.addr());
    const kn_size many[] = {3, 1, 1, 1, 2};
    EXPECT_RAISES(b.reshape(5, many), "reshape: size=6 is different than the product of new dimensions");
    EXPECT_EQ(dims(b), (std::vector<kn_size>{2, 3, 1, 1}));

    Mm none;
    none.reshape(0, 7);
    EXPECT_SAME(none, Mm());
    EXPECT_RAISES(none.reshape(65536, 65536), "reshape: size=0 is different than 65536*65536");
}

// -- Elements.

TEST(ValueElements, one_based_truncated_column_major) {
    Mm a = nd({2, 3, 2}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), z = test::complex_of(a, a + 20.0),
       u = U8({{1, 200}, {3, 4}}), c = cell_of(1, 2, {1.0, C(1, 2)});
    EXPECT_EQ(
        (std::vector{a.r(), a.r(3.99), a.r(2.5, 3.5), a.r(2, 1, 2), z.i(), z.i(2), z.i(1, 2), z.i(2, 2, 1)}),
        (std::vector<double>{1, 3, 6, 8, 21, 22, 23, 24}));
    EXPECT_EQ(u.ur(1, 2) + u.ur(2), 203);
    EXPECT_SAME(c.mr(1, 2), C(1, 2));
    EXPECT_SAME(c.safebr(2), C(1, 2));
    for (int k : {0, 3, -1, 1 << 30}) EXPECT_SAME(c.safebr(k), nop_M);
    EXPECT_SAME(Mm(1.0).safebr(1), nop_M);
}

TEST(ValueElements, range_and_type_are_reported) {
    Mm a = named("a", M({{1, 2}, {3, 4}})), z = named("z", C(1, 2)), u = named("u", U8({{1, 2}})),
       c = named("c", cell_of(1, 2, {1.0, 2.0}));
    const std::pair<std::function<void()>, const char *> cases[] = {
        {[&] { named("e", Mm()).r(); }, "e.r(): matrix is empty"},
        {[&] { a.r(0.9); }, "a.r(idx): idx=0.9 out of matrix"},
        {[&] { a.r(4294967297.0); }, "a.r(idx): idx=4.29497e+09 out of matrix"},
        {[&] { z.i(2); }, "z.r(idx): idx=2 out of matrix"},
        {[&] { a.r(3, 1); }, "a.r(row,col): row=3 or col=1 out of matrix"},
        {[&] { a.r(1, 1, 2); }, "a.r(row,col,depth): row=1, col=1 or depth=2 out of matrix"},
        {[&] { u.ur(3); }, "u.ur(idx): idx=3 out of matrix"},
        {[&] { c.mr(0); }, "c.mr(idx): idx=0 out of matrix"},
        {[&] { c.mr(1, 3); }, "c.mr(row,col): row=1 or col=3 out of matrix"},
        {[&] { u.r(1); }, ".r / .i : wrong matrix type"},
        {[&] { a.ur(1); }, ".r / .i : wrong matrix type"},
        {[&] { a.mr(1, 1); }, ".r / .i : wrong matrix type"},
    };
    for (const auto &[access, message] : cases) EXPECT_EQ(test::raised(access), message);
}

TEST(ValueElements, a_failed_access_goes_on_with_an_element_of_nobody) {
    Mm a = M({{1, 2}}), c = cell_of(1, 1, {1.0}), s = sparse_of(9, 9, {{5, 2}});
    Returning errors;
    a.r(5) = 99, a.r(2, 2) = 99, c.mr(3) = 99.0, a.i(9, 9, 9) = 99;
    EXPECT_EQ(a.r(5), 0);
    EXPECT_EQ(errors.errors().size(), 5u);
    // Without a report: planes that are not there, entries that are not stored.
    a.i(1) = 99;
    EXPECT_EQ(a.i(1), 0);
    s.r(9, 9) = 99;
    EXPECT_SAME(a, M({{1, 2}}));
    EXPECT_SAME(c, cell_of(1, 1, {1.0}));
    EXPECT_SAME(s, sparse_of(9, 9, {{5, 2}}));
    EXPECT_EQ(errors.errors().size(), 5u);
}

// -- Conversions.

TEST(ValueConversions, getreal_drops_the_plane_of_one_header) {
    Mm z = test::complex_of(M({{1, 2}}), M({{0, -0.0}})), other = z;
    EXPECT_EQ(z.getreal(0), 0);
    EXPECT_FALSE(z.isc());
    EXPECT_TRUE(other.isc());
    EXPECT_EQ(z.addr(), other.addr());
    EXPECT_SAME(z, M({{1, 2}}));

    Mm n = C(1, NAN);
    EXPECT_NE(n.getreal(0), 0);
    EXPECT_EQ(n.getreal(1), 0);
    EXPECT_SAME(n, Mm(1.0));
}

TEST(ValueConversions, deepcopy_takes_a_block_of_its_own_and_keeps_flags) {
    Mm to = named("to", M({{1}})), text = TM("ab"), s = sparse_of(3, 3, {{1, 5}, {8, 6}}),
       cell = cell_of(1, 1, {M({{1, 2}})}), st = struct_of({{"a", 1.0}, {"b", 2.0}});
    to.deepcopy(M({{-1, 1.9, 255, 256, 300.7, -1.5}}), kn_uint8);
    EXPECT_SAME(to, U8({{255, 1, 255, 0, 44, 255}}));
    to.deepcopy(cell, kn_none);
    EXPECT_EQ(to.mr(1).addr(), cell.mr(1).addr()) << "elements are shared";
    text.getflags().persistent = text.getflags().global = 1;
    to.deepcopy(1, text, kn_double);
    EXPECT_TRUE(to.isstr() && to.isc() && !to.isglobal() && !to.getflags().persistent);
    to.deepcopy(0, 0, s, kn_double);
    EXPECT_SAME(to, nd({3, 3}, {0, 5, 0, 0, 0, 0, 0, 0, 6}));
    to.deepcopy(0, 1, M({{3, 4}}), kn_double);
    EXPECT_SAME(to, sparse_of(1, 2, {{0, 3}, {1, 4}}));
    st.setclassid(3);
    to.deepcopy(st, kn_none);
    EXPECT_SAME(to, st);
    EXPECT_EQ(to.getclassid(), 3);
    EXPECT_NE(to.getfields(), st.getfields());
}

TEST(ValueConversions, sparse_keeps_nonzeros_nan_and_truth) {
    Mm a = M({{0, 3, -0.0}, {NAN, 0, 5}}), truth = logical_of(M({{0, 1}}));
    EXPECT_SAME(sparse(a), sparse_of(2, 3, {{1, NAN}, {2, 3}, {5, 5}}));
    EXPECT_SAME(full(sparse(TM("Hi"))), M({{72, 105}}));
    EXPECT_TRUE(sparse(truth).islogical() && !full(sparse(truth)).islogical());
    EXPECT_SAME(sparse(U8({{0, 200}})), sparse_of(1, 2, {{1, 200}}));
    EXPECT_RAISES(sparse(named("c", cell(1.0))), "sparse: numeric data expected, but matrix c is not");
}

// -- Names and scalars.

TEST(ValueNames, in_messages) {
    const std::pair<Mm, const char *> cases[] = {
        {-3.7, "=-3"}, {HUGE_VAL, "=9007199254740992"}, {Mm(0, 1, 0, 1, 1, kn_double), "=0"}};
    for (const auto &[m, name] : cases) EXPECT_STREQ(kn_display_name(m), name);
    Mm complex_text = C(97, 1);
    complex_text.setstr(1);
    const std::pair<Mm, const char *> faults[] = {{Mm(), "(temporary) is not scalar"},
                                                  {complex_text, "=97 is complex"},
                                                  {TM("a"), "=97 is string"},
                                                  {sparse_of(1, 1, {{0, 1}}), "=1 is sparse"},
                                                  {U8({{1}}), "(temporary) is not double"}};
    for (const auto &[m, fault] : faults) EXPECT_RAISES(scalar(m), std::string("scalar: matrix ") + fault);
    EXPECT_RAISES(switchinit(Mm(i_o, "v", 0)), "variable 'v' was used without a value");
}

} // namespace
