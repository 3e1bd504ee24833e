// The table of classes at its limits, and calls through it. Classes stay for good, so the case that fills the
// table runs last.

#include <string>

#include "support/support.h"

using test::M;

namespace {

Mm one(Mm a) { return a; }
Mm second_of_two(Mm, Mm b) { return b; }
Mm third_of_three(Mm, Mm, Mm c) { return c; }
Mm with_outputs(Mm, Mm, i_o_t, Mm &, Mm &) { return x_M; }
Mm forty_two(Mm) { return 42; }

Mm object(const char *cls) { return mclass(test::struct_of({{"f", 1.0}}), TM(cls)); }

TEST(ClassRegistry, methods_by_class_name_and_count) {
    Mm a = object("account");
    EXPECT_SAME(mclass(a), TM("account"));
    EXPECT_TRUE(isa(a, TM("account")) && isa(sparse(1), TM("sparse")) && !isa(1, TM("sparse")));
    register_class_function("account", "plus", one);
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
    EXPECT_RAISES(mdouble(a), "class account has no method named double");
    register_class_function("account", "double", forty_two);
    EXPECT_SAME(mdouble(a), Mm(42.0));
    unregister_class_function("account", "plus");
    EXPECT_FALSE(is_class_function("account", "plus"));
    for (const char *name : {"account", "bank"})
        EXPECT_RAISES(unregister_class_function(name, "plus"),
                      "del: no function plus in class " + std::string(name));
    for (int id : {0, 33}) EXPECT_RAISES(kn_class_name(id), "[]:wrong classid");
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
    for (int k = 0; k < 32 && last.getclassid() < 32; k++) last = object(std::to_string(k).c_str());
    test::Returning returning;
    EXPECT_EQ(object("one_more").getclassid(), 32);
    register_class_function("one_more", "f", forty_two);
    EXPECT_TRUE(is_class_function(kn_class_name(32), "f")) << "the last class stands in";
    EXPECT_EQ(returning.errors(), (std::vector<std::string>{"too many classes", "too many classes"}));
    EXPECT_SAME(call_class_function("f", last), Mm(42.0));
}

} // namespace
