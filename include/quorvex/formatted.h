// Formatted text: sprintf, fprintf, printf, sscanf, fscanf.
//
// A format is used piece by piece. A piece is a conversion with the text in front of it; text behind the last
// conversion is a piece, too. Pieces are taken in turn, and again from the first, until the values run out;
// text behind the last conversion is still written then, but no conversion is, nor the text in front of it.
// Backslashes are resolved first: \n, \r, \t, and of any other character the character itself.
//
// Conversions are those of C, d i o u x X e E f F g G c s p n, with its flags, width and precision; D, I, O
// and U are d, i, o and u. Modifiers (l, h, L, H) change nothing; whole numbers have 64 bits. "%%" is a
// percent sign, but "%%d" counts as a conversion, which writes "%ld" and uses up a value. Any other "%" is
// text.
#ifndef QUORVEX_FORMATTED_H
#define QUORVEX_FORMATTED_H

#include "quorvex/counts.h"

// The values of a list (a cell; anything else is a list of itself) as text; an empty list gives the format
// itself, with its percent signs. Of each value the real parts count, in storage order.
//     c         the character of a code
//     s         all that is left of the value as characters; the value is done with that
//     d i o u x the number truncated; NaN, Inf and -Inf as such, without width and without the text in front.
//               With the modifier b or B (t or T) the bytes of the double (of the float) as hexadecimal
//               digits
//     e f g     NaN, Inf and -Inf in the language's spelling
//     n         nothing, for a value
//     p         an address
// "sprintf: field width %s is too large", "sprintf: precision %s is too large" (above a million), "Can not
// convert %s into a numeric matrix" for a cell among the values.
QUORVEX_API Mm sprintf(const Mm &fmt);
QUORVEX_API Mm sprintf(const Mm &fmt, const Mm &list);

// The same to a file; to the print handler for fid 1 (the default) and 2, a call for each value; nowhere for
// 0 and numbers below. Without a list the percent signs of the format count as in C.
QUORVEX_API Mm fprintf(const Mm &fmt);
QUORVEX_API Mm fprintf(const Mm &fid, const Mm &fmt);
QUORVEX_API Mm fprintf(const Mm &fid, const Mm &fmt, const Mm &list);
QUORVEX_API Mm printf(const Mm &fmt);
QUORVEX_API Mm printf(const Mm &fmt, const Mm &list);

// Reads numbers from a text or a file: all of them as a column (size Inf), n of them as a column (size n; of
// characters a row), or m by n, column by column ([m n]; as many columns as it takes). Where the format has
// conversions c and s only, the result is text; s gives one number for each character. What has a "*" is read
// and not kept. Reading ends where the input doesn't fit the format. In a text every conversion but c uses up
// a word, up to the next blanks. `count`: how many numbers; `msg` is empty, `next` 0.
// "scanf: size %s is not one or two elements"; "sscanf: p conversions can not be read from a text"; of fid
// those of fread.
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

#define QUORVEX_FORMATTED_COUNTS(ROW)                                                             \
    ROW(sprintf, "values as text by a format", 1, 2_list)                                         \
    ROW(fprintf, "text by a format to a file", 1_to_0, 2_to_0, 3_list_to_0)                       \
    ROW(printf, "prints text by a format", 1_to_0, 2_list_to_0)                                   \
    ROW(sscanf, "reads a text by a format", 2, 3, 2_to_2, 2_to_3, 2_to_4, 3_to_2, 3_to_3, 3_to_4) \
    ROW(fscanf, "reads a file by a format", 2, 3, 2_to_2, 2_to_3, 3_to_2, 3_to_3)
QUORVEX_FORMATTED_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
