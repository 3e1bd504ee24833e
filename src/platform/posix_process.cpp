// Processes, floating-point state, messages, console and calendar on Linux.
#include "platform/platform.h"
#include "platform/posix_file_name.h"

#include <cerrno>
#include <cfenv>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __SSE2__
#include <xmmintrin.h>
#endif

namespace kn::os {

namespace {

// Runs in the child: starts a program in a new session, which this process does not wait for. Returns
// when it did not start.
void start_session(const char *file, const char *const *words) {
    setsid();
    const pid_t program = fork();
    if (program > 0) _exit(0);
    if (program < 0) return;
    const int nothing = open("/dev/null", O_RDONLY);
    if (nothing >= 0) dup2(nothing, STDIN_FILENO);
    if (nothing > STDIN_FILENO) close(nothing);
    execvp(file, const_cast<char *const *>(words));
}

void write_to_terminal(const char *sequence) {
    if (!isatty(STDOUT_FILENO)) return;
    std::fputs(sequence, stdout);
    std::fflush(stdout);
}

} // namespace

// The child process starts the program and ends, so that the library need not wait for the
// program. A pipe reports whether it started: it closes when it has.
bool start_detached(const char *const *words) {
    int told[2];
    if (!*words || !**words || pipe2(told, O_CLOEXEC) != 0) return false;
    const SystemName file(*words);
    const pid_t child = fork();
    if (child == 0) {
        start_session(file, words);
        const ssize_t written = write(told[1], "", 1);
        _exit(written == 1 ? 127 : 126);
    }
    close(told[1]);
    char failed;
    ssize_t n;
    do n = read(told[0], &failed, 1);
    while (n < 0 && errno == EINTR);
    close(told[0]);
    while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    return child > 0 && n == 0;
}

unsigned process_id() { return static_cast<unsigned>(getpid()); }

void raise_thread_priority() {
    errno = 0;
    if (getpriority(PRIO_PROCESS, 0) == 0 && errno == 0) setpriority(PRIO_PROCESS, 0, -2);
}

void end_process(int status) {
    write_out();
    _exit(status);
}

bool set_environment(const char *name, const char *value) {
    return (value ? setenv(name, value, 1) : unsetenv(name)) == 0;
}

void reset_floating_point() {
    std::fesetenv(FE_DFL_ENV);
#ifdef __SSE2__
    _mm_setcsr(0x1F80); // also the bits for denormals, which the C library may leave alone
#endif
}

bool has_dialogs() { return false; }

void message_box(const char *text, const char *title, unsigned) {
    std::fprintf(stderr, "%s: %s\n", title, text);
    std::fflush(stderr);
}

bool has_terminal() { return isatty(STDIN_FILENO); }

bool key_waiting() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return has_terminal() && poll(&input, 1, 0) > 0 && (input.revents & POLLIN);
}

void clear_screen() { write_to_terminal("\x1b[2J\x1b[H"); }

void home_cursor() { write_to_terminal("\x1b[H"); }

long long coarse_milliseconds() {
#ifdef CLOCK_MONOTONIC_COARSE
    constexpr clockid_t clock = CLOCK_MONOTONIC_COARSE;
#else
    constexpr clockid_t clock = CLOCK_MONOTONIC;
#endif
    timespec t = {};
    clock_gettime(clock, &t);
    return t.tv_sec * 1000LL + t.tv_nsec / 1000000;
}

bool local_time(double seconds, LocalTime &out) {
    if (!(std::abs(seconds) < 1e15)) return false;
    const std::time_t whole = static_cast<std::time_t>(std::floor(seconds));
    std::tm t;
    tzset();
    if (!localtime_r(&whole, &t)) return false;
    out = {t.tm_year + 1900, t.tm_mon + 1, t.tm_mday,     t.tm_hour, t.tm_min, t.tm_sec + (seconds - whole),
           t.tm_wday,        t.tm_yday,    t.tm_isdst > 0};
    return true;
}

} // namespace kn::os
