// The numeric text engine: fields, widths, spellings, and the shapes of num2str.
#include <cmath>

#include "support/support.h"
#include "text/number_text.h"
#include "text/text_of.h"

using namespace test;

namespace {

TEST(NumberText, precisions) {
    EXPECT_EQ(num2str(0.1, HUGE_VAL).cols(), 57 + 2) << "the precision saturates, the digits end";
    EXPECT_RAISES(num2str(1.0, cell_of(1, 1, {3.0})), ".r / .i : wrong matrix type");
}

TEST(NumberText, fields_follow_the_widest_number) {
    EXPECT_EQ(text_of(num2str(M({{1, -22.5}, {NAN, 1e6}, {-INFINITY, -0.0}}))),
              "   1  -22.5\n NaN  1e+06\n-Inf     -0");
    EXPECT_EQ(text_of(num2str(row({M_PI, 1e-5}), 12.0)), "  3.14159265359          1e-05");
    EXPECT_EQ(text_of(num2str(complex_of(col({1, 22}), col({-0.5, 100})))), " 1 - 0.5i\n22 + 100i");
    EXPECT_EQ(text_of(num2str(U8({{200, 255}, {7, 8}}), 2.0)), "2e+022.6e+02\n   7   8    ");
}

TEST(NumberText, complex_fields) {
    EXPECT_EQ(text_of(num2str(test::complex_of(row({1, 3}), row({2, 0})))), "1 +2i  3    ");
    EXPECT_EQ(text_of(num2str(C(0, NAN))), "0 -NaNi");
    EXPECT_EQ(text_of(num2str(C(7, 0))), "7") << "an imaginary plane of zeros is real";
}

TEST(NumberText, sparse_lines_and_widths) {
    Mm text, width;
    num2str(sparse_of(3, 4, {}), i_o, text, width);
    EXPECT_EQ(text_of(text), "All zeros sparse");
    EXPECT_EQ(width.r(), 0);
    num2str(sparse_of(100, 100, {{201, 7.5}}), i_o, text, width);
    EXPECT_EQ(text_of(text), "(  2,  3)   7.5");
    EXPECT_EQ(width.r(), 15);
    EXPECT_EQ(text_of(num2str(sparse_of(1, 10, {{0, 1}, {9, -2}}))), "( 1)    1\n(10)   -2");
}

TEST(NumberText, values_without_numbers) {
    Mm text, width;
    num2str(Mm(i_o, "x", 0), i_o, text, width);
    EXPECT_EQ(text_of(text), "(this variable has no value)");
    EXPECT_EQ(width.r(), 28);
    for (const Mm &m : {Mm(), sparse_of(0, 0, {}), U8({})}) EXPECT_EQ(text_of(num2str(m)), "[]");
    EXPECT_EQ(text_of(num2str(TM(""))), "''");
    EXPECT_RAISES(num2str(Mm(cell_of(1, 1, {1.0}), "c")), "Can not convert c into a numerical matrix");
}

TEST(NumberText, text_loses_leading_blanks_and_null_characters) {
    EXPECT_EQ(text_of(num2str(strvcat(TM("  ab "), TM(" c")))), " ab \nc   ");
    EXPECT_SAME(num2str(setstr(row({32, 65, 0, 66}))), TM("AB"));
    EXPECT_SAME(num2str(setstr(M({{65, 0}, {66, 67}}))), TM("ABC")) << "a row, in storage order";
    EXPECT_EQ(text_of(num2str(TM("  x"), 5.0)), "  x") << "kept with a precision";
}

} // namespace
