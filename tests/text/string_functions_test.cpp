// The string family: comparisons, searches, parts, joins and letters, of rows, matrices and cells.
#include <array>

#include "support/support.h"
#include "text/text_of.h"

using namespace test;

namespace {

Mm T(const char *s) { return TM(s); }
Mm texts(const std::vector<const char *> &list) {
    std::vector<Mm> all;
    for (const char *s : list) all.push_back(TM(s));
    return cell_of(1, static_cast<int>(all.size()), all);
}
Mm bits(const std::vector<double> &x) { return logical_of(row(x)); }

TEST(StringFunctions, comparisons) {
    const Mm two = strvcat(T("ab"), T("c"));
    const std::array<Mm, 5> cases[] = {
        // two; whether all is the same; folded; 2 characters folded
        {T("abc"), T("ABd"), bits({0}), bits({0}), bits({1})},
        {T("a"), row({97}), bits({0}), bits({0}), bits({0})},
        {setstr(U8({{97, 98}})), T("ab"), bits({1}), bits({1}), bits({1})},
        {texts({"ab", "AB", "abc"}), T("ab"), bits({1, 0, 0}), bits({1, 1, 0}), bits({1, 1, 1})},
        {T("ab"), cell_of(1, 2, {1.0, T("ab")}), bits({0, 1}), bits({0, 1}), bits({0, 1})},
        {two, texts({"ab", "c"}), bits({1, 1}), bits({1, 1}), bits({1, 0})},
        {texts({"a", "b"}), texts({"a", "B"}), bits({1, 0}), bits({1, 1}), bits({0, 0})},
    };
    for (const auto &[a, b, whole, folded, beginning] : cases) {
        EXPECT_SAME(strcmp(a, b), whole);
        EXPECT_SAME(strcmp(b, a), whole);
        EXPECT_SAME(strcmpi(a, b), folded);
        EXPECT_SAME(strncmpi(a, b, 2.0), beginning);
    }
    EXPECT_RAISES(strcmp(texts({"a", "b"}), texts({"a", "b", "c"})),
                  "strcmp: cell arrays must be of same size");
}

TEST(StringFunctions, searches) {
    EXPECT_SAME(findstr(T("abc"), T("")), Mm());

    const Mm rows = strvcat(T("max"), T("maximum"), T("min"));
    EXPECT_SAME(strmatch(T("max"), rows), col({1, 2}));
    EXPECT_SAME(strmatch(T("max"), texts({"min", "maxi", "max "}), T("exact")), Mm(3.0));
    EXPECT_SAME(strmatch(setstr(row({1.5, 300})), setstr(M({{1, 300}, {1.5, 300}})), T("exact")), Mm(2.0));
    EXPECT_RAISES(strmatch(T("max"), rows, T("other")), "strmatch: third input must be 'exact'");
}

TEST(StringFunctions, replacement) {
    EXPECT_SAME(strrep(texts({"this is", "that"}), T("th"), texts({"T"})), texts({"Tis is", "Tat"}));
    // Against a search for occurrences one by one, which may overlap.
    std::mt19937 random(5);
    auto word = [&](unsigned longest) {
        std::string s(random() % (longest + 1), 'a');
        for (char &c : s) c = static_cast<char>('a' + random() % 2);
        return s;
    };
    for (int k = 0; k < 3000; ++k) {
        const std::string s = word(25), old = word(4), now = word(3);
        std::string wanted;
        std::vector<double> at;
        for (size_t c = 0, covered = 0; c < s.size(); ++c) {
            if (!old.empty() && s.compare(c, old.size(), old) == 0) {
                wanted += now, covered = c + old.size();
                at.push_back(static_cast<double>(c + 1));
            }
            if (c >= covered) wanted += s[c];
        }
        ASSERT_SAME(strrep(TM(s.c_str()), TM(old.c_str()), TM(now.c_str())), TM(wanted.c_str()))
            << s << "," << old << "," << now;
        if (old.size() > s.size()) continue;
        ASSERT_SAME(findstr(TM(s.c_str()), TM(old.c_str())), at.empty() ? Mm() : row(at));
    }
}

TEST(StringFunctions, tokens) {
    for (auto [text, delimiters, wanted, remainder] :
         {std::array{"  one two ", "", "one", " two "}, {"a,b;c", ";,", "a", ",b;c"}, {" \t", "", "", ""}}) {
        Mm s = TM(text), token;
        *delimiters ? strtok(s, TM(delimiters), i_o, token, s) : strtok(s, i_o, token, s);
        EXPECT_SAME(token, TM(wanted));
        EXPECT_SAME(s, TM(remainder));
    }
    EXPECT_SAME(strtok(T("abc"), T("")), T("abc"));
    EXPECT_RAISES(strtok(5.0), "strtok: input is not a string");
}

TEST(StringFunctions, joins) {
    const Mm two = strvcat(T("a"), T("bcd"));
    EXPECT_SAME(strcat(T("a "), T(" b"), T("c  "), T(""), row({100})), T("a bcd"));
    EXPECT_EQ(text_of(strcat(two, T("!"))), "a!  \nbcd!");
    EXPECT_SAME(strcat(texts({"a ", "b"}), T("- "), texts({"1"})), texts({"a -1", "b-1"}));
    EXPECT_RAISES(strcat(two, strvcat(T("a"), T("b"), T("c"))), "strcat: # of rows different");
    EXPECT_EQ(text_of(strjust(strvcat(T(" a"), T("bcde")), T("center"))), " a  \nbcde");
    EXPECT_RAISES(strjust(two, T("up")), "strjust: unknown side");
}

TEST(StringFunctions, letters) {
    EXPECT_SAME(upper(T("aZ[{1\xe4")), T("AZ[{1\xe4"));
    EXPECT_SAME(lower(cell_of(1, 2, {T("Az"), cell_of(1, 1, {setstr(U8({{66}}))})})),
                cell_of(1, 2, {T("az"), cell_of(1, 1, {setstr(U8({{98}}))})}));
    EXPECT_SAME(isletter(T("aZ@[`{1")), bits({1, 1, 0, 0, 0, 0, 0}));
    EXPECT_SAME(isspace(T(" \t\r\x0e"
                          "a")),
                bits({1, 1, 1, 0, 0}));
    EXPECT_SAME(deblank(setstr(U8({{'a', ' ', 'b', ' ', 0}}))), setstr(U8({{'a', ' ', 'b'}})));
}

} // namespace
