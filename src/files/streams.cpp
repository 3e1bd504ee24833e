// Opening and closing files, their state and position.

#include <cstring>
#include <string_view>

#include "base/lock.h"
#include "files/file_table.h"
#include "files/search_path.h"
#include "files/stream_calls.h"
#include "platform/platform.h"
#include "quorvex/display.h"
#include "quorvex/files.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/keyword.h"
#include "value/number_argument.h"

using namespace kn;

namespace {

constexpr char file_error[] = "File error";

struct Opened {
    Mm fid = -1.0, message = nop_M;
};

Mm open_fids() {
    Mm fids(0, 0, 0, 1, fid_slots, kn_double);
    if (lacks(fids, fid_slots)) return x_M;
    int n = 0;
    for (int slot = first_fid; slot < fid_slots; ++slot)
        if (fid_is_open(slot)) fids.addr()[n++] = slot;
    Mm out(0, 0, 0, 1, n, kn_double);
    if (lacks(out, n)) return x_M;
    std::memcpy(out.addr(), fids.addr(), static_cast<size_t>(n) * sizeof(double));
    return out;
}

// The file with this name, and, when it is opened for reading only, the name under which it was found.
std::FILE *open_stream(char *name, char *mode) {
    if (!std::strchr(mode, 'r') || std::strchr(mode, '+')) return io::open(name, mode);
    std::strcpy(mode, "rb");
    if (stream_fails()) return nullptr;
    return io::opened(path_open(mpath_pointer, nullptr, name, file_name_size, false));
}

Opened open(const Mm &file, const Mm &how, const Mm &order) {
    Opened out;
    char mode[file_mode_size], name[file_name_size];
    Mstr_row(how, mode, 17);
    if (!std::strpbrk(mode, "bt")) std::strcat(mode, "b");
    Mstr_row(file, name, 513);
    if (!*name) {
        out.message = TM("filename is empty");
        return out;
    }
    const int format = machine_format_code(order);
    if (format == unknown_format) warning("fopen: don't know how to convert from machine format");
    if (std::string_view(name) == "all") {
        out.fid = open_fids();
        return out;
    }
    int slot;
    {
        Stream stream(open_stream(name, mode));
        if (!stream || std::ferror(stream.get())) {
            out.message = TM(file_error);
            return out;
        }
        slot = fid_store(stream, name, mode, format);
    }
    if (slot < 0) {
        error("Too many files");
        os::end_process(1);
    }
    out.fid = slot;
    return out;
}

Mm opened(const Mm &name, const Mm &mode, const Mm &format, Mm &fid, Mm &message) {
    Opened out = open(name, mode, format);
    fid = out.fid;
    message = out.message;
    return x_M;
}

bool is_number(const Mm &x) {
    return !x.isstr() && x.size() == 1 && (x.gettype() == kn_double || x.gettype() == kn_uint8);
}

// The origin of an fseek.
int origin_of(const Mm &origin) {
    if (origin.isstr()) {
        if (is_word(origin, "bof")) return SEEK_SET;
        if (is_word(origin, "eof")) return SEEK_END;
        if (!is_word(origin, "cof")) error("fseek: origin %s not bof, cof or eof", kn_display_name(origin));
        return SEEK_CUR;
    }
    const int n = double_to_int(number_argument(origin));
    return n < 0 ? SEEK_SET : n == 0 ? SEEK_CUR : SEEK_END;
}

Mm ferror_flag(const Mm &fid, bool clear, Mm &message, Mm &number) {
    const int slot = file_lookup(fid, "ferror"), flag = slot < 0 ? -1 : std::ferror(fid_stream(slot));
    if (slot >= 0 && clear) std::clearerr(fid_stream(slot));
    message = TM(flag ? file_error : "");
    number = flag;
    return message;
}

} // namespace

// ---- Opening and closing ----

Mm fopen(const Mm &name) {
    if (!is_number(name)) return fopen(name, TM("r"));
    const int slot = fid_lookup(name, false);
    return slot < 0 ? nop_M : TM(fid_name(slot));
}

Mm fopen(const Mm &name, const Mm &mode) { return fopen(name, mode, TM("n")); }
Mm fopen(const Mm &name, const Mm &mode, const Mm &format) { return open(name, mode, format).fid; }

Mm fopen(const Mm &name, i_o_t, Mm &fid, Mm &message) { return opened(name, TM("r"), TM("l"), fid, message); }
Mm fopen(const Mm &name, const Mm &mode, i_o_t, Mm &fid, Mm &message) {
    return opened(name, mode, TM("l"), fid, message);
}
Mm fopen(const Mm &name, const Mm &mode, const Mm &format, i_o_t, Mm &fid, Mm &message) {
    return opened(name, mode, format, fid, message);
}

Mm fopen(const Mm &fid, i_o_t, Mm &name, Mm &mode, Mm &format) {
    const int slot = fid_lookup(fid, false);
    name = TM(slot < 0 ? "" : fid_name(slot));
    mode = TM(slot < 0 ? "" : fid_mode(slot));
    format = TM(slot < 0 ? "" : machine_format_name(fid_format(slot)));
    return x_M;
}

Mm fclose(const Mm &fid) {
    if (fid.isstr()) {
        fid_close_all();
        return x_M;
    }
    if (is_number(fid) && count_argument(fid) < first_fid) {
        error("fclose: can not close stdin/stdout/stderr, fid is %s", kn_display_name(fid));
        return x_M;
    }
    const int slot = file_lookup(fid, "fclose");
    return slot < 0 ? -1 : fid_close(slot);
}

Mm stderrM() { return 2; }

// ---- State and position ----

Mm feof(const Mm &fid) {
    const int slot = file_lookup(fid, "feof");
    return slot < 0 || std::feof(fid_stream(slot)) ? 1 : 0;
}

Mm fflush(const Mm &fid) {
    const int slot = file_lookup(fid, "fflush");
    return slot < 0 || io::flush(fid_stream(slot)) != 0 ? 1 : 0;
}

Mm ferror(const Mm &fid) {
    Mm message, number;
    return ferror_flag(fid, false, message, number);
}
Mm ferror(const Mm &fid, const Mm &x) {
    Mm message, number;
    return ferror_flag(fid, x.isstr(), message, number);
}
Mm ferror(const Mm &fid, i_o_t, Mm &message, Mm &number) { return ferror_flag(fid, false, message, number); }
Mm ferror(const Mm &fid, const Mm &x, i_o_t, Mm &message, Mm &number) {
    return ferror_flag(fid, x.isstr(), message, number);
}

Mm fseek(const Mm &fid, const Mm &offset, const Mm &origin) {
    const int slot = file_lookup(fid, "fseek");
    if (slot < 0) return -1;
    const long long bytes = offset_argument(offset);
    return io::seek(fid_stream(slot), bytes, origin_of(origin)) == 0 ? 0 : -1;
}

Mm ftell(const Mm &fid) {
    const int slot = file_lookup(fid, "ftell");
    return slot < 0 ? -1 : static_cast<double>(io::tell(fid_stream(slot)));
}

Mm frewind(const Mm &fid) {
    const int slot = file_lookup(fid, "frewind");
    return slot >= 0 && io::seek(fid_stream(slot), 0, SEEK_SET) == 0 ? 0 : -1;
}
