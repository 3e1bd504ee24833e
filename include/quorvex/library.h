// The functions of the library by their names: for hosts, and as what feval_func calls.
#ifndef QUORVEX_LIBRARY_H
#define QUORVEX_LIBRARY_H

#include "quorvex/counts.h"

// One function: its C++ name, its name in the language, what it does. `inputs` and `outputs` are sets: bit n
// stands for n of them. Every function gives one output, be it x_M; those of several results also give the
// counts in `outputs`.
struct kn_function {
    const char *name, *word, *description;
    unsigned inputs, outputs;
};

// All functions, by C++ name; how many there are.
QUORVEX_API int kn_functions(const kn_function **list);
// The function of this name, which may be the C++ one (randM, mand) or the language's (rand, and); else null.
QUORVEX_API const kn_function *kn_find_function(const char *name);

// Calls the function of this name with the elements of the cell `args`. The nargout results, of which at
// least one is always given, go to out[0], ... "Undefined function '%s'"; "%s does not accept %d input%s";
// "Too many (%d>%d) outputs for %s" when no form with so many inputs gives so many outputs. x_M is returned,
// and after an error every output is x_M.
QUORVEX_API Mm kn_call_function(const char *name, const Mm &args, int nargout, Mm *const *out);

// The same in the shape of feval_func, with nargout() outputs, so that `feval_func = kn_feval` gives a
// program the library's functions.
QUORVEX_API Mm kn_feval(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6);

// Prints the functions whose name or description holds the text, all of them without one: name and
// description in columns. For the name of a function: also its numbers of inputs and outputs; for an M-file
// on the path, its first lines of comment.
QUORVEX_API Mm help(const Mm &name);
QUORVEX_API Mm helpwin();
QUORVEX_API Mm helpwin(const Mm &name);
QUORVEX_API Mm lookfor(const Mm &text);

QUORVEX_API Mm version(); // "4.5"
QUORVEX_API Mm memory();  // prints the memory of the machine and of this process

#define QUORVEX_LIBRARY_COUNTS(ROW)                         \
    ROW(help, "shows what a function does", 1)              \
    ROW(helpwin, "lists the functions, or shows one", 0, 1) \
    ROW(lookfor, "searches names and descriptions", 1)      \
    ROW(version, "version of the library", 0)               \
    ROW(memory, "shows the memory in use", 0)
QUORVEX_LIBRARY_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
