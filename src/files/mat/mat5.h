// MAT-files of level 5: variables, one after the other, between an open binary stream and values.
//
// Failures are reported through the funnel with the name of the file, and answered by false; the stream stays
// with the caller, who closes it. The names given here are borrowed for the time of the object. How the bytes
// lie: mat5_layout.h.
#ifndef QUORVEX_FILES_MAT_MAT5_H
#define QUORVEX_FILES_MAT_MAT5_H

#include <cstddef>
#include <cstdio>

#include "files/mat/mat5_bytes.h"
#include "quorvex/values.h"

namespace kn {

// Writes at the place where the stream stands, in the byte order of the machine, never compressed.
class Mat5Writer {
  public:
    Mat5Writer(std::FILE *stream, const char *file) : out_(stream), file_(file) {}

    // The 128 bytes that open a file. "save5: '%s' could not write header".
    bool header();

    // The value under its own name, or under one letter, the next of A to Z, [, a to z, {. Elements of cells
    // and structures take their letters from the same row. "variable '%s' was used without a value" for one
    // that was never assigned, which has no data in the file.
    bool write(const Mm &x) { return write(x, x.getname()); }
    bool write(const Mm &x, const char *name); // null: a letter

  private:
    friend struct Mat5Encoder;
    Mat5Output out_;
    const char *file_;
    unsigned char letter_ = 0;
};

// What the head of a variable in a file says.
struct Mat5Entry {
    static constexpr int name_size = 256;
    char name[name_size];
    const char *type; // class word: "double", "int16", "function_handle", ..., "object", "unknown"
    int ndims;        // as in the file; of more than 4 extents the first 4 are kept
    int dims[4];
    bool complex, logical;
    double bytes; // of numbers and text: their elements in memory; else the bytes of the variable in the file
};

// Reads variables, of either byte order and compressed ones too. A new reader stands at the first variable.
class Mat5Reader {
  public:
    Mat5Reader(std::FILE *stream, const char *file) : in_(stream), file_(file) { rewind(); }

    void rewind(); // to the first variable

    // The head of the next variable, which is passed over; false, and the name is empty, at the end of the
    // file or where it is damaged. Reports nothing.
    bool next(Mat5Entry &entry);
    bool back();   // to the variable that was passed over last
    bool at_end(); // whether there is no more; with a report of what is no variable either

    uint64_t at() const { return in_.at(); }

    // The bytes of the variable that was passed over last, as they are. False after a report, as when the
    // end of the file cuts it off.
    bool copy(std::FILE *to);

    // The next variable. False after a report: the target is nop_M at the end of the file ("load5: '%s' could
    // not read header"), x_M otherwise. The target keeps its name; "load5: '%s': variable named '%s' loaded
    // into '%s'" when neither name begins the other. A class that no value can hold is a warning, and [].
    bool read(Mm &target);

    // The variable that has the target's name, wherever it stands; i and j for targets i_ and j_. Targets
    // ans and ans_ are passed over with true; false without a report when the file has no such variable.
    bool read_named(Mm &target);

    const char *name() const { return name_; } // of the variable read last

  private:
    template <class Use> bool variable(bool quiet, Use use);

    Mat5File in_;
    const char *file_;
    uint64_t passed_ = 0; // where the variable begins that was passed over last
    bool cut_ = false;
    char name_[Mat5Entry::name_size] = "";
};

} // namespace kn

#endif
