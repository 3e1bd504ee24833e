// ive_do: the commands of an interactive host. Texts, buffers and functions come as
// addresses; what belongs to a subject is a call of the function that everybody else calls.

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

void not_yet(const char *function) { error("%s is not yet implemented", function); }

// ---- Variables ----

void variable_name(int position, int level, intptr_t buffer) {
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

void summary(int position, int level, intptr_t buffer) {
    if (const Mm *value = Scopes::value(position, level))
        if (buffer) value_summary(*value, buffer_at(buffer), summary_size);
}

intptr_t class_of(int position, intptr_t buffer) {
    const Mm *value = Scopes::value(position, Scopes::level());
    if (!value) return 0;
    copy_text(buffer, kn_class_word(*value), name_size);
    return isobject(*value);
}

void show(intptr_t word) {
    const char *name = word_at(word);
    if (const Mm *value = Scopes::lookup_visible(name))
        display(*value);
    else
        kn_printf("Variable '%s' not found.\n", name);
}

void forget(intptr_t word) {
    if (!word || std::strcmp(text_at(word), "global") == 0) return Scopes::remove_all(level_named(word));
    // Else it would be the name of a module to unload; an unknown one does nothing, and none can be loaded.
    if (Mm *value = Scopes::lookup(text_at(word), Scopes::level())) Scopes::remove(*value);
}

void list_names(int level) {
    const int n = Scopes::count(level);
    for (int k = 0; k < n; ++k) kn_printf("%s ", Scopes::name(k, level));
    if (n > 0) kn_print_handler("\n");
}

void list_lines(int level) {
    for (int k = 0; k < Scopes::count(level); ++k) whos_line(*Scopes::value(k, level));
}

void list_files(const Mm &pattern) {
    const Mm entries = dir(pattern);
    char name[path_size];
    for (int k = 1; entries.isstruct() && k <= entries.size(); ++k) {
        copy_text(address_of(name), Mm(entries(k).member("name")), path_size);
        kn_printf("%s\n", name);
    }
}

// ---- The commands ----

intptr_t run(int command, intptr_t a, intptr_t b) {
    const int position = static_cast<int>(a), level = Scopes::level();
    switch (command) {
    case 0: kn_interactive_flag = 1; break;
    case 1: return Scopes::count(level);
    case 2: variable_name(position, level, b); break;
    case 3: show(b); break;
    case 4: forget(b); break;
    case 5: not_yet("designer"); break;
    case 6: return address_of(&kn_error_stack);
    case 9: list_lines(level_named(b)); break;
    case 10: return class_of(position, b);
    case 11: list_names(level_named(b)); break;
    case 12: eval_func = function_at<kn_eval_hook>(b); break;
    case 13: help(value_at(b)); break;
    case 14: list_files(value_at(b)); break;
    case 15: kn_set_debug_handler(function_at<kn_code_handler>(b)); break;
    case 16: kn_set_print_handler(function_at<kn_text_handler>(b)); break;
    case 17: kn_set_input_handler(function_at<kn_input_hook>(b)); break;
    case 18: kn_set_kbhit_handler(function_at<kn_kbhit_hook>(b)); break;
    case 19: kn_set_clc_handler(function_at<kn_clc_hook>(b)); break;
    case 20: mpath_pointer = static_cast<kn_path_record *>(pointer_at(b)); break;
    case 21: kn_clc_handler(); break;
    case 22: setapplicationhandle(pointer_at(b)); break;
    case 23: return Scopes::count(0);
    case 24: variable_name(position, 0, b); break;
    case 25: kn_command_handler = function_at<kn_command_hook>(b); break;
    case 26: return address_of(Scopes::lookup_visible(word_at(b)));
    case 27: not_yet("clear_mex"); break;
    case 28: guiexit(static_cast<double>(a)); break;
    case 29: summary(position, level, b); break;
    case 30: summary(position, 0, b); break;
    case 31: lookfor(value_at(b)); break;
    case 32: helpwin(value_at(b)); break;
    case 33: copy_text(a, which(value_at(b)), path_size); break;
    case 34: not_yet("figure_close"); break;
    case 35: openvar(value_at(b)); break;
    case 36: memory(); break;
    case 37: copy_text(b, version(), version_size); break;
    case 38: setapplicationkeyhandle(pointer_at(b)); break;
    }
    return 0;
}

} // namespace
} // namespace kn

extern "C" intptr_t QUORVEX_HOST_CALL ive_do(int command, intptr_t a, intptr_t b) {
    return kn::run(command, a, b);
}
