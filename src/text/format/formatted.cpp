// sprintf and sscanf.

#include "quorvex/formatted.h"

#include "quorvex/display.h"
#include "quorvex/startup.h"
#include "text/format/format_list.h"
#include "value/constants.h"

using namespace kn;

Mm sprintf(const Mm &fmt) {
    TextBuffer out;
    return format_unescape(fmt, out) ? TM(out.c_str()) : x_M;
}

Mm sprintf(const Mm &fmt, const Mm &list) {
    if (list.size() == 0) return sprintf(fmt);
    FormatList format(fmt);
    if (!format || !format.printable()) return x_M;
    TextBuffer out;
    for (kn_size k = 1; k <= values_of(list); ++k)
        if (!format_print(format, value_of(list, k), out)) return x_M;
    return out ? TM(out.c_str()) : x_M;
}

Mm sscanf(const Mm &s, const Mm &fmt) { return sscanf(s, fmt, raw_inf); }

Mm sscanf(const Mm &s, const Mm &fmt, const Mm &size) {
    Mm a, count;
    sscanf(s, fmt, size, i_o, a, count);
    return a;
}

Mm sscanf(const Mm &s, const Mm &fmt, i_o_t, Mm &a, Mm &count) {
    return sscanf(s, fmt, raw_inf, i_o, a, count);
}
Mm sscanf(const Mm &s, const Mm &fmt, i_o_t, Mm &a, Mm &count, Mm &msg) {
    return sscanf(s, fmt, raw_inf, i_o, a, count, msg);
}
Mm sscanf(const Mm &s, const Mm &fmt, i_o_t, Mm &a, Mm &count, Mm &msg, Mm &next) {
    return sscanf(s, fmt, raw_inf, i_o, a, count, msg, next);
}

Mm sscanf(const Mm &s, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count) {
    Mm msg;
    return sscanf(s, fmt, size, i_o, a, count, msg);
}
Mm sscanf(const Mm &s, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count, Mm &msg) {
    Mm next;
    return sscanf(s, fmt, size, i_o, a, count, msg, next);
}
Mm sscanf(const Mm &s, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count, Mm &msg, Mm &next) {
    TextBuffer text;
    const bool read = flatten(s, text) && format_scan(nullptr, text.view(), fmt, size, a, count, msg);
    if (read)
        next = 0.0;
    else
        a = count = msg = next = x_M;
    return x_M;
}
