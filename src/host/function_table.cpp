// The table of functions, made from the rows of all headers, and calls through it. The order of the table and
// the hash that finds a name in it are computed at compile time.

#include "host/function_table.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "base/name_hash.h"
#include "host/renamed.h"
#include "quorvex.h"
#include "value/header.h"

namespace kn {

#define KN_DECLARE(name, description, ...) extern const Call *const name##_calls;
QUORVEX_FUNCTIONS(KN_DECLARE)
#undef KN_DECLARE

namespace {

using std::string_view;

namespace forms {
#define KN_FORMS(name, description, ...) constexpr form name[] = {__VA_ARGS__};
QUORVEX_FUNCTIONS(KN_FORMS)
#undef KN_FORMS
} // namespace forms

constexpr Function function(const char *name, const char *description, std::span<const form> forms,
                            const Call *const *calls) {
    Function f{{name, word_of(name), description, 0, 0, -1, -1}, forms, calls};
    for (const form &a : forms) {
        if (a.kind == form::list) f.about.list = a.inputs - 1;
        if (a.kind == form::names) f.about.names = a.inputs;
        f.about.inputs |= 1u << a.inputs;
        f.about.outputs |= 1u << a.outputs;
    }
    return f;
}

#define KN_ROW(name, description, ...) function(#name, description, forms::name, &name##_calls),
constexpr Function rows[] = {QUORVEX_FUNCTIONS(KN_ROW)};
#undef KN_ROW

constexpr int n_functions = std::size(rows);

constexpr auto table = [] {
    std::array<Function, n_functions> sorted{};
    std::copy(std::begin(rows), std::end(rows), sorted.begin());
    std::sort(sorted.begin(), sorted.end(),
              [](const Function &a, const Function &b) { return string_view(a.about.name) < b.about.name; });
    return sorted;
}();

constexpr auto functions = [] {
    std::array<kn_function, n_functions> list;
    for (int k = 0; k < n_functions; ++k) list[k] = table[k].about;
    return list;
}();

// ---- Finding a name ----

// The hash that gives the first slot to search, before the remainder is taken.
constexpr unsigned hash(string_view name) { return name_hash(name) ^ name_hash(name) >> 15; }

constexpr size_t n_slots = [] {
    size_t n = 64;
    while (n < 4 * std::size(rows)) n *= 2;
    return n;
}();

struct Slot {
    string_view name;
    short row;
};

constexpr auto slots = [] {
    std::array<Slot, n_slots> all{};
    auto put = [&](string_view name, int row) {
        size_t at = hash(name) % n_slots;
        while (!all[at].name.empty()) at = (at + 1) % n_slots;
        all[at] = {name, static_cast<short>(row)};
    };
    for (int k = 0; k < n_functions; ++k) put(table[k].about.name, k);
    for (auto [word, name] : renamed) {
        int k = 0;
        while (name != table[k].about.name) ++k; // not a constant expression when the function is missing
        put(word, k);
    }
    return all;
}();

const Slot *find(string_view name) {
    for (size_t at = hash(name) % n_slots; !slots[at].name.empty(); at = (at + 1) % n_slots)
        if (slots[at].name == name) return &slots[at];
    return nullptr;
}

// ---- Calling ----

// Reports a number of inputs that the function does not take. fseek without its origin counts the fid only.
double report_count(const kn_function &f, int inputs) {
    const bool no_origin = inputs == 2 && string_view(f.name) == "fseek";
    return error_input(f.word, no_origin ? 1 : inputs);
}

// Whether the inputs fit a form.
bool takes(const form &a, const Mm *x, int inputs) {
    switch (a.kind) {
    case form::plain: return inputs == a.inputs;
    case form::list: return inputs >= a.inputs - 1;
    case form::names:
        return inputs >= a.inputs &&
               std::all_of(x + a.inputs, x + inputs, [](const Mm &m) { return m.isstr(); });
    }
    return false;
}

// The form that accepts the inputs and gives at least this many outputs; -1 after a report. Forms with
// variable names come first when no output is requested, and forms with exactly this many inputs before those
// with a list. One output may be requested of a form that gives none, unless it is `needed`.
int form_of(const Function &f, const Mm *x, int inputs, int outputs, bool needed) {
    int most = -1;
    auto search = [&](std::initializer_list<form::kinds> kinds, int least) {
        for (form::kinds kind : kinds)
            for (size_t k = 0; k < f.forms.size(); ++k) {
                const form &a = f.forms[k];
                if (a.kind != kind || !takes(a, x, inputs)) continue;
                if (a.outputs >= least) return static_cast<int>(k);
                most = std::max(most, a.outputs);
            }
        return -1;
    };
    int k = outputs > 0 ? search({form::plain, form::list}, outputs) : -1;
    if (k < 0 && (outputs == 0 || (outputs == 1 && !needed)))
        k = search({form::names, form::plain, form::list}, 0);
    if (k >= 0) return k;
    if (outputs < 0)
        error("Too few (%d<%d) outputs for %s", outputs, 0, f.about.word);
    else if (most >= 0)
        error("Too many (%d>%d) outputs for %s", outputs, most, f.about.word);
    else
        report_count(f.about, inputs);
    return -1;
}

// The inputs after the first `fixed` ones as one cell.
Mm gathered(const Mm *x, int inputs, int fixed) {
    Mm list(0, 0, 0, 1, inputs - fixed, kn_Mm);
    if (list.getnnz() != inputs - fixed) return x_M;
    for (int k = fixed; k < inputs; ++k) list.mr(k - fixed + 1) = x[k];
    return list;
}

// Calls a form; the `wanted` outputs are assigned when all have been computed.
void call_form(const form &chosen, Call call, const Mm *x, int wanted, Mm *const *out) {
    if (chosen.outputs == 1) {
        *out[0] = call(x, nullptr);
    } else if (chosen.outputs == 0) {
        call(x, nullptr);
        *out[0] = x_M;
    } else {
        Mm y[max_outputs];
        call(x, y);
        for (int i = 0; i < std::max(wanted, 1); ++i) *out[i] = std::move(y[i]);
    }
}

// The same with the form chosen by the inputs and outputs; false after a report.
bool call(const Function &f, const Mm *x, int inputs, int wanted, bool needed, Mm *const *out) {
    const int k = form_of(f, x, inputs, wanted, needed);
    if (k < 0) return false;
    const form &chosen = f.forms[static_cast<size_t>(k)];
    const Call call = (*f.calls)[k];
    if (chosen.kind == form::plain) {
        call_form(chosen, call, x, wanted, out);
    } else {
        Mm held[max_inputs + 1];
        const int fixed = chosen.inputs - (chosen.kind == form::list);
        std::copy_n(x, fixed, held);
        held[fixed] = gathered(x, inputs, fixed);
        call_form(chosen, call, held, wanted, out);
    }
    return true;
}

bool call_named(const char *name, const Mm &args, int wanted, bool needed, Mm *const *out) {
    const Slot *slot = name ? find(name) : nullptr;
    if (!slot) {
        error("Undefined function '%s'", name ? name : "");
        return false;
    }
    const Mm held(args);
    const Function &f = table[static_cast<size_t>(slot->row)];
    if (!is_cell(held)) return call(f, &held, held.size() > 0 ? 1 : 0, wanted, needed, out); // a single input
    return call(f, held.getpr(static_cast<Mm *>(nullptr)),
                static_cast<int>(std::min<kn_size>(held.size(), INT_MAX)), wanted, needed, out);
}

} // namespace
} // namespace kn

