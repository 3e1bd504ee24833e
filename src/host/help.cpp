// Console information: help on functions, the version, the memory in use.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "base/ascii.h"
#include "files/file_table.h"
#include "files/search_path.h"
#include "host/help_texts.h"
#include "platform/platform.h"
#include "quorvex/display.h"
#include "quorvex/library.h"
#include "quorvex/startup.h"

using namespace kn;

namespace {

using std::string_view;

constexpr int word_size = 256, line_size = 512;

bool holds(string_view text, string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(),
                       [](char a, char b) { return to_lower(a) == to_lower(b); }) != text.end();
}

void print_line(const kn_function &f) { kn_printf("%-20s %s\n", f.word, f.description); }

// "1, 2" from a set of counts.
void write_counts(char *out, size_t size, unsigned set) {
    *out = '\0';
    for (int n = 0; set >> n; ++n) {
        const size_t used = std::strlen(out);
        if (set >> n & 1) std::snprintf(out + used, size - used, used ? ", %d" : "%d", n);
    }
}

void describe(const kn_function &f) {
    char inputs[32], outputs[32];
    write_counts(inputs, sizeof inputs, f.inputs);
    write_counts(outputs, sizeof outputs, f.outputs);
    print_line(f);
    kn_printf("%-20s inputs: %s; outputs: %s\n", "", inputs, outputs);
    const HelpText *end = help_texts + help_text_count;
    const HelpText *help = std::lower_bound(help_texts, end, f.name, [](const HelpText &a, const char *name) {
        return std::strcmp(a.name, name) < 0;
    });
    if (help == end || std::strcmp(help->name, f.name) != 0) return;
    for (const char *line = help->text; *line;) {
        const int n = static_cast<int>(std::strcspn(line, "\n"));
        kn_printf("%.*s\n", n, line);
        line += n + (line[n] != '\0');
    }
}

// Prints the comment lines at the beginning of an M-file, or after its first line.
bool describe_file(const char *given) {
    char name[path_name_size];
    std::snprintf(name, sizeof name, "%s", given);
    const Stream file(path_open(mpath_pointer, nullptr, name, sizeof name, true));
    if (!file) return false;
    kn_printf("%s\n", name);
    char line[line_size];
    bool within = false;
    for (int number = 1; std::fgets(line, sizeof line, file.get()); ++number) {
        line[std::strcspn(line, "\r\n")] = '\0';
        const char *text = line + std::strspn(line, " \t");
        if (*text == '%') {
            within = true;
            kn_printf("%s\n", text + 1);
        } else if (within || number > 1) {
            break;
        }
    }
    return true;
}

} // namespace

Mm lookfor(const Mm &text) {
    char part[word_size];
    Mstr_row(text, part, sizeof part);
    const kn_function *list;
    const int n = kn_functions(&list);
    int found = 0;
    for (const kn_function *f = list; f < list + n; ++f) {
        if (!holds(f->word, part) && !holds(f->name, part) && !holds(f->description, part)) continue;
        print_line(*f);
        ++found;
    }
    if (!found) kn_printf("No function found for '%s'.\n", part);
    return x_M;
}

Mm help(const Mm &m) {
    char name[word_size];
    Mstr_row(m, name, sizeof name);
    const kn_function *f = kn_find_function(name);
    if (f) describe(*f);
    if ((*name && describe_file(name)) || f) return x_M;
    return lookfor(m);
}

Mm helpwin() { return lookfor(TM("")); }
Mm helpwin(const Mm &name) { return name.size() < 1 ? helpwin() : help(name); }

Mm version() {
    char text[16];
    const os::PlainNumbers plain;
    std::snprintf(text, sizeof text, "%g", QUORVEX_VERSION * 0.001);
    return TM(text);
}

Mm memory() {
    constexpr double megabyte = 1024.0 * 1024.0;
    auto line = [](const char *what, size_t bytes) {
        kn_printf("%-24s %10.1f MB\n", what, static_cast<double>(bytes) / megabyte);
    };
    line("memory of the machine", os::physical_memory());
    line("in use by this process", os::process_memory());
    return x_M;
}
