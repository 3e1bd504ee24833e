// The graphics engine in use.
#ifndef QUORVEX_GRAPHICS_ENGINE_H
#define QUORVEX_GRAPHICS_ENGINE_H

#include "quorvex/selo.h"

namespace kn {

SeloEngine &engine();

// The handshake with the engine at start, and the removal of the callbacks.
void start_engine();
void stop_engine();

} // namespace kn

#endif
