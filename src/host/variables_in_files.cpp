// load and save with the names of workspace variables, as a command gives them: save f x y.

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "base/wildcard.h"
#include "files/mat/matfile.h"
#include "host/workspace.h"
#include "platform/platform.h"
#include "quorvex/display.h"
#include "quorvex/matfiles.h"
#include "quorvex/startup.h"

using namespace kn;

namespace {

using Save = Mm (*)(const Mm &name, const Mc &list);

struct Option {
    const char *word;
    Save save;
};
constexpr Option options[] = {{"-append", saveappend}, {"-ascii", saveascii}, {"-v4", saveV4}};

// Adds the variables of the current level that have a value and a name that matches the pattern. Returns
// whether there are any.
bool add_all(Mc &list, const char *pattern) {
    const int level = Scopes::level();
    const kn_size before = list.count();
    for (int k = 0; k < Scopes::count(level); ++k)
        if (const Mm &value = *Scopes::value(k, level);
            value.gettype() != kn_none && matches(pattern, value.getname()))
            list, value;
    return list.count() > before;
}

// The arguments of the command: the first that is no option is the file, the others are variables.
Mm save_named(const char *caller, const Mm &first, const Mm &texts, Save save) {
    Mc list;
    Mm file = nop_M;
    bool named = false;
    for (int k = 0; k <= texts.size(); ++k) {
        char name[max_variable_name] = "";
        const Mm word = k > 0 ? texts.safebr(k) : first;
        if (Mstr_size(word) <= max_variable_name) Mstr_row(word, name, sizeof name); // else a path
        if (*name == '-') {
            const Option *option = std::find_if(std::begin(options), std::end(options), [&](const Option &o) {
                return std::strcmp(o.word, name) == 0;
            });
            if (option == std::end(options)) {
                error("%s: unknown option %s", caller, name);
                return x_M;
            }
            save = option->save;
            continue;
        }
        if (file.size() == 0) {
            file = word;
            continue;
        }
        named = true;
        if (std::strchr(name, '*') && add_all(list, name)) continue;
        const Mm *value = Scopes::lookup_visible(name);
        if (!value || value->gettype() == kn_none) {
            error("%s: variable '%s' not found", caller, name);
            return x_M;
        }
        list, *value;
    }
    if (file.size() == 0) {
        error("%s: the name of a file is missing", caller);
        return x_M;
    }
    if (!named) add_all(list, "*");
    return save(file, list);
}

// The variable of a text file is named like the file, up to its first ".".
void set_from_text(const Mm &file, const Mm &value) {
    char path[mat_name_size], name[max_variable_name];
    mat_name(file, path);
    const char *last = os::last_part(path);
    std::snprintf(name, sizeof name, "%.*s", static_cast<int>(std::strcspn(last, ".")), last);
    if (is_variable_name(name))
        Scopes::set(name, value);
    else
        error("load: %s is no name of a variable", name);
}

} // namespace

Mm save(const Mm &name, const kn_names &names) { return save_named("save", name, names.texts, save); }
Mm saveV4(const Mm &name, const kn_names &names) { return save_named("saveV4", name, names.texts, saveV4); }
Mm saveascii(const Mm &name, const kn_names &names) {
    return save_named("saveascii", name, names.texts, saveascii);
}

Mm load(const Mm &name, const kn_names &names) {
    for (int k = 0; k <= names.texts.size(); ++k) {
        char word[max_variable_name] = "";
        const Mm text = k > 0 ? names.texts.safebr(k) : name;
        if (Mstr_size(text) <= max_variable_name) Mstr_row(text, word, sizeof word);
        if (*word != '-') continue;
        error("load: unknown option %s", word);
        return x_M;
    }
    const Mm loaded = names.texts.size() > 0 ? load(name, names.texts) : load(name);
    for (int k = 0; k < loaded.getnfields(); ++k) {
        const char *field = loaded.getfield(k);
        Scopes::set(field, Mm(loaded.member(field)));
    }
    if (!loaded.isstruct() && kn_has_value(loaded)) set_from_text(name, loaded);
    return x_M;
}
