// Start and end of the library. What needs a separate process, with an environment or a fault, runs in a
// child: this program again, or a fork of it.
#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>

#include "base/static_order.h"
#include "platform/platform.h"
#include "support/support.h"
#include "value/constants.h"
#include "value/header.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

// A child that is asked to show its start-up prints the trace and the three programs, and ends.
constexpr char show_startup[] = "QUORVEX_TEST_SHOW_STARTUP";

struct BeforeStartup {
    BeforeStartup() { kn_startup_trace = std::getenv(show_startup) != nullptr; }
};
struct AfterStartup {
    AfterStartup() {
        if (!std::getenv(show_startup)) return;
        std::printf("%s|%s|%s", kn_viewer_program, kn_player_program, kn_gnuplot_program);
        kn::os::end_process(0);
    }
};
KN_FIRST(1) BeforeStartup before_startup;
AfterStartup after_startup;

KN_FIRST(3) const Mm static_value = pi * sum(test::row({1, 2})); // a program's own find the library ready

// -- Constants and markers.

uint64_t bits(const Mm &m) { return std::bit_cast<uint64_t>(m.r()); }

void expect_constants() {
    EXPECT_EQ(bits(pi), 0x400921FB54442D18u);
    EXPECT_EQ(bits(Inf), 0x7FF0000000000000u);
    EXPECT_EQ(bits(NaN), 0x7FFFFFFFFFFFFFFFu);
    EXPECT_SAME(one_M, Mm(1.0));
    EXPECT_SAME(i, test::C(0, 1));
    for (const Mm *m :
         {&l_M, &semi, &c_p, &nop_M, &page_screen_output, &implicit_str_to_num_ok, &empty_list_elements_ok}) {
        EXPECT_SAME(*m, Mm());
        EXPECT_TRUE(kn::same_block(*m, ans));
    }
    EXPECT_FALSE(kn::same_block(x_M, ans));
    EXPECT_EQ(kn::nothing_M.gettype(), kn_none);
}

TEST(Startup, constants_stand_at_load_and_have_their_names) {
    expect_constants();
    EXPECT_SAME(static_value, pi * 3.0);
    for (auto [m, name] :
         {std::pair{&kn::nothing_M, "nothing"}, {&x_M, "x_M"}, {&nop_M, "[]"}, {&one_M, "1"}})
        EXPECT_STREQ(m->getname(), name);
}

TEST(Startup, initM2_restores_what_a_program_overwrote) {
    const Mm before = pi; // another holder sees nothing of it
    pi = 3.0, i = test::M({{1, 2}}), nop_M = TM("text"), x_M = test::cell_of(1, 1, {1.0});
    initM2(QUORVEX_VERSION, sizeof(Mm));
    expect_constants();
    EXPECT_SAME(before, pi);
    EXPECT_TRUE(c_p.issamename(kn_colon_name) && semi.issamename(kn_semi_name) && l_M.issamename(kn_l_name));
}

TEST(Startup, initM2_checks_what_the_caller_was_built_with) {
    constexpr char version[] = "Version mismatch - runtime version is 4.5 but quorvex.h version is 4.4.";
    int size = sizeof(Mm);
    std::string sizes = "sizeof(Mm) mismatch - runtime size is " + std::to_string(size) +
                        " but current size is " + std::to_string(size + 8);
    EXPECT_RAISES(initM2(4400, size), version);
    test::Returning errors;
    pi = 3.0;
    initM2(4400, size + 8);
    EXPECT_EQ(errors.errors(), (std::vector<std::string>{version, sizes}));
    expect_constants();
}

TEST(Startup, arithmetic_takes_no_traps_and_rounds_to_nearest) {
    volatile double zero = 0, third = 3, tiny = 4e-308;
    volatile double nearest = 1 / third; // here, not after the change of mode
    for (void (*reset)() : {+[] { initM2(QUORVEX_VERSION, sizeof(Mm)); }, exitM}) {
        std::fesetround(FE_UPWARD);
        std::feclearexcept(FE_ALL_EXCEPT); // a pending one would trap at once
#ifdef __GLIBC__
        feenableexcept(FE_ALL_EXCEPT);
#endif
        reset();
        EXPECT_EQ(1 / zero, HUGE_VAL);
        EXPECT_EQ(1 / third, nearest);
        EXPECT_GT(tiny / 16, 0) << "denormals are kept";
    }
}

// -- Children.

#ifdef __linux__

// What this program prints that starts with these variables added to an environment without the six.
std::string started_with(const std::string &variables) {
    std::string command =
        "env -u TARVEKVIEWER -u tarvekviewer -u TARVEKPLAYER -u tarvekplayer -u TARVEKGNUPLOT"
        " -u tarvekgnuplot " +
        variables + " '" + std::filesystem::read_symlink("/proc/self/exe").string() + "'";
    std::FILE *child = popen(command.c_str(), "r");
    std::string out;
    for (int c; child && (c = std::fgetc(child)) != EOF;) out += static_cast<char>(c);
    EXPECT_TRUE(child && pclose(child) == 0);
    return out;
}

