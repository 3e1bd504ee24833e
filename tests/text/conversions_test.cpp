// Numbers from text and text from numbers: words, shapes, bases, and the way there and back.
#include <bit>
#include <cmath>

#include "support/support.h"
#include "text/text_of.h"

using namespace test;

namespace {

TEST(Conversions, numbers_as_text) {
    EXPECT_EQ(text_of(int2str(row({2.5, -2.5, 3}))), "3  -3   3");
    EXPECT_EQ(text_of(mat2str(pi, 4.0)), " 3.142");
    EXPECT_EQ(text_of(mat2str(col({.1, -NAN}), U8({{3}}))), "[ 0.1;  NaN]");
    EXPECT_EQ(text_of(mat2str(test::complex_of(row({1, 30}), row({2, 0})))), "[ 1 + 2i 30     ]");
    EXPECT_RAISES(mat2str(cell_of(1, 1, {1.0})), "Can not convert (temporary) into a numeric matrix");
    Random random(33);
    for (int k = 0; k < 50; ++k) {
        const Mm m = random.matrix(3, 4);
        EXPECT_SAME(str2num(mat2str(m, 17.0)), m);
    }
}

TEST(Conversions, random_doubles_come_back_from_their_text) {
    for (int repeat = 0; repeat < 1000; ++repeat) { // of all exponents
        const Mm mantissas = randM(1, 1000) + randM(1, 1000) * 0x1p-30 - 0.5,
                 x = times(mantissas, power(2.0, floor(randM(1, 1000) * 2098) - 1074));
        ASSERT_SAME(str2num(sprintf(TM("%.17g "), x)), x);
    }
}

TEST(Conversions, str2double) {
    EXPECT_SAME(str2double(cell_of(2, 2, {TM("1"), TM(""), TM("2-i"), cell_of(1, 1, {TM("4")})})),
                test::complex_of(M({{1, 2}, {NAN, 4}}), M({{0, -1}, {0, 0}})));
    EXPECT_RAISES(str2double(cell_of(1, 1, {TM("1 2")})),
                  "str2double: element 1 of (temporary) is not one number");
    EXPECT_RAISES(str2double(5.0), "str2num: input is not a string");
}

TEST(Conversions, bases) {
    EXPECT_SAME(hex2dec(strvcat(TM("FF"), TM("1f"), TM("-!3"))), col({4080, 496, 3}));
    EXPECT_EQ(text_of(dec2hex(col({std::ldexp(1, 64), 1e22}))), "0010000000000000000\n21E19E0C9BAB2400000");
    for (double base : std::initializer_list<double>{0.0, 1.4, -16.0, NAN})
        EXPECT_RAISES(dec2base(3.0, base), "dec2base: base must be 2 or more");
    for (double x : std::initializer_list<double>{NAN, HUGE_VAL})
        EXPECT_RAISES(dec2base(x), "dec2base: numbers must be finite");
    EXPECT_RAISES(dec2base(row({1, 2}), 2.0, HUGE_VAL), "Out of memory!");

    for (int base = 2; base <= 36; ++base) {
        const Mm x = floor(power(randM(20, 1), 4.0) * 0x1p32); // small and large ones
        EXPECT_SAME(base2dec(lower(dec2base(x, base, 40.0)), base), x);
    }
}

TEST(Conversions, hexadecimal_doubles) {
    for (auto [text, bits] : {std::pair{"3ff8", 0x3ff8000000000000},
                              {"c05EDD2F1A9FBE77", static_cast<long>(0xc05edd2f1a9fbe77)},
                              {"zz40 84z", 0x0040080400000000}})
        EXPECT_EQ(std::bit_cast<long>(scalar(hex2num(TM(text)))), bits) << text;
    EXPECT_SAME(hex2num(strvcat(TM("400"), TM("8"))), hex2num(TM("400\n8  ")));
}

TEST(Conversions, rows_of_text) {
    const Mm two = strvcat(TM("a"), TM("bcd"));
    EXPECT_SAME(str2mat(TM("a"), TM("bcd")), two);
    EXPECT_EQ(text_of(mchar(TM("a"), cell_of(1, 1, {cell_of(1, 1, {TM("e")})}), 102.0)), "a\ne\nf");
    EXPECT_RAISES(str2mat(struct_of({{"f", 1.0}})),
                  "str2mat: numeric data expected, but matrix (temporary) is not");
}

} // namespace
