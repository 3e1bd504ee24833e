// MAT-files of level 5: a sequence of variables, between an open binary stream and values.
//
// Failures are reported through the funnel with the file name and return false; the stream stays with the
// caller, who closes it. The names given here must outlive the object. File format: mat5_layout.h.
#ifndef QUORVEX_FILES_MAT_MAT5_H
#define QUORVEX_FILES_MAT_MAT5_H

#include <cstddef>
#include <cstdio>

#include "files/mat/mat5_bytes.h"
#include "quorvex/values.h"

namespace kn {

// Writes at the current position of the stream, in the machine's byte order, never compressed.
class Mat5Writer {
  public:
    Mat5Writer(std::FILE *stream, const char *file) : out_(stream), file_(file) {}

    // The 128 bytes that open a file. "save5: '%s' could not write header".
    bool header();

    // Writes the value under its own name, or under one letter, the next of A to Z, [, a to z, {. Elements of
    // cells and structures use letters of the same sequence. "variable '%s' was used without a value" for one
    // that was never assigned, which has no data in the file.
    bool write(const Mm &x) { return write(x, x.getname()); }
    bool write(const Mm &x, const char *name); // null: a letter

  private:
    friend struct Mat5Encoder;
    Mat5Output out_;
    const char *file_;
    unsigned char letter_ = 0;
};

// The contents of the head of a variable in a file.
struct Mat5Entry {
    static constexpr int name_size = 256;
    char name[name_size];
    const char *type; // class name: "double", "int16", "function_handle", ..., "object", "unknown"
    int ndims;        // as in the file; of more than 4 dimensions the first 4 are kept
    kn_size dims[4];
    bool complex, logical;
    double bytes; // of numbers and text: size of the elements in memory; else of the variable in the file
};

// Reads variables of either byte order, compressed ones too. A new reader is at the first variable.
class Mat5Reader {
  public:
    Mat5Reader(std::FILE *stream, const char *file) : in_(stream), file_(file) { rewind(); }

    void rewind(); // to the first variable

    // Reads the head of the next variable and skips it; false, with an empty name, at the end of the file or
    // where it is damaged. Reports nothing.
    bool next(Mat5Entry &entry);
    bool back();   // to the variable skipped last
    bool at_end(); // whether there are no more; reports data that are no variable

    uint64_t at() const { return in_.at(); }

    // The bytes of the variable skipped last, unchanged. False after a report, as when the file ends before
    // the variable does.
    bool copy(std::FILE *to);

    // The next variable. False after a report: the target is nop_M at the end of the file ("load5: '%s' could
    // not read header"), x_M otherwise. The target keeps its name; "load5: '%s': variable named '%s' loaded
    // into '%s'" when neither name begins the other. A class that no value can hold is a warning, and [].
    bool read(Mm &target);

    // The variable that has the target's name, anywhere in the file; i and j for targets i_ and j_. Targets
    // ans and ans_ are skipped and give true; false without a report when the file has no such variable.
    bool read_named(Mm &target);

    const char *name() const { return name_; } // of the variable read last

  private:
    template <class Use> bool variable(bool quiet, Use use);

    Mat5File in_;
    const char *file_;
    uint64_t passed_ = 0; // offset of the variable skipped last
    bool cut_ = false;
    char name_[Mat5Entry::name_size] = "";
};

} // namespace kn

#endif
