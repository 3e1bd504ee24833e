// What the display functions share.
#ifndef QUORVEX_TEXT_VALUE_DISPLAY_H
#define QUORVEX_TEXT_VALUE_DISPLAY_H

#include "text/text_buffer.h"

namespace kn {

// Appends the dimensions, joined by "x".
void append_extents(TextBuffer &out, const Mm &m);

// Appends a value on one short line: a real scalar by %.4g, a row of at most 16 characters as it is, anything
// else as dimensions and class name. A scalar without a value is reported and, if the handler returns, shown
// as 896.
void append_summary(TextBuffer &out, const Mm &m);

// Prints a cell, one row per line, each element as its summary in brackets.
void print_cell(const Mm &m);

// Calls work(page) for each page of a value of three or four dimensions, after its "(:,:,k)" line.
void each_page(const Mm &m, void (*work)(const Mm &page));

} // namespace kn

#endif
