// Start and end of the library, and the constants and markers of the language.
//
// Once loaded, the library remains until the process ends; dlclose has no effect. Static objects of a program
// may compute in their constructors; with the static library, those whose init_priority is at least 103.
#ifndef QUORVEX_STARTUP_H
#define QUORVEX_STARTUP_H

#include "quorvex/messages.h"

// The version that a program is compiled against: the first argument of initM2.
#define QUORVEX_VERSION 4500

// Constants. A program may overwrite them; initM2 restores them.
extern QUORVEX_API Mm ans, i, j, pi, Inf, NaN, eps, TICTOC;
extern QUORVEX_API Mm one_M, zero_M;
extern QUORVEX_API Mm page_screen_output, implicit_str_to_num_ok, empty_list_elements_ok;

// Markers, recognised by the address of their name; an unnamed copy is not a marker.
extern QUORVEX_API Mm c_p;   // a bare ":" subscript
extern QUORVEX_API Mm semi;  // a row end in brackets
extern QUORVEX_API Mm nop_M; // an empty []
extern QUORVEX_API Mm x_M;   // no result (kn_has_value)
extern QUORVEX_API Mm l_M;   // no further operand
extern QUORVEX_API const char *kn_l_name, *kn_semi_name, *kn_colon_name;

// Whether m is a value: 0 for x_M and its copies, which functions without a result return, and for a variable
// never assigned.
QUORVEX_API int kn_has_value(const Mm &m);

// Prepares the library, as the first call of generated code: checks the version and the size of Mm that the
// program was compiled with ("Version mismatch - ...", "sizeof(Mm) mismatch - ..."), then resets the
// floating-point state and the constants. It may be called again.
QUORVEX_API void initM2(int version, int size_of_Mm);
// Closes the graphics engine's windows; the process continues.
QUORVEX_API void exitM();
// Call exitM and end the process with status 0.
QUORVEX_API Mm exit();
QUORVEX_API Mm quit();

// Turns the locks of the library (files, random generators, block allocator) on or off, so that threads with
// unshared values can use it at the same time (docs/threads.md); returns the process identifier.
QUORVEX_API unsigned kn_set_MT(int on);
extern QUORVEX_API int kn_threads_flag;
// Set when the library runs under an interactive host: named values then register in the workspace.
extern QUORVEX_API int kn_interactive_flag;
// When set before the library starts, each start-up step prints its name.
extern QUORVEX_API int kn_startup_trace;

// Programs that show images, play sounds and plot, from the environment variables TARVEKVIEWER, TARVEKPLAYER
// and TARVEKGNUPLOT.
extern QUORVEX_API char kn_viewer_program[256], kn_player_program[256], kn_gnuplot_program[256];

#endif
