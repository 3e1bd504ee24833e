// load, and what whos shows of a file: the entry points of all kinds of files.

#include <algorithm>
#include <cstring>

#include "core/header.h"
#include "files/mat5.h"
#include "files/matfile.h"
#include "quorvex/builders.h"
#include "quorvex/display.h"
#include "quorvex/matfiles.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "text/text_buffer.h"

using namespace kn;

namespace {

// The first value of a file.
Mm first_of(const MatFile &file) {
    Mm value;
    switch (file.kind) {
    case MatKind::level4: mat4_load(file, value); break;
    case MatKind::level5: Mat5Reader(file.get(), file.name).read(value); break;
    case MatKind::text: text_load(file, value); break;
    }
    return value;
}

void load_list(const MatFile &file, const Mc &list) {
    auto target = [&](int k) -> Mm & { return const_cast<Mm &>(list.item(k)); };
    switch (file.kind) {
    case MatKind::level4:
        for (int k = 0; k < list.count(); ++k)
            if (mat4_load(file, target(k))) break;
        break;
    case MatKind::level5: {
        Mat5Reader reader(file.get(), file.name);
        for (int k = 0; k < list.count(); ++k)
            if (!reader.read_named(target(k))) break;
        break;
    }
    case MatKind::text: text_load(file, target(0)); break;
    }
}

// ---- Entries ----

void add(TextBuffer &entries, const MatEntry &e) {
    entries.append({reinterpret_cast<const char *>(&e), sizeof e});
}

// A text has one variable, which is called as the file up to its first ".".
void add_text(const MatFile &file, TextBuffer &entries) {
    Mm value;
    if (!text_load(file, value)) return;
    MatEntry e{"", value.getndims(), {value.rows(), value.cols(), 1, 1}, 8.0 * value.size()};
    const size_t n = std::strcspn(file.name, ".");
    std::snprintf(e.name, sizeof e.name, "%.*s", static_cast<int>(n), file.name);
    add(entries, e);
}

void add_level4(const MatFile &file, TextBuffer &entries) {
    for (MatEntry e{}; mat4_next(file, e) && *e.name;) add(entries, e);
}

void add_level5(const MatFile &file, TextBuffer &entries) {
    Mat5Reader reader(file.get(), file.name);
    for (Mat5Entry from{}; reader.next(from) && *from.name;) {
        MatEntry e{"", std::min(from.ndims, 4), {}, from.bytes};
        std::snprintf(e.name, sizeof e.name, "%.*s", MatEntry::name_size - 1, from.name);
        std::copy_n(from.dims, 4, e.dims);
        add(entries, e);
    }
}

Mm columns_of(TextBuffer &entries) {
    const int n = static_cast<int>(entries.size() / sizeof(MatEntry));
    if (!entries) return x_M;
    Mm columns = cell(n > 0 ? 4.0 : 0.0, n);
    if (lacks(columns, 4 * n)) return x_M;
    for (int k = 0; k < n; ++k) {
        MatEntry e;
        std::memcpy(&e, entries.data() + static_cast<size_t>(k) * sizeof e, sizeof e);
        Mm dims(0, 0, 0, 1, e.ndims, kn_double);
        if (lacks(dims, e.ndims)) return x_M;
        std::copy_n(e.dims, e.ndims, dims.addr());
        columns.mr(1, k + 1) = TM(e.name);
        columns.mr(2, k + 1) = dims;
        columns.mr(3, k + 1) = e.bytes;
        columns.mr(4, k + 1) = nop_M;
    }
    return columns;
}

} // namespace

Mm load(const Mm &m, const Mc &list) {
    char name[mat_name_size];
    mat_name(m, name);
    MatFile file(name);
    if (!mat_open_read(mpath_pointer, file)) return x_M;
    if (list.count() == 0) return first_of(file);
    load_list(file, list);
    return x_M;
}

Mm load(const Mm &name) { return load(name, Mc()); }
Mm vbload(const Mm &name) { return load(name, Mc()); }

Mm kn_matfile_variables(const Mm &m) {
    char name[mat_name_size];
    mat_name(m, name);
    MatFile file(name);
    if (!mat_open_read(mpath_pointer, file)) return x_M;
    TextBuffer entries;
    switch (file.kind) {
    case MatKind::level4: add_level4(file, entries); break;
    case MatKind::level5: add_level5(file, entries); break;
    case MatKind::text: add_text(file, entries); break;
    }
    return columns_of(entries);
}
