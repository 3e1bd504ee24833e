// save, vbsave, saveappend, saveV4, saveascii: the entry points for all kinds of files.

#include <algorithm>
#include <cstring>
#include <optional>

#include "files/atomic_write.h"
#include "files/mat/mat5.h"
#include "files/mat/mat5_layout.h"
#include "files/mat/matfile.h"
#include "quorvex/matfiles.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "value/header.h"

using namespace kn;

namespace {

// The values to save, of a comma list or of a cell from its element `first` on; anything else is itself the
// only value.
class Values {
  public:
    explicit Values(const Mc &list) : list_(&list), count_(list.count()) {}
    explicit Values(const Mm &m, kn_size first = 0)
        : cell_(&m), first_(first), count_(is_cell(m) ? std::max<kn_size>(m.getnnz() - first, 0) : 1) {}
    kn_size count() const { return count_; }
    const Mm &operator[](kn_size k) const {
        if (list_) return list_->item(k);
        return is_cell(*cell_) ? cell_->getpr(static_cast<Mm *>(nullptr))[first_ + k] : *cell_;
    }

  private:
    const Mc *list_ = nullptr;
    const Mm *cell_ = nullptr;
    kn_size first_ = 0, count_;
};

// A kind of file: a writer for a stream and the file's name. `begin` and `put` return false, after a report,
// when the file is incomplete.
struct Level5 {
    static constexpr bool extended = true;
    static void failed(const char *name, const char *what) { error("save: %s could not be %s", name, what); }
    std::FILE *stream;
    const char *name;
    std::optional<Mat5Writer> writer;
    Level5(std::FILE *f, const char *file_name) : stream(f), name(file_name) {}
    bool begin(const Values &) { return writer.emplace(stream, name).header(); }
    bool put(const Mm &x) { return writer->write(x); }
};

// Level 5 appended to the existing contents of the file, without the variables that have the name of a new
// value.
struct Level5Appended : Level5 {
    using Level5::Level5;

    bool begin(const Values &values) {
        for (kn_size k = 0; k < values.count(); ++k)
            if (const char *own = values[k].getname(); !own || !*own)
                return refused("a value without a name can't be appended to %s");
        MatFile old(name);
        Stream from(io::open(name, "rb"));
        if (!from && !os::file_exists(name)) return Level5::begin(values);
        old.stream.swap(from);
        if (!old.stream) return refused("%s could not be read");
        if (!mat_recognise(old) || !keep(old, values)) return false;
        writer.emplace(stream, name);
        return true;
    }

  private:
    bool refused(const char *format) const {
        char text[128];
        std::snprintf(text, sizeof text, "save: %s", format);
        error(text, name);
        return false;
    }

    // Copies the variables and the head of the file, in which bytes 116 to 123 may give the offset of a
    // nameless variable that belongs to all others.
    bool keep(const MatFile &old, const Values &values) {
        char head[level5_header_size];
        uint16_t mark;
        uint64_t shared;
        if (old.kind != MatKind::level5) return refused("%s is no MAT-file of level 5");
        if (io::seek(old.get(), 0, SEEK_SET) != 0 || io::read(head, 1, sizeof head, old.get()) != sizeof head)
            return refused("%s could not be read");
        std::memcpy(&mark, head + mat5::text_bytes + sizeof mat5::version, sizeof mark);
        if (mark != mat5::order_mark) return refused("%s has the other byte order");
        std::memcpy(&shared, head + mat5::shared_at, sizeof shared);

        auto replaced = [&](const char *x) {
            for (kn_size k = 0; k < values.count(); ++k)
                if (std::strcmp(x, values[k].getname()) == 0) return true;
            return false;
        };
        Mat5Reader reader(old.get(), name);
        Mat5Entry e;
        uint64_t dropped = 0;
        for (uint64_t start = reader.at(); reader.next(e); start = reader.at())
            if (replaced(e.name) && start < shared) dropped += reader.at() - start;
        if (shared < static_cast<uint64_t>(old.size)) {
            shared -= dropped;
            std::memcpy(head + mat5::shared_at, &shared, sizeof shared);
        }
        if (io::write(head, 1, sizeof head, stream) != sizeof head) {
            failed(name, "written");
            return false;
        }
        for (reader.rewind(); reader.next(e);)
            if (!replaced(e.name) && !reader.copy(stream)) return false;
        return reader.back() && reader.at_end();
    }
};

struct Level4 {
    static constexpr bool extended = true;
    static void failed(const char *name, const char *what) {
        error("saveV4: %s could not be %s", name, what);
    }
    std::FILE *stream;
    Level4(std::FILE *f, const char *) : stream(f) {}
    bool begin(const Values &) { return true; }
    bool put(const Mm &x) { return mat4_save(stream, x); }
};

struct Text {
    static constexpr bool extended = false;
    static void failed(const char *name, const char *) { error("could not write %s", name); }
    std::FILE *stream;
    const char *name;
    Text(std::FILE *f, const char *file_name) : stream(f), name(file_name) {}
    bool begin(const Values &) { return true; }
    bool put(const Mm &x) { return text_save(stream, name, x); }
};

template <class Kind> Mm save_as(const Mm &m, const Values &values) {
    char given[mat_name_size], name[mat_name_size] = "";
    if (!mat_name(m, given) || (Kind::extended && !add_mat(given, name))) *name = '\0';
    if (!Kind::extended) std::strcpy(name, given);
    Replacement file(name);
    if (!file.get()) {
        Kind::failed(given, "created");
        return x_M;
    }
    Kind kind(file.get(), name);
    if (!kind.begin(values)) return x_M;
    for (kn_size k = 0; k < values.count(); ++k)
        if (!kind.put(values[k])) return x_M;
    if (!file.finish()) Kind::failed(name, "written");
    return x_M;
}

} // namespace

Mm save(const Mm &name, const Mc &list) { return save_as<Level5>(name, Values(list)); }
Mm save(const Mm &name, const Mm &values) { return save_as<Level5>(name, Values(values)); }
Mm saveappend(const Mm &name, const Mc &list) { return save_as<Level5Appended>(name, Values(list)); }
Mm saveV4(const Mm &name, const Mc &list) { return save_as<Level4>(name, Values(list)); }
Mm saveV4(const Mm &name, const Mm &values) { return save_as<Level4>(name, Values(values)); }
Mm saveascii(const Mm &name, const Mc &list) { return save_as<Text>(name, Values(list)); }
Mm saveascii(const Mm &name, const Mm &values) { return save_as<Text>(name, Values(values)); }

// A value other than a cell is the name, and there are no values.
Mm vbsave(const Mm &list) {
    return is_cell(list) ? save_as<Level5>(list.safebr(1), Values(list, 1))
                         : save_as<Level5>(list, Values(Mc()));
}
