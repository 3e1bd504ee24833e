// What loading and saving share for the three kinds of files.
#ifndef QUORVEX_FILES_MAT_MATFILE_H
#define QUORVEX_FILES_MAT_MATFILE_H

#include <cstdio>
#include <string_view>

#include "files/file_table.h"
#include "quorvex/evaluation.h"

namespace kn {

enum class MatKind { level4, level5, text };

// How the text in the head of a level 5 file begins; this library writes the second one.
inline constexpr std::string_view level5_marks[] = {"MAT", "TAR"};
inline constexpr int level5_header_size = 128;

inline constexpr int mat_name_size = 2048; // of a file name, with the null character

// The file name in a value. False for an empty one.
bool mat_name(const Mm &m, char (&name)[mat_name_size]);

// Appends ".mat" to a name without "."; false when that does not fit.
bool add_mat(const char *name, char (&out)[mat_name_size]);

// A file open for loading. `name` is the name used in messages.
struct MatFile {
    Stream stream{nullptr};
    MatKind kind = MatKind::text;
    const char *name;
    long long size = 0; // bytes

    explicit MatFile(const char *file_name) : name(file_name) {}
    std::FILE *get() const { return stream.get(); }
    long long left() const; // bytes from here to the end; -1 when unknown
};

// Finds and opens the file, recognises its kind, and goes to its first variable: after the 128 bytes of a
// level 5 header, else to the beginning. "load: %s not found", "load: %s could not be read".
bool mat_open_read(const kn_path_record *record, MatFile &file);

// The same for a stream that is already open.
bool mat_recognise(MatFile &file);

// What the file says about a variable, without its data. An empty name means the end.
struct MatEntry {
    static constexpr int name_size = 256;
    char name[name_size];
    int ndims;
    kn_size dims[4];
    double bytes;
};

// ---- Level 4 ----

// Loads the next matrix. True when there are no more: at the end of the file, where t becomes nop_M, and
// after a report, where it becomes x_M.
bool mat4_load(const MatFile &file, Mm &t);

// Reads the header of the next matrix and skips the matrix. False at the end, and after a report.
bool mat4_next(const MatFile &file, MatEntry &entry);

// Writes a value. One that level 4 cannot hold is reported and left out; false when the file is incomplete,
// which is reported too.
bool mat4_save(std::FILE *stream, const Mm &x);

// ---- Text ----

// Loads the matrix of a file. False after a report: t is x_M.
bool text_load(const MatFile &file, Mm &t);

// Writes a value, like mat4_save.
bool text_save(std::FILE *stream, const char *name, const Mm &x);

} // namespace kn

#endif
