// Modules, processes, floating-point state, messages, console and calendar on Linux.
#include "platform/platform.h"
#include "platform/posix_name.h"

#include <cerrno>
#include <cfenv>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __SSE2__
#include <xmmintrin.h>
#endif

namespace kn::os {

namespace {

// The program that a command line begins with, or the empty text where only the shell can tell.
std::string program_of(const char *line) {
    const char quote = *line == '"' || *line == '\'' ? *line : 0;
    const std::string rest(line + (quote != 0));
    const std::string word = rest.substr(0, quote ? rest.find(quote) : rest.find_first_of(" \t\r\n"));
    return word.find_first_of("$`\\\"'(){}[];&|<>*?=~#!") == std::string::npos ? word : "";
}

void write_to_terminal(const char *sequence) {
    if (!isatty(STDOUT_FILENO)) return;
    std::fputs(sequence, stdout);
    std::fflush(stdout);
}

} // namespace

Module load_module(const char *path, char *why, std::size_t why_size) {
    const SystemName name(path);
    char file[PATH_MAX];
    // The loader looks for a bare name only where libraries are kept, and takes the empty one for this
    // program.
    const bool here = !*path || (!std::strchr(name, '/') && file_exists(path));
    const bool fits = std::snprintf(file, sizeof file, "%s%s", here ? "./" : "",
                                    static_cast<const char *>(name)) < static_cast<int>(sizeof file);
    void *module = fits ? dlopen(file, RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!module) {
        const char *reason = fits ? dlerror() : "name too long";
        std::snprintf(why, why_size, "%s", reason ? reason : "");
    }
    return static_cast<Module>(module);
}

void *find_symbol(Module module, const char *name) { return module ? dlsym(module, name) : nullptr; }

void unload_module(Module module) {
    if (module) dlclose(module);
}

const char *module_suffix() { return ".so"; }

// One shell, in a session of its own, looks whether the program exists, leaves the command running behind it
// and ends; it is the only child to be waited for.
bool start_detached(const char *command_line) {
    const char *command = command_line + std::strspn(command_line, " \t\r\n");
    if (!*command) return false;

    const std::string program = program_of(command);
    const char *script = "[ -z \"$2\" ] || command -v \"$2\" >/dev/null 2>&1 || exit 127\n"
                         "/bin/sh -c \"$1\" </dev/null &";
    const char *words[] = {"sh", "-c", script, "sh", command, program.c_str(), nullptr};

    posix_spawnattr_t attributes;
    if (posix_spawnattr_init(&attributes) != 0) return false;
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t shell;
    const int failed =
        posix_spawn(&shell, "/bin/sh", nullptr, &attributes, const_cast<char *const *>(words), environ);
    posix_spawnattr_destroy(&attributes);
    if (failed) return false;

    int status = 0;
    pid_t waited;
    do waited = waitpid(shell, &status, 0);
    while (waited < 0 && errno == EINTR);
    if (waited < 0) return true; // the host lets its children vanish untold
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

unsigned process_id() { return static_cast<unsigned>(getpid()); }

void raise_thread_priority() {
    errno = 0;
    if (getpriority(PRIO_PROCESS, 0) == 0 && errno == 0) setpriority(PRIO_PROCESS, 0, -2);
}

void end_process(int status) {
    std::fflush(stdout);
    std::fflush(stderr);
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

bool key_waiting() {
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return isatty(STDIN_FILENO) && poll(&input, 1, 0) > 0 && (input.revents & POLLIN);
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

double processor_time() {
    timespec t = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
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
