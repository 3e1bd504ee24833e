// fprintf, printf and fscanf: formatted text to and from files.

#include "files/file_table.h"
#include "quorvex/formatted.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "text/format/format_list.h"
#include "value/constants.h"
#include "value/header.h"

using namespace kn;

namespace {

// The slot that text is written to. A negative fid, as of a file that failed to open, counts as 0; -1 after a
// report.
int output_slot(const Mm &fid) {
    if (fid.size() == 1 && fid.gettype() == kn_double && double_to_int(*full(fid).addr()) < 0) return 0;
    return fid_lookup(fid, true);
}

void put(int slot, TextBuffer &text) {
    if (!text || text.size() == 0 || slot == 0) return;
    if (slot < first_fid)
        kn_print_handler(text.c_str());
    else if (std::FILE *stream = fid_stream(slot))
        io::write(text.data(), 1, text.size(), stream);
}

void print_to(int slot, const Mm &fmt, const Mm &list) {
    if (slot >= first_fid) fid_turn(slot);
    TextBuffer out;
    if (list.size() == 0) {
        if (format_unescape(fmt, out)) put(slot, out);
        return;
    }
    FormatList format(fmt);
    if (!format || !format.printable()) return;
    for (int k = 1; k <= values_of(list); ++k) {
        out.clear();
        if (!format_print(format, value_of(list, k), out)) return;
        put(slot, out);
    }
}

// A list with one value prepended.
Mm with_first(const Mm &first, const Mm &list) {
    const kn_size n = list.size() == 0 ? 0 : values_of(list);
    Mm all(0, 0, 0, 1, n + 1, kn_Mm);
    if (lacks(all, n + 1)) return x_M;
    all.mr(1) = first;
    for (kn_size k = 1; k <= n; ++k) all.mr(k + 1) = value_of(list, k);
    return all;
}

} // namespace

Mm fprintf(const Mm &fmt) { return fprintf(1.0, fmt); }

// One empty value: conversions write nothing, and literal text is written as C does.
Mm fprintf(const Mm &fid, const Mm &fmt) {
    const Mm list = with_first(nop_M, nop_M);
    return list.size() > 0 ? fprintf(fid, fmt, list) : x_M;
}

Mm fprintf(const Mm &fid, const Mm &fmt, const Mm &list) {
    if (fid.isstr()) { // it is the format, and the argument in the format's place is the first value
        const Mm all = with_first(fmt, list);
        if (all.size() > 0) print_to(1, fid, all);
        return x_M;
    }
    const int slot = output_slot(fid);
    if (slot >= 0) print_to(slot, fmt, list);
    return x_M;
}

Mm printf(const Mm &fmt) { return fprintf(1.0, fmt); }
Mm printf(const Mm &fmt, const Mm &list) { return fprintf(1.0, fmt, list); }

Mm fscanf(const Mm &fid, const Mm &fmt) { return fscanf(fid, fmt, raw_inf); }

Mm fscanf(const Mm &fid, const Mm &fmt, const Mm &size) {
    Mm a, count;
    fscanf(fid, fmt, size, i_o, a, count);
    return a;
}

Mm fscanf(const Mm &fid, const Mm &fmt, i_o_t, Mm &a, Mm &count) {
    return fscanf(fid, fmt, raw_inf, i_o, a, count);
}
Mm fscanf(const Mm &fid, const Mm &fmt, i_o_t, Mm &a, Mm &count, Mm &msg) {
    return fscanf(fid, fmt, raw_inf, i_o, a, count, msg);
}

Mm fscanf(const Mm &fid, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count) {
    Mm msg;
    return fscanf(fid, fmt, size, i_o, a, count, msg);
}
Mm fscanf(const Mm &fid, const Mm &fmt, const Mm &size, i_o_t, Mm &a, Mm &count, Mm &msg) {
    const int slot = file_lookup(fid, "fscanf");
    if (slot >= 0) fid_turn(slot);
    if (slot < 0 || !format_scan(fid_stream(slot), {}, fmt, size, a, count, msg)) a = count = msg = x_M;
    return x_M;
}
