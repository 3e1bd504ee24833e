// load, and the part of whos that reads files: the entry points for all kinds of files.

#include <algorithm>
#include <cstring>
#include <optional>

#include "base/scratch.h"
#include "base/wildcard.h"
#include "files/mat/mat5.h"
#include "files/mat/matfile.h"
#include "quorvex/builders.h"
#include "quorvex/display.h"
#include "quorvex/matfiles.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "text/text_buffer.h"
#include "value/header.h"

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
    auto target = [&](kn_size k) -> Mm & { return const_cast<Mm &>(list.item(k)); };
    switch (file.kind) {
    case MatKind::level4:
        for (kn_size k = 0; k < list.count(); ++k)
            if (mat4_load(file, target(k))) break;
        break;
    case MatKind::level5: {
        Mat5Reader reader(file.get(), file.name);
        for (kn_size k = 0; k < list.count(); ++k)
            if (!reader.read_named(target(k))) break;
        break;
    }
    case MatKind::text: text_load(file, target(0)); break;
    }
}

// ---- One variable after another ----

// The variables of a MAT-file.
class Variables {
  public:
    explicit Variables(const MatFile &file) : file_(file) {
        if (file.kind == MatKind::level5) level5_.emplace(file.get(), file.name);
    }

    // The head of the next one, which is skipped. False at the end, and where the file is damaged.
    bool next(MatEntry &e) {
        if (!level5_) {
            passed_ = io::tell(file_.get());
            return mat4_next(file_, e);
        }
        Mat5Entry from{};
        if (!level5_->next(from)) return false;
        e.ndims = std::min(from.ndims, 4);
        e.bytes = from.bytes;
        std::copy_n(from.dims, 4, e.dims);
        std::strcpy(e.name, from.name);
        return true;
    }

    // The value of the one that was skipped. False after a report.
    bool read(Mm &value) {
        if (level5_) return level5_->back() && level5_->read(value);
        return passed_ >= 0 && io::seek(file_.get(), passed_, SEEK_SET) == 0 && !mat4_load(file_, value);
    }

    // Whether there are no more; reports when something else follows.
    bool at_end() { return !level5_ || level5_->at_end(); }

  private:
    const MatFile &file_;
    std::optional<Mat5Reader> level5_;
    long long passed_ = 0;
};

// ---- Into a structure ----

// Patterns, each the text of an element of a cell, and whether it has matched a name.
class Patterns {
  public:
    explicit Patterns(const Mm &names) : names_(names), met_(is_cell(names) ? names.getnnz() : 1) {
        for (int k = 0; met_ && k < count(); ++k) met_[k] = false;
    }
    explicit operator bool() const { return static_cast<bool>(met_); }

    bool accept(const char *name) {
        bool wanted = false;
        char pattern[MatEntry::name_size];
        for (kn_size k = 0; k < count(); ++k)
            if (matches(text(k, pattern), name)) wanted = met_[k] = true;
        return wanted;
    }
    void warn_unmet(const char *file) const {
        char pattern[MatEntry::name_size];
        for (kn_size k = 0; k < count(); ++k)
            if (!met_[k]) warning("load: variable '%s' not found in '%s'", text(k, pattern), file);
    }

  private:
    kn_size count() const { return is_cell(names_) ? names_.getnnz() : 1; }
    const char *text(kn_size k, char (&to)[MatEntry::name_size]) const {
        *to = '\0';
        Mstr_row(is_cell(names_) ? names_.getpr(static_cast<Mm *>(nullptr))[k] : names_, to, sizeof to);
        return to;
    }

    const Mm &names_;
    Scratch<bool> met_;
};

// A structure with a field for each variable, or for those with given names; for a text file the matrix. A
// variable without a name was not saved by a program and is left out.
Mm structure_of(const Mm &m, const Mm *names) {
    char name[mat_name_size];
    mat_name(m, name);
    MatFile file(name);
    if (!mat_open_read(mpath_pointer, file)) return x_M;
    if (file.kind == MatKind::text) return first_of(file);
    const Mm all = TM("*");
    Patterns patterns(names ? *names : all);
    Variables variables(file);
    Mm out = mstruct(cell(0.0));
    if (!patterns || !out.isstruct()) return x_M;
    for (MatEntry e{}; variables.next(e);) {
        if (!*e.name || !patterns.accept(e.name)) continue;
        Mm value;
        if (!variables.read(value)) return x_M;
        out.member(e.name) = value;
    }
    if (!variables.at_end()) return x_M;
    if (names) patterns.warn_unmet(file.name);
    check(out);
    return out;
}

// ---- Entries ----

void add(TextBuffer &entries, const MatEntry &e) {
    entries.append({reinterpret_cast<const char *>(&e), sizeof e});
}

// A text file has one variable, named like the file up to its first ".".
void add_text(const MatFile &file, TextBuffer &entries) {
    Mm value;
    if (!text_load(file, value)) return;
    MatEntry e{
        "", value.getndims(), {value.rows(), value.cols(), 1, 1}, 8.0 * static_cast<double>(value.size())};
    const size_t n = std::strcspn(file.name, ".");
    std::snprintf(e.name, sizeof e.name, "%.*s", static_cast<int>(n), file.name);
    add(entries, e);
}

Mm columns_of(TextBuffer &entries) {
    constexpr int longest_name = 39;
    const int n = static_cast<int>(entries.size() / sizeof(MatEntry));
    if (!entries) return x_M;
    Mm columns = cell(n > 0 ? 4.0 : 0.0, n);
    if (lacks(columns, 4 * n)) return x_M;
    for (int k = 0; k < n; ++k) {
        MatEntry e;
        std::memcpy(&e, entries.data() + static_cast<size_t>(k) * sizeof e, sizeof e);
        e.name[longest_name] = '\0';
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

Mm load(const Mm &name) { return structure_of(name, nullptr); }
Mm load(const Mm &name, const Mm &names) { return structure_of(name, &names); }
Mm vbload(const Mm &name) { return load(name, Mc()); }

Mm kn_matfile_variables(const Mm &m) {
    char name[mat_name_size];
    mat_name(m, name);
    MatFile file(name);
    if (!mat_open_read(mpath_pointer, file)) return x_M;
    TextBuffer entries;
    if (file.kind == MatKind::text) {
        add_text(file, entries);
    } else {
        Variables variables(file);
        for (MatEntry e{}; variables.next(e) && *e.name;) add(entries, e);
    }
    return columns_of(entries);
}
