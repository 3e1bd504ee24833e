// Processes, floating-point state, messages, console and calendar on Windows.
#include "platform/platform.h"
#include "platform/win32_common.h"

#include <cmath>
#include <conio.h>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <float.h>
#include <io.h>
#include <new>
#include <string>

namespace kn::os {

namespace {

bool cursor_to_corner() {
    return _isatty(_fileno(stdout)) && SetConsoleCursorPosition(GetStdHandle(STD_OUTPUT_HANDLE), COORD{0, 0});
}

// Appends an argument to a command line as the C library of the started program parses it: in quotation
// marks, where backslashes before one, or before the end, are doubled.
void append_quoted(std::string &command, const char *word) {
    command += command.empty() ? "\"" : " \"";
    for (;; ++word) {
        std::size_t backslashes = std::strspn(word, "\\");
        word += backslashes;
        if (!*word || *word == '"') backslashes *= 2;
        command.append(backslashes, '\\');
        if (!*word) break;
        if (*word == '"') command += '\\';
        command += *word;
    }
    command += '"';
}

} // namespace

bool start_detached(const char *const *words) {
    if (!*words || !**words) return false;
    std::string command; // the call may write into it
    try {
        for (const char *const *word = words; *word; ++word) append_quoted(command, *word);
    } catch (const std::bad_alloc &) {
        return false;
    }
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process;
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr, nullptr,
                        &start, &process))
        return false;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}

unsigned process_id() { return GetCurrentProcessId(); }

void raise_thread_priority() { SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_HIGHEST); }

void end_process(int status) {
    write_out();
    ExitProcess(static_cast<UINT>(status));
}

bool set_environment(const char *name, const char *value) { return _putenv_s(name, value ? value : "") == 0; }

void reset_floating_point() {
    _fpreset();
    _clearfp();
    _controlfp(0x8001F, 0x8001F);
}

bool has_dialogs() { return true; }

void message_box(const char *text, const char *title, unsigned style) {
    MessageBoxA(GetForegroundWindow(), text, title, style);
}

bool has_terminal() { return _isatty(_fileno(stdin)) != 0; }

bool key_waiting() { return has_terminal() && _kbhit(); }

void home_cursor() {
    std::fflush(stdout);
    cursor_to_corner();
}

void clear_screen() {
    std::fflush(stdout);
    if (!cursor_to_corner()) return;
    const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
    CONSOLE_SCREEN_BUFFER_INFO screen;
    if (!GetConsoleScreenBufferInfo(console, &screen)) return;
    const DWORD cells = static_cast<DWORD>(screen.dwSize.X) * static_cast<DWORD>(screen.dwSize.Y);
    DWORD written;
    FillConsoleOutputCharacterA(console, ' ', cells, COORD{0, 0}, &written);
    FillConsoleOutputAttribute(console, screen.wAttributes, cells, COORD{0, 0}, &written);
}

long long coarse_milliseconds() { return static_cast<long long>(GetTickCount64()); }

bool local_time(double seconds, LocalTime &out) {
    if (!(std::abs(seconds) < 1e15)) return false;
    const __time64_t whole = static_cast<__time64_t>(std::floor(seconds));
    std::tm t;
    _tzset();
    if (_localtime64_s(&t, &whole) != 0) return false;
    out = {t.tm_year + 1900, t.tm_mon + 1, t.tm_mday,     t.tm_hour, t.tm_min, t.tm_sec + (seconds - whole),
           t.tm_wday,        t.tm_yday,    t.tm_isdst > 0};
    return true;
}

} // namespace kn::os
