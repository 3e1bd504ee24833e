// A file that is written anew: under a name of its own beside the one it is meant for, which it takes when
// all of it stands. Until then what has the name stays as it is.
//
// Where nothing can take a place, the stream leads straight to it: a device, a pipe, what a link leads to, a
// file that must not be written (which doesn't open).
#ifndef QUORVEX_FILES_REPLACEMENT_H
#define QUORVEX_FILES_REPLACEMENT_H

#include <cstdio>

#include "files/file_table.h"

namespace kn {

class Replacement {
  public:
    explicit Replacement(const char *name); // which stays the caller's
    ~Replacement() { give_up(); }
    Replacement(const Replacement &) = delete;
    Replacement &operator=(const Replacement &) = delete;

    std::FILE *get() const { return stream_.get(); } // null when it could not be created
    bool finish();                                   // whether all was written and stands under the name
    void give_up();

  private:
    static constexpr int name_size = 2100;
    const char *name_;
    char own_[name_size] = ""; // empty: written straight, or nothing to remove
    Stream stream_{nullptr};
};

} // namespace kn

#endif
