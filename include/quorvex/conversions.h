// Conversions between numbers and their text. num2str is in display.h, str2num and setstr are in text.h.
//
// An invalid digit counts as 0 and is not reported. "%s: numeric data expected, but matrix %s is not" for
// cells and structures where numbers or a single text are expected.
#ifndef QUORVEX_CONVERSIONS_H
#define QUORVEX_CONVERSIONS_H

#include "quorvex/counts.h"
#include "quorvex/text.h"

// The rounded numbers of m as text, num2str(round(m)): halves away from zero, 4 significant digits.
QUORVEX_API Mm int2str(const Mm &m);

// A matrix as a row of text that str2num reads, "[ 1 2; 3 4]", with `digits` (default 15) significant digits:
// a blank before each number, no brackets around a single one, "[]" for an empty value. Text counts as its
// character codes; pages are written side by side.
QUORVEX_API Mm mat2str(const Mm &m);
QUORVEX_API Mm mat2str(const Mm &m, const Mm &digits);

// The numbers in a text, as str2num reads them, but NaN for an empty text; of a cell of texts an array of the
// same size, one number for each element ("str2double: element %d of %s is not one number").
QUORVEX_API Mm str2double(const Mm &s);

// The numbers that the rows of a text write in base b, as an m by 1 column: b is 16 by default, 2 for bin2dec
// and 16 for hex2dec. Letters of either case are the digits above 9; any other character, blanks too, is 0.
// Digits are not checked against b.
QUORVEX_API Mm base2dec(const Mm &s);
QUORVEX_API Mm base2dec(const Mm &s, const Mm &b);
QUORVEX_API Mm bin2dec(const Mm &s);
QUORVEX_API Mm hex2dec(const Mm &s);

// The digits of numbers in base b, a row of text for each element: b is 16 by default, 2 for dec2bin and 16
// for dec2hex. All rows have the width of the largest number, the smallest integer not below the computed
// log10(largest + 1) / log10(b), but at least 1 and at least `len`; zeros fill the left. Empty input gives
// empty text. b and len are rounded, negative ones count as 0. "dec2base: base must be 2 or more", "dec2base:
// numbers must be finite".
QUORVEX_API Mm dec2base(const Mm &d);
QUORVEX_API Mm dec2base(const Mm &d, const Mm &b);
QUORVEX_API Mm dec2base(const Mm &d, const Mm &b, const Mm &len);
QUORVEX_API Mm dec2bin(const Mm &d);
QUORVEX_API Mm dec2bin(const Mm &d, const Mm &len);
QUORVEX_API Mm dec2hex(const Mm &d);
QUORVEX_API Mm dec2hex(const Mm &d, const Mm &len);

// The double whose 8 bytes, most significant first, are the pairs of hexadecimal digits in a text. Missing
// digits are zeros on the right; characters after the 16th are ignored.
QUORVEX_API Mm hex2num(const Mm &s);

// A character matrix with the texts as its rows, as strvcat makes it; mchar is the language's `char`. A
// single text is returned unchanged, a single array of numbers becomes text; a cell counts as its elements.
QUORVEX_LISTS_OF_TEXTS(str2mat)
QUORVEX_LISTS_OF_TEXTS(mchar)

#define QUORVEX_CONVERSION_COUNTS(ROW)                                 \
    ROW(int2str, "rounded numbers as text", 1)                         \
    ROW(mat2str, "matrix as text that str2num reads", 1, 2)            \
    ROW(str2double, "numbers in a text, or in each text of a cell", 1) \
    ROW(base2dec, "digits in a base to numbers", 1, 2)                 \
    ROW(bin2dec, "binary digits to numbers", 1)                        \
    ROW(hex2dec, "hexadecimal digits to numbers", 1)                   \
    ROW(dec2base, "numbers to digits in a base", 1, 2, 3)              \
    ROW(dec2bin, "numbers to binary digits", 1, 2)                     \
    ROW(dec2hex, "numbers to hexadecimal digits", 1, 2)                \
    ROW(hex2num, "hexadecimal digits of a double to the number", 1)    \
    ROW(str2mat, "texts as rows of one matrix", 1, 2, 3, 4, 5, 6)      \
    ROW(mchar, "texts as rows of one matrix", 1, 2, 3, 4, 5, 6)
QUORVEX_CONVERSION_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
