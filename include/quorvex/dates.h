// Dates, clocks and stopwatches.
#ifndef QUORVEX_DATES_H
#define QUORVEX_DATES_H

#include "quorvex/counts.h"

#define QUORVEX_DATE_COUNTS(ROW)
QUORVEX_DATE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
