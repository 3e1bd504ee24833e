// Start and end of the library.
//
// The named values (value/constants.cpp), the start-up object and the workspace are made in this order,
// before all other static objects (base/static_order.h). Everything else of the library that is static is
// initialised at compile time. A program's own static values may therefore use the library.

#include "quorvex/startup.h"

#include <cstdio>
#include <cstdlib>

#include "base/crash.h"
#include "base/hooks.h"
#include "base/message_funnel.h"
#include "base/static_order.h"
#include "graphics/engine.h"
#include "linear/solvers.h"
#include "platform/platform.h"
#include "quorvex/evaluation.h"
#include "quorvex/graphics.h"
#include "quorvex/solving.h"
#include "quorvex/sparse.h"
#include "quorvex/workspace.h"
#include "value/constants.h"

constinit int kn_startup_trace = 0;
constinit char kn_viewer_program[256] = "", kn_player_program[256] = "", kn_gnuplot_program[256] = "";

namespace kn {
namespace {

void trace(const char *word) {
    if (kn_startup_trace) std::fputs(word, stdout);
}

// The default graphics callback.
Mm evaluate(Mm text) {
    eval(text);
    return x_M;
}

// Calls from lower folders to upper ones.
void fill_hooks() {
    matrix_hooks = {sparse_product, matrix_right_division};
    console_hooks = {[] { drawnow(); }, checkforbuttonpress};
    if (!callback_func) callback_func = evaluate;
}

// The name of an external program: from the upper-case variable, else the lower-case one, else the default.
void find_program(char (&program)[256], const char *upper, const char *lower, const char *standard) {
    if (!os::environment(upper, program, sizeof program) && !os::environment(lower, program, sizeof program))
        std::snprintf(program, sizeof program, "%s", standard);
}

class Startup {
  public:
    Startup() {
        fill_hooks();
        start_engine();
        os::raise_thread_priority();
        install_crash_handlers();
        trace("InitCS\n");
        os::create_locks();
        trace("assert\n");
        trace("resetfpu\n");
        os::reset_floating_point();
        trace("signal\n"); // SIGFPE sent by a program is ignored by the crash hook
        *lasterr_buffer = '\0';
        trace("getenv\n");
        find_program(kn_viewer_program, "TARVEKVIEWER", "tarvekviewer", "pbrush");
        find_program(kn_player_program, "TARVEKPLAYER", "tarvekplayer", "kelvox");
        find_program(kn_gnuplot_program, "TARVEKGNUPLOT", "tarvekgnuplot", "wgnuplot");
        trace("init const\n");
        set_constants();
    }
    ~Startup() {
        stop_engine();
        os::reset_floating_point();
        os::delete_locks();
        remove_crash_handlers();
    }
};

KN_FIRST(2) Startup startup;

} // namespace
} // namespace kn

KN_FIRST(2) variables_scope_t variables_scope;

void initM2(int version, int size_of_Mm) {
    if (version != QUORVEX_VERSION)
        error("Version mismatch - runtime version is %g but quorvex.h version is %g.",
              QUORVEX_VERSION * 0.001, version * 0.001);
    int own = static_cast<int>(sizeof(Mm));
    if (size_of_Mm != own)
        error("sizeof(Mm) mismatch - runtime size is %d but current size is %d", own, size_of_Mm);
    kn::os::guard_thread();
    kn::os::reset_floating_point();
    kn::set_constants();
}

void exitM() {
    guiexit(static_cast<double>(kn_interactive_flag));
    kn::os::reset_floating_point();
}

Mm exit() {
    exitM();
    std::exit(0);
}

Mm quit() { return exit(); }

unsigned kn_set_MT(int on) {
    kn_threads_flag = on;
    return kn::os::process_id();
}
