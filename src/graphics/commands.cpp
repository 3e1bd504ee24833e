// Commands that each make one call of the graphics engine.

#include "quorvex/graphics.h"

#include "graphics/engine.h"
#include "quorvex/selo.h"
#include "quorvex/startup.h"

using kn::engine;

Mm drawnow() {
    if (engine().selo_current_figure() > 0) engine().selo_flush();
    return x_M;
}

Mm guiexit(const Mm &code) {
    drawnow();
    engine().selo_quit(double_to_int(scalar(code)));
    return x_M;
}

double waitforbuttonpress() { return engine().selo_wait_button(0); }
double checkforbuttonpress() { return engine().selo_wait_button(1); }

Mm setapplicationhandle(void *window) {
    engine().selo_set_application_handle(window);
    return x_M;
}

Mm setapplicationkeyhandle(void *window) {
    engine().selo_set_application_key_handle(window);
    return x_M;
}
