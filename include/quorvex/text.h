// Functions of the language on character values.
//
// A text is a character matrix, most often a row; an empty value is a text. Letters and white space are those
// of ASCII; white space is tab to carriage return and the blank. Functions that need text report "%s: input
// is not a string" for other values, and those that need a row "%s: input must be one row". Functions with
// names of the C library are overloads of them on values.
#ifndef QUORVEX_TEXT_H
#define QUORVEX_TEXT_H

#include "quorvex/counts.h"

// Functions of one to six texts.
// clang-format off
#define QUORVEX_LISTS_OF_TEXTS(name) \
    QUORVEX_API Mm name(const Mm &a); \
    QUORVEX_API Mm name(const Mm &a, const Mm &b); \
    QUORVEX_API Mm name(const Mm &a, const Mm &b, const Mm &c); \
    QUORVEX_API Mm name(const Mm &a, const Mm &b, const Mm &c, const Mm &d); \
    QUORVEX_API Mm name(const Mm &a, const Mm &b, const Mm &c, const Mm &d, const Mm &e); \
    QUORVEX_API Mm name(const Mm &a, const Mm &b, const Mm &c, const Mm &d, const Mm &e, const Mm &f);
// clang-format on

// -- Concatenation.

// A character matrix with the inputs as its rows, padded with blanks on the right. An empty input adds no
// row, a matrix all its rows, a cell the rows of each element; numbers count as character codes.
QUORVEX_LISTS_OF_TEXTS(strvcat)

// The inputs concatenated row by row, without the trailing blanks of each. A text of one row is used in every
// row, rows are padded on the right, an empty text adds nothing. With a cell among the inputs the result is a
// cell of concatenated texts that keep their blanks; a cell of one element and a text are used for all
// elements. Numbers count as character codes. "strcat: # of rows different", "strcat: cell arrays must be of
// same size".
QUORVEX_LISTS_OF_TEXTS(strcat)

// A 1 by n text of blanks.
QUORVEX_API Mm blanks(const Mm &n);

// A text with each row justified: to the right, or as `how` specifies by its first letter, "left", "center"
// or "right" ("strjust: unknown side").
QUORVEX_API Mm strjust(const Mm &s);
QUORVEX_API Mm strjust(const Mm &s, const Mm &how);

// -- Comparison.

// Whether two texts are equal, logical: strcmp compares sizes and characters, strncmp the first n characters
// (a shorter text is different; for n below 1 all are equal); strcmpi and strncmpi ignore case. Non-text
// arguments never compare equal. With a cell the result has an element for each of its elements: two cells
// must have the same size, but a text, or a cell of one element, is compared with all; a text of several rows
// is compared row by row, without trailing blanks. "%s: cell arrays must be of same size".
QUORVEX_API Mm strcmp(const Mm &a, const Mm &b);
QUORVEX_API Mm strcmpi(const Mm &a, const Mm &b);
QUORVEX_API Mm strncmp(const Mm &a, const Mm &b, const Mm &n);
QUORVEX_API Mm strncmpi(const Mm &a, const Mm &b, const Mm &n);

// -- Search.

// The indices, as a column, of the rows of a matrix or the elements of a cell that begin with s; with the
// third input "exact" of those equal to s, apart from trailing blanks and nulls. "strmatch: third input must
// be 'exact'".
QUORVEX_API Mm strmatch(const Mm &s, const Mm &rows);
QUORVEX_API Mm strmatch(const Mm &s, const Mm &rows, const Mm &exact);

// The indices at which the shorter of two rows begins in the longer one, overlaps included, as a row; [] if
// there are none.
QUORVEX_API Mm findstr(const Mm &a, const Mm &b);

// The text s with each `old` replaced by `now`. Each of several overlapping occurrences is replaced; their
// common characters are removed once. Cells are processed element by element, with a text, or a cell of one
// element, used for all ("strrep: cell arrays must be of same size").
QUORVEX_API Mm strrep(const Mm &s, const Mm &old, const Mm &now);

// The first token of a row after leading delimiters; the second output is the rest of the row, beginning with
// the delimiter. Delimiters are the characters of the second input, or white space and nulls.
QUORVEX_API Mm strtok(const Mm &s);
QUORVEX_API Mm strtok(const Mm &s, const Mm &delimiters);
QUORVEX_API Mm strtok(const Mm &s, i_o_t, Mm &token, Mm &remainder);
QUORVEX_API Mm strtok(const Mm &s, const Mm &delimiters, i_o_t, Mm &token, Mm &remainder);

// -- Characters.

// A text with its letters in upper or lower case; of a cell, each element. Other values are returned
// unchanged.
QUORVEX_API Mm upper(const Mm &s);
QUORVEX_API Mm lower(const Mm &s);

// Which elements of s are white space, or letters: logical, with the size of s; all 0 for a non-text value.
QUORVEX_API Mm isspace(const Mm &s);
QUORVEX_API Mm isletter(const Mm &s);

// Whether s is text, logical; the same as ischar.
QUORVEX_API Mm isstr(const Mm &s);

// A text without the trailing columns of blanks, other white space and nulls; of a cell, each element.
// "deblank: input is not a string" for numbers.
QUORVEX_API Mm deblank(const Mm &s);

// -- Numbers.

// The numbers in a text as a matrix: blanks separate them, newline and ";" begin a row, "1+2i" is complex.
// Words that are not numbers give 0; nothing is evaluated. "str2num: input is not a string" for other values.
QUORVEX_API Mm str2num(const Mm &s);

// The text whose character codes are the numbers of m, with the size of m.
QUORVEX_API Mm setstr(const Mm &m);

#define QUORVEX_TEXT_COUNTS(ROW)                                                    \
    ROW(strvcat, "texts as rows of one matrix", 1, 2, 3, 4, 5, 6)                   \
    ROW(strcat, "concatenates texts row by row", 1, 2, 3, 4, 5, 6)                  \
    ROW(blanks, "row of blanks", 1)                                                 \
    ROW(strjust, "justifies the rows of a text", 1, 2)                              \
    ROW(strcmp, "whether texts are equal", 2)                                       \
    ROW(strcmpi, "whether texts are equal, ignoring case", 2)                       \
    ROW(strncmp, "whether texts begin with the same characters", 3)                 \
    ROW(strncmpi, "whether texts begin with the same characters, ignoring case", 3) \
    ROW(strmatch, "rows that begin with a text", 2, 3)                              \
    ROW(findstr, "indices of a text in another", 2)                                 \
    ROW(strrep, "replaces a text in a text", 3)                                     \
    ROW(strtok, "first token of a text, and the rest", 1, 2, 1_to_2, 2_to_2)        \
    ROW(upper, "text in upper case", 1)                                             \
    ROW(lower, "text in lower case", 1)                                             \
    ROW(isspace, "which characters are white space", 1)                             \
    ROW(isletter, "which characters are letters", 1)                                \
    ROW(isstr, "whether a value is text", 1)                                        \
    ROW(deblank, "text without trailing blanks", 1)                                 \
    ROW(str2num, "numbers in a text", 1)                                            \
    ROW(setstr, "character codes as text", 1)
QUORVEX_TEXT_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
