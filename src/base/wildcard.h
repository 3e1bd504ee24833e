// Patterns of names.
#ifndef QUORVEX_BASE_WILDCARD_H
#define QUORVEX_BASE_WILDCARD_H

namespace kn {

// Whether the pattern, with "*" for any characters and "?" for one, is the whole name.
inline bool matches(const char *pattern, const char *name) {
    const char *star = nullptr, *retry = nullptr;
    while (*name) {
        if (*pattern == '*') {
            star = ++pattern;
            retry = name;
        } else if (*pattern == '?' || *pattern == *name) {
            ++pattern;
            ++name;
        } else if (star) {
            pattern = star;
            name = ++retry;
        } else {
            return false;
        }
    }
    while (*pattern == '*') ++pattern;
    return !*pattern;
}

} // namespace kn

#endif
