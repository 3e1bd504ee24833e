// Evaluation of a text on behalf of the graphics engine.
#ifndef QUORVEX_GRAPHICS_CALLBACK_H
#define QUORVEX_GRAPHICS_CALLBACK_H

#include "quorvex/values.h"

namespace kn {

// Runs the text through callback_func. All exceptions are caught here: the pending error is shown, and the
// stack of source positions is restored. An empty text does nothing.
void evaluate_guarded(const Mm &text);

} // namespace kn

#endif