using namespace kn;

std::span<const Function> kn::function_table() { return table; }

int kn_functions(const kn_function **list) {
    *list = functions.data();
    return n_functions;
}

const kn_function *kn_find_function(const char *name) {
    const Slot *slot = name ? find(name) : nullptr;
    return slot ? &functions[static_cast<size_t>(slot->row)] : nullptr;
}

Mm kn_other_count(const char *function, int inputs) {
    const kn_function *f = kn_find_function(function);
    return f ? report_count(*f, inputs) : error_input(function, inputs);
}

namespace {

// `room` of the outputs are there to be set.
Mm call_or_nothing(const char *name, const Mm &args, int wanted, int room, bool needed, Mm *const *out) {
    if (!call_named(name, args, wanted, needed, out))
        for (int k = 0; k < std::max(room, 1); ++k) *out[k] = x_M;
    return x_M;
}

} // namespace

Mm kn_call_function(const char *name, const Mm &args, int nargout, Mm *const *out) {
    return call_or_nothing(name, args, nargout, nargout, true, out);
}

Mm kn_feval(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6) {
    char name[64];
    Mstr_row(f, name, sizeof name);
    Mm *const out[] = {&y1, &y2, &y3, &y4, &y5, &y6};
    const int set = std::exchange(nargout_set, 0) ? double_to_int(nargout_val) : 1; // for this call only
    const int wanted = set == 0 ? 1 : set; // feval('disp', x) requests a value, too
    return call_or_nothing(name, args, wanted, std::min(wanted, max_outputs), false, out);
}
