// Conversions between numbers and their text.
#ifndef QUORVEX_CONVERSIONS_H
#define QUORVEX_CONVERSIONS_H

#include "quorvex/counts.h"

#define QUORVEX_CONVERSION_COUNTS(ROW)
QUORVEX_CONVERSION_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
