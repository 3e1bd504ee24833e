// The rows of functions. Each header lists its functions, each with one line of help and its forms:
//
//     ROW(lt, "less", 2)
//     ROW(max, "largest element", 1, 2, 3, 1_to_2, 3_to_2)
//     ROW(disp, "prints a value", 1_to_0)
//     ROW(sprintf, "values as text in a format", 1, 2_list)
//
// A form is a number of inputs, and the kind of its inputs and outputs:
//
//     2           one output, as the result
//     2_to_3      three outputs: f(a, b, i_o, x, y, z)
//     2_to_0      no output
//     2_list      the second input, called list in the declaration, is a cell, which a call by name makes
//     from
//                 all inputs after the first
//     2_list_to_0 the same, without output
//     1_names     after the first input any number of variables, which the language writes by their names:
//                 save f x y. The overload has them as kn_names (workspace.h); no output
//
// From each row QUORVEX_REPORT_OTHER_COUNTS makes the overload that accepts every other number of values and
// reports "%s does not accept %d input%s". The functions that can be called by name, and their help, are made
// from the same rows (library.h).
#ifndef QUORVEX_COUNTS_H
#define QUORVEX_COUNTS_H

#include "quorvex/messages.h"

namespace kn {
struct form {
    enum kinds { plain, list, names };
    int inputs, outputs;
    kinds kind;
    constexpr form(int in, int out = 1, kinds k = plain) : inputs(in), outputs(out), kind(k) {}
};

template <class T>
concept value_like = requires(const T &x) {
    static_cast<Mm>(x);
};

template <size_t n, form... f>
inline constexpr bool other_count = ((n != f.inputs || f.outputs > 1 || f.kind == form::names) && ...);
} // namespace kn

consteval kn::form operator""_to_0(unsigned long long n) { return {static_cast<int>(n), 0}; }
consteval kn::form operator""_to_2(unsigned long long n) { return {static_cast<int>(n), 2}; }
consteval kn::form operator""_to_3(unsigned long long n) { return {static_cast<int>(n), 3}; }
consteval kn::form operator""_to_4(unsigned long long n) { return {static_cast<int>(n), 4}; }
consteval kn::form operator""_to_5(unsigned long long n) { return {static_cast<int>(n), 5}; }
consteval kn::form operator""_to_6(unsigned long long n) { return {static_cast<int>(n), 6}; }
consteval kn::form operator""_list(unsigned long long n) { return {static_cast<int>(n), 1, kn::form::list}; }
consteval kn::form operator""_list_to_0(unsigned long long n) {
    return {static_cast<int>(n), 0, kn::form::list};
}
consteval kn::form operator""_names(unsigned long long n) {
    return {static_cast<int>(n), 0, kn::form::names};
}

// Reports through error_input, with the language's name of the function; returns 0.
QUORVEX_API Mm kn_other_count(const char *function, int inputs);

#define QUORVEX_REPORT_OTHER_COUNTS(name, description, ...)                                             \
    template <class... A>                                                                               \
    requires(kn::other_count<sizeof...(A) __VA_OPT__(, ) __VA_ARGS__> && (kn::value_like<A> && ...)) Mm \
    name(const A &...) {                                                                                \
        return kn_other_count(#name, static_cast<int>(sizeof...(A)));                                   \
    }

// The functions of messages.h. Those that end the process (startup.h) are not listed.
#define QUORVEX_MESSAGE_COUNTS(ROW)                           \
    ROW(error, "reports an error", 1_to_0)                    \
    ROW(warning, "prints a warning", 0, 1_to_0)               \
    ROW(lasterr, "text of the last error", 0, 1_to_0)         \
    ROW(mfilename, "name of the source file in execution", 0) \
    ROW(mfileline, "line of the source file in execution", 0)
QUORVEX_MESSAGE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
