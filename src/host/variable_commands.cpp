// The language's functions about variables: clear, exist, which, who, whos, openvar.

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "base/ascii.h"
#include "base/wildcard.h"
#include "files/search_path.h"
#include "host/workspace.h"
#include "platform/platform.h"
#include "quorvex/arrays.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/evaluation.h"
#include "quorvex/matfiles.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "value/fields.h"
#include "value/header.h"
#include "value/keyword.h"

using namespace kn;

namespace {

constexpr int max_exist_name = 512, max_which_name = 1024, max_open_name = 40;

bool has_value(const Mm *m) { return m && m->gettype() != kn_none; }

// Like `size`, but also for a variable without a value.
Mm extents(const Mm &m) {
    const int n = m.getndims();
    Mm row(0, 0, 0, 1, n, kn_double);
    if (!lacks(row, n)) std::copy_n(m.getdims(), n, row.addr());
    return row;
}

// The structures for columns with name, size, bytes and class.
Mm whos_of(const Mm &columns) {
    if (columns.size() == 0) return columns;
    const Mm names = (CL(TM("name")), TM("size"), TM("bytes"), TM("class"));
    return cell2struct(columns, transpose(names), one_M);
}

// The `name` fields of a result of whos.
Mm names_of(const Mm &list) {
    const kn_size n = list.isstruct() ? list.size() : 0;
    Mm names = cell(n, 1.0);
    for (kn_size k = 1; k <= n && n == names.size(); ++k) names.mr(k) = Mm(list(k).member("name"));
    return names;
}

// Starts the viewer in the host's directory with the process number and the address of the value.
bool start_viewer(const Mm &value) {
    const char *directory = mpath_pointer ? mpath_pointer->host_directory : "";
    const size_t n = std::strlen(directory);
    const bool ended = n == 0 || os::is_separator(directory[n - 1]);
    char program[sizeof mpath_pointer->host_directory + 16], process[16], address[24];
    std::snprintf(program, sizeof program, "%s%.*solenview.exe", directory, ended ? 0 : 1, &os::separator);
    std::snprintf(process, sizeof process, "%u", os::process_id());
    std::snprintf(address, sizeof address, "%llu",
                  static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(&value)));
    const char *const words[] = {program, process, address, nullptr};
    return os::start_detached(words);
}

} // namespace

Mm clear() {
    Scopes::remove_all(Scopes::level());
    return x_M;
}

Mm clear(const Mc &list) {
    for (int k = 0; k < list.count(); ++k) {
        Mm &value = const_cast<Mm &>(list.item(k));
        if (Scopes::remove(value)) value = nop_M;
    }
    return x_M;
}

Mm clear(const kn_names &names) {
    auto clear_level = [](int level, const char *pattern = "*") {
        for (int k = Scopes::count(level); k-- > 0;)
            if (k < Scopes::count(level) && matches(pattern, Scopes::value(k, level)->getname()))
                Scopes::clear(*Scopes::value(k, level));
    };
    const kn_size n = names.texts.size();
    char name[max_variable_name];
    auto read_name = [&](kn_size k) {
        *name = '\0';
        Mstr_row(names.texts.safebr(k), name, sizeof name);
    };
    for (kn_size k = 1; k <= n; ++k) {
        read_name(k);
        if (is_variable_name(name) || std::strchr(name, '*')) continue;
        error("clear: %s is no name of a variable", name);
        return x_M;
    }
    if (n == 0) clear_level(Scopes::level());
    for (kn_size k = 1; k <= n; ++k) {
        read_name(k);
        const bool all = std::strcmp(name, "all") == 0;
        if (Mm *value = Scopes::lookup(name, Scopes::level())) {
            Scopes::clear(*value);
        } else if (all || std::strcmp(name, "variables") == 0 || std::strcmp(name, "global") == 0) {
            if (all || *name == 'v') clear_level(Scopes::level());
            if (all || *name == 'g') clear_level(0);
        } else if (std::strchr(name, '*')) {
            clear_level(Scopes::level(), name);
        }
    }
    return x_M;
}

int exist(const Mm &m) {
    if (!m.isstr()) {
        error("exist: argument is not string");
        return 0;
    }
    char name[path_name_size];
    Mstr(m, name, max_exist_name);
    if (std::strcmp(name, "_TARVEK_") == 0) return 9;
    if (has_value(Scopes::lookup(name, Scopes::level()))) return 1;
    char found[path_name_size];
    std::strcpy(found, name);
    if (*name && find_m_file(found, sizeof found)) return 2;
    return os::is_directory(name) ? 7 : 0;
}

int exist(const Mm &name, const Mm &kind) {
    constexpr struct {
        const char *kind;
        int answer;
    } kinds[] = {{"var", 1}, {"builtin", 5}, {"file", 2}, {"dir", 7}};
    const int answer = exist(name);
    for (const auto &row : kinds)
        if (row.answer == answer && is_word(kind, row.kind)) return answer;
    return 0;
}

Mm which(const Mm &m) {
    char name[max_which_name];
    Mstr(m, name, sizeof name);
    if (Scopes::find(name, Scopes::level()) >= 0) return TM("a variable");
    return TM(find_m_file(name, sizeof name) ? name : "unknown");
}

Mm whos() {
    const int level = Scopes::level(), n = Scopes::count(level);
    Mm columns = cell(n > 0 ? 4.0 : 0.0, n);
    if (lacks(columns, 4 * n)) return x_M;
    for (int k = 0; k < n; ++k) {
        const Mm &value = *Scopes::value(k, level);
        columns.mr(1, k + 1) = TM(value.getname());
        columns.mr(2, k + 1) = extents(value);
        columns.mr(3, k + 1) = value.size() * 8.0;
        columns.mr(4, k + 1) = mclass(value);
    }
    return whos_of(columns);
}

Mm whos(const Mm &, const Mm &file) { return whos_of(kn_matfile_variables(file)); }

Mm who() { return names_of(whos()); }
Mm who(const Mm &keyword, const Mm &file) { return names_of(whos(keyword, file)); }

Mm openvar(const Mm &m) {
    char text[max_open_name];
    Mstr(m, text, sizeof text);
    const char *name = text;
    while (is_white(*name)) ++name;
    if (const Mm *value = Scopes::lookup_visible(name)) {
        if (!start_viewer(*value)) display(*value);
    } else {
        kn_printf("Variable '%s' not found.\n", name);
    }
    return x_M;
}
