// Commands to the graphics engine (selo.h). Without an engine they have no effect.
#ifndef QUORVEX_GRAPHICS_H
#define QUORVEX_GRAPHICS_H

#include "quorvex/counts.h"

// Perform pending drawing; guiexit then closes the windows, with an exit code.
QUORVEX_API Mm drawnow();               // performs pending drawing, if there is a figure
QUORVEX_API Mm guiexit(const Mm &code); // drawnow, then closes the engine's windows

// A press of a mouse button (0) or of a key (1): the first function waits for it, the second one polls and
// returns a negative number where there is no engine.
QUORVEX_API double waitforbuttonpress();
QUORVEX_API double checkforbuttonpress();

// Set the window of the host, and the window that receives its keys.
QUORVEX_API Mm setapplicationhandle(void *window);
QUORVEX_API Mm setapplicationkeyhandle(void *window);

#define QUORVEX_GRAPHICS_COUNTS(ROW)                          \
    ROW(drawnow, "performs pending drawing", 0_to_0)          \
    ROW(guiexit, "closes the windows", 1_to_0)                \
    ROW(waitforbuttonpress, "waits for a button or a key", 0) \
    ROW(checkforbuttonpress, "whether a button or a key is pressed", 0)
QUORVEX_GRAPHICS_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
