// Every message of the library passes through one funnel: an entry point formats the text and passes it to a
// handler that a host may replace. An error ends the process (the default) or is thrown as `const char *`
// (flag 16). If a host's handler returns, the reporting function continues with a valid value.
#ifndef QUORVEX_MESSAGES_H
#define QUORVEX_MESSAGES_H

#include "quorvex/values.h"

#if defined(__GNUC__)
#define QUORVEX_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define QUORVEX_PRINTF(fmt, args)
#endif

// -- Entry points: report an error, print a warning or a message, write to the log. Arguments are those of
// printf; texts are cut at 2047 characters.

QUORVEX_API void error(const char *fmt, ...) QUORVEX_PRINTF(1, 2);
QUORVEX_API void warning(const char *fmt, ...) QUORVEX_PRINTF(1, 2);
QUORVEX_API void message(const char *fmt, ...) QUORVEX_PRINTF(1, 2);
QUORVEX_API void logmessage(const char *fmt, ...) QUORVEX_PRINTF(1, 2);
// The same with a line of the source file that kn_set_error_source names. The line also applies to all later
// messages.
QUORVEX_API void error(int line, const char *fmt, ...) QUORVEX_PRINTF(2, 3);
QUORVEX_API void warning(int line, const char *fmt, ...) QUORVEX_PRINTF(2, 3);

// -- Handlers. A setter returns the previous function; null restores the default. A text is valid only until
// the handler returns.

typedef void (*kn_text_handler)(const char *text);
typedef void (*kn_code_handler)(int code, const char *text);
// Shows a dialog; style is 48 for a warning, 0 for a plain text.
typedef void (*kn_box_handler)(const char *text, const char *title, unsigned style);

extern QUORVEX_API kn_text_handler kn_print_handler, kn_error_handler, kn_warning_handler, kn_message_handler,
    kn_logmessage_handler;
extern QUORVEX_API kn_code_handler kn_debug_handler;

QUORVEX_API kn_text_handler kn_set_print_handler(kn_text_handler f);
QUORVEX_API kn_text_handler kn_set_error_handler(kn_text_handler f);
QUORVEX_API kn_text_handler kn_set_warning_handler(kn_text_handler f);
QUORVEX_API kn_text_handler kn_set_message_handler(kn_text_handler f);
QUORVEX_API kn_text_handler kn_set_logmessage_handler(kn_text_handler f);
QUORVEX_API kn_code_handler kn_set_debug_handler(kn_code_handler f);
QUORVEX_API int kn_was_handler_set(); // whether any of the six setters was called

// Without a window system the default writes to standard error, and only texts not yet printed.
QUORVEX_API kn_box_handler kn_set_message_box_handler(kn_box_handler f);

QUORVEX_API void kn_default_print(const char *text);
QUORVEX_API void kn_default_error(const char *text);
QUORVEX_API void kn_default_warning(const char *text);
QUORVEX_API void kn_default_message(const char *text);
QUORVEX_API void kn_default_logmessage(const char *text);
QUORVEX_API void kn_default_debug(int code, const char *text);

// -- Flags: 1 print, 2 dialog, 8 report released scalar_only values to the debug handler, 16 throw instead of
// ending the process. The setters change the flags in `mask`: set for a nonzero `on`, otherwise cleared.

extern QUORVEX_API unsigned kn_default_error_flags;   // 7 at start
extern QUORVEX_API unsigned kn_default_warning_flags; // 3 at start
QUORVEX_API void kn_set_default_error_flags(unsigned mask, unsigned on);
QUORVEX_API void kn_set_default_warning_flags(unsigned mask, unsigned on);

// Sets the source file of the overloads with a line: its name (cut to 511 characters) and its text (borrowed;
// null counts as empty).
QUORVEX_API void kn_set_error_source(const char *file, const char *text);

// -- The stack of source positions, one for each thread. Generated code pushes, pops and stores lines through
// line_ptr; entries 1 to depth are in use. For an empty stack line_ptr points to kn_line_outside, which is
// never read.

extern QUORVEX_API int kn_line_outside;
struct kn_error_stack_t {
    const char *file[513] = {};
    int line[513] = {};
    int depth = 0;
    int *line_ptr = &kn_line_outside;
};
extern QUORVEX_API QUORVEX_THREAD_LOCAL kn_error_stack_t kn_error_stack;

// Appends "called from FILE LINE" lines to buf (of 2048 bytes), innermost first.
QUORVEX_API void error_call_stack(char *buf);
// Shows the pending error ("Aborted!" if there is none) with the call stack, and clears it.
QUORVEX_API void error_lasterr();

// -- Validators return 0 when the check passes, and 1 after a report. `name` is the caller.

QUORVEX_API int error_2d(const Mm &x, const char *name);      // at most two dimensions
QUORVEX_API int error_square(const Mm &x, const char *name);  // two dimensions, rows equal columns
QUORVEX_API int error_sparse(const Mm &x, const char *name);  // sparse
QUORVEX_API int error_struct(const Mm &x, const char *name);  // a structure or an object
QUORVEX_API int error_numeric(const Mm &x, const char *name); // neither a cell nor a structure
// Checks the numbers of outputs, then of inputs: "Too few (%d<%d) outputs for %s", "Too many (%d>%d) ...".
QUORVEX_API void validate_narg(const char *name, int nargout, int nargin, int min_out, int max_out,
                               int min_in, int max_in);
// Reports "%s does not accept %d input%s"; returns 0.
QUORVEX_API double error_input(const char *name, int n);

// -- Language functions.

// Report an error, print a warning, and read or set the text of the last error. Rows of a text are joined by
// newlines; numbers count as character codes; cells and structures are reported by error_numeric.
QUORVEX_API Mm error(const Mm &msg);   // no effect for an empty msg; at most 2047 characters
QUORVEX_API Mm warning(const Mm &msg); // at most 1024 characters; "on" and "off" have no effect
QUORVEX_API Mm warning();              // "on"
QUORVEX_API Mm lasterr();              // the text of the last error, and clears it
QUORVEX_API Mm lasterr(const Mm &text);

// The innermost source position.
QUORVEX_API Mm mfilename(); // its file without directories and extension; "unknown" if there is none
QUORVEX_API Mm mfileline(); // its line; 0 if there is none

#endif
