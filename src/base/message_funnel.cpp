// The one funnel of all messages: formatting entry points, handlers, flags, the pending error and the
// dialogs.
//
// An entry point formats into one buffer and hands it to a handler, so a handler consumes the text before it
// calls another entry point. The pending error stays in its buffer until it is shown (error_lasterr) or
// fetched (lasterr). All buffers are bounded: a longer text is cut. Each thread has its own buffers and its
// own pending error; handlers and flags belong to the process. This room knows no values.

#include "base/message_funnel.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "platform/platform.h"
#include "quorvex/messages.h"

namespace kn {

constinit thread_local char lasterr_buffer[text_size] = "";

namespace {

constexpr unsigned print_flag = 1, dialog_flag = 2, throw_flag = 16;
constexpr unsigned exclamation_style = 48;
constexpr char problem_title[] = "Problem";

thread_local char format_buffer[text_size];
thread_local int error_line = 0;
char error_file[512] = "";
const char *error_text = nullptr;
int handler_was_set = 0;
kn_box_handler box_handler = nullptr;

// The arguments may point into the buffer, as when a caught text is reported again.
const char *formatted(const char *fmt, va_list args) {
    char text[text_size];
    {
        const os::PlainNumbers plain;
        std::vsnprintf(text, sizeof text, fmt, args);
    }
    std::memcpy(format_buffer, text, std::strlen(text) + 1);
    return format_buffer;
}

// "Error FILE LINE: 'source line'" and the message. A line after the end of the text shows its last line.
void line_form(char *target, const char *msg) {
    const char *line = error_text ? error_text : "";
    for (int k = 1; k < error_line; ++k) {
        const char *end = std::strchr(line, '\n');
        if (!end) break;
        line = end + 1;
    }
    line += std::strspn(line, " \t");
    int length = static_cast<int>(std::strcspn(line, "\r\n"));
    std::snprintf(target, text_size, "%s %s %d: '%.*s'\n%s\n\n", "Error", error_file, error_line, length,
                  line, msg);
}

void append(char *buf, const char *text) {
    size_t used = std::strlen(buf);
    if (used < text_size) std::snprintf(buf + used, text_size - used, "%s", text);
}

// Breaks at the first blank at or after column 64.
void wrap(char *text) {
    int column = 0;
    for (; *text; ++text) {
        if (*text == '\n') {
            column = 0;
        } else if (column >= 64 && *text == ' ') {
            *text = '\n';
            column = 0;
        } else {
            ++column;
        }
    }
}

template <class F> F exchange_handler(F &handler, F f, F standard) {
    F old = handler;
    handler = f ? f : standard;
    handler_was_set = 1;
    return old;
}

// While a handler shows a message on this thread. What it reports itself goes to the default handlers: it
// would be called for ever.
constinit thread_local bool showing = false;
class Showing {
  public:
    Showing() { showing = true; }
    ~Showing() { showing = false; }
    Showing(const Showing &) = delete;
    Showing &operator=(const Showing &) = delete;
};

void show(const char *text) {
    if (showing) return kn_default_print(text);
    Showing scope;
    kn_print_handler(text);
}

} // namespace

void show_box(const char *text, const char *title, unsigned style, bool printed) {
    if (box_handler && !showing) {
        Showing scope;
        box_handler(text, title, style);
    } else if (!printed || os::has_dialogs()) {
        os::message_box(text, title, style);
    }
}

} // namespace kn

using namespace kn;

constinit kn_text_handler kn_print_handler = kn_default_print;
constinit kn_text_handler kn_error_handler = kn_default_error;
constinit kn_text_handler kn_warning_handler = kn_default_warning;
constinit kn_text_handler kn_message_handler = kn_default_message;
constinit kn_text_handler kn_logmessage_handler = kn_default_logmessage;
constinit kn_code_handler kn_debug_handler = kn_default_debug;

constinit unsigned kn_default_error_flags = 7;
constinit unsigned kn_default_warning_flags = 3;
constinit int kn_line_outside = 0;
QUORVEX_THREAD_LOCAL kn_error_stack_t kn_error_stack;

// -- Entry points.

#define KN_ENTRY_POINT(handler)              \
    va_list args;                            \
    va_start(args, fmt);                     \
    const char *text = formatted(fmt, args); \
    va_end(args);                            \
    handler(text);

void error(const char *fmt, ...) { KN_ENTRY_POINT(kn_error_handler) }
void warning(const char *fmt, ...) { KN_ENTRY_POINT(kn_warning_handler) }
void message(const char *fmt, ...) { KN_ENTRY_POINT(kn_message_handler) }
void logmessage(const char *fmt, ...) { KN_ENTRY_POINT(kn_logmessage_handler) }
void error(int line, const char *fmt, ...) {
    error_line = line;
    KN_ENTRY_POINT(kn_error_handler)
}
void warning(int line, const char *fmt, ...) {
    error_line = line;
    KN_ENTRY_POINT(kn_warning_handler)
}
#undef KN_ENTRY_POINT

