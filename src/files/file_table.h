// The table of open files: 129 slots, indexed by fid.
//
// 0 to 2 are the standard streams, which have no stream here; files use 3 to 127. A slot is claimed and
// released under its lock.
#ifndef QUORVEX_FILES_FILE_TABLE_H
#define QUORVEX_FILES_FILE_TABLE_H

#include <bit>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "files/stream_calls.h"
#include "quorvex/values.h"

namespace kn {

// Machine formats.
inline constexpr int little_endian = 0, big_endian = 1, unknown_format = -1;
inline constexpr int native_format = std::endian::native == std::endian::big ? big_endian : little_endian;
int machine_format_code(const Mm &text);
const char *machine_format_name(int format);

inline constexpr int first_fid = 3, fid_slots = 128;
inline constexpr int file_name_size = 1024, file_mode_size = 32; // including the null character

// The number in a fid: an open slot, or -1 after a report ("Size of fid %s not one.", "Illegal fid.", "Fid
// not opened."). Without `strict` only the first is reported.
int fid_lookup(const Mm &fid, bool strict);

// The stream of a slot that fid_lookup has returned; null for the standard ones. (Functions that need a
// stream report "%s: Illegal fid." for these, with their name, and return their failure result.)
std::FILE *fid_stream(int slot);

// Both steps: the slot of an open file, or -1 after a report.
int file_lookup(const Mm &fid, const char *caller);

// For a stream open for reading and writing: to be called between reading and writing.
void fid_turn(int slot);

// For an open slot.
const char *fid_name(int slot);
const char *fid_mode(int slot);
int fid_format(int slot);

bool fid_is_open(int slot);

// Releases a slot; returns the result of closing its stream.
int fid_close(int slot);
void fid_close_all();

// Owns a stream.
class Stream {
  public:
    explicit Stream(std::FILE *file) : file_(file) {}
    ~Stream() { close(); }
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;

    explicit operator bool() const { return file_ != nullptr; }
    std::FILE *get() const { return file_; }
    std::FILE *release() {
        std::FILE *file = file_;
        file_ = nullptr;
        return file;
    }
    void swap(Stream &other) { std::swap(file_, other.file_); }
    bool close() { // whether all output has been written
        std::FILE *file = release();
        return !file || io::close(file) == 0;
    }

  private:
    std::FILE *file_;
};

// Puts a stream into the first free slot and returns that slot; -1 when there is none, and then the caller
// keeps the stream.
int fid_store(Stream &stream, const char *name, const char *mode, int format);

} // namespace kn

#endif
