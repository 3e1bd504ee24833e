// The table of classes at its limits, and calls through it. Classes stay for good, so the case that fills the
// table runs last.

#include <string>

#include "support/support.h"

using test::M;

namespace {

Mm one(Mm a) { return a; }
Mm first_of_two(Mm a, Mm) { return a; }
Mm second_of_two(Mm, Mm b) { return b; }
Mm third_of_three(Mm, Mm, Mm c) { return c; }
Mm with_outputs(Mm, Mm, i_o_t, Mm &, Mm &) { return x_M; }
Mm forty_two(Mm) { return 42; }

Mm object(const char *cls) { return mclass(test::struct_of({{"f", 1.0}}), TM(cls)); }

TEST(ClassRegistry, methods_by_class_name_and_count) {
    Mm a = object("account");
    EXPECT_SAME(mclass(a), TM("account"));
    register_class_function("account", "plus", first_of_two);
    EXPECT_SAME(call_class_function("plus", 5, a), Mm(5.0));
    register_class_function("account", "plus", second_of_two);
    EXPECT_SAME(a + 6, Mm(6.0)) << "the later one counts, for the operator too";
    register_class_function("account", "between", third_of_three);
    EXPECT_SAME(call_class_function("between", 1, a, 3), Mm(3.0));
    register_class_function("account", "uminus", forty_two);
    EXPECT_SAME(call_class_function("uminus", a, zero_M), Mm(42.0))
        << "operands beyond the inputs are dropped";
    register_class_function("account", "size", with_outputs);
    EXPECT_RAISES(call_class_function("size", a, 1), "class account has no method named size");
    EXPECT_RAISES(call_class_function("plus", a), "class account has no method named plus");
    register_class_function("double", "twice", forty_two);
    EXPECT_SAME(call_class_function("twice", 1), Mm(42.0));
    unregister_class_function("double", "twice");

    unregister_class_function("account", "plus");
    EXPECT_FALSE(is_class_function("account", "plus") || is_class_function("bank", "plus"));
    EXPECT_RAISES(call_class_function("plus", a, 6), "class account has no method named plus");
    EXPECT_RAISES(unregister_class_function("account", "plus"), "del: no function plus in class account");
    EXPECT_RAISES(unregister_class_function("bank", "plus"), "del: no function plus in class bank");
}

TEST(ClassRegistry, class_questions) {
    Mm s = sparse(1.0);
    EXPECT_TRUE(isa(s, TM("double")) && isa(s, TM("sparse")) && isa(TM("a"), TM("char")));
    EXPECT_TRUE(isa(object("account"), TM("account")));
    for (const Mm &name : {TM("sparse"), TM("doubles"), Mm(1.0)}) EXPECT_FALSE(isa(1, name));
    for (int id : {0, -1, 33, 1000}) EXPECT_RAISES(kn_class_name(id), "[]:wrong classid");
}

TEST(ClassRegistry, conversions) {
    EXPECT_SAME(mdouble(test::sparse_of(1, 2, {{1, 4}})), M({{0, 4}}));
    EXPECT_SAME(muint8(M({{1.9, 257}})), test::U8({{1, 1}}));
    EXPECT_RAISES(muint16(1), "uint16 is not yet implemented");
    Mm cell = test::named("c", test::cell_of(1, 1, {1.0}));
    EXPECT_RAISES(mdouble(cell), "Can not convert c into a numeric matrix");

    Mm a = object("money");
    EXPECT_RAISES(mdouble(a), "class money has no method named double");
    register_class_function("money", "double", forty_two);
    EXPECT_SAME(mdouble(a), Mm(42.0));
}

TEST(ClassRegistry, slots_run_out_and_are_used_again) {
    std::vector<std::string> names;
    for (int k = 0; k < 129; k++) names.push_back(std::to_string(k));
    for (int k = 0; k < 128; k++) register_class_function("big", names[k].c_str(), one);
    EXPECT_RAISES(register_class_function("big", "128", one), "too many class functions");
    EXPECT_FALSE(is_class_function("big", "128"));
    unregister_class_function("big", "77");
    register_class_function("big", "128", forty_two);
    EXPECT_SAME(call_class_function("128", object("big")), Mm(42.0));
    for (int k = 0; k < 129; k++)
        if (k != 77) unregister_class_function("big", names[k].c_str());
}

TEST(ClassRegistry, zz_classes_run_out) {
    std::string long_name(45, 'x'), cut(39, 'x');
    register_class_function(long_name.c_str(), "f", one);
    EXPECT_FALSE(is_class_function(long_name.c_str(), "f"));
    EXPECT_TRUE(is_class_function(cut.c_str(), "f"));

    Mm last;
    int id = 0;
    for (int k = 0; id < 32; k++) {
        ASSERT_LT(k, 32);
        last = object(std::to_string(k).c_str());
        id = last.getclassid();
    }
    EXPECT_RAISES(object("one_more"), "too many classes");
    EXPECT_RAISES(register_class_function("one_more", "f", one), "too many classes");
    test::Returning returning;
    EXPECT_EQ(object("one_more").getclassid(), 32);
    register_class_function("one_more", "f", forty_two);
    EXPECT_TRUE(is_class_function(kn_class_name(32), "f")) << "the last class stands in";
    EXPECT_EQ(returning.errors(), (std::vector<std::string>{"too many classes", "too many classes"}));
    EXPECT_SAME(call_class_function("f", last), Mm(42.0));
}

} // namespace
