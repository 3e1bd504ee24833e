// The hooks through which generated code or a host evaluates text and calls functions by name, the words
// built on them, and the path along which M-files are found.
#ifndef QUORVEX_EVALUATION_H
#define QUORVEX_EVALUATION_H

#include "quorvex/counts.h"

// -- Hooks.

// Calls the function named f with the elements of the cell `args`; the results go to y1 to y6, as many as
// nargout() tells. The standard one reports "feval was not linked with the program."; kn_feval (library.h)
// calls the library's own functions.
typedef Mm (*kn_feval_hook)(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6);
extern QUORVEX_API kn_feval_hook feval_func;

// Runs the text of a graphics callback. The standard one evaluates it.
typedef Mm (*kn_callback)(Mm text);
extern QUORVEX_API kn_callback callback_func;

// Evaluates one statement; a positive answer means that it failed. Null at first.
typedef int (*kn_eval_hook)(const char *statement);
extern QUORVEX_API kn_eval_hook eval_func;

// -- Evaluation.

// The value of a text. Without eval_func that is str2num of it. With it: x_M for an empty text; a copy of the
// variable that the text names; else the hook evaluates the statement "eval_result_N=text", cut at 2048
// characters, and the variable of this name is the value. A text with "tripdata", "playshow", "load " or
// "global" in it is handed over as it is, and gives x_M. "error evaluating." when the hook reports failure.
// Further inputs are not looked at.
QUORVEX_API Mm eval(const Mm &text);
QUORVEX_API Mm eval(const Mm &text, const Mm &otherwise);
QUORVEX_API Mm evalin(const Mm &where, const Mm &text); // eval(text)
QUORVEX_API Mm evalin(const Mm &where, const Mm &text, const Mm &otherwise);

// The first result of the function named f, by feval_func.
QUORVEX_API Mm feval(const Mm &f);
QUORVEX_API Mm feval(const Mm &f, const Mm &a);
QUORVEX_API Mm feval(const Mm &f, const Mm &a, const Mm &b);
QUORVEX_API Mm feval(const Mm &f, const Mm &a, const Mm &b, const Mm &c);
QUORVEX_API Mm feval(const Mm &f, const Mm &a, const Mm &b, const Mm &c, const Mm &d);

// -- Arguments.

QUORVEX_API Mm inputname(const Mm &n); // always the empty text
// "too few input arguments" for n < low, "too many input arguments" for n > high, else the empty text.
QUORVEX_API Mm nargchk(const Mm &low, const Mm &high, const Mm &n);
// name = f, message = ''.
QUORVEX_API Mm fcnchk(const Mm &f, const Mm &x, i_o_t, Mm &name, Mm &message);
QUORVEX_API Mm prefcnchk(const Mm &f, const Mm &a, const Mm &b, const Mm &c, i_o_t, Mm &name, Mm &message);

// -- The M path. There is one only where a host has set mpath_pointer; without it "path is not available in
// compiled programs." is reported.

// Directories one after the other, each ended by a null character, from start up to end, in one block of
// kn_path_size bytes; and the directory of the host's program.
constexpr int kn_path_size = 0x20000;
struct kn_path_record {
    char *start, *end;
    char host_directory[1024];
};
extern QUORVEX_API kn_path_record *mpath_pointer;

// A record with an empty list (null when memory is exhausted, which is reported), and its end.
QUORVEX_API kn_path_record *kn_new_path_record(const char *host_directory);
QUORVEX_API void kn_delete_path_record(kn_path_record *record);

// The directories, a ";" behind each; with a text, the list is replaced by that text as it stands (cut at
// 131071 characters). path(a, b) also adds b in front.
QUORVEX_API Mm matlabpath();
QUORVEX_API Mm matlabpath(const Mm &text);
QUORVEX_API Mm path();
QUORVEX_API Mm path(const Mm &text);
QUORVEX_API Mm path(const Mm &text, const Mm &front);

// Adds the directories of a text, or of each text of a cell, in front, in their order: absolute, ending in a
// separator. One that is listed already, or finds no room, is passed over.
QUORVEX_API Mm addpath(const Mm &list);

#define QUORVEX_EVALUATION_COUNTS(ROW)                        \
    ROW(eval, "value of a text", 1, 2)                        \
    ROW(evalin, "value of a text", 2, 3)                      \
    ROW(feval, "calls a function by its name", 1, 2, 3, 4, 5) \
    ROW(inputname, "name of an input, always empty", 1)       \
    ROW(nargchk, "checks a number of inputs", 3)              \
    ROW(fcnchk, "checks a function argument", 2_to_2)         \
    ROW(prefcnchk, "checks a function argument", 4_to_2)      \
    ROW(matlabpath, "the M path", 0, 1_to_0)                  \
    ROW(path, "the M path", 0, 1_to_0, 2_to_0)                \
    ROW(addpath, "directories in front of the M path", 1_list_to_0)
QUORVEX_EVALUATION_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
