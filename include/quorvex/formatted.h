// Formatted text: sprintf, fprintf, printf, sscanf, fscanf.
//
// A format is a sequence of pieces. A piece is a conversion with the text before it; text after the last
// conversion is a piece too. The pieces are used in order, and again from the first, until the values are
// consumed. Then text after the last conversion is still written, but neither a conversion nor the text
// before one. Backslash escapes are replaced first: \n, \r, \t; any other character after a backslash is
// kept.
//
// Conversions are those of C, d i o u x X e E f F g G c s p n, with its flags, width and precision; D, I, O
// and U are d, i, o and u. The modifiers l, h, L, H have no effect; integers have 64 bits. "%%" is a percent
// sign, but "%%d" counts as a conversion, which writes "%ld" and consumes a value. Any other "%" is text.
#ifndef QUORVEX_FORMATTED_H
#define QUORVEX_FORMATTED_H

#include "quorvex/counts.h"

// The values of a list formatted as a row of text. The list is a cell; any other input is a list of one
// value. An empty list gives the format itself, with its percent signs. The real parts of each value are
// used, in storage order.
//     c         the character with this code
//     s         all remaining elements of the value, as characters
//     d i o u x the truncated number; NaN, Inf and -Inf by name, without width and without the text before.
//               With the modifier b or B (t or T) the bytes of the double (of the float) in hexadecimal
//     e f g     the number; NaN, Inf and -Inf in the language's spelling
//     n         nothing; consumes an element
//     p         the element as an address
// "sprintf: field width %s is too large", "sprintf: precision %s is too large" (above a million), "Can not
// convert %s into a numeric matrix" for a cell among the values.
QUORVEX_API Mm sprintf(const Mm &fmt);
QUORVEX_API Mm sprintf(const Mm &fmt, const Mm &list);

// Writes values to a file as text in the format of sprintf. For fid 1 (the default) and 2 it goes to the
// print handler, one call for each value; for 0 and below it is discarded. Without a list percent signs in
// the format are those of C.
QUORVEX_API Mm fprintf(const Mm &fmt);
QUORVEX_API Mm fprintf(const Mm &fid, const Mm &fmt);
QUORVEX_API Mm fprintf(const Mm &fid, const Mm &fmt, const Mm &list);
QUORVEX_API Mm printf(const Mm &fmt);
QUORVEX_API Mm printf(const Mm &fmt, const Mm &list);

// Reads numbers from a text or a file: all of them as a column (size Inf, the default), at most n as a column
// (size n; characters as a row), or at most m by n in column order ([m n]), with as many columns as needed.
// The result is text when the format has only conversions c and s; s gives one number for each character. A
// conversion with "*" is read but not stored. Reading ends where the input does not match the format. In a
// text every conversion except c consumes a word, up to the next blank. `count` is the number of elements
// read, `msg` is empty, `next` is 0. "scanf: size %s is not one or two elements"; "sscanf: p conversions can
// not be read from a text"; for fid the messages of fread.
QUORVEX_API Mm sscanf(const Mm &s, const Mm &fmt);
QUORVEX_API Mm sscanf(const Mm &s, const Mm &fmt, const Mm &size);
QUORVEX_API Mm sscanf(const Mm &s, const Mm &fmt, i_o_t, Mm &a, Mm &count);
QUORVEX_API Mm sscanf(const Mm &s, const Mm &fmt, i_o_t, Mm &a, Mm &count, Mm &msg);
QUORVEX_API Mm sscanf(const Mm &s, const Mm &fmt, i_o_t, Mm &a, Mm &count, Mm &msg, Mm &next);
QUORVEX_API Mm sscanf(const Mm &s, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count);
QUORVEX_API Mm sscanf(const Mm &s, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count, Mm &msg);
QUORVEX_API Mm sscanf(const Mm &s, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count, Mm &msg, Mm &next);
QUORVEX_API Mm fscanf(const Mm &fid, const Mm &fmt);
QUORVEX_API Mm fscanf(const Mm &fid, const Mm &fmt, const Mm &size);
QUORVEX_API Mm fscanf(const Mm &fid, const Mm &fmt, i_o_t, Mm &a, Mm &count);
QUORVEX_API Mm fscanf(const Mm &fid, const Mm &fmt, i_o_t, Mm &a, Mm &count, Mm &msg);
QUORVEX_API Mm fscanf(const Mm &fid, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count);
QUORVEX_API Mm fscanf(const Mm &fid, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count, Mm &msg);

#define QUORVEX_FORMATTED_COUNTS(ROW)                                                                      \
    ROW(sprintf, "values as text in a format", 1, 2_list)                                                  \
    ROW(fprintf, "writes formatted text to a file", 1_to_0, 2_to_0, 3_list_to_0)                           \
    ROW(printf, "prints formatted text", 1_to_0, 2_list_to_0)                                              \
    ROW(sscanf, "reads numbers from formatted text", 2, 3, 2_to_2, 2_to_3, 2_to_4, 3_to_2, 3_to_3, 3_to_4) \
    ROW(fscanf, "reads numbers from a formatted file", 2, 3, 2_to_2, 2_to_3, 3_to_2, 3_to_3)
QUORVEX_FORMATTED_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
