// A file that is written anew: under a name of its own beside the one it is meant for, which it takes when
// all of it stands. Until then what has the name stays as it is.
//
// A link, a file with several names, one of another owner, and one in a directory that takes no new file keep
// their place: all is written to a nameless file first, and then over the old content, or into the pipe. To a
// device it is written at once.
#ifndef QUORVEX_FILES_ATOMIC_WRITE_H
#define QUORVEX_FILES_ATOMIC_WRITE_H

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
    bool create_beside(); // false: the file keeps its place
    bool copy_over();

    const char *name_;
    char own_[name_size] = ""; // of the file that takes the place, while it is there
    Stream stream_{nullptr};
    Stream kept_{nullptr}; // the file that keeps its place, until all is written
};

} // namespace kn

#endif
