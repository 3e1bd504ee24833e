// Texts that consist of one number.
#ifndef QUORVEX_TEXT_NUMBER_FROM_TEXT_H
#define QUORVEX_TEXT_NUMBER_FROM_TEXT_H

#include "quorvex/values.h"

namespace kn {

struct TextNumber {
    double re, im;
    bool complex;
};

// Reads a row of text that is one number in the usual spelling, as str2num does. False for all others, which
// only str2num interprets.
bool text_number(const Mm &s, TextNumber &x);

} // namespace kn

#endif
