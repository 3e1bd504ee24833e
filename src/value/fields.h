// Fields of a structure: finding one by its name, and copying the list of names.
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

// Index, from 0, of the field in the list of names; -1 for none.
inline int find_field(const Mm &s, const char *name) {
    const char *const *fields = s.getfields();
    for (int f = 0, n = s.getnfields(); f < n; ++f)
        if (same_text(fields[f], name)) return f;
    return -1;
}

// Gives a value without fields the field names and the class of a structure; `from` may be any value. False
// when memory is exhausted.
bool copy_fields(Mm &to, const Mm &from);

} // namespace kn

#endif
