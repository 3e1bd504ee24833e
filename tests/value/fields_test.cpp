// The field names of a structure: the list grows and shrinks.
#include <string>
#include <vector>

#include "support/support.h"

using namespace test;

namespace {

Mm bare() { return Mm(0, 0, 0, 1, 1, kn_Mm); }

// What a reader sees that follows the list to its null: names, then free slots.
std::vector<std::string> names(const Mm &s) {
    std::vector<std::string> found;
    for (const char **f = s.getfields(); f && *f; ++f) found.push_back(*f);
    EXPECT_GE(static_cast<int>(found.size()), s.getnfields());
    found.resize(static_cast<size_t>(s.getnfields()));
    return found;
}

TEST(Fields, names_survive_growth) {
    Mm s = bare();
    std::vector<std::string> wanted;
    for (int k = 0; k < 40; ++k) {
        wanted.push_back("f" + std::to_string(k));
        ASSERT_EQ(s.addfield(wanted.back().c_str(), k % 2), k);
        ASSERT_EQ(names(s), wanted);
    }
    EXPECT_EQ(s.addfield("f7", 0), 7) << "there already";
    EXPECT_EQ(s.addfield("f7", 1), 40) << "not looked for";
}

TEST(Fields, what_is_not_there_is_reported) {
    Mm s = named("s", struct_of({{"a", 1.0}})), x = named("x", M({{1, 2}}));
    EXPECT_EQ(s.findfield("A", 0), -1);
    EXPECT_RAISES(s.getfield(1), "getfield: index=1 out of range [0..1)");
    test::Returning errors;
    EXPECT_STREQ(s.getfield(-1), "");
    EXPECT_EQ(s.rmfield("b"), -1);
    EXPECT_EQ(x.addfield("a", 1), -1);
    x.extend_nfields(4);
    EXPECT_EQ(errors.errors().size(), 4u);
}

TEST(Fields, removal_closes_the_gap_and_leaves_a_free_slot) {
    Mm s = bare();
    for (const char *f : {"a", "b", "c", "d", "e", "f", "g", "h"}) s.addfield(f, 0); // a full list
    EXPECT_EQ(s.rmfield("c"), 2);
    EXPECT_EQ(s.rmfield("h"), 6);
    EXPECT_EQ(s.addfield("x", 0), 6);
    EXPECT_EQ(names(s), (std::vector<std::string>{"a", "b", "d", "e", "f", "g", "x"}));
    for (const std::string &f : names(s)) EXPECT_EQ(s.rmfield(f.c_str()), 0);
    EXPECT_TRUE(s.isstruct()) << "without fields, but a structure";
}

} // namespace
