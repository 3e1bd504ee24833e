// The entry through which an interactive host drives the library.
#ifndef QUORVEX_HOST_H
#define QUORVEX_HOST_H

#include <stdint.h>

#include "quorvex/export.h"

#if defined(_WIN32) && !defined(_WIN64)
#define QUORVEX_HOST_CALL __stdcall
#else
#define QUORVEX_HOST_CALL
#endif

// Carries out one command; texts, buffers and functions are passed as addresses. The index a of a variable
// counts from 0. Commands without a documented result return 0, and so do unknown numbers.
//
//    0  sets kn_interactive_flag
//    1  returns the number of variables on the current level;  23  of global variables
//    2  name of variable a into b (40 bytes), without a trailing "_";  24  of the global variables
//    3  displays the variable named b
//    4  clears the variable named b, or unloads the module of that name; all of the level for a null b, all
//       global ones for "global"
//    5  the figure designer, not yet implemented
//    6  returns the address of kn_error_stack
//    9  prints a line for each variable: the global ones for "global", otherwise those of the current level
//   10  class name of variable a into b (40 bytes); returns whether it is an object
//   11  prints the names of the variables of the level, as 9, on one line
//   12  eval_func = b
//   13  help on the name b;  31  search for the text b;  32  helpwin
//   14  prints the names of the files that match the pattern b
//   15  debug,  16  print,  17  input,  18  key and  19  clear-screen handler = b
//   20  mpath_pointer = b
//   21  clears the screen
//   22  window of the host = b;  38  the window that receives its keys
//   25  kn_command_handler = b
//   26  returns the address of the variable named b, or 0
//   27  unloads the native module b, not yet implemented
//   28  guiexit(a)
//   29  variable a on one short line into b (128 bytes);  30  of the global variables
//   33  result of `which` for the name b into a (1024 bytes)
//   34  closes the figure b, not yet implemented
//   35  openvar
//   36  memory
//   37  version into b (2048 bytes)
//
// A variable named by b is searched for on the current level, then among the global ones, as given and with
// "_" appended; command 3 prints "Variable '%s' not found." for an unknown one. An index without a variable
// is the error "variable_scope: index out of range".
extern "C" QUORVEX_API intptr_t QUORVEX_HOST_CALL ive_do(int command, intptr_t a, intptr_t b);

// Runs a command of the operating system, writes what it prints into output (60000 bytes), and returns its
// status. Null by default.
typedef int (*kn_command_hook)(const char *command, int length, char *output, int size);
extern QUORVEX_API kn_command_hook kn_command_handler;

// Lets a host interrupt long calls. The hook is called at safe points, at most every 20 ms, on the thread of
// the call, and not recursively. After a nonzero result "Interrupted" is reported and the call ends as after
// any error; the hook may also throw a `const char *` itself, or call the library. Null by default. The
// factorisation of a sparse matrix, and the work along one slice of an array, are not interrupted.
typedef int (*kn_poll_hook)();
extern QUORVEX_API kn_poll_hook kn_poll_handler;

#endif
