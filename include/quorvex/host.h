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

// The commands of ive_do: number, name, what a and b are ("-" where they are ignored), what is done or
// returned. Texts, buffers and functions are passed as addresses; positions of variables count from 0.
#define QUORVEX_HOST_COMMANDS(COMMAND)                                                                      \
    COMMAND(0, interactive, "-", "-", "sets kn_interactive_flag")                                           \
    COMMAND(1, count, "-", "-", "returns the number of variables of the level")                             \
    COMMAND(2, name, "position", "buffer of 40 bytes", "name of a variable of the level, without a last _") \
    COMMAND(3, show, "-", "name", "displays a variable")                                                    \
    COMMAND(4, forget, "-", "name", "forgets a variable; the level for a null name, or \"global\"")         \
    COMMAND(5, designer, "-", "-", "the figure designer")                                                   \
    COMMAND(6, error_stack, "-", "-", "returns the address of kn_error_stack")                              \
    COMMAND(9, list_lines, "-", "level", "a line for each variable of the level, or \"global\"")            \
    COMMAND(10, class_of, "position", "buffer of 40 bytes",                                                 \
            "class of a variable; returns whether an object")                                               \
    COMMAND(11, list_names, "-", "level", "the names of the variables, as 9, on one line")                  \
    COMMAND(12, set_eval, "-", "function", "eval_func")                                                     \
    COMMAND(13, show_help, "-", "name", "help on a function")                                               \
    COMMAND(14, list_files, "-", "pattern", "the names of files")                                           \
    COMMAND(15, set_debug, "-", "function", "kn_debug_handler")                                             \
    COMMAND(16, set_print, "-", "function", "kn_print_handler")                                             \
    COMMAND(17, set_input, "-", "function", "kn_input_handler")                                             \
    COMMAND(18, set_kbhit, "-", "function", "kn_kbhit_handler")                                             \
    COMMAND(19, set_clc, "-", "function", "kn_clc_handler")                                                 \
    COMMAND(20, set_path, "-", "record", "mpath_pointer")                                                   \
    COMMAND(21, clear_screen, "-", "-", "clears the screen")                                                \
    COMMAND(22, set_window, "-", "window", "the window of the host")                                        \
    COMMAND(23, count_globals, "-", "-", "returns the number of global variables")                          \
    COMMAND(24, global_name, "position", "buffer of 40 bytes",                                              \
            "name of a global variable, without a last _")                                                  \
    COMMAND(25, set_command, "-", "function", "kn_command_handler")                                         \
    COMMAND(26, find, "-", "name", "returns the address of a variable, or 0")                               \
    COMMAND(27, clear_mex, "-", "name", "unloads a native module")                                          \
    COMMAND(28, exit_gui, "code", "-", "guiexit")                                                           \
    COMMAND(29, summary, "position", "buffer of 128 bytes", "a variable of the level on one short line")    \
    COMMAND(30, global_summary, "position", "buffer of 128 bytes", "a global variable on one short line")   \
    COMMAND(31, search_help, "-", "text", "lookfor")                                                        \
    COMMAND(32, help_window, "-", "name", "helpwin")                                                        \
    COMMAND(33, find_file, "buffer of 1024 bytes", "name", "where a function or file is found")             \
    COMMAND(34, figure_close, "-", "figure", "closes a figure")                                             \
    COMMAND(35, open_variable, "-", "name", "openvar")                                                      \
    COMMAND(36, memory_use, "-", "-", "memory")                                                             \
    COMMAND(37, show_version, "-", "buffer of 2048 bytes", "version")                                       \
    COMMAND(38, set_key_window, "-", "window", "the window that gets the keys of the host")

enum kn_host_command {
#define QUORVEX_HOST_COMMAND(number, name, a, b, answer) kn_host_##name = number,
    QUORVEX_HOST_COMMANDS(QUORVEX_HOST_COMMAND)
#undef QUORVEX_HOST_COMMAND
};

// Carries out one command of the list. What is not said to answer anything answers 0, and so does a number
// that is no command. "The level" is the current one. Variables by name are looked for on the level, then
// among the global ones, as given and with "_" after the name; of an unknown one "Variable '%s' not found."
// is printed (3). A position without a variable is the error "variable_scope: index out of range".
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
