// Finding a field of a structure by its name.
#ifndef QUORVEX_VALUE_FIELDS_H
#define QUORVEX_VALUE_FIELDS_H

#include "quorvex/values.h"

namespace kn {

// Names are short and differ early: a call to compare them would cost more than the comparison.
inline bool same_text(const char *a, const char *b) {
    if (a == b) return true;
    for (; *a == *b; ++a, ++b)
        if (*a == '\0') return true;
    return false;
}

// Position, from 0, of the field in the list of names; -1 for none.
inline int find_field(const Mm &s, const char *name) {
    const char *const *fields = s.getfields();
    for (int f = 0, n = s.getnfields(); f < n; ++f)
        if (same_text(fields[f], name)) return f;
    return -1;
}

} // namespace kn

#endif
