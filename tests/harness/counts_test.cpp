// Every function, called by name with every count of inputs that it doesn't take; overloads that report;
// forms that give no value.
#include "support/functions.h"
#include "support/support.h"

namespace {

TEST(Counts, a_wrong_count_is_reported_under_the_language_s_name) {
    Mm value;
    Mm *const out[] = {&value};
    int wrong = 0;
    for (const test::Function &f : test::functions()) {
        if (f.form || f.about.list >= 0) continue;
        ++wrong;
        const int told = std::string(f.about.name) == "fseek" && f.count == 2 ? 1 : f.count;
        const Mm inputs = cell(1.0, f.count);
        EXPECT_RAISES(kn_call_function(f.about.name, inputs, 1, out),
                      std::string(f.about.word) + " does not accept " + std::to_string(told) + " input" +
                          (told == 1 ? "" : "s"));
    }
    EXPECT_GT(wrong, 500) << "the rows are all there";
    EXPECT_RAISES(randM(1, 2, 3, 4, 5, 6), "rand does not accept 6 inputs");
    EXPECT_RAISES(fcnchk(1.0), "fcnchk does not accept 1 input");
    test::Returning errors;
    EXPECT_SAME(max(1, 2, 3, 4), Mm(0.0));
    EXPECT_EQ(errors.errors(), std::vector<std::string>{"max does not accept 4 inputs"});
}

TEST(Counts, a_form_without_output_gives_no_value) {
    test::Unattended unattended;
    const std::vector<Mm> inputs(kn::max_inputs, 0.0);
    for (const test::Function &f : test::functions())
        if (f.form && f.outputs == 0)
            test::printed([&] {
                test::raised([&] {
                    const Mm value = f.call(inputs.data());
                    EXPECT_TRUE(!kn_has_value(value) || value.size() == 0) << f.title(); // smiley gives []
                });
            });
}

} // namespace
