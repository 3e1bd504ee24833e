// The table of open files.

#include "files/file_table.h"

#include <cstring>
#include <string_view>

#include "base/lock.h"
#include "files/stream_calls.h"
#include "quorvex/classes.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "value/number_block.h"

namespace kn {

StreamProbe stream_probe;

namespace {

struct Slot {
    std::FILE *stream; // null: free
    int format;
    bool both; // open for reading and writing
    char mode[file_mode_size];
    char name[file_name_size];
};

Slot slots[fid_slots];

// The quotation marks are part of the names.
constexpr struct {
    const char *name, *mode;
} standard[first_fid] = {{"\"stdin\"", "r"}, {"\"stdout\"", "a"}, {"\"stderr\"", "a"}};

// Takes no lock, since another thread may hold it: a slot that changes meanwhile is nearly always read whole.
void write_out_slots() {
    for (int slot = first_fid; slot < fid_slots; ++slot)
        if (std::FILE *stream = slots[slot].stream) os::write_out(stream);
}

void copy(char *to, std::string_view text, size_t size) { to[text.copy(to, size - 1)] = '\0'; }

} // namespace

int machine_format_code(const Mm &m) {
    static constexpr struct {
        std::string_view name;
        int code;
    } formats[] = {{"b", big_endian},          {"ieee-be", big_endian}, {"l", little_endian},
                   {"ieee-le", little_endian}, {"n", native_format},    {"native", native_format}};
    char text[17];
    Mstr_row(m, text, sizeof text);
    for (const auto &f : formats)
        if (f.name == text) return f.code;
    return unknown_format;
}

const char *machine_format_name(int format) { return format == big_endian ? "ieee-be" : "ieee-le"; }

int fid_lookup(const Mm &fid, bool strict) {
    int slot;
    if (is_real_scalar(fid)) {
        slot = double_to_int(*fid.addr());
    } else if (fid.size() != 1) {
        error("Size of fid %s not one.", kn_display_name(fid));
        return -1;
    } else {
        const Mm number = mdouble(fid);
        if (number.size() != 1 || number.gettype() != kn_double) return -1; // a cell, which has been reported
        slot = double_to_int(*number.addr());
    }
    if (slot < 0 || slot > fid_slots) {
        if (strict) error("Illegal fid.");
        return -1;
    }
    if (!fid_is_open(slot)) {
        if (strict) error("Fid not opened.");
        return -1;
    }
    return slot;
}

int file_lookup(const Mm &fid, const char *caller) {
    const int slot = fid_lookup(fid, true);
    if (slot < 0 || slot >= first_fid) return slot;
    error("%s: Illegal fid.", caller);
    return -1;
}

bool fid_is_open(int slot) { return slot < first_fid || (slot < fid_slots && slots[slot].stream); }

std::FILE *fid_stream(int slot) { return slots[slot].stream; }

void fid_turn(int slot) {
    if (slots[slot].both) io::seek(slots[slot].stream, 0, SEEK_CUR);
}

const char *fid_name(int slot) { return slot < first_fid ? standard[slot].name : slots[slot].name; }
const char *fid_mode(int slot) { return slot < first_fid ? standard[slot].mode : slots[slot].mode; }
int fid_format(int slot) { return slot < first_fid ? native_format : slots[slot].format; }

int fid_close(int slot) {
    std::FILE *stream;
    {
        Lock lock(Guarded::file_table);
        stream = slots[slot].stream;
        slots[slot].stream = nullptr;
    }
    return stream ? io::close(stream) : EOF;
}

void fid_close_all() {
    Lock lock(Guarded::file_table);
    for (int slot = first_fid; slot < fid_slots; ++slot)
        if (fid_is_open(slot)) fid_close(slot);
}

int fid_store(Stream &stream, const char *name, const char *mode, int format) {
    Lock lock(Guarded::file_table);
    os::write_out_files = write_out_slots;
    for (int slot = first_fid; slot < fid_slots; ++slot) {
        Slot &s = slots[slot];
        if (s.stream) continue;
        s.stream = stream.release();
        s.format = format;
        s.both = std::strchr(mode, '+');
        copy(s.mode, mode, sizeof s.mode);
        copy(s.name, name, sizeof s.name);
        return slot;
    }
    return -1;
}

} // namespace kn
