// Values from the elements of a MAT-file of level 5: what the reader's files mat5_*.cpp share.
#ifndef QUORVEX_FILES_MAT_MAT5_DECODE_H
#define QUORVEX_FILES_MAT_MAT5_DECODE_H

#include <algorithm>

#include "files/mat/mat5.h"
#include "files/mat/mat5_layout.h"

namespace kn {

// Reads one variable, which begins at `origin`, the current position of `in`. All sizes are checked: no
// element extends beyond the one that contains it, and memory is allocated only when the file has the bytes
// to fill it (a byte for each number; compressed ones up to the best possible compression, and touched only
// as they arrive). Cells and structures grow as their values arrive. Values nest to any depth: the open ones
// form a list.
//
// A function that returns false has reported, unless `quiet`.
class Mat5Decoder {
  public:
    Mat5Decoder(Mat5File &in, const char *file, bool quiet, uint64_t origin = 0)
        : in_(in), file_(file), origin_(origin), quiet_(quiet) {}
    Mat5Decoder(Mat5Inflated &in, const char *file, bool quiet)
        : in_(in), file_(file), quiet_(quiet), inflated_(true) {}

    // The start of a matrix element, up to and including its name. `end` on entry is the limit for the end of
    // the element.
    struct Head {
        Mat5Entry entry;
        uint64_t end;
        uint32_t flags, room;
        bool has_data; // the byte count is not 0
        mat5::Class type() const { return static_cast<mat5::Class>(flags & mat5::class_mask); }
        bool holds_values() const {
            return has_data && type() >= mat5::cell_class && type() <= mat5::object_class;
        }
    };
    bool head(Head &h, uint64_t end); // all of the entry except type and bytes
    uint64_t at() const { return in_.at(); }
    static const char *class_word(mat5::Class type);
    static double bytes_of(const Head &h, uint64_t in_file);

    // Reads what follows; afterwards `in` is at the end of the element.
    bool value(const Head &h, Mm &out);

    bool failed(const char *format) const; // with the file name
    bool unread() const;                   // "load: '%s' could not read data set"

  private:
    struct Tag {
        uint32_t type, bytes;
        uint64_t end; // of the data
    };
    struct Layout { // of numbers: code of precision.h, bytes
        int code, size;
        bool wide_signed; // 64 bits with a sign
    };

    // These return without a report.
    uint32_t word(uint32_t w) const {
        return swap_ ? w << 24 | (w & 0xff00) << 8 | (w >> 8 & 0xff00) | w >> 24 : w;
    }
    uint64_t left(uint64_t end) const { return end - std::min(end, in_.at()); }
    template <size_t n> bool words(uint32_t (&to)[n], uint64_t end) {
        if (left(end) < sizeof to || !in_.get(to, sizeof to)) return false;
        for (uint32_t &w : to) w = word(w);
        return true;
    }
    bool align(uint64_t end);
    bool tag(Tag &t, uint64_t end); // aligned

    bool head_tag(Head &h, uint64_t end, uint64_t &start);
    bool dimensions(Mat5Entry &e, uint32_t bytes, uint64_t end);
    bool name(char (&to)[Mat5Entry::name_size], uint64_t end);
    bool layout(const Tag &t, mat5::Class type, Layout &l) const;
    template <class T> bool numbers(T *to, kn_size n, const Tag &t, const Layout &l);
    template <class T> bool plane(T *to, kn_size n, mat5::Class type, uint64_t end);
    bool text(double *to, kn_size n, uint64_t end);

    struct Level; // of a value that holds others
    class Levels;

    bool countable(const Head &h, uint64_t bytes_each, kn_size &n) const;
    bool array(const Head &h, Mm &out);
    bool sparse(const Head &h, Mm &out);
    bool open(const Head &h, Mm &out, Levels &levels);
    bool open_structure(const Head &h, Mm &out, Levels &levels);
    bool field_names(Mm &out, const Tag &t, uint32_t length, int n, int *place);
    bool one(const Head &h, Mm &out, Levels &levels);
    bool settle(mat5::Class type, uint64_t end);

    Mat5Input &in_;
    const char *file_;
    uint64_t origin_ = 0;
    uint64_t credit_ = 0; // elements of cells and structures that may be allocated before they are read
    bool quiet_, swap_ = false;
    bool inflated_ = false, surplus_ = false; // see `settle`
};

} // namespace kn

#endif
