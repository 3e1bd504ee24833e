// Functions of the language on character values.
//
// A text is a character matrix, most often a row; an empty value counts as text. Letters and white space are
// those of ASCII; white space is tab to carriage return and the blank. What asks for text reports "%s: input
// is not a string" of anything else, what asks for a row of it "%s: input must be one row". The functions
// with names of the C library are overloads: those of C take `const char *` and int.
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

// -- Joined.

// Its inputs stacked as rows of one character matrix, padded with blanks on the right. An empty input adds no
// row; a matrix adds all its rows; a cell the rows of each element; numbers count as character codes.
QUORVEX_LISTS_OF_TEXTS(strvcat)

// Its inputs side by side, row by row, without the trailing blanks of each; a text of one row stands in every
// row, rows are padded on the right, an empty text adds nothing. With a cell among the inputs the answer is a
// cell of joined texts: its elements keep their blanks, a cell of one element and a text stand in every
// place. Numbers count as character codes. "strcat: # of rows different", "strcat: cell arrays must be of
// same size".
QUORVEX_LISTS_OF_TEXTS(strcat)

QUORVEX_API Mm blanks(const Mm &n); // a row of n blanks

// Each row moved to the right edge, or as `how` says: "left", "center" or "right", of which the first letter
// counts ("strjust: unknown side").
QUORVEX_API Mm strjust(const Mm &s);
QUORVEX_API Mm strjust(const Mm &s, const Mm &how);

// -- Compared: logical, 1 for equal and 0 for different.

// Whether two texts have the same extents and characters; strncmp whether both begin with the same n
// characters (a shorter text is different, below 1 all are equal); strcmpi and strncmpi whatever the case.
// What is no text equals nothing. With a cell, the answers for its elements: cells must be of the same size,
// but one element is compared with all, and so is a text; the rows of a matrix, without trailing blanks, are
// compared one by one. "%s: cell arrays must be of same size".
QUORVEX_API Mm strcmp(const Mm &a, const Mm &b);
QUORVEX_API Mm strcmpi(const Mm &a, const Mm &b);
QUORVEX_API Mm strncmp(const Mm &a, const Mm &b, const Mm &n);
QUORVEX_API Mm strncmpi(const Mm &a, const Mm &b, const Mm &n);

// -- Searched.

// The positions, as a column, of the rows of a matrix or the elements of a cell that begin with s; with a
// third input "exact" ("strmatch: third input must be 'exact'") of those that are s, but for blanks and nulls
// behind it.
QUORVEX_API Mm strmatch(const Mm &s, const Mm &rows);
QUORVEX_API Mm strmatch(const Mm &s, const Mm &rows, const Mm &exact);

// Where the shorter of two rows begins in the longer, overlaps included, as a row; [] for nowhere.
QUORVEX_API Mm findstr(const Mm &a, const Mm &b);

// s with `now` in place of each `old`; of occurrences that overlap each is replaced, their characters go
// once. Of cells, element by element, one element or text going with all ("strrep: cell arrays must be of
// same size").
QUORVEX_API Mm strrep(const Mm &s, const Mm &old, const Mm &now);

// The first word of a row, leading delimiters skipped; the rest of the row, from the delimiter on, is the
// second output. Delimiters are the characters of the second input, or white space and nulls.
QUORVEX_API Mm strtok(const Mm &s);
QUORVEX_API Mm strtok(const Mm &s, const Mm &delimiters);
QUORVEX_API Mm strtok(const Mm &s, i_o_t, Mm &token, Mm &remainder);
QUORVEX_API Mm strtok(const Mm &s, const Mm &delimiters, i_o_t, Mm &token, Mm &remainder);

// -- Characters.

// Letters in one case; of a cell, each element. Anything else comes back as it is.
QUORVEX_API Mm upper(const Mm &s);
QUORVEX_API Mm lower(const Mm &s);

// Where the white space and the letters are, in the extents of s; nowhere in what is no text.
QUORVEX_API Mm isspace(const Mm &s);
QUORVEX_API Mm isletter(const Mm &s);
QUORVEX_API Mm isstr(const Mm &s); // ischar

// Without the trailing blanks (and other white space and NULs) that all rows have; of a cell, each element.
// "deblank: input is not a string" for numbers.
QUORVEX_API Mm deblank(const Mm &s);

// -- Numbers.

// The numbers in a text: blanks separate, newline and ";" begin a row, "1+2i" is complex. Bad words are 0. No
// evaluation. "str2num: input is not a string" for anything but text.
QUORVEX_API Mm str2num(const Mm &s);

QUORVEX_API Mm setstr(const Mm &m); // a copy with the string flag set

#define QUORVEX_TEXT_COUNTS(ROW)                                            \
    ROW(strvcat, "texts as rows of one matrix", 1, 2, 3, 4, 5, 6)           \
    ROW(strcat, "texts side by side", 1, 2, 3, 4, 5, 6)                     \
    ROW(blanks, "row of blanks", 1)                                         \
    ROW(strjust, "rows moved to one side", 1, 2)                            \
    ROW(strcmp, "whether texts are equal", 2)                               \
    ROW(strcmpi, "whether texts are equal but for the case", 2)             \
    ROW(strncmp, "whether texts begin equal", 3)                            \
    ROW(strncmpi, "whether texts begin equal but for the case", 3)          \
    ROW(strmatch, "rows that begin with a text", 2, 3)                      \
    ROW(findstr, "where a text is in another", 2)                           \
    ROW(strrep, "text with another text in place of one", 3)                \
    ROW(strtok, "first word of a text, and the rest", 1, 2, 1_to_2, 2_to_2) \
    ROW(upper, "text in upper case", 1)                                     \
    ROW(lower, "text in lower case", 1)                                     \
    ROW(isspace, "where the white space is", 1)                             \
    ROW(isletter, "where the letters are", 1)                               \
    ROW(isstr, "whether a value is text", 1)                                \
    ROW(deblank, "text without trailing blanks", 1)                         \
    ROW(str2num, "numbers in a text", 1)                                    \
    ROW(setstr, "character codes as text", 1)
QUORVEX_TEXT_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
