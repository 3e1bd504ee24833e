// The functions of the library by name: for hosts, and for feval_func.
#ifndef QUORVEX_LIBRARY_H
#define QUORVEX_LIBRARY_H

#include "quorvex/counts.h"

// One function: its C++ name, its name in the language, its line of help. `inputs` and `outputs` are bit
// sets: bit n is set for a form with n of them, bit 0 of `outputs` for a form without output. `list` and
// `names` are the numbers of inputs before the list and before the variables (counts.h); -1 where there is no
// such form.
struct kn_function {
    const char *name, *word, *description;
    unsigned inputs, outputs;
    int list, names;
};

// All functions, sorted by C++ name; returns their number.
QUORVEX_API int kn_functions(const kn_function **list);
// Finds a function by its C++ name (randM, mand) or its name in the language (rand, and); null for none.
QUORVEX_API const kn_function *kn_find_function(const char *name);

// Calls a function by name with the elements of the cell `args`. The nargout outputs go to out[0], out[1],
// ...; `out` has room for at least one, also with nargout 0, and a function without a result sets it to x_M
// (kn_has_value). Returns x_M. With nargout 0 texts may name variables of the workspace (`save`, `load`,
// `clear`). "Undefined function '%s'"; "%s does not accept %d input%s"; "Too many (%d>%d) outputs for %s"
// when the function has fewer outputs with this number of inputs; "Too few (%d<0) outputs for %s". After
// these every output is x_M; after an error of the function itself the outputs are what it left, valid
// values.
QUORVEX_API Mm kn_call_function(const char *name, const Mm &args, int nargout, Mm *const *out);

// The same with the signature of feval_func and nargout() outputs: `feval_func = kn_feval` makes the
// library's functions available to a program. A function without output gives x_M where one output is
// requested.
QUORVEX_API Mm kn_feval(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6);

// Print help. lookfor prints name and description of each function whose name or description contains a text.
// help and helpwin print the numbers of inputs and outputs and the documentation of a function, the first
// comment of an M-file on the path, and otherwise what lookfor prints; helpwin without input prints all
// functions.
QUORVEX_API Mm help(const Mm &name);
QUORVEX_API Mm helpwin();
QUORVEX_API Mm helpwin(const Mm &name);
QUORVEX_API Mm lookfor(const Mm &text);

// The version of the library as text, "4.5".
QUORVEX_API Mm version();

// Prints the memory of the machine and that used by this process.
QUORVEX_API Mm memory();

#define QUORVEX_LIBRARY_COUNTS(ROW)                                   \
    ROW(help, "shows what a function does", 1_to_0)                   \
    ROW(helpwin, "lists the functions, or shows one", 0_to_0, 1_to_0) \
    ROW(lookfor, "searches names and descriptions", 1_to_0)           \
    ROW(version, "version of the library", 0)                         \
    ROW(memory, "shows the memory in use", 0_to_0)
QUORVEX_LIBRARY_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
