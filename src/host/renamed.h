// The language's names of functions whose names are taken by C++ or its library.
#ifndef QUORVEX_HOST_RENAMED_H
#define QUORVEX_HOST_RENAMED_H

#include <string_view>

namespace kn {

struct Renamed {
    const char *word; // in the language
    std::string_view name;
};

inline constexpr Renamed renamed[] = {
    {"and", "mand"},         {"bitand", "mbitand"}, {"bitor", "mbitor"},   {"char", "mchar"},
    {"class", "mclass"},     {"clock", "clockM"},   {"delete", "deleteM"}, {"double", "mdouble"},
    {"logical", "mlogical"}, {"not", "mnot"},       {"or", "mor"},         {"pause", "pauseM"},
    {"rand", "randM"},       {"std", "stdM"},       {"stderr", "stderrM"}, {"struct", "mstruct"},
    {"uint16", "muint16"},   {"uint8", "muint8"},   {"xor", "mxor"}};

constexpr const char *word_of(const char *name) {
    for (auto [word, renamed_to] : renamed)
        if (renamed_to == name) return word;
    return name;
}

} // namespace kn

#endif