// -- Setters.

kn_text_handler kn_set_print_handler(kn_text_handler f) {
    return exchange_handler(kn_print_handler, f, kn_default_print);
}
kn_text_handler kn_set_error_handler(kn_text_handler f) {
    return exchange_handler(kn_error_handler, f, kn_default_error);
}
kn_text_handler kn_set_warning_handler(kn_text_handler f) {
    return exchange_handler(kn_warning_handler, f, kn_default_warning);
}
kn_text_handler kn_set_message_handler(kn_text_handler f) {
    return exchange_handler(kn_message_handler, f, kn_default_message);
}
kn_text_handler kn_set_logmessage_handler(kn_text_handler f) {
    return exchange_handler(kn_logmessage_handler, f, kn_default_logmessage);
}
kn_code_handler kn_set_debug_handler(kn_code_handler f) {
    return exchange_handler(kn_debug_handler, f, kn_default_debug);
}

int kn_was_handler_set() { return handler_was_set; }

kn_box_handler kn_set_message_box_handler(kn_box_handler f) {
    kn_box_handler old = box_handler;
    box_handler = f;
    return old;
}

void kn_set_default_error_flags(unsigned mask, unsigned on) {
    kn_default_error_flags = on ? kn_default_error_flags | mask : kn_default_error_flags & ~mask;
}

void kn_set_default_warning_flags(unsigned mask, unsigned on) {
    kn_default_warning_flags = on ? kn_default_warning_flags | mask : kn_default_warning_flags & ~mask;
}

void kn_set_error_source(const char *file, const char *text) {
    std::snprintf(error_file, sizeof error_file, "%s", file ? file : "");
    error_text = text;
}

// -- Default handlers.

void kn_default_print(const char *text) {
    if (text) std::fputs(text, stdout);
}

void kn_default_error(const char *msg) {
    if (showing) kn_default_print(lasterr_buffer); // which the handler has not shown, and which ends here
    if (error_line < 1)
        std::snprintf(lasterr_buffer, text_size, "error: %s\n", msg);
    else
        line_form(lasterr_buffer, msg);
    if (kn_default_error_flags & throw_flag) throw msg;
    error_lasterr();
    os::end_process(1);
}

void kn_default_warning(const char *msg) {
    char text[text_size];
    if (error_line < 1)
        std::snprintf(text, sizeof text, "warning: %s\n\n", msg);
    else
        line_form(text, msg);
    bool print = kn_default_warning_flags & print_flag;
    if (print) show(text);
    if (kn_default_warning_flags & dialog_flag) show_box(text, problem_title, exclamation_style, print);
}

void kn_default_message(const char *msg) {
    bool print = kn_default_error_flags & print_flag;
    if (kn_default_error_flags & dialog_flag) show_box(msg, "Message", 0, print);
    if (!print) return;
    show(msg);
    show("\n");
}

void kn_default_logmessage(const char *msg) {
    show(msg);
    show("\n");
}

void kn_default_debug(int code, const char *text) { std::printf("DEBUG:%c %s\n", code, text ? text : ""); }

// -- The pending error.

void error_call_stack(char *buf) {
    int depth = kn_error_stack.depth < 512 ? kn_error_stack.depth : 512;
    for (int k = depth; k >= 1; --k) {
        char entry[600], file[501];
        const char *name = kn_error_stack.file[k];
        if (!os::copy_readable(file, sizeof file, name) && name)
            std::snprintf(file, sizeof file, "%08llX",
                          static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(name)));
        if (kn_error_stack.line[k])
            std::snprintf(entry, sizeof entry, "called from %s %d\n", file, kn_error_stack.line[k]);
        else
            std::snprintf(entry, sizeof entry, "called from %s\n", file);
        append(buf, entry);
    }
}

void error_lasterr() {
    if (!*lasterr_buffer) std::strcpy(lasterr_buffer, "Aborted!\n");
    error_call_stack(lasterr_buffer);
    wrap(lasterr_buffer);
    // Shown like a file path, whatever it is.
    for (char *c = lasterr_buffer; *c; ++c)
        if (*c == '/') *c = '\\';
    bool print = kn_default_error_flags & print_flag;
    if (print) {
        show(lasterr_buffer);
        show("\n");
    }
    if (kn_default_error_flags & dialog_flag)
        show_box(lasterr_buffer, problem_title, exclamation_style, print);
    *lasterr_buffer = '\0';
}
