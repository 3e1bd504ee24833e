// The M path: a list of directories, each terminated by a null character, in one block.

#include "files/search_path.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

#include "base/ascii.h"
#include "base/scratch.h"
#include "platform/platform.h"
#include "quorvex/display.h"
#include "quorvex/memory.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"

namespace kn {
namespace {

using std::string_view;

// Calls work(directory) for each directory until it returns true; returns whether one did.
template <class F> bool any_directory(const kn_path_record &record, F work) {
    for (const char *d = record.start; d < record.end; d += std::strlen(d) + 1)
        if (work(d)) return true;
    return false;
}

// Concatenates `parts`; false when the result does not fit.
bool join(char *out, size_t size, std::initializer_list<string_view> parts) {
    size_t n = 0;
    for (string_view part : parts) {
        if (part.size() >= size - n) return false;
        n += part.copy(out + n, part.size());
    }
    out[n] = '\0';
    return true;
}

bool opens(const char *name) {
    std::FILE *file = os::open_file(name, "r");
    if (file) std::fclose(file);
    return file != nullptr;
}

// Converts a piece of path text to a directory: absolute, ending in a separator. False for one that is not to
// be added.
bool directory_of(string_view piece, char *out, size_t size) {
    constexpr string_view mount = "/tmp_mnt";
    if (piece.starts_with("diary")) return false;
    if (piece.starts_with(mount)) piece.remove_prefix(mount.size());
    char given[path_name_size];
    if (piece.empty() || !join(given, sizeof given, {piece}) || !os::absolute_path(given, out, size - 1))
        return false;
    const size_t n = std::strlen(out);
    if (n == 0 || out[n - 1] != os::separator) join(out + n, size - n, {{&os::separator, 1}});
    return true;
}

// The record, or null after a report.
kn_path_record *path_record() {
    if (!mpath_pointer) error("path is not available in compiled programs.");
    return mpath_pointer;
}

Mm add_front(const Mm &m) {
    Scratch<char> text(Mstr_size(m) + 1);
    if (!text) return x_M;
    Mstr(m, text.get(), Mstr_size(m) + 1);
    path_add(*mpath_pointer, text.get(), false);
    return x_M;
}

} // namespace

bool path_has(const kn_path_record &record, const char *directory) {
    return any_directory(record, [&](const char *d) { return std::strcmp(d, directory) == 0; });
}

void path_add(kn_path_record &record, const char *text, bool append) {
    for (string_view rest = text; !rest.empty();) {
        string_view piece = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
        while (!piece.empty() && is_white(piece[0])) piece.remove_prefix(1);
        char directory[path_name_size + 1];
        if (!directory_of(piece, directory, sizeof directory) || path_has(record, directory)) continue;
        const ptrdiff_t n = static_cast<ptrdiff_t>(std::strlen(directory)), used = record.end - record.start;
        if (used + n + 2 >= kn_path_size) continue;
        char *place = append ? record.end : record.start;
        if (!append) std::memmove(record.start + n + 1, record.start, static_cast<size_t>(used));
        std::memcpy(place, directory, static_cast<size_t>(n) + 1);
        record.end += n + 1;
    }
}

bool path_search(const kn_path_record *record, const char *caller, const char *name, char *directory,
                 size_t size) {
    char whole[2 * path_name_size];
    const string_view separator(&os::separator, 1);
    auto in = [&](string_view d, bool in_private) {
        return (in_private ? join(directory, size, {d, "private", separator}) : join(directory, size, {d})) &&
               join(whole, sizeof whole, {directory, name}) && opens(whole);
    };
    if (in("", false)) return true;
    if (caller && (in(caller, false) || in(caller, true))) return true;
    return record && any_directory(*record, [&](const char *d) {
               return in(d, false) || (caller && std::strcmp(caller, d) == 0 && in(d, true));
           });
}

std::FILE *path_open(const kn_path_record *record, const char *caller, char *name, size_t size, bool add_m) {
    char plain[path_name_size], directory[path_name_size];
    const bool needs_m = add_m && !std::strchr(name, '.');
    if (!join(plain, sizeof plain, {name, needs_m ? ".m" : ""})) return nullptr;
    directory[0] = '\0';
    if (record && !path_search(record, caller, plain, directory, sizeof directory)) return nullptr;
    if (!join(name, size, {directory, plain})) return nullptr;
    return os::open_file(name, "rb");
}

bool find_m_file(char *name, size_t size) {
    for (bool add_m : {true, false}) {
        char whole[path_name_size];
        if (!join(whole, sizeof whole, {name})) return false;
        std::FILE *file = path_open(mpath_pointer, nullptr, whole, sizeof whole, add_m);
        if (!file) continue;
        std::fclose(file);
        return join(name, size, {whole});
    }
    return false;
}

} // namespace kn

using namespace kn;

constinit kn_path_record *mpath_pointer = nullptr;

kn_path_record *kn_new_path_record(const char *host_directory) {
    void *place = kn_block_alloc(sizeof(kn_path_record));
    char *block = place ? static_cast<char *>(kn_block_alloc(kn_path_size)) : nullptr;
    if (!block) {
        kn_block_free(place);
        out_of_memory();
        return nullptr;
    }
    std::memset(block, 0, kn_path_size);
    auto *record = new (place) kn_path_record{block, block, {}};
    const string_view directory = host_directory ? host_directory : "";
    directory.copy(record->host_directory, sizeof record->host_directory - 1);
    return record;
}

void kn_delete_path_record(kn_path_record *record) {
    if (!record) return;
    if (mpath_pointer == record) mpath_pointer = nullptr;
    kn_block_free(record->start);
    kn_block_free(record);
}

Mm matlabpath() {
    const kn_path_record *record = path_record();
    if (!record) return x_M;
    const ptrdiff_t n = record->end - record->start;
    Scratch<char> text(n + 1);
    if (!text) return x_M;
    std::replace_copy(record->start, record->end, text.get(), '\0', ';');
    text[n] = '\0';
    return TM(text.get());
}

Mm matlabpath(const Mm &m) {
    kn_path_record *record = path_record();
    if (!record) return x_M;
    const kn_size size = Mstr_size(m) + 1;
    Scratch<char> text(size);
    if (!text) return x_M;
    Mstr(m, text.get(), size);
    const size_t n = std::min<size_t>(std::strlen(text.get()), kn_path_size - 1);
    std::memset(record->start, 0, kn_path_size);
    std::replace_copy(text.get(), text.get() + n, record->start, ';', '\0');
    record->end = record->start + n;
    // The last directory is terminated too, unless the text already did that.
    if (n > 0 && record->end[-1] != '\0') ++record->end;
    return x_M;
}

Mm path() { return matlabpath(); }
Mm path(const Mm &text) { return matlabpath(text); }

Mm path(const Mm &text, const Mm &front) {
    if (!path_record()) return x_M;
    matlabpath(text);
    return addpath(front);
}

Mm addpath(const Mm &list) {
    if (!path_record()) return x_M;
    if (list.gettype() != kn_Mm) return add_front(list);
    for (kn_size k = list.size(); k >= 1; --k) add_front(list.safebr(k));
    return x_M;
}
