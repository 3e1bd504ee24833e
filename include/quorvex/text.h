// Functions of the language on character values, and the conversions between numbers and text.
#ifndef QUORVEX_TEXT_H
#define QUORVEX_TEXT_H

#include "quorvex/counts.h"

// Its inputs stacked as rows of one character matrix, padded with blanks on the right. An empty input adds no
// row; a matrix adds all its rows; a cell the rows of each element; numbers count as character codes.
QUORVEX_API Mm strvcat(const Mm &a);
QUORVEX_API Mm strvcat(const Mm &a, const Mm &b);
QUORVEX_API Mm strvcat(const Mm &a, const Mm &b, const Mm &c);
QUORVEX_API Mm strvcat(const Mm &a, const Mm &b, const Mm &c, const Mm &d);

// The numbers in a text: blanks separate, newline and ";" begin a row, "1+2i" is complex. Bad words are 0. No
// evaluation. "str2num: input is not a string" for anything but text.
QUORVEX_API Mm str2num(const Mm &s);

QUORVEX_API Mm setstr(const Mm &m); // a copy with the string flag set

// Without the trailing blanks (and other white space and NULs) that all rows have; of a cell, each element.
// "deblank: input is not a string" for numbers.
QUORVEX_API Mm deblank(const Mm &s);

#define QUORVEX_TEXT_COUNTS(ROW)                            \
    ROW(strvcat, "texts as rows of one matrix", 1, 2, 3, 4) \
    ROW(str2num, "numbers in a text", 1)                    \
    ROW(setstr, "character codes as text", 1)               \
    ROW(deblank, "text without trailing blanks", 1)
QUORVEX_TEXT_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
