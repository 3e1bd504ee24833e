// Commands to the graphics engine.
#ifndef QUORVEX_GRAPHICS_H
#define QUORVEX_GRAPHICS_H

#include "quorvex/counts.h"

QUORVEX_API Mm drawnow();                // performs pending drawing, if there is a figure
QUORVEX_API Mm guiexit(const Mm &code);  // drawnow, then ends the engine's windows
QUORVEX_API double waitforbuttonpress(); // 0 for a mouse button, 1 for a key
QUORVEX_API double checkforbuttonpress();

#define QUORVEX_GRAPHICS_COUNTS(ROW) \
    ROW(drawnow, 0)                  \
    ROW(guiexit, 1)                  \
    ROW(waitforbuttonpress, 0)       \
    ROW(checkforbuttonpress, 0)
QUORVEX_GRAPHICS_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
