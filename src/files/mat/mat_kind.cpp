// Finding a file to load, and recognising its kind.
//
// The first 32 bytes decide: letters at the head are level 5; nothing but text characters, a shorter file
// padded with blanks, is text; else level 4, whose first bytes are mostly zero.

#include <algorithm>
#include <cstring>

#include "base/ascii.h"
#include "files/mat/matfile.h"
#include "files/search_path.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"

namespace kn {
namespace {

constexpr size_t text_sample = 32;
constexpr int level5_version = 124; // two bytes in the writer's order: 1 0

// "Text characters" as in the "C" locale, whatever locale the program runs in.
bool is_text_byte(char c) { return (c >= ' ' && c <= '~') || is_white(c); }

std::FILE *find(const kn_path_record *record, const char *name) {
    char whole[mat_name_size];
    if (std::strlen(name) >= path_name_size) return nullptr;
    std::strcpy(whole, name);
    if (stream_fails()) return nullptr;
    return io::opened(path_open(record, nullptr, whole, path_name_size, false));
}

bool measure(MatFile &file) {
    if (io::seek(file.get(), 0, SEEK_END) != 0) return false;
    file.size = io::tell(file.get());
    return file.size >= 0 && io::seek(file.get(), 0, SEEK_SET) == 0;
}

bool recognise(MatFile &file) {
    char head[level5_header_size];
    std::memset(head, ' ', sizeof head);
    if (!measure(file)) return false;
    const size_t n = std::min<size_t>(sizeof head, static_cast<size_t>(file.size));
    if (io::read(head, 1, n, file.get()) != n) return false;
    const std::string_view mark(head, 3);
    if (mark == level5_marks[0] || mark == level5_marks[1]) {
        file.kind = MatKind::level5;
        return head[level5_version] != 2 && head[level5_version + 1] != 2; // a file of HDF5 in disguise
    }
    file.kind = std::all_of(head, head + text_sample, is_text_byte) ? MatKind::text : MatKind::level4;
    return io::seek(file.get(), 0, SEEK_SET) == 0;
}

} // namespace

bool mat_name(const Mm &m, char (&name)[mat_name_size]) {
    *name = '\0';
    Mstr_row(m, name, mat_name_size);
    return *name != '\0';
}

bool add_mat(const char *name, char (&out)[mat_name_size]) {
    const int n = std::snprintf(out, mat_name_size, "%s%s", name, std::strchr(name, '.') ? "" : ".mat");
    return n < mat_name_size;
}

long long MatFile::left() const {
    const long long at = io::tell(get());
    return at < 0 ? -1 : at > size ? 0 : size - at;
}

bool mat_open_read(const kn_path_record *record, MatFile &file) {
    char extended[mat_name_size];
    if (*file.name && add_mat(file.name, extended)) {
        std::FILE *found = find(record, extended);
        Stream stream(found ? found : find(record, file.name));
        file.stream.swap(stream);
    }
    if (!file.stream) {
        error("load: %s not found", file.name);
        return false;
    }
    return mat_recognise(file);
}

bool mat_recognise(MatFile &file) {
    if (recognise(file)) return true;
    error("load: %s could not be read", file.name);
    return false;
}

} // namespace kn
