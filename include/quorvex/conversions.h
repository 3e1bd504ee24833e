// Conversions between numbers and their text. num2str stands in display.h, str2num and setstr in text.h.
//
// A bad digit counts as 0 and is not reported. "%s: numeric data expected, but matrix %s is not" for cells
// and structures where numbers or one text are asked for.
#ifndef QUORVEX_CONVERSIONS_H
#define QUORVEX_CONVERSIONS_H

#include "quorvex/counts.h"
#include "quorvex/text.h"

// num2str(round(m)): halves away from zero, 4 significant digits.
QUORVEX_API Mm int2str(const Mm &m);

// A matrix as the row of text that str2num reads, "[ 1 2; 3 4]", with `digits` (default 15) significant
// digits: a blank before each number, no brackets around a single one, "[]" for an empty value. Text counts
// as its codes; pages stand side by side.
QUORVEX_API Mm mat2str(const Mm &m);
QUORVEX_API Mm mat2str(const Mm &m, const Mm &digits);

// str2num, but NaN for empty text; of a cell, each element in its place ("str2double: element %d of %s is not
// one number" for one of several).
QUORVEX_API Mm str2double(const Mm &s);

// The number in base b (default 16; 2; 16) that each row of a text stands for, as a column. Letters of either
// case are the digits above 9; all else, a blank too, counts 0; digits aren't checked against b.
QUORVEX_API Mm base2dec(const Mm &s);
QUORVEX_API Mm base2dec(const Mm &s, const Mm &b);
QUORVEX_API Mm bin2dec(const Mm &s);
QUORVEX_API Mm hex2dec(const Mm &s);

// The digits of numbers in base b (default 16; 2; 16), a row for each element, all of the width of the
// largest: the smallest whole number not below log10(largest + 1) / log10(b) as it is computed, at least 1,
// and at least `len` (zeros in front). Empty input gives empty text. b and len are rounded, negative ones
// count 0. "dec2base: base must be 2 or more", "dec2base: numbers must be finite".
QUORVEX_API Mm dec2base(const Mm &d);
QUORVEX_API Mm dec2base(const Mm &d, const Mm &b);
QUORVEX_API Mm dec2base(const Mm &d, const Mm &b, const Mm &len);
QUORVEX_API Mm dec2bin(const Mm &d);
QUORVEX_API Mm dec2bin(const Mm &d, const Mm &len);
QUORVEX_API Mm dec2hex(const Mm &d);
QUORVEX_API Mm dec2hex(const Mm &d, const Mm &len);

// The double whose 8 bytes, from the most significant one, are the pairs of hexadecimal digits; a text of
// fewer than 16 digits is filled with zeros on the right, what is behind them is not looked at.
QUORVEX_API Mm hex2num(const Mm &s);

// Texts as rows of one matrix, through strvcat; mchar is the language's `char`. One text comes back, one
// array of numbers as text; a cell stands for its elements.
QUORVEX_LISTS_OF_TEXTS(str2mat)
QUORVEX_LISTS_OF_TEXTS(mchar)

#define QUORVEX_CONVERSION_COUNTS(ROW)                               \
    ROW(int2str, "rounded numbers as text", 1)                       \
    ROW(mat2str, "a matrix as text that str2num reads", 1, 2)        \
    ROW(str2double, "the number in a text, or in each of a cell", 1) \
    ROW(base2dec, "digits in a base to numbers", 1, 2)               \
    ROW(bin2dec, "binary digits to numbers", 1)                      \
    ROW(hex2dec, "hexadecimal digits to numbers", 1)                 \
    ROW(dec2base, "numbers to digits in a base", 1, 2, 3)            \
    ROW(dec2bin, "numbers to binary digits", 1, 2)                   \
    ROW(dec2hex, "numbers to hexadecimal digits", 1, 2)              \
    ROW(hex2num, "hexadecimal digits of a double to the number", 1)  \
    ROW(str2mat, "texts as rows of one matrix", 1, 2, 3, 4, 5, 6)    \
    ROW(mchar, "texts as rows of one matrix", 1, 2, 3, 4, 5, 6)
QUORVEX_CONVERSION_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
