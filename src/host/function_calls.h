// The calls of the table of functions: for each row one function for each of its forms, and the list of
// these, name_calls. A form without an overload doesn't compile. They are kept simple, since there are
// thousands: a form is one instance of one template, without overload probing or argument forwarding.
//
// The build expands the rows of each public header in a separate source file (cmake/function_calls.cmake).
#ifndef QUORVEX_HOST_FUNCTION_CALLS_H
#define QUORVEX_HOST_FUNCTION_CALLS_H

#include <algorithm>
#include <utility>

#include "host/form_call.h"
#include "quorvex/workspace.h"

namespace kn {

template <template <class, class, bool> class Row, form f> constexpr Call call_of() {
    constexpr bool names = f.kind == form::names;
    return Row<std::make_index_sequence<f.inputs>, std::make_index_sequence<f.outputs>, names>::call;
}

// Whether two forms call the same overload: a form of one output, or none, or with a list, is its inputs
// alone.
constexpr bool same_overload(const form &a, const form &b) {
    return a.inputs == b.inputs && (a.kind == form::names) == (b.kind == form::names) &&
           std::max(a.outputs, 1) == std::max(b.outputs, 1);
}
template <form... f> constexpr int overloads_of(const form &a) { return (same_overload(a, f) + ...); }

template <template <class, class, bool> class Row, form... f>
requires((overloads_of<f...>(f) == 1) && ...) // each overload is in the row once
    inline constexpr Call calls_of[] = {call_of<Row, f>()...};

#define KN_CALLS(name, description, ...)                                                \
    namespace {                                                                         \
    template <class, class, bool> struct name##_row;                                    \
    template <size_t... in, size_t... out, bool names>                                  \
    struct name##_row<std::index_sequence<in...>, std::index_sequence<out...>, names> { \
        static Mm call([[maybe_unused]] const Mm *x, [[maybe_unused]] Mm *y) {          \
            if constexpr (names)                                                        \
                return ::name(x[in]..., kn_names{x[sizeof...(in)]});                    \
            else if constexpr (sizeof...(out) > 1)                                      \
                return ::name(x[in]..., i_o, y[out]...);                                \
            else                                                                        \
                return ::name(x[in]...);                                                \
        }                                                                               \
    };                                                                                  \
    }                                                                                   \
    extern const Call *const name##_calls;                                              \
    constinit const Call *const name##_calls = calls_of<name##_row, __VA_ARGS__>;

} // namespace kn

#endif
