// Bridges between character values and plain strings, stacking of rows, and numbers read from text.
#include <cmath>

#include "support/support.h"
#include "text/text_of.h"

using namespace test;

namespace {

std::string flattened(const Mm &m, int size) {
    char buf[64];
    std::fill(buf, buf + sizeof buf, '#');
    Mstr(m, buf, size);
    EXPECT_EQ(buf[size], '#') << "writes within its size";
    return buf;
}

TEST(Strings, TM_makes_one_double_for_each_byte) { EXPECT_SAME(TM("a\xe9"), setstr(row({97, 233}))); }

TEST(Strings, Mstr_joins_rows_by_newlines) {
    Mm two = strvcat(TM("abc"), TM("d"));
    EXPECT_EQ(Mstr_size(two), 8);
    EXPECT_EQ(flattened(two, 8), "abc\nd  ");
    EXPECT_EQ(flattened(row({65.7, 66 + 256, -1}), 10), "AB\xff");
    EXPECT_EQ(flattened(test::sparse_of(1, 3, {{0, 72}, {2, 105}}), 10), std::string("H"));
    char buf[16];
    Mstr_row(two, buf, sizeof buf);
    EXPECT_STREQ(buf, "adb c ");
}

TEST(Strings, Mstr_leaves_an_empty_string_when_the_buffer_is_small) {
    test::Warnings warnings;
    EXPECT_EQ(flattened(strvcat(TM("abc"), TM("d")), 7), "");
    EXPECT_EQ(warnings.texts(), std::vector<std::string>{"Mstr: buffer too small - chopped"});
    char guard = '#';
    Mstr(TM("abc"), &guard, 0);
    EXPECT_EQ(guard, '#');
    EXPECT_RAISES(Mstr(cell_of(1, 1, {1.0}), &guard, 1), "Can not convert (temporary) into a numeric matrix");
}

TEST(Strvcat, rows_are_padded_to_the_widest) {
    EXPECT_EQ(text_of(strvcat(TM("a"), TM(""), TM("bcd"), strvcat(TM("ef"), TM("g")))), "a  \nbcd\nef \ng  ");
    Mm nested = cell_of(1, 3, {TM("x"), cell_of(1, 2, {TM("yy"), Mm()}), row({72, 105, 33})});
    EXPECT_EQ(text_of(strvcat(nested, U8({{65}}))), "x  \nyy \nHi!\nA  ");
    EXPECT_RAISES(strvcat(TM("a"), test::struct_of({{"f", 1.0}})),
                  "Can not convert (temporary) into a numerical matrix");
}

TEST(Str2num, shapes) {
    EXPECT_SAME(str2num(TM(";;\t1;\n;2 3 ,4]")), M({{1, 0, 0}, {2, 3, 4}}));
    EXPECT_SAME(str2num(strvcat(TM("1 2"), TM("3"))), M({{1, 2}, {3, 0}}));
    EXPECT_RAISES(str2num(1.0), "str2num: input is not a string");
}

TEST(Str2num, words) {
    EXPECT_SAME(str2num(TM("Inf -inf NaN -nan abc 1e999")),
                row({HUGE_VAL, -HUGE_VAL, NAN, NAN, 0, HUGE_VAL}));
    EXPECT_SAME(str2num(TM("1- 5 +7 .5 1e2x")), row({1, 7, .5, 100}));
}

TEST(Str2num, complex_numbers) {
    EXPECT_SAME(str2num(TM("-i")), C(0, -1));
    for (const char *s : {"1 + 2i", "1+2i", "1+ 2i"}) EXPECT_SAME(str2num(TM(s)), C(1, 2)) << s;
    EXPECT_SAME(str2num(TM("1 +2i")), test::complex_of(row({1, 0}), row({0, 2})));
    EXPECT_SAME(str2num(TM("i 1+2")), test::complex_of(row({0, 1}), row({1, 2})));
}

} // namespace
