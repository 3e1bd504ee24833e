// Making, removing and changing directories, removing and copying files, file names, the environment.

#include <atomic>
#include <cstring>
#include <string_view>

#include "base/scratch.h"
#include "files/file_table.h"
#include "files/stream_calls.h"
#include "platform/platform.h"
#include "quorvex/display.h"
#include "quorvex/files.h"
#include "quorvex/startup.h"
#include "text/text_buffer.h"
#include "value/header.h"

using namespace kn;

namespace {

constexpr char file_separator = '\\';

struct Name {
    char text[513];
    explicit Name(const Mm &m) { Mstr_row(m, text, sizeof text); }
    operator const char *() const { return text; }
};

// 1, or 0 and a warning.
Mm done(bool ok, const char *what, const char *name) {
    if (!ok) warning("Could not %s %s", what, name);
    return ok ? 1.0 : 0.0;
}

constexpr int longest_value = 1 << 15; // of an environment variable

} // namespace

Mm mkdir(const Mm &name) {
    const Name n(name);
    if (*n.text && os::is_directory(n)) return 2.0;
    return done(os::make_directory(n), "make directory", n);
}

Mm rmdir(const Mm &name) {
    const Name n(name);
    return done(os::remove_directory(n), "remove directory", n);
}

Mm cd(const Mm &name) {
    const Name n(name);
    return done(os::change_directory(n), "change directory to", n);
}

Mm chdir(const Mm &name) { return cd(name); }

Mm pwd() {
    char name[8192];
    return TM(os::current_directory(name, sizeof name) ? name : "");
}

Mm cd() {
    char name[8192];
    if (!os::current_directory(name, sizeof name)) *name = '\0';
    name[511] = '\0';
    return TM(name);
}

Mm deleteM(const Mm &x) {
    if (x.isstr())
        os::remove_file(Name(x));
    else
        error("%s is not yet implemented", "deleteobj");
    return x_M;
}

Mm copyfile(const Mm &from, const Mm &to) {
    const Name source(from), target(to);
    switch (os::copy_file(source, target)) {
    case os::Copied::all: return 1.0;
    case os::Copied::no_source: error("copyfile:Could not read %s", source.text); break;
    case os::Copied::no_target: error("copyfile:Could not write %s", target.text); break;
    case os::Copied::not_all: error("copyfile:Failed on copy");
    }
    return 0.0;
}

Mm filesep() {
    const char text[] = {file_separator, '\0'};
    return TM(text);
}

Mm pathsep() { return TM(";"); }

Mm fullfile(const Mm &parts) {
    const bool several = is_cell(parts);
    TextBuffer whole;
    for (int k = 1; k <= (several ? parts.size() : 1); ++k) {
        const Name part(several ? parts.safebr(k) : parts);
        std::string_view text(part);
        if (k > 1) {
            whole.append(file_separator);
            if (!text.empty() && os::is_separator(text.front())) text.remove_prefix(1);
        }
        if (!text.empty() && os::is_separator(text.back())) text.remove_suffix(1);
        whole.append(text);
    }
    return whole ? TM(whole.c_str()) : x_M;
}

Mm tempdir() {
    char name[file_name_size];
    TextBuffer out;
    for (const char *variable : {"TMPDIR", "TEMP", "TMP"})
        if (os::environment(variable, name, sizeof name) && *name && os::is_directory(name)) {
            out.append(name);
            break;
        }
    if (out.size() == 0) out.append(os::is_directory("/tmp") ? "/tmp" : ".");
    if (!os::is_separator(out.view().back())) out.append(os::separator);
    return out ? TM(out.c_str()) : x_M;
}

Mm tempname() {
    static std::atomic<unsigned> count = 0;
    const Mm directory = tempdir();
    char name[2 * file_name_size], whole[file_name_size];
    Mstr_row(directory, name, file_name_size);
    do std::snprintf(whole, sizeof whole, "%.900stp%u_%u", name, os::process_id(), ++count);
    while (os::file_exists(whole));
    return TM(whole);
}

Mm getenv(const Mm &name) {
    char value[longest_value];
    os::environment(Name(name), value, sizeof value);
    return TM(value);
}
