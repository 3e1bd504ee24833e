// Every function, called with every count of inputs that it doesn't take.
#include <string>
#include <vector>

#include "support/functions.h"
#include "support/support.h"

namespace {

TEST(Counts, a_wrong_count_is_reported_and_gives_zero) {
    const std::vector<Mm> inputs(6, Mm(1.0));
    int wrong = 0;
    for (const test::Function &f : test::functions()) {
        if (f.legal) continue;
        ++wrong;
        const int told = std::string(f.name) == "fseek" && f.count == 2 ? 1 : f.count;
        std::string text = std::string(f.name) + " does not accept " + std::to_string(told) + " input" +
                           (told == 1 ? "" : "s");
        EXPECT_RAISES(f.call(inputs.data()), text);
        test::Returning errors;
        EXPECT_SAME(f.call(inputs.data()), Mm(0.0));
        EXPECT_EQ(errors.errors(), std::vector<std::string>{text});
    }
    EXPECT_GT(wrong, 500) << "the rows are all there";
}

} // namespace
