// The numeric text engine: fields against a plain printf model, widths, spellings, and the shapes of num2str.
#include <climits>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "support/support.h"
#include "text/number_text.h"
#include "text/text_of.h"

using namespace test;

namespace {

std::string g(double x, int precision, int width = 0) {
    int n = std::snprintf(nullptr, 0, "%*.*g", width, precision, x);
    std::string text(static_cast<size_t>(n) + 1, ' ');
    std::snprintf(text.data(), text.size(), "%*.*g", width, precision, x);
    text.pop_back();
    for (auto [from, to] : {std::pair{"-nan", " NaN"}, {"nan", "NaN"}, {"inf", "Inf"}})
        if (size_t at = text.find(from); at != text.npos) text.replace(at, std::string(from).size(), to);
    return text;
}

// Rows of a full double matrix, joined by newlines.
std::string model(const Mm &m, int precision) {
    size_t w_re = 0, w_im = 0;
    bool complex = false;
    for (int k = 0; k < m.getnnz(); ++k) {
        w_re = std::max(w_re, g(m.addr()[k], precision).size());
        if (!m.isc()) continue;
        w_im = std::max(w_im, g(m.addi()[k], precision).size());
        complex = complex || m.addi()[k] != 0;
    }
    std::string text;
    for (int r = 1; r <= m.rows(); ++r) {
        if (r > 1) text += '\n';
        for (int c = 1; c <= m.cols(); ++c) {
            text += g(*m.addr(r, c), precision, static_cast<int>(w_re) + 2);
            if (!complex) continue;
            double im = *m.addi(r, c);
            std::string part =
                (im > 0 ? " +" : " -") + g(std::fabs(im), precision, static_cast<int>(w_im)) + "i";
            text += im == 0 ? std::string(part.size(), ' ') : part;
        }
    }
    return text;
}

TEST(NumberText, fields_equal_a_printf_model) {
    test::Random random(31);
    for (int round = 0; round < 400; ++round) {
        static const int precisions[] = {0, 1, 2, 4, 6, 12, 15, 16, 17, 18, 40, 320};
        int p = precisions[random.below(12)];
        Mm m = random.matrix(1 + random.below(4), 1 + random.below(4), random.below(2));
        std::string wanted = model(m, p);
        EXPECT_EQ(text_of(num2str(m, p)), wanted) << "precision " << p;
    }
}

TEST(NumberText, any_precision_prints_what_printf_prints) {
    static const double numbers[] = {5e-324,
                                     2.2250738585072009e-308,
                                     -1.7976931348623157e308,
                                     1e16,
                                     123456.,
                                     0.0001,
                                     0.00012345678901234567,
                                     -99999.5,
                                     0.1,
                                     0.};
    for (int p : {INT_MIN, -1, 0, 1, 4, 5, 6, 17, 300, 770, 1000, 1100}) {
        for (double x : numbers) {
            std::string wanted = g(x, p);
            char text[kn::Digits::room];
            ASSERT_LT(wanted.size(), sizeof text);
            EXPECT_EQ(std::string(text, kn::Digits(p).write(text, x)), wanted) << "precision " << p;
        }
    }
    EXPECT_EQ(num2str(0.1, HUGE_VAL).cols(), 57 + 2) << "the precision saturates, the digits end";
    EXPECT_EQ(text_of(num2str(M_PI, U8({{3}}))), "  3.14");
    EXPECT_RAISES(num2str(1.0, cell_of(1, 1, {3.0})), ".r / .i : wrong matrix type");
}

TEST(NumberText, fields_follow_the_widest_number) {
    EXPECT_EQ(text_of(num2str(M({{1, 1000000}}))), "1  1e+06");
    EXPECT_EQ(text_of(num2str(U8({{5, 200}, {7, 8}}))), "5 200\n7   8");
    EXPECT_EQ(text_of(num2str(U8({{200, 255}, {7, 8}}), 2.0)), "2e+022.6e+02\n   7   8    ");
}

TEST(NumberText, complex_fields) {
    EXPECT_EQ(text_of(num2str(test::complex_of(row({1, 3}), row({2, 0})))), "1 +2i  3    ");
    EXPECT_EQ(text_of(num2str(C(0, NAN))), "0 -NaNi");
    Mm bytes = U8({{7, 8}});
    bytes.getcomplex();
    EXPECT_EQ(text_of(num2str(C(7, 0))), "7") << "an imaginary plane of zeros is real";
    EXPECT_EQ(text_of(num2str(bytes)), "7   8");
}

TEST(NumberText, sparse_lines_and_widths) {
    Mm text, width;
    num2str(sparse_of(3, 4, {}), i_o, text, width);
    EXPECT_EQ(text_of(text), "All zeros sparse");
    EXPECT_EQ(width.r(), 0);
    num2str(sparse_of(100, 100, {{201, 7.5}}), i_o, text, width);
    EXPECT_EQ(text_of(text), "(  2,  3)   7.5");
    EXPECT_EQ(width.r(), 15);
    num2str(row({1, 22, 333}), i_o, text, width);
    EXPECT_EQ(text_of(text), "    1   22  333");
    EXPECT_EQ(width.r(), 5) << "the first field";
    EXPECT_EQ(text_of(num2str(sparse_of(1, 10, {{0, 1}, {9, -2}}))), "( 1)    1\n(10)   -2");
    EXPECT_EQ(text_of(num2str(sparse_of(1, 1, {{0, 3}}))), "(1)   3") << "a scalar is a vector";
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
    EXPECT_SAME(num2str(TM("   ")), TM(""));
    EXPECT_SAME(num2str(setstr(row({32, 65, 0, 66}))), TM("AB"));
    EXPECT_SAME(num2str(setstr(M({{65, 0}, {66, 67}}))), TM("ABC")) << "a row, in storage order";
    EXPECT_EQ(text_of(num2str(setstr(U8({{32, 65}})))), "A");
    EXPECT_EQ(text_of(num2str(TM("  x"), 5.0)), "  x") << "kept with a precision";
}

TEST(NumberText, numbers_survive_text) {
    test::Random random(5);
    for (int round = 0; round < 200; ++round) {
        Mm m = random.matrix(1 + random.below(3), 1 + random.below(3));
        EXPECT_SAME(str2num(num2str(m, 17.0)), m);
    }
}

} // namespace
