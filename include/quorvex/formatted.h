// Formatted text: sprintf, fprintf, printf, sscanf, fscanf.
#ifndef QUORVEX_FORMATTED_H
#define QUORVEX_FORMATTED_H

#include "quorvex/counts.h"

#define QUORVEX_FORMATTED_COUNTS(ROW)
QUORVEX_FORMATTED_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
