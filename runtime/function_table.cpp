// The table of functions, made from the rows of all headers, and calls through it.
//
// A form of a function is what it takes: so many inputs, so many outputs. Which forms there are is read off
// the overloads at compile time, the plain one for one output, f(inputs, i_o, outputs) for more; so is the
// order of the table and the hash that finds a name in it.

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <utility>

#include "core/header.h"
#include "core/name_hash.h"
#include "quorvex.h"

namespace kn {
namespace {

using std::string_view;

constexpr int max_inputs = 6, max_outputs = 6;

// One form: its outputs go to y, of which there are as many.
using Call = void (*)(const Mm *x, Mm *y);

struct Form {
    unsigned char inputs, outputs;
    Call call;
};

template <class T, size_t> using Repeated = T;

template <class F, class In, class Out> struct Maker;
template <class F, size_t... in, size_t... out>
struct Maker<F, std::index_sequence<in...>, std::index_sequence<out...>> {
    static constexpr bool plain = sizeof...(out) == 1 && std::is_invocable_v<F, Repeated<const Mm &, in>...>;
    static constexpr bool several =
        std::is_invocable_v<F, Repeated<const Mm &, in>..., const i_o_t &, Repeated<Mm &, out>...>;

    static void call([[maybe_unused]] const Mm *x, [[maybe_unused]] Mm *y) {
        if constexpr (!plain)
            F()(x[in]..., i_o, y[out]...);
        else if constexpr (std::is_void_v<std::invoke_result_t<F, Repeated<const Mm &, in>...>>)
            F()(x[in]...), *y = x_M;
        else
            *y = F()(x[in]...);
    }
};

// The forms of one function, those of fewer outputs first. A count that the row doesn't name has no plain
// form: the overload for it only reports.
template <class F, size_t... legal> struct Forms {
    template <size_t in, size_t out> static constexpr bool exists() {
        using M = Maker<F, std::make_index_sequence<in>, std::make_index_sequence<out>>;
        if constexpr (out == 1 && ((in == legal) || ...))
            return M::plain;
        else
            return M::several;
    }
    template <size_t in, size_t out> static constexpr void add(Form *&to) {
        if constexpr (exists<in, out>())
            *to++ = {in, out, Maker<F, std::make_index_sequence<in>, std::make_index_sequence<out>>::call};
    }
    template <size_t... k> static constexpr int count(std::index_sequence<k...>) {
        return (0 + ... + int(exists<k % (max_inputs + 1), 1 + k / (max_inputs + 1)>()));
    }
    template <size_t... k> static constexpr auto make(std::index_sequence<k...> all) {
        std::array<Form, static_cast<size_t>(count(all))> forms{};
        Form *to = forms.data();
        (add<k % (max_inputs + 1), 1 + k / (max_inputs + 1)>(to), ...);
        return forms;
    }
    static constexpr auto list = make(std::make_index_sequence<(max_inputs + 1) * max_outputs>());
};

struct Entry {
    kn_function about;
    const Form *forms;
    int count;
};

// What the language calls a function whose name C++ or its library has taken.
constexpr std::pair<const char *, string_view> renamed[] = {
    {"and", "mand"},         {"bitand", "mbitand"}, {"bitor", "mbitor"},   {"char", "mchar"},
    {"class", "mclass"},     {"clock", "clockM"},   {"delete", "deleteM"}, {"double", "mdouble"},
    {"logical", "mlogical"}, {"not", "mnot"},       {"or", "mor"},         {"pause", "pauseM"},
    {"rand", "randM"},       {"std", "mstd"},       {"stderr", "stderrM"}, {"struct", "mstruct"},
    {"uint16", "muint16"},   {"uint8", "muint8"},   {"xor", "mxor"}};

constexpr const char *word_of(const char *name) {
    for (auto [word, renamed_to] : renamed)
        if (renamed_to == name) return word;
    return name;
}

template <size_t... legal, class F> constexpr Entry entry(const char *name, const char *description, F) {
    const auto &forms = Forms<F, legal...>::list;
    static_assert(!std::empty(forms), "a row without an overload");
    Entry e{{name, word_of(name), description, 0, 0}, forms.data(), static_cast<int>(forms.size())};
    for (const Form &f : forms) {
        e.about.inputs |= 1u << f.inputs;
        e.about.outputs |= 1u << f.outputs;
    }
    return e;
}

#define KN_ROW(name, description, ...) \
    entry<__VA_ARGS__>(                \
        #name, description, [](auto &&...x) requires requires { name(x...); } { return name(x...); }),
constexpr Entry rows[] = {QUORVEX_FUNCTIONS(KN_ROW)};
#undef KN_ROW

constexpr int n_functions = std::size(rows);

constexpr auto table = [] {
    std::array<Entry, n_functions> sorted;
    std::copy(std::begin(rows), std::end(rows), sorted.begin());
    std::sort(sorted.begin(), sorted.end(),
              [](const Entry &a, const Entry &b) { return string_view(a.about.name) < b.about.name; });
    return sorted;
}();

constexpr auto functions = [] {
    std::array<kn_function, n_functions> list;
    for (int k = 0; k < n_functions; ++k) list[k] = table[k].about;
    return list;
}();

// Functions that take what is behind so many inputs as one cell.
constexpr std::pair<string_view, int> gathering[] = {
    {"addpath", 0}, {"fprintf", 2}, {"fullfile", 0}, {"mstruct", 0},   {"printf", 1},
    {"save", 1},    {"saveV4", 1},  {"sprintf", 1},  {"saveascii", 1}, {"vbsave", 0}};

// ---- Finding a name ----

// The place where the search for a name begins, before the remainder.
constexpr unsigned hash(string_view name) { return name_hash(name) ^ name_hash(name) >> 15; }

constexpr size_t n_slots = [] {
    size_t n = 64;
    while (n < 4 * std::size(rows)) n *= 2;
    return n;
}();

struct Slot {
    string_view name;
    short row, gathers; // the inputs before the cell, or -1
};

constexpr auto slots = [] {
    std::array<Slot, n_slots> all{};
    auto put = [&](string_view name, int row) {
        Slot slot{name, static_cast<short>(row), -1};
        for (auto [gatherer, fixed] : gathering)
            if (gatherer == table[row].about.name) slot.gathers = static_cast<short>(fixed);
        size_t at = hash(name) % n_slots;
        while (!all[at].name.empty()) at = (at + 1) % n_slots;
        all[at] = slot;
    };
    for (int k = 0; k < n_functions; ++k) put(table[k].about.name, k);
    for (auto [word, name] : renamed) {
        int k = 0;
        while (name != table[k].about.name) ++k; // no constant expression without the function
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

// The form with so many inputs that gives at least so many outputs; null after a report.
const Form *form_of(const Entry &e, int inputs, int outputs) {
    int most = 0;
    for (const Form *f = e.forms; f < e.forms + e.count; ++f) {
        if (f->inputs != inputs) continue;
        if (f->outputs >= outputs) return f;
        most = f->outputs;
    }
    if (most > 0)
        error("Too many (%d>%d) outputs for %s", outputs, most, e.about.name);
    else
        error_input(e.about.name, inputs);
    return nullptr;
}

// Calls it; the outputs, of which there are `wanted`, get their values when all stand.
bool call(const Entry &e, const Mm *x, int inputs, int wanted, Mm *const *out) {
    const Form *form = form_of(e, inputs, std::max(wanted, 1));
    if (!form) return false;
    if (wanted <= 1 && form->outputs == 1) {
        form->call(x, out[0]);
        return true;
    }
    Mm y[max_outputs];
    form->call(x, y);
    for (int k = 0; k < std::max(wanted, 1); ++k) *out[k] = std::move(y[k]);
    return true;
}

// The inputs behind the first `fixed` ones as one cell.
Mm gathered(const Mm &args, int inputs, int fixed) {
    Mm all = cell(1.0, static_cast<double>(fixed + 1));
    const int rest = std::max(inputs - fixed, 0);
    Mm list(0, 0, 0, 1, rest, kn_Mm);
    if (all.size() != fixed + 1 || list.getnnz() != rest) return x_M;
    for (int k = 1; k <= rest; ++k) list.mr(k) = args.safebr(fixed + k);
    for (int k = 1; k <= fixed; ++k) all.mr(k) = args.safebr(k);
    all.mr(fixed + 1) = list;
    return all;
}

bool call_named(const char *name, const Mm &args, int wanted, Mm *const *out) {
    const Slot *slot = find(name);
    if (!slot) {
        error("Undefined function '%s'", name);
        return false;
    }
    const Entry &e = table[slot->row];
    if (!is_cell(args)) { // one plain input, or none
        const Mm held(args);
        return call(e, &held, args.size() > 0 ? 1 : 0, wanted, out);
    }
    // A form for exactly so many inputs, none of them in a list, goes first.
    const bool gathers =
        slot->gathers >= 0 && (args.size() > slot->gathers || !(e.about.inputs >> args.size() & 1));
    const Mm held = gathers ? gathered(args, args.size(), slot->gathers) : args;
    return call(e, held.getpr(static_cast<Mm *>(nullptr)), held.size(), wanted, out);
}

} // namespace
} // namespace kn

using namespace kn;

int kn_functions(const kn_function **list) {
    *list = functions.data();
    return n_functions;
}

const kn_function *kn_find_function(const char *name) {
    const Slot *slot = name ? find(name) : nullptr;
    return slot ? &functions[slot->row] : nullptr;
}

Mm kn_call_function(const char *name, const Mm &args, int nargout, Mm *const *out) {
    if (!call_named(name, args, nargout, out))
        for (int k = 0; k < std::max(nargout, 1); ++k) *out[k] = x_M;
    return x_M;
}

Mm kn_feval(Mm f, Mm args, i_o_t, Mm &y1, Mm &y2, Mm &y3, Mm &y4, Mm &y5, Mm &y6) {
    char name[64];
    Mstr_row(f, name, sizeof name);
    Mm *const out[] = {&y1, &y2, &y3, &y4, &y5, &y6};
    const int wanted = nargout_set ? double_to_int(nargout_val) : 1;
    return kn_call_function(name, args, std::clamp(wanted, 1, max_outputs), out);
}
