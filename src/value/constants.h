// The constants and markers of the language: their values, and the marker of a read that found nothing.
#ifndef QUORVEX_VALUE_CONSTANTS_H
#define QUORVEX_VALUE_CONSTANTS_H

#include "base/raw_numbers.h"
#include "quorvex/values.h"

namespace kn {

// The result of a tolerant read that failed: a value of type kn_none.
extern Mm nothing_M;

// Gives the constants and markers their values. Does nothing before the named values are constructed.
void set_constants();

} // namespace kn

#endif
