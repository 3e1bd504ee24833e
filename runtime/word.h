// Comparing a character value with a word of the language.
#ifndef QUORVEX_RUNTIME_WORD_H
#define QUORVEX_RUNTIME_WORD_H

#include <algorithm>
#include <string_view>

#include "quorvex/values.h"

namespace kn {

// Whether x is the row of exactly these characters.
inline bool is_word(const Mm &x, std::string_view word) {
    if (!x.isstr() || x.issparse() || x.gettype() != kn_double) return false;
    if (x.rows() != 1 || x.getnnz() != static_cast<int>(word.size())) return false;
    return std::equal(word.begin(), word.end(), x.addr(),
                      [](char c, double code) { return static_cast<unsigned char>(c) == code; });
}

} // namespace kn

#endif
