#include "host/console.h"

#include <csignal>
#include <cstdio>

#ifdef _WIN32
#include <iostream>
#else
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#endif
#ifdef HOST_LIBEDIT
#include <editline/readline.h>

#include <cstdlib>
#endif

namespace {

volatile std::sig_atomic_t pressed = 0;

#ifdef _WIN32

void on_break(int) {
    std::signal(SIGINT, on_break);
    pressed = 1;
}
void catch_break() { std::signal(SIGINT, on_break); }
void forget_break() {}

Line read_line(std::string &line, const char *prompt) {
    std::fputs(prompt, stdout);
    std::fflush(stdout);
    if (std::getline(std::cin, line)) return Line::read;
    return pressed ? Line::broken : Line::ended;
}
#else

// The signal may arrive just before the process begins to wait, or in another thread. So the handler writes
// into a pipe, and whoever waits for a line waits for this pipe, too.
int wake[2];

void on_break(int) {
    pressed = 1;
    [[maybe_unused]] const ssize_t written = write(wake[1], "", 1); // a full pipe wakes as well
}

void catch_break() {
    if (pipe(wake) != 0) std::perror("pipe");
    for (int end : wake) fcntl(end, F_SETFL, O_NONBLOCK);
    struct sigaction action = {};
    action.sa_handler = on_break; // without SA_RESTART: a read is broken off
    sigaction(SIGINT, &action, nullptr);
}

void forget_break() {
    char bytes[64];
    while (read(wake[0], bytes, sizeof bytes) > 0) {
    }
}

// Standard input by read(2), since stdio would go on reading after a signal.
Line read_plain(std::string &line, const char *prompt) {
    static std::string waiting; // read, but not asked for yet
    static bool ended = false;
    if (isatty(STDIN_FILENO)) std::fputs(prompt, stdout);
    std::fflush(stdout);
    for (;;) {
        const size_t end = waiting.find('\n');
        if (end != std::string::npos || (ended && !waiting.empty())) {
            line = waiting.substr(0, end);
            waiting.erase(0, end == std::string::npos ? end : end + 1);
            return Line::read;
        }
        if (ended) return Line::ended;
        pollfd sources[] = {{wake[0], POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        if (poll(sources, 2, -1) < 0 && !pressed) continue;
        if (pressed) {
            if (isatty(STDIN_FILENO)) std::putchar('\n');
            waiting.clear();
            return Line::broken;
        }
        char bytes[4096];
        const ssize_t n = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (n > 0)
            waiting.append(bytes, static_cast<size_t>(n));
        else if (!pressed)
            ended = true;
    }
}

#ifdef HOST_LIBEDIT
// With history, where there is a prompt, and editing; a signal ends the call with a null.
Line read_edited(std::string &line, const char *prompt) {
    std::fflush(stdout);
    char *text = pressed ? nullptr : readline(prompt);
    if (!text) std::putchar('\n');
    if (!text) return pressed ? Line::broken : Line::ended;
    line = text;
    if (*text && *prompt) add_history(text);
    std::free(text);
    return Line::read;
}
Line read_line(std::string &line, const char *prompt) {
    return isatty(STDIN_FILENO) ? read_edited(line, prompt) : read_plain(line, prompt);
}
#else
Line read_line(std::string &line, const char *prompt) { return read_plain(line, prompt); }
#endif
#endif

} // namespace

void console::open() { catch_break(); }

Line console::read(std::string &line, const char *prompt) {
    const Line got = read_line(line, prompt);
    if (got == Line::broken) take_break();
    return got;
}

void console::input(char *buffer, int size) {
    std::string line;
    const Line got = read(line, "");
    if (got == Line::broken) line = "ctrl_c_event";
    std::snprintf(buffer, static_cast<size_t>(size), "%s", got == Line::ended ? "" : line.c_str());
}

bool console::take_break() {
    const bool was = pressed;
    pressed = 0;
    if (was) forget_break();
    return was;
}
