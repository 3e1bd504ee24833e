// Comparing a character value with a word of the language.
#ifndef QUORVEX_VALUE_KEYWORD_H
#define QUORVEX_VALUE_KEYWORD_H

#include <algorithm>
#include <string_view>

#include "quorvex/values.h"

namespace kn {

// Whether x is the row of exactly these characters.
inline bool is_word(const Mm &x, std::string_view word) {
    if (!x.isstr() || x.issparse() || x.rows() != 1 || x.getnnz() != static_cast<kn_size>(word.size()))
        return false;
    auto has = [&](const auto *codes) {
        return std::equal(word.begin(), word.end(), codes,
                          [](char c, auto code) { return static_cast<unsigned char>(c) == code; });
    };
    if (x.gettype() == kn_uint8) return has(x.getpr(static_cast<unsigned char *>(nullptr)));
    return x.gettype() == kn_double && has(x.addr());
}

} // namespace kn

#endif
