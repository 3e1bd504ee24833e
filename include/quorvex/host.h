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

// Carries out one command; texts, buffers and functions are passed as addresses. Positions count from 0. What
// is not said to answer anything answers 0, and so does any other number.
//
//    0  sets kn_interactive_flag
//    1  answers the number of variables on the current level;  23  of global ones
//    2  name of variable a into b (40 bytes), without a trailing "_";  24  of the global ones
//    3  displays the variable named b
//    4  forgets the variable named b, or unloads the module of that name; all of the level for a null b, all
//       global ones for "global"
//    5  the figure designer
//    6  answers the address of kn_error_stack
//    9  a line for each variable: "global" the global ones, else those of the current level
//   10  class word of variable a into b (40 bytes); answers whether it is an object
//   11  the names of the variables of the level, as in 9, on one line
//   12  eval_func = b
//   13  help on the name b;  31  search for the text b;  32  helpwin
//   14  the names of the files that the pattern b names
//   15  debug,  16  print,  17  input,  18  key and  19  clear-screen handler = b
//   20  mpath_pointer = b
//   21  clears the screen
//   22  window of the host = b;  38  the window that gets its keys
//   25  kn_command_handler = b
//   26  answers the address of the variable named b, or 0
//   27  unloads the native module b
//   28  guiexit(a)
//   29  variable a on one short line into b (128 bytes);  30  of the global ones
//   33  where b is found into a (1024 bytes)
//   34  closes the figure b
//   35  openvar
//   36  memory
//   37  version into b (2048 bytes)
//
// Variables by name are looked for on the current level, then among the global ones, as given and with "_"
// behind the name; of an unknown one "Variable '%s' not found." is printed (3). A position without a variable
// is the error "variable_scope: index out of range".
extern "C" QUORVEX_API intptr_t QUORVEX_HOST_CALL ive_do(int command, intptr_t a, intptr_t b);

// Runs a command of the operating system, writes what it prints into output (60000 bytes), and answers its
// status. Null at first.
typedef int (*kn_command_hook)(const char *command, int length, char *output, int size);
extern QUORVEX_API kn_command_hook kn_command_handler;

// Lets a host interrupt long calls: asked at most every 20 ms, at safe points of them, on the thread that
// called; not while it answers. After a nonzero answer "Interrupted" is reported and the call ends as after
// any error; the hook may also throw a `const char *` itself, or call the library. Null at first. Not
// interrupted are the factorisation of a sparse matrix, and the work along one slice of an array.
typedef int (*kn_poll_hook)();
extern QUORVEX_API kn_poll_hook kn_poll_handler;

#endif
