// Listings of directories.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>

#include "base/scratch.h"
#include "base/wildcard.h"
#include "platform/platform.h"
#include "quorvex/arrays.h"
#include "quorvex/display.h"
#include "quorvex/files.h"
#include "quorvex/indexing.h"
#include "quorvex/startup.h"
#include "quorvex/structures.h"
#include "text/dates/date_parts.h"
#include "text/text_buffer.h"

using namespace kn;

namespace {

constexpr int name_size = 1024;

struct Entry {
    size_t name; // offset in the names
    os::FileStatus status;
};

// Entries sorted by name. Converts to false when memory was exhausted.
class Listing {
  public:
    // The entries of a directory, those that match a pattern in the last part of the name, or the single file
    // of that name.
    explicit Listing(const Mm &m) {
        char text[name_size];
        Mstr_row(m, text, name_size);
        char *last = text + (os::last_part(text) - text);
        os::FileStatus status;
        if (last[std::strcspn(last, "*?")]) {
            char pattern[name_size];
            std::strcpy(pattern, last);
            *last = '\0';
            read(text, pattern);
        } else if (!*text || os::is_directory(text)) {
            read(text, "*");
        } else if (os::file_status(text, status)) {
            add(last, status);
        }
        sort();
    }

    explicit operator bool() const { return !failed_ && names_ && bytes_ && (n_ == 0 || entries_); }
    int size() const { return n_; }
    const os::FileStatus &status(int k) const { return (*entries_)[k].status; }
    const char *name(int k) { return names_.data() + (*entries_)[k].name; }

  private:
    void read(const char *directory, const char *pattern) {
        os::Directory in(*directory ? directory : ".");
        if (!in && errno == ENOMEM) {
            failed_ = true;
            out_of_memory();
        }
        while (in && in.next())
            if (matches(pattern, in.name())) add(in.name(), in.status());
    }

    void add(const char *name, const os::FileStatus &status) {
        const Entry entry = {names_.size(), status};
        names_.append(std::string_view(name, std::strlen(name) + 1));
        bytes_.append(std::string_view(reinterpret_cast<const char *>(&entry), sizeof entry));
        ++n_;
    }

    void sort() {
        if (!names_ || !bytes_ || n_ == 0) return;
        entries_.emplace(n_);
        if (!*entries_) return entries_.reset();
        std::memcpy(entries_->get(), bytes_.data(), bytes_.size());
        std::sort(entries_->get(), entries_->get() + n_, [&](const Entry &a, const Entry &b) {
            return std::strcmp(names_.data() + a.name, names_.data() + b.name) < 0;
        });
    }

    TextBuffer names_, bytes_;
    std::optional<Scratch<Entry>> entries_;
    int n_ = 0;
    bool failed_ = false;
};

// "21-Nov-2026 09:30:00"
void write_date(char *out, size_t size, const os::FileStatus &status) {
    os::LocalTime t;
    *out = '\0';
    if (os::local_time(status.modified, t))
        std::snprintf(out, size, "%02d-%s-%04d %02d:%02d:%02d", t.day, month_names[t.month - 1], t.year,
                      t.hour, t.minute, static_cast<int>(t.second));
}

} // namespace

Mm dir() { return dir(TM("")); }

Mm dir(const Mm &name) {
    Listing items(name);
    const int n = items.size();
    if (!items) return x_M;
    if (n == 0) return cell(0.0, 0.0);
    Mm columns = cell(4.0, n);
    if (columns.size() != 4 * n) return x_M;
    for (int k = 0; k < n; ++k) {
        const os::FileStatus &status = items.status(k);
        char date[64];
        write_date(date, sizeof date, status);
        columns.mr(1, k + 1) = TM(items.name(k));
        columns.mr(2, k + 1) = TM(date);
        columns.mr(3, k + 1) = status.is_directory ? 0.0 : status.size;
        columns.mr(4, k + 1) = status.is_directory ? 1.0 : 0.0;
    }
    const Mm fields = (CL(TM("name")), TM("date"), TM("bytes"), TM("isdir"));
    return cell2struct(columns, transpose(fields), one_M);
}

Mm ls() { return ls(TM("")); }

Mm ls(const Mm &name) {
    Listing items(name);
    for (int k = 0; items && k < items.size(); ++k) {
        const os::FileStatus &status = items.status(k);
        char date[64];
        write_date(date, sizeof date, status);
        kn_printf("%-20s %12.0f  %s%s\n", date, status.is_directory ? 0.0 : status.size, items.name(k),
                  status.is_directory ? "/" : "");
    }
    return x_M;
}
