// Lines of files.

#include <algorithm>
#include <cstring>

#include "files/file_table.h"
#include "files/stream_calls.h"
#include "quorvex/files.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_argument.h"

using namespace kn;

namespace {

constexpr int longest = 16384;

Mm text_of(const char *s, size_t n) {
    const int cols = static_cast<int>(n);
    Mm out(0, 0, 0, 1, cols, kn_double);
    if (!lacks(out, cols)) {
        std::transform(s, s + n, out.addr(), [](char c) { return static_cast<unsigned char>(c); });
        out.setstr(1);
    }
    return out;
}

// Reads at most n characters, which `finish(text, length)` cuts down to the part that is wanted.
template <class F> Mm next_line(const char *caller, const Mm &fid, int n, F finish) {
    const int slot = file_lookup(fid, caller);
    if (slot < 0) return -1;
    std::FILE *stream = fid_stream(slot);
    if (std::feof(stream) || n < 0) return -1;
    fid_turn(slot);
    char line[longest + 1];
    if (!io::gets(line, n + 1, stream)) return -1;
    return text_of(line, finish(line, std::strlen(line)));
}

size_t keep_newline(char *line, size_t n) {
    char *end = std::strstr(line, "\r\n");
    if (!end) return n;
    *end = '\n';
    return static_cast<size_t>(end - line) + 1;
}

size_t drop_line_ends(char *line, size_t n) {
    if (n > 0 && line[n - 1] == '\n') --n;
    if (!std::memchr(line, '\r', n)) return n;
    return static_cast<size_t>(std::remove(line, line + n, '\r') - line);
}

} // namespace

Mm fgets(const Mm &fid) { return fgets(fid, longest); }

Mm fgets(const Mm &fid, const Mm &n) {
    return next_line("fgets", fid, std::min(double_to_int(number_argument(n)), longest), keep_newline);
}

Mm fgetl(const Mm &fid) { return next_line("fgetl", fid, longest, drop_line_ends); }
