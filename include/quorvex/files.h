// Files and directories.
//
// Names may be written with either separator. In a pattern the last part of the name may hold "*" for any
// characters and "?" for one.
#ifndef QUORVEX_FILES_H
#define QUORVEX_FILES_H

#include "quorvex/counts.h"

// The entries of a directory (default: the current one), or those that a pattern names, in the order of their
// names: n by 1 structures with name, date ("21-Nov-2026 09:30:00"), bytes and isdir. An empty cell when
// there are none.
QUORVEX_API Mm dir();
QUORVEX_API Mm dir(const Mm &name);
QUORVEX_API Mm ls(); // prints them, a line each: date, size, name; directories end in a separator
QUORVEX_API Mm ls(const Mm &name);

#define QUORVEX_FILE_COUNTS(ROW)             \
    ROW(dir, "entries of a directory", 0, 1) \
    ROW(ls, "prints the entries of a directory", 0, 1)
QUORVEX_FILE_COUNTS(QUORVEX_REPORT_OTHER_COUNTS)

#endif
