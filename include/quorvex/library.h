// The functions of the library by their names: for hosts, and as what feval_func calls.
#ifndef QUORVEX_LIBRARY_H
#define QUORVEX_LIBRARY_H

#include "quorvex/counts.h"

// One function: its C++ name, its name in the language, what it does. `inputs` and `outputs` are sets: bit n
// stands for n of them, bit 0 of `outputs` for a form that gives no value. From the form with a list and the
// one with variables (counts.h): how many inputs stand before these; -1 where there is no such form.
struct kn_function {
    const char *name, *word, *description;
    unsigned inputs, outputs;
    int list, names;
};

// All functions, by C++ name; how many there are.
QUORVEX_API int kn_functions(const kn_function **list);
// The function of this name, which may be the C++ one (randM, mand) or the language's (rand, and); else null.
QUORVEX_API const kn_function *kn_find_function(const char *name);

// Calls the function of this name with the elements of the cell `args`. The nargout results go to out[0],
// ..., where there is a place for one at least: without a result to give (kn_has_value) it gets x_M.
// "Undefined function '%s'"; "%s does not accept %d input%s"; "Too many (%d>%d) outputs for %s" when no form
// with so many inputs gives so many outputs. With nargout 0 texts may be the names of variables of the
// workspace (`save`, `load`, `clear`). x_M is returned, and after an error every output is x_M.
QUORVEX_API Mm kn_call_function(const char *name, const Mm &args, int nargout, Mm *const *out);

// The same in the shape of feval_func, with nargout() outputs, so that `feval_func = kn_feval` gives a
// program the library's functions. One output may be asked of a function that gives no value, and is x_M.
QUORVEX_API Mm kn_feval(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6);

// Prints the functions whose name or description holds the text, all of them without one: name and
// description in columns. For the name of a function: also its numbers of inputs and outputs, and its text;
// for an M-file on the path, its first lines of comment.
QUORVEX_API Mm help(const Mm &name);
QUORVEX_API Mm helpwin();
QUORVEX_API Mm helpwin(const Mm &name);
QUORVEX_API Mm lookfor(const Mm &text);

QUORVEX_API Mm version(); // "4.5"
QUORVEX_API Mm memory();  // prints the memory of the machine and of this process

#define QUORVEX_LIBRARY_COUNTS(ROW)                                   \
    ROW(help, "shows what a function does", 1_to_0)                   \
    ROW(helpwin, "lists the functions, or shows one", 0_to_0, 1_to_0) \
    ROW(lookfor, "searches names and descriptions", 1_to_0)           \
    ROW(version, "version of the library", 0)                         \
    ROW(memory, "shows the memory in use", 0_to_0)
QUORVEX_LIBRARY_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
