// The rows of functions. Each header lists its functions with a description and the numbers of inputs they
// take:
//
//     #define QUORVEX_..._COUNTS(ROW) ROW(lt, "less", 2) ROW(max, "largest element", 1, 2, 3)
//
// and QUORVEX_REPORT_OTHER_COUNTS makes, from each row, the overload that takes every other count of values
// and reports "%s does not accept %d input%s". From the same rows come the functions that can be called by
// name, and their help (library.h).
#ifndef QUORVEX_COUNTS_H
#define QUORVEX_COUNTS_H

#include "quorvex/messages.h"

namespace kn {
template <class T>
concept value_like = requires(const T &x) {
    static_cast<Mm>(x);
};

template <size_t n, size_t... legal> inline constexpr bool other_count = ((n != legal) && ...);
} // namespace kn

// A row without counts is a function that only has forms with outputs.
#define QUORVEX_REPORT_OTHER_COUNTS(name, description, ...)                                             \
    template <class... A>                                                                               \
    requires(kn::other_count<sizeof...(A) __VA_OPT__(, ) __VA_ARGS__> && (kn::value_like<A> && ...)) Mm \
    name(const A &...) {                                                                                \
        return error_input(#name, static_cast<int>(sizeof...(A)));                                      \
    }

// The functions of messages.h; start and end are left out, since they end the process.
#define QUORVEX_MESSAGE_COUNTS(ROW)               \
    ROW(error, "reports an error", 1)             \
    ROW(warning, "gives a warning", 0, 1)         \
    ROW(lasterr, "text of the last error", 0, 1)  \
    ROW(mfilename, "name of the running file", 0) \
    ROW(mfileline, "line of the running file", 0)
QUORVEX_MESSAGE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
