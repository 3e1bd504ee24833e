// The field names of a structure: the list grows, shrinks and is copied without touching other holders.
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
    EXPECT_FALSE(s.isstruct());
    std::vector<std::string> wanted;
    for (int k = 0; k < 40; ++k) {
        wanted.push_back("f" + std::to_string(k));
        ASSERT_EQ(s.addfield(wanted.back().c_str(), k % 2), k);
        ASSERT_EQ(names(s), wanted);
    }
    for (int k = 0; k < 40; ++k) EXPECT_EQ(s.findfield(wanted[k].c_str(), 1), k);
    EXPECT_EQ(s.addfield("f7", 0), 7) << "there already";
    EXPECT_EQ(s.addfield("f7", 1), 40) << "not looked for";
}

TEST(Fields, what_is_not_there_is_reported) {
    Mm s = named("s", struct_of({{"a", 1.0}})), x = named("x", M({{1, 2}}));
    EXPECT_EQ(s.findfield("A", 0), -1);
    EXPECT_STREQ(s.getfield(0), "a");
    EXPECT_RAISES(s.findfield("b", 1), "s.b: structure field does not exist");
    EXPECT_RAISES(x.findfield("b", 1), "x.b: not a structure");
    EXPECT_RAISES(x.addfield("a", 0), "x.a: not a structure");
    EXPECT_RAISES(s.getfield(1), "getfield: index=1 out of range [0..1)");
    test::Returning errors;
    EXPECT_STREQ(s.getfield(-1), "");
    EXPECT_EQ(s.rmfield("b"), -1);
    EXPECT_EQ(x.addfield("a", 1), -1);
    EXPECT_EQ(errors.errors().size(), 3u);
    x.extend_nfields(4);
    EXPECT_SAME(x, M({{1, 2}}));
}

TEST(Fields, removal_closes_the_gap_and_leaves_a_free_slot) {
    Mm s = bare();
    for (const char *f : {"a", "b", "c", "d", "e", "f", "g", "h"}) s.addfield(f, 0); // a full list
    EXPECT_EQ(s.rmfield("c"), 2);
    EXPECT_EQ(s.rmfield("h"), 6);
    EXPECT_EQ(names(s), (std::vector<std::string>{"a", "b", "d", "e", "f", "g"}));
    for (int k = 6; const char *f : {"x", "y", "z"}) EXPECT_EQ(s.addfield(f, 0), k++);
    for (const char *f : {"a", "b", "d", "e", "f", "g", "x", "y", "z"}) EXPECT_EQ(s.rmfield(f), 0);
    EXPECT_TRUE(s.isstruct()) << "without fields, but a structure";
    EXPECT_EQ(s.addfield("again", 0), 0);
}

TEST(Fields, other_holders_keep_their_list) {
    Mm s = struct_of({{"a", 1.0}, {"b", 2.0}}), other = s;
    s.addfield("c", 0);
    EXPECT_EQ(names(other), (std::vector<std::string>{"a", "b"}));
    other.rmfield("a");
    EXPECT_EQ(names(s), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(names(other), (std::vector<std::string>{"b"}));
    Mm third = s;
    EXPECT_EQ(third.addfield("a", 0), 0);
    EXPECT_EQ(s.getfields(), third.getfields()) << "finding a name changes nothing";
    third.extend_nfields(100);
    EXPECT_EQ(names(s), names(third));
    EXPECT_NE(s.getfields(), third.getfields());
}

} // namespace
