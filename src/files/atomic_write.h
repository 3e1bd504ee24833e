// A file that is rewritten: it is written under a temporary name in the same directory and takes its final
// name when it is complete. Until then the file with that name is unchanged.
//
// A link, a file with several names, one of another owner, and one in a directory that accepts no new file
// are kept: all is written to a nameless file first, and then over the old content, or into the pipe. A
// device is written directly.
#ifndef QUORVEX_FILES_ATOMIC_WRITE_H
#define QUORVEX_FILES_ATOMIC_WRITE_H

#include <cstdio>

#include "files/file_table.h"

namespace kn {

class Replacement {
  public:
    explicit Replacement(const char *name); // which the caller keeps
    ~Replacement() { give_up(); }
    Replacement(const Replacement &) = delete;
    Replacement &operator=(const Replacement &) = delete;

    std::FILE *get() const { return stream_.get(); } // null when it could not be created
    bool finish();                                   // whether all was written and has the final name
    void give_up();

  private:
    static constexpr int name_size = 2100;
    bool create_beside(); // false: the existing file is kept
    bool copy_over();

    const char *name_;
    char own_[name_size] = ""; // of the temporary file, while it exists
    Stream stream_{nullptr};
    Stream kept_{nullptr}; // the file that is kept, until all is written
};

} // namespace kn

#endif
