// Start and end of the library.
//
// The order of static objects is fixed by their order in this file, which comes before all others (KN_FIRST):
// the named values, the start-up object, and the workspace. Everything else of the library that is
// static is initialised at compile time. A program's own static values may therefore use the library.

#include "quorvex/startup.h"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "core/constants.h"
#include "core/header.h"
#include "core/numbers.h"
#include "platform/platform.h"
#include "quorvex/graphics.h"
#include "quorvex/workspace.h"
#include "runtime/crash.h"
#include "runtime/engine.h"
#include "runtime/message_funnel.h"

#if defined(__GNUC__)
#define KN_FIRST __attribute__((init_priority(200)))
#else
#define KN_FIRST
#endif

constinit int kn_threads_flag = 0;
constinit int kn_interactive_flag = 0;
constinit int kn_startup_trace = 0;
constinit char kn_viewer_program[256] = "", kn_player_program[256] = "", kn_gnuplot_program[256] = "";
constinit const char *kn_l_name = nullptr, *kn_semi_name = nullptr, *kn_colon_name = nullptr;

KN_FIRST Mm kn::nothing_M(i_o, "nothing", 0);
KN_FIRST Mm TICTOC(i_o, "TICTOC", 0);
KN_FIRST Mm ans(i_o, "ans", 0);
KN_FIRST Mm i(i_o, "i", 0);
KN_FIRST Mm j(i_o, "j", 0);
KN_FIRST Mm pi(i_o, "pi", 0);
KN_FIRST Mm Inf(i_o, "Inf", 0);
KN_FIRST Mm NaN(i_o, "NaN", 0);
KN_FIRST Mm eps(i_o, "eps", 0);
KN_FIRST Mm x_M(i_o, "x_M", 0);
KN_FIRST Mm semi(i_o, ";", 0);
KN_FIRST Mm c_p(i_o, ":", 0);
KN_FIRST Mm nop_M(i_o, "[]", 0);
KN_FIRST Mm one_M(i_o, "1", 0);
KN_FIRST Mm zero_M(i_o, "0", 0);
KN_FIRST Mm l_M(i_o, "l_M", 0);
KN_FIRST Mm page_screen_output(i_o, "page_screen_output", 0);
KN_FIRST Mm implicit_str_to_num_ok(i_o, "implicit_str_to_num_ok", 0);
KN_FIRST Mm empty_list_elements_ok(i_o, "empty_list_elements_ok", 0);
KN_FIRST Mm switchvar(i_o, "switchvar", 0);

namespace kn {
namespace {

// Constants have blocks that nobody counts, so that threads can share them.
struct Constant {
    Mm &value;
    int nnz;
    double re, im;
    StaticBlock block = {};
};

constinit Constant constants[] = {
    {x_M, 0, 0, 0},
    {i, 1, 0, 1},
    {NaN, 1, raw_nan, 0},
    {Inf, 1, raw_inf, 0},
    {pi, 1, std::bit_cast<double>(uint64_t{0x400921FB54442D18}), 0},
    {eps, 1, raw_eps, 0},
    {zero_M, 1, 0, 0},
    {one_M, 1, 1, 0},
};

// Gives the constants and markers their values. Before the named values stand there is nothing to do.
void set_constants() {
    if (!ans.addr()) return;
    const Mm empty;
    for (Mm *m : {&ans, &l_M, &semi, &c_p, &nop_M, &page_screen_output, &implicit_str_to_num_ok,
                  &empty_list_elements_ok})
        *m = empty;
    TICTOC = 0.0;
    for (Constant &c : constants) {
        c.block.data[0] = c.re;
        c.block.data[number_room] = c.im;
        const Mm value = Header::constant(c.block, c.nnz, c.im != 0);
        c.value = value;
    }
    j = i;
    kn_l_name = l_M.getname();
    kn_semi_name = semi.getname();
    kn_colon_name = c_p.getname();
}

void trace(const char *word) {
    if (kn_startup_trace) std::fputs(word, stdout);
}

// An external program: from the upper-case variable, else the lower-case one, else the default.
void find_program(char (&program)[256], const char *upper, const char *lower, const char *standard) {
    if (!os::environment(upper, program, sizeof program) && !os::environment(lower, program, sizeof program))
        std::snprintf(program, sizeof program, "%s", standard);
}

class Startup {
  public:
    Startup() {
        start_engine();
        os::raise_thread_priority();
        install_last_words();
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
        remove_last_words();
    }
};

KN_FIRST Startup startup;

} // namespace
} // namespace kn

KN_FIRST variables_scope_t variables_scope;

int kn_has_value(const Mm &m) { return m.gettype() != kn_none && !kn::same_block(m, x_M); }

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
