// Concatenation of values.
#ifndef QUORVEX_CONCAT_H
#define QUORVEX_CONCAT_H

#include "quorvex/counts.h"

// The concatenation of a and b (and c): side by side (horzcat, dim 2), one below the other (vertcat, dim 1),
// or along dimension dim, 1 to 4. All other sizes must agree. For two matrices a dim below 1 is 1, and along
// dimensions 1 and 2 an empty one adds nothing. double with uint8 gives uint8; text with numbers gives text;
// the result is logical when both are, complex or sparse when either is; along dimensions above 2 it is full.
// Elements of cells are shared; structures must have the same fields, or the second one more. After an error
// the result of two values is x_M.
//
// "horzcat: # of rows different", "vertcat: # of cols different", "Operation can not be performed on mixed
// cell and numeric matrix"; beyond two dimensions "cat: arguments do not have the same number of dimensions",
// "cat: no such dimension", "cat: arguments do not have compatible dimensions"; of structures the errors of
// x(...) = y.
QUORVEX_API Mm horzcat(const Mm &a, const Mm &b);
QUORVEX_API Mm vertcat(const Mm &a, const Mm &b);
QUORVEX_API Mm cat(const Mm &dim, Mm a, Mm b);
QUORVEX_API Mm cat(const Mm &dim, Mm a, Mm b, Mm c);

#define QUORVEX_CONCAT_COUNTS(ROW)                \
    ROW(horzcat, "values side by side", 2)        \
    ROW(vertcat, "values one below the other", 2) \
    ROW(cat, "values joined along a dimension", 3, 4)
QUORVEX_CONCAT_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
