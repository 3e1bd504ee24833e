// Commands to the graphics engine.
#ifndef QUORVEX_GRAPHICS_H
#define QUORVEX_GRAPHICS_H

#include "quorvex/counts.h"

QUORVEX_API Mm drawnow();                 // performs pending drawing, if there is a figure
QUORVEX_API Mm guiexit(const Mm &code);   // drawnow, then ends the engine's windows
QUORVEX_API double waitforbuttonpress();  // 0 for a mouse button, 1 for a key
QUORVEX_API double checkforbuttonpress(); // negative without an engine

// The window of the host, and the one that gets keys for it.
QUORVEX_API Mm setapplicationhandle(void *window);
QUORVEX_API Mm setapplicationkeyhandle(void *window);

#define QUORVEX_GRAPHICS_COUNTS(ROW)                          \
    ROW(drawnow, "performs pending drawing", 0_to_0)          \
    ROW(guiexit, "closes the windows", 1_to_0)                \
    ROW(waitforbuttonpress, "waits for a button or a key", 0) \
    ROW(checkforbuttonpress, "whether a button or a key is pressed", 0)
QUORVEX_GRAPHICS_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
