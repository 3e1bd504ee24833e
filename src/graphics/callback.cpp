// The one guarded call: the only place where the library catches the exception of an error.

#include "graphics/callback.h"

#include "quorvex/evaluation.h"
#include "quorvex/messages.h"

void kn::evaluate_guarded(const Mm &text) {
    if (text.size() < 1) return;
    int depth = kn_error_stack.depth;
    try {
        callback_func(text);
    } catch (...) {
        error_lasterr();
        kn_error_stack.depth = depth;
    }
}
