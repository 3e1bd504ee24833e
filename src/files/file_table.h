// The table of open files: 129 slots, indexed by fid.
//
// 0 to 2 are the standard streams, which have no stream here; files take 3 to 127. A slot is taken and given
// back under its lock.
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
inline constexpr int file_name_size = 1024, file_mode_size = 32; // with the null character

// The number in a fid: an open slot, or -1 after a report ("Size of fid %s not one.", "Illegal fid.", "Fid
// not opened."). Without `strict` only the first is reported.
int fid_lookup(const Mm &fid, bool strict);

// The stream of a slot that fid_lookup has answered; null for the standard ones. (Functions that need a
// stream report "%s: Illegal fid." for these, with their name, and give their failure result.)
std::FILE *fid_stream(int slot);

// Both of these: the slot of an open file, or -1 after a report.
int file_lookup(const Mm &fid, const char *caller);

// Of a stream open for reading and writing: to be called between the one and the other.
void fid_turn(int slot);

// Of an open slot.
const char *fid_name(int slot);
const char *fid_mode(int slot);
int fid_format(int slot);

bool fid_is_open(int slot);

// Gives a slot back; the result of closing its stream.
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
    bool close() { // whether all that was written has arrived
        std::FILE *file = release();
        return !file || io::close(file) == 0;
    }

  private:
    std::FILE *file_;
};

// Puts a stream into the first free slot, which is answered; -1, and the stream stays with its owner, when
// there is none.
int fid_store(Stream &stream, const char *name, const char *mode, int format);

} // namespace kn

#endif
