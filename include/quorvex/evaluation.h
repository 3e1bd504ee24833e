// The hooks through which generated code or a host evaluates text and calls functions by name, the functions
// that use them, and the directories in which M-files are found.
#ifndef QUORVEX_EVALUATION_H
#define QUORVEX_EVALUATION_H

#include "quorvex/counts.h"

// -- Hooks.

// Calls the function named f with the elements of the cell `args`; the first nargout() results go to y1 to
// y6. The default reports "feval was not linked with the program."; kn_feval (library.h) calls the library's
// own functions.
typedef Mm (*kn_feval_hook)(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6);
extern QUORVEX_API kn_feval_hook feval_func;

// Runs the text of a graphics callback. The default evaluates it.
typedef Mm (*kn_callback)(Mm text);
extern QUORVEX_API kn_callback callback_func;

// Evaluates one statement; a positive result means failure. Null by default.
typedef int (*kn_eval_hook)(const char *statement);
extern QUORVEX_API kn_eval_hook eval_func;

// -- Evaluation.

// The value of an expression in a text: without eval_func str2num of the text. With eval_func it is x_M for
// an empty text; a copy of the variable that the text names; otherwise the hook evaluates the statement
// "eval_result_N=text", cut at 2048 characters, and the variable of this name is the value. A text that
// contains "tripdata", "playshow", "load " or "global" is passed to the hook unchanged, and gives x_M. "error
// evaluating." when the hook fails. Further inputs are ignored.
QUORVEX_API Mm eval(const Mm &text);
QUORVEX_API Mm eval(const Mm &text, const Mm &otherwise);
QUORVEX_API Mm evalin(const Mm &where, const Mm &text); // eval(text)
QUORVEX_API Mm evalin(const Mm &where, const Mm &text, const Mm &otherwise);

// The first output of the function named f, called through feval_func.
QUORVEX_API Mm feval(const Mm &f);
QUORVEX_API Mm feval(const Mm &f, const Mm &a);
QUORVEX_API Mm feval(const Mm &f, const Mm &a, const Mm &b);
QUORVEX_API Mm feval(const Mm &f, const Mm &a, const Mm &b, const Mm &c);
QUORVEX_API Mm feval(const Mm &f, const Mm &a, const Mm &b, const Mm &c, const Mm &d);

// -- Arguments.

// The name of input n of the running function, always the empty text.
QUORVEX_API Mm inputname(const Mm &n);

// The message for n inputs: "too few input arguments" for n < low, "too many input arguments" for n > high,
// otherwise the empty text.
QUORVEX_API Mm nargchk(const Mm &low, const Mm &high, const Mm &n);

// The name of a function given as input: name = f, message = ''. The other inputs are ignored.
QUORVEX_API Mm fcnchk(const Mm &f, const Mm &x, i_o_t, Mm &name, Mm &message);
QUORVEX_API Mm prefcnchk(const Mm &f, const Mm &a, const Mm &b, const Mm &c, i_o_t, Mm &name, Mm &message);

// -- The M path. It exists where a host has set mpath_pointer; otherwise "path is not available in compiled
// programs." is reported.

// The directories in sequence, each terminated by a null character, from `start` to `end`, in one block of
// kn_path_size bytes; and the directory of the host's program.
constexpr int kn_path_size = 0x20000;
struct kn_path_record {
    char *start, *end;
    char host_directory[1024];
};
extern QUORVEX_API kn_path_record *mpath_pointer;

// Makes a record with an empty list (null after "Out of memory!"); the second function frees it.
QUORVEX_API kn_path_record *kn_new_path_record(const char *host_directory);
QUORVEX_API void kn_delete_path_record(kn_path_record *record);

// The directories as text, with ";" after each; with an input the text replaces the list unchanged (cut at
// 131071 characters). path(a, b) then also adds b at the front.
QUORVEX_API Mm matlabpath();
QUORVEX_API Mm matlabpath(const Mm &text);
QUORVEX_API Mm path();
QUORVEX_API Mm path(const Mm &text);
QUORVEX_API Mm path(const Mm &text, const Mm &front);

// Adds the directories of a text, or of each text of a cell, at the front of the M path in their order, as
// absolute names that end in a separator. Directories already in the path, and those that do not fit, are
// ignored.
QUORVEX_API Mm addpath(const Mm &list);

#define QUORVEX_EVALUATION_COUNTS(ROW)                           \
    ROW(eval, "value of an expression in a text", 1, 2)          \
    ROW(evalin, "value of an expression in a text", 2, 3)        \
    ROW(feval, "calls a function by name", 1, 2, 3, 4, 5)        \
    ROW(inputname, "name of an input, always the empty text", 1) \
    ROW(nargchk, "checks a number of inputs", 3)                 \
    ROW(fcnchk, "checks a function argument", 2_to_2)            \
    ROW(prefcnchk, "checks a function argument", 4_to_2)         \
    ROW(matlabpath, "directories of the M path", 0, 1_to_0)      \
    ROW(path, "directories of the M path", 0, 1_to_0, 2_to_0)    \
    ROW(addpath, "adds directories to the M path", 1_list_to_0)
QUORVEX_EVALUATION_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
