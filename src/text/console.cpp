// The console: formatted output, the display format, input, waiting for a key, and the screen functions.

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "base/ascii.h"
#include "base/hooks.h"
#include "base/poll.h"
#include "base/scratch.h"
#include "platform/platform.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "quorvex/text.h"
#include "text/number_text.h"

namespace {

using namespace kn;

constexpr int line_size = 2048; // of a prompt and of the reply
constexpr unsigned poll_milliseconds = 10;

void default_input(char *buf, int size) {
    std::fflush(stdout);
    if (size > 0 && !os::read_line(buf, static_cast<size_t>(size))) *buf = '\0';
}

int default_kbhit() { return os::key_waiting(); }

template <class F> F exchange_hook(F &hook, F f, F standard) {
    F old = hook;
    hook = f ? f : standard;
    return old;
}

// Shows the prompt and lets the user type a line over it.
void ask(const Mm &prompt, char (&line)[line_size]) {
    console_hooks.draw();
    Mstr(prompt, line, line_size);
    kn_printf("%s\n", line);
    *line = '\0';
    kn_input_handler(line, line_size);
    line[line_size - 1] = '\0';
    kn_print_handler("\n");
}

// Whether the host cancelled the input, which is an error.
bool broken_off(const char *line) {
    if (std::strcmp(line, "ctrl_c_event") != 0) return false;
    error("Ctrl-C");
    return true;
}

} // namespace

constinit kn_input_hook kn_input_handler = default_input;
constinit kn_kbhit_hook kn_kbhit_handler = default_kbhit;
constinit kn_clc_hook kn_clc_handler = os::clear_screen;

kn_input_hook kn_set_input_handler(kn_input_hook f) {
    return exchange_hook(kn_input_handler, f, default_input);
}
kn_kbhit_hook kn_set_kbhit_handler(kn_kbhit_hook f) {
    return exchange_hook(kn_kbhit_handler, f, default_kbhit);
}
kn_clc_hook kn_set_clc_handler(kn_clc_hook f) {
    return exchange_hook<kn_clc_hook>(kn_clc_handler, f, os::clear_screen);
}

int kn_printf(const char *fmt, ...) {
    size_t size = std::strlen(fmt) + 16382;
    Scratch<char> text(static_cast<ptrdiff_t>(size));
    if (!text) return 0;
    *text.get() = '\0';
    va_list args;
    va_start(args, fmt);
    {
        const os::PlainNumbers plain;
        std::vsnprintf(text.get(), size, fmt, args);
    }
    va_end(args);
    kn_print_handler(text.get());
    return static_cast<int>(std::strlen(text.get()));
}

Mm format() { return format(TM("short")); }

Mm format(const Mm &mode) {
    char word[10];
    Mstr(mode, word, sizeof word);
    format_short = to_upper(*word) != 'L';
    return x_M;
}

Mm format(const Mm &mode, const Mm &) { return format(mode); }

Mm input(const Mm &prompt) {
    char line[line_size];
    ask(prompt, line);
    if (broken_off(line)) return x_M;
    if (*line == '\0') return nop_M;
    if (line[std::strspn(line, "0123456789dDeEfF.+-[] \t\r\n")] != '\0')
        warning("input: text is non-numeric, use input(...,'s')");
    return str2num(TM(line));
}

Mm input(const Mm &prompt, const Mm &) {
    char line[line_size];
    ask(prompt, line);
    line[std::strcspn(line, "\n")] = '\0';
    if (broken_off(line)) return x_M;
    return TM(line);
}

Mm pauseM() {
    console_hooks.draw();
    if (console_hooks.button_pressed() < 0 && kn_kbhit_handler == default_kbhit && !os::has_terminal()) {
        kn_print_handler("pause: standard input is no terminal, so there is no key to wait for\n");
        return x_M;
    }
    while (console_hooks.button_pressed() != 1 && !kn_kbhit_handler()) {
        if (interrupted()) return x_M;
        os::pause_milliseconds(poll_milliseconds);
    }
    kn_print_handler("\n");
    return x_M;
}

Mm clc() {
    kn_clc_handler();
    return x_M;
}

Mm home() {
    os::home_cursor();
    return x_M;
}

Mm usage(const Mm &m) {
    kn_print_handler("Usage: ");
    disp(m);
    return x_M;
}

Mm smiley() {
    kn_print_handler("8-)\n");
    return nop_M;
}
