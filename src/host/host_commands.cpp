// ive_do: the commands of an interactive host, one function for each row of the list in quorvex/host.h.
// Commands that other functions already implement call these.

#include "quorvex/host.h"

#include <cstdio>
#include <cstring>

#include "host/workspace.h"
#include "platform/platform.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/evaluation.h"
#include "quorvex/files.h"
#include "quorvex/graphics.h"
#include "quorvex/library.h"
#include "quorvex/startup.h"

constinit kn_command_hook kn_command_handler = nullptr;

namespace kn {
namespace {

constexpr int name_size = 40, summary_size = 128, path_size = 1024, version_size = 2048;

const char *text_at(intptr_t address) { return reinterpret_cast<const char *>(address); }
char *buffer_at(intptr_t address) { return reinterpret_cast<char *>(address); }
void *pointer_at(intptr_t address) { return reinterpret_cast<void *>(address); }
template <class F> F function_at(intptr_t address) { return reinterpret_cast<F>(address); }
intptr_t address_of(const void *p) { return reinterpret_cast<intptr_t>(p); }

// "" for a null address.
const char *word_at(intptr_t address) { return address ? text_at(address) : ""; }
Mm value_at(intptr_t address) { return TM(text_at(address)); }

void copy_text(intptr_t buffer, const char *text, int size) {
    if (buffer) std::snprintf(buffer_at(buffer), static_cast<size_t>(size), "%s", text);
}
void copy_text(intptr_t buffer, const Mm &text, int size) {
    if (buffer) Mstr_row(text, buffer_at(buffer), size);
}

int level_named(intptr_t word) { return std::strcmp(word_at(word), "global") == 0 ? 0 : Scopes::level(); }

intptr_t not_yet(const char *function) {
    error("%s is not yet implemented", function);
    return 0;
}

// ---- Variables ----

void variable_name(intptr_t position, int level, intptr_t buffer) {
    constexpr size_t probed = 16;
    const Mm *value = Scopes::value(position, level);
    if (!value || !buffer) return;
    const char *name = value->getname();
    char *out = buffer_at(buffer);
    if (!os::readable(name, probed)) {
        std::snprintf(out, name_size, "%08llX", static_cast<unsigned long long>(address_of(name)));
        return;
    }
    std::snprintf(out, name_size, "%s", name);
    const size_t n = std::strlen(out);
    if (n >= 2 && out[n - 1] == '_') out[n - 1] = '\0';
}

void variable_summary(intptr_t position, int level, intptr_t buffer) {
    if (const Mm *value = Scopes::value(position, level))
        if (buffer) value_summary(*value, buffer_at(buffer), summary_size);
}

// ---- The commands ----

namespace commands {

using Address = intptr_t;

int level() { return Scopes::level(); }

void interactive(Address, Address) { kn_interactive_flag = 1; }
Address error_stack(Address, Address) { return address_of(&kn_error_stack); }

Address count(Address, Address) { return Scopes::count(level()); }
Address count_globals(Address, Address) { return Scopes::count(0); }
void name(Address a, Address b) { variable_name(a, level(), b); }
void global_name(Address a, Address b) { variable_name(a, 0, b); }
void summary(Address a, Address b) { variable_summary(a, level(), b); }
void global_summary(Address a, Address b) { variable_summary(a, 0, b); }
Address find(Address, Address b) { return address_of(Scopes::lookup_visible(word_at(b))); }

Address class_of(Address a, Address b) {
    const Mm *value = Scopes::value(a, level());
    if (!value) return 0;
    copy_text(b, kn_class_word(*value), name_size);
    return isobject(*value);
}

void show(Address, Address b) {
    const char *name = word_at(b);
    if (const Mm *value = Scopes::lookup_visible(name))
        display(*value);
    else
        kn_printf("Variable '%s' not found.\n", name);
}

void forget(Address, Address b) {
    if (!b || std::strcmp(text_at(b), "global") == 0) return Scopes::remove_all(level_named(b));
    // Any other text may name a module to unload; an unknown one does nothing, and none can be loaded.
    if (Mm *value = Scopes::lookup(text_at(b), level())) Scopes::remove(*value);
}

void list_names(Address, Address b) {
    const int at = level_named(b), n = Scopes::count(at);
    for (int k = 0; k < n; ++k) kn_printf("%s ", Scopes::name(k, at));
    if (n > 0) kn_print_handler("\n");
}

void list_lines(Address, Address b) {
    const int at = level_named(b);
    for (int k = 0; k < Scopes::count(at); ++k) whos_line(*Scopes::value(k, at));
}

void list_files(Address, Address b) {
    const Mm entries = dir(value_at(b));
    char name[path_size];
    for (int k = 1; entries.isstruct() && k <= entries.size(); ++k) {
        copy_text(address_of(name), Mm(entries(k).member("name")), path_size);
        kn_printf("%s\n", name);
    }
}

void show_help(Address, Address b) { help(value_at(b)); }
void search_help(Address, Address b) { lookfor(value_at(b)); }
void help_window(Address, Address b) { helpwin(value_at(b)); }
void find_file(Address a, Address b) { copy_text(a, which(value_at(b)), path_size); }
void open_variable(Address, Address b) { openvar(value_at(b)); }
void memory_use(Address, Address) { memory(); }
void show_version(Address, Address b) { copy_text(b, version(), version_size); }

void set_eval(Address, Address b) { eval_func = function_at<kn_eval_hook>(b); }
void set_debug(Address, Address b) { kn_set_debug_handler(function_at<kn_code_handler>(b)); }
void set_print(Address, Address b) { kn_set_print_handler(function_at<kn_text_handler>(b)); }
void set_input(Address, Address b) { kn_set_input_handler(function_at<kn_input_hook>(b)); }
void set_kbhit(Address, Address b) { kn_set_kbhit_handler(function_at<kn_kbhit_hook>(b)); }
void set_clc(Address, Address b) { kn_set_clc_handler(function_at<kn_clc_hook>(b)); }
void set_command(Address, Address b) { kn_command_handler = function_at<kn_command_hook>(b); }
void set_path(Address, Address b) { mpath_pointer = static_cast<kn_path_record *>(pointer_at(b)); }
void set_window(Address, Address b) { setapplicationhandle(pointer_at(b)); }
void set_key_window(Address, Address b) { setapplicationkeyhandle(pointer_at(b)); }

void clear_screen(Address, Address) { kn_clc_handler(); }
void exit_gui(Address a, Address) { guiexit(static_cast<double>(a)); }
Address designer(Address, Address) { return not_yet("designer"); }
Address clear_mex(Address, Address) { return not_yet("clear_mex"); }
Address figure_close(Address, Address) { return not_yet("figure_close"); }

} // namespace commands

intptr_t answer(intptr_t (*command)(intptr_t, intptr_t), intptr_t a, intptr_t b) { return command(a, b); }
intptr_t answer(void (*command)(intptr_t, intptr_t), intptr_t a, intptr_t b) {
    command(a, b);
    return 0;
}

} // namespace
} // namespace kn

extern "C" intptr_t QUORVEX_HOST_CALL ive_do(int command, intptr_t a, intptr_t b) {
    switch (command) {
#define KN_COMMAND(number, name, ...) \
    case kn_host_##name: return kn::answer(kn::commands::name, a, b);
        QUORVEX_HOST_COMMANDS(KN_COMMAND)
#undef KN_COMMAND
    default: return 0;
    }
}
