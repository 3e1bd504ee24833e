// Display of values through the print handler, console input, and conversions between character values and C
// strings.
//
// Every number is printed by %g with the same precision (4 digits short, 12 long), one line per row: no
// paging, no column splitting, no common scale factor.
#ifndef QUORVEX_DISPLAY_H
#define QUORVEX_DISPLAY_H

#include "quorvex/counts.h"

// Prints through the print handler as printf does; returns the number of characters. The text is cut at
// strlen(fmt) + 16381 characters.
QUORVEX_API int kn_printf(const char *fmt, ...) QUORVEX_PRINTF(1, 2);

// Sets the display of numbers: long for a text that begins with L in either case, otherwise short. The second
// input is ignored.
QUORVEX_API Mm format();
QUORVEX_API Mm format(const Mm &mode);
QUORVEX_API Mm format(const Mm &mode, const Mm &other);

// Print a value: disp and puts its elements, display also a header. An object uses the methods "disp" and
// "display" of its class; without them the names of its fields are printed. x_M prints nothing.
QUORVEX_API Mm disp(const Mm &m);        // the elements
QUORVEX_API Mm puts(const Mm &m);        // the same
QUORVEX_API Mm display(const Mm &m);     // header and elements
QUORVEX_API Mm disp_header(const Mm &m); // "x (2x2)=4 double elements real (32 bytes) = "

// Prints each element of a cell with its subscripts, nested cells too: "%s is not a cell array."
QUORVEX_API Mm celldisp(const Mm &m);

// Prints the fields of the header of a value, for debugging.
QUORVEX_API Mm dump(const Mm &m);

// Prints name and description of a value on one line; "whos: bad name pointer %08X" for an unreadable name.
QUORVEX_API void whos_line(const Mm &m);

// The description of a value as text, " (2x2)=4 double elements real (32 bytes)".
QUORVEX_API Mm get_whos_line(const Mm &m);

// Writes the value on one short line, as in the display of a cell, cut at size - 1 characters. A value
// without content is reported.
QUORVEX_API void value_summary(const Mm &m, char *buf, kn_size size);
QUORVEX_API const char *
kn_class_word(const Mm &m); // "char", "sparse", "struct", the class name, "cell", "uint8", "double"

// The elements of m as text, one line for each row, or for each stored element of a sparse value. num2str(m)
// has 4 significant digits and removes leading columns of blanks; the other forms have `digits` of them
// (default 4), keep these blanks, and give the width of the first field. Text is returned as it is, but
// num2str(m) removes leading blanks and null characters. An empty value gives "[]", empty text "''", a
// variable without a value "(this variable has no value)". "Can not convert %s into a numerical matrix" for
// cells and structures.
QUORVEX_API Mm num2str(const Mm &m);
QUORVEX_API Mm num2str(const Mm &m, const Mm &digits);
QUORVEX_API Mm num2str(const Mm &m, i_o_t, Mm &text, Mm &width);
QUORVEX_API Mm num2str(const Mm &m, const Mm &digits, i_o_t, Mm &text, Mm &width);

// -- C strings and character values.

QUORVEX_API Mm TM(const char *s); // a character value, 1 by strlen(s); null gives the empty one
// Writes a character value as a C string: rows joined by newlines, each double truncated to a byte. "Mstr:
// buffer too small - chopped" and an empty string when (cols + 1) * rows exceeds size.
QUORVEX_API void Mstr(const double *data, kn_size rows, kn_size cols, char *buf, kn_size size);
QUORVEX_API void Mstr(const Mm &m, char *buf, kn_size size);
QUORVEX_API void Mstr_row(const Mm &m, char *buf, kn_size size); // all elements in storage order, as one row
QUORVEX_API kn_size Mstr_size(const Mm &m);                      // bytes that Mstr needs

// -- Console.

// Prints a prompt and reads a line from the user, as numbers, or with any second input as text up to the
// first newline. As numbers an empty line gives nop_M, and text the warning "input: text is non-numeric, use
// input(...,'s')". The line "ctrl_c_event" is the error "Ctrl-C".
QUORVEX_API Mm input(const Mm &prompt);
QUORVEX_API Mm input(const Mm &prompt, const Mm &s);
// Waits until a key or a button is pressed. It prints a line and returns at once where neither is possible:
// without an engine, a key hook of a host, and a terminal as standard input.
QUORVEX_API Mm pauseM();

// Clear the screen, or move the cursor to row 1, column 1.
QUORVEX_API Mm clc();
QUORVEX_API Mm home();

// Print "Usage: " with a value, or "8-)".
QUORVEX_API Mm usage(const Mm &m);
QUORVEX_API Mm smiley();

// The hooks of the console: they fill a buffer of the given size with a line, return whether a key is
// waiting, and clear the screen. Null restores the default.
typedef void (*kn_input_hook)(char *buf, int size);
typedef int (*kn_kbhit_hook)();
typedef void (*kn_clc_hook)();
extern QUORVEX_API kn_input_hook kn_input_handler;
extern QUORVEX_API kn_kbhit_hook kn_kbhit_handler;
extern QUORVEX_API kn_clc_hook kn_clc_handler;
QUORVEX_API kn_input_hook kn_set_input_handler(kn_input_hook f);
QUORVEX_API kn_kbhit_hook kn_set_kbhit_handler(kn_kbhit_hook f);
QUORVEX_API kn_clc_hook kn_set_clc_handler(kn_clc_hook f);

#define QUORVEX_DISPLAY_COUNTS(ROW)                                              \
    ROW(format, "sets short or long display of numbers", 0_to_0, 1_to_0, 2_to_0) \
    ROW(disp, "prints a value", 1_to_0)                                          \
    ROW(puts, "prints a value", 1_to_0)                                          \
    ROW(display, "prints a value with its name", 1_to_0)                         \
    ROW(disp_header, "prints name and size of a value", 1_to_0)                  \
    ROW(celldisp, "prints each element of a cell", 1_to_0)                       \
    ROW(dump, "prints the internals of a value", 1_to_0)                         \
    ROW(get_whos_line, "size and class of a value as text", 1)                   \
    ROW(num2str, "numbers as text", 1, 2, 1_to_2, 2_to_2)                        \
    ROW(input, "reads a line from the user", 1, 2)                               \
    ROW(pauseM, "waits for a key", 0_to_0)                                       \
    ROW(clc, "clears the screen", 0_to_0)                                        \
    ROW(home, "moves the cursor to the top left corner", 0_to_0)                 \
    ROW(usage, "prints a usage message", 1_to_0)                                 \
    ROW(smiley, "prints a smile", 0_to_0)
QUORVEX_DISPLAY_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
