// Wrong numbers of inputs. Each header lists its functions with the counts they take:
//
//     #define QUORVEX_..._COUNTS(ROW) ROW(lt, 2) ROW(max, 1, 2, 3)
//
// and QUORVEX_REPORT_OTHER_COUNTS makes, from each row, the overload that takes every other count of values
// and reports "%s does not accept %d input%s". The same rows make the list of all functions.
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

#define QUORVEX_REPORT_OTHER_COUNTS(name, ...)                                                  \
    template <class... A>                                                                       \
    requires(kn::other_count<sizeof...(A), __VA_ARGS__> && (kn::value_like<A> && ...)) Mm name( \
        const A &...) {                                                                         \
        return error_input(#name, static_cast<int>(sizeof...(A)));                              \
    }

// The functions of messages.h; start and end are left out, since they end the process.
#define QUORVEX_MESSAGE_COUNTS(ROW) \
    ROW(error, 1)                   \
    ROW(warning, 0, 1)              \
    ROW(lasterr, 0, 1)              \
    ROW(mfilename, 0)               \
    ROW(mfileline, 0)
QUORVEX_MESSAGE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
