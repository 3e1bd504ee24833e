// A character matrix as a string, rows joined by newlines.
#ifndef QUORVEX_TESTS_TEXT_OF_H
#define QUORVEX_TESTS_TEXT_OF_H

#include <string>

#include "quorvex.h"

namespace test {

inline std::string text_of(const Mm &m) {
    if (!m.isstr()) return "(no text)";
    std::string text;
    for (int r = 1; r <= m.rows(); ++r) {
        if (r > 1) text += '\n';
        for (int c = 1; c <= m.cols(); ++c) text += static_cast<char>(m.r(r, c));
    }
    return text;
}

} // namespace test

#endif
