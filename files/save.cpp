// save, vbsave, saveV4, saveascii: the entry points of all kinds of files.

#include <algorithm>
#include <cstring>

#include "core/header.h"
#include "files/mat5.h"
#include "files/matfile.h"
#include "files/replacement.h"
#include "quorvex/matfiles.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"

using namespace kn;

namespace {

// The values to save, of a comma list or of a cell from its element `first` on; anything else is its own only
// value.
class Values {
  public:
    explicit Values(const Mc &list) : list_(&list), count_(list.count()) {}
    explicit Values(const Mm &m, int first = 0)
        : cell_(&m), first_(first), count_(is_cell(m) ? std::max(m.getnnz() - first, 0) : 1) {}
    int count() const { return count_; }
    const Mm &operator[](int k) const {
        if (list_) return list_->item(k);
        return is_cell(*cell_) ? cell_->getpr(static_cast<Mm *>(nullptr))[first_ + k] : *cell_;
    }

  private:
    const Mc *list_ = nullptr;
    const Mm *cell_ = nullptr;
    int first_ = 0, count_;
};

// A kind of file: a writer for a stream and the file's name. `begin` and `put` answer false, after a report,
// when the file is not whole.
struct Level5 {
    static constexpr bool extended = true;
    static void failed(const char *name, const char *what) { error("save: %s could not be %s", name, what); }
    Mat5Writer writer;
    Level5(std::FILE *stream, const char *name) : writer(stream, name) {}
    bool begin() { return writer.header(); }
    bool put(const Mm &x) { return writer.write(x); }
};

struct Level4 {
    static constexpr bool extended = true;
    static void failed(const char *name, const char *what) {
        error("saveV4: %s could not be %s", name, what);
    }
    std::FILE *stream;
    Level4(std::FILE *f, const char *) : stream(f) {}
    bool begin() { return true; }
    bool put(const Mm &x) { return mat4_save(stream, x); }
};

struct Text {
    static constexpr bool extended = false;
    static void failed(const char *name, const char *) { error("could not write %s", name); }
    std::FILE *stream;
    const char *name;
    Text(std::FILE *f, const char *file_name) : stream(f), name(file_name) {}
    bool begin() { return true; }
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
    if (!kind.begin()) return x_M;
    for (int k = 0; k < values.count(); ++k)
        if (!kind.put(values[k])) return x_M;
    if (!file.finish()) Kind::failed(name, "written");
    return x_M;
}

} // namespace

Mm save(const Mm &name, const Mc &list) { return save_as<Level5>(name, Values(list)); }
Mm save(const Mm &name, const Mm &list) { return save_as<Level5>(name, Values(list)); }
Mm saveV4(const Mm &name, const Mc &list) { return save_as<Level4>(name, Values(list)); }
Mm saveV4(const Mm &name, const Mm &list) { return save_as<Level4>(name, Values(list)); }
Mm saveascii(const Mm &name, const Mc &list) { return save_as<Text>(name, Values(list)); }
Mm saveascii(const Mm &name, const Mm &list) { return save_as<Text>(name, Values(list)); }

// A value that is no cell is the name, and there are no values.
Mm vbsave(const Mm &list) {
    return is_cell(list) ? save_as<Level5>(list.safebr(1), Values(list, 1))
                         : save_as<Level5>(list, Values(Mc()));
}