TEST(StartupChild, traces_its_steps_and_finds_the_programs) {
    const std::string show = std::string(show_startup) + "=1 ";
    const std::string trace = "InitCS\nassert\nresetfpu\nsignal\ngetenv\ninit const\n";
    EXPECT_EQ(started_with(show + "TARVEKVIEWER=up tarvekviewer=low tarvekplayer='a player' TARVEKGNUPLOT="),
              trace + "up|a player|");
    EXPECT_EQ(started_with(show + "TARVEKVIEWER=" + std::string(400, 'v')),
              trace + std::string(255, 'v') + "|kelvox|wgnuplot");
}

void fault() { *static_cast<volatile char *>(kn::os::reserve(kn::os::page_size(), kn::os::page_size())) = 1; }

// Everything shown goes to the standard error that the parent reads.
void show_on_stderr() {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    kn_set_error_handler(nullptr);
    kn_set_message_box_handler([](const char *text, const char *title, unsigned style) {
        std::fprintf(stderr, "<%s|%s|%u>", title, text, style);
        std::fflush(stderr);
    });
    kn_error_stack.depth = 1;
    kn_error_stack.file[1] = "prog.m";
    kn_error_stack.line[1] = 5;
}

TEST(StartupChild, a_fault_shows_code_and_call_stack_and_goes_on) {
    auto crash = [] {
        show_on_stderr();
        kn_error_stack.depth = 2;
        kn_error_stack.line[2] = 0;
        kn_error_stack.file[2] = reinterpret_cast<const char *>(uintptr_t{0x10});
        fault();
    };
    auto died = [](int status) { return status != 0; }; // by the signal, or by a sanitizer's handler
    const std::string text =
        "Exception code: C0000005 ACCESS_VIOLATION\n\ncalled from 00000010\ncalled from prog\\.m 5\n";
    EXPECT_EXIT(crash(), died, "^<Application crash!\\|" + text + "\\|48>\nApplication crash!\n\n" + text);
}

void uncaught(void (*work)()) noexcept { work(); }

const std::string pending = "error: pending\ncalled from prog\\.m 5\n";

void end_with_pending_error(void (*end)(), const char *file) {
    show_on_stderr();
    kn_default_error_flags = 16 | 1;
    fprintf(fopen(TM(file), TM("w")), TM("kept"));
    try {
        error("pending");
    } catch (const char *) {
        end();
    }
}

TEST(StartupChild, the_last_words_are_a_pending_error_and_files_are_written_out) {
    const std::tuple<void (*)(), int, std::string> ends[] = {
        {fault, 1, "^" + pending + "\n$"},
        {[] { uncaught([] { throw; }); }, 1, "^" + pending + "\n$"},
        {[] { uncaught([] { throw std::runtime_error("foreign"); }); }, -1,
         "^" + pending + "\n(.|\n)*foreign"},
        {[] { kn_set_default_error_flags(16, 0), error("at the end"); }, 1, "^error: at the end\n"},
        {[] { // a handler that reports
             kn_set_print_handler([](const char *) { warning("late"), error("nested"); });
             kn_set_default_error_flags(16, 0), error("pending");
         },
         1, "^warning: late\n\n" + pending + "error: nested\n"},
    };
    const std::string file = testing::TempDir() + "quorvex_last_words_" + std::to_string(getpid());
    for (const auto &[end, code, text] : ends) {
        auto ended = [code = code](int status) {
            return code < 0 ? status != 0 : WIFEXITED(status) && WEXITSTATUS(status) == code;
        };
        EXPECT_EXIT(end_with_pending_error(end, file.c_str()), ended, text);
        std::ifstream written(file);
        std::string content;
        EXPECT_TRUE(written >> content && content == "kept");
        std::filesystem::remove(file);
    }
}

__attribute__((noinline)) int overflow_stack(volatile char *above) {
    volatile char frame[512];
    frame[0] = above ? above[0] : 1;
    return above && above[0] == 0 ? 0 : overflow_stack(frame) + frame[0];
}

TEST(StartupChild, an_overflowing_stack_is_told_in_any_thread_that_uses_values) {
    auto crash = [] {
        show_on_stderr();
        kn_set_MT(1);
        std::thread([] {
            Mm value = test::row({1, 2});
            overflow_stack(nullptr);
        }).join();
    };
    EXPECT_EXIT(
        crash(), [](int status) { return status != 0; }, "STACK_OVERFLOW|stack-overflow");
}

#endif

} // namespace
