// The bytes of a MAT-file of level 5: buffered output that can be patched, and input of known size, from a
// file or from a compressed variable in it.
#ifndef QUORVEX_FILES_MAT_MAT5_BYTES_H
#define QUORVEX_FILES_MAT_MAT5_BYTES_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

struct z_stream_s;

namespace kn {

// Offsets count from the stream's initial position. False: the stream did not accept the bytes.
class Mat5Output {
  public:
    explicit Mat5Output(std::FILE *stream);

    uint64_t at() const { return before_ + size_; }
    bool put(const void *from, size_t n) {
        if (n > sizeof buffer_ - size_) return put_slowly(from, n);
        if (n > 0) std::memcpy(buffer_ + size_, from, n);
        size_ += n;
        return true;
    }
    bool align() { // pads with zeros to a multiple of 8
        static constexpr char zeros[8] = {};
        return put(zeros, -at() & 7);
    }
    bool patch(uint64_t at, uint32_t word); // of bytes already put
    bool flush();

  private:
    bool put_slowly(const void *from, size_t n);

    std::FILE *stream_;
    long long origin_;
    uint64_t before_ = 0; // bytes that have left the buffer
    size_t size_ = 0;
    char buffer_[1 << 15];
};

// A run of bytes, read forwards. Offsets count from its start.
class Mat5Input {
  public:
    Mat5Input(const Mat5Input &) = delete;
    Mat5Input &operator=(const Mat5Input &) = delete;

    uint64_t at() const { return behind_ - ready(); }
    uint64_t size() const { return size_; } // there is no byte beyond it; 0 after a failed seek
    uint64_t left() const { return at() < size_ ? size_ - at() : 0; }

    // Reads n bytes; false when there are fewer.
    bool get(void *to, size_t n) {
        if (n > ready()) return get_slowly(static_cast<char *>(to), n);
        if (n > 0) std::memcpy(to, next_, n);
        next_ += n;
        return true;
    }
    // Moves to another offset; far backwards in files only.
    bool seek(uint64_t to) {
        if (to > behind_ || to < behind_ - static_cast<size_t>(end_ - buffer_)) return seek_slowly(to);
        next_ = end_ - (behind_ - to);
        return true;
    }

  protected:
    Mat5Input() = default;
    ~Mat5Input() = default;
    virtual size_t fill(char *to, size_t n) = 0; // the next bytes, at most n
    virtual bool jump(uint64_t from,
                      uint64_t to) = 0; // makes those at `to` the next; the current offset is `from`

    static constexpr size_t buffer_size = 1 << 14;
    uint64_t size_ = 0;

  private:
    size_t ready() const { return static_cast<size_t>(end_ - next_); }
    bool get_slowly(char *to, size_t n);
    bool seek_slowly(uint64_t to);

    uint64_t behind_ = 0; // offset of what `fill` gives next
    char buffer_[buffer_size];
    char *next_ = buffer_, *end_ = buffer_;
};

// A file, from its first byte.
class Mat5File : public Mat5Input {
  public:
    explicit Mat5File(std::FILE *stream);

  private:
    size_t fill(char *to, size_t n) override;
    bool jump(uint64_t from, uint64_t to) override;

    std::FILE *stream_;
};

// The inflated form of the next `bytes` bytes of an input. Its size is the upper bound for that many.
class Mat5Inflated : public Mat5Input {
  public:
    Mat5Inflated(Mat5Input &from, uint64_t bytes); // converts to false after "Out of memory!"
    ~Mat5Inflated();

    explicit operator bool() const { return z_ != nullptr; }
    // Reads to the end, which must be near; returns whether the data match the checksum there.
    bool ends_soundly();

  private:
    size_t fill(char *to, size_t n) override;
    bool jump(uint64_t from, uint64_t to) override;

    Mat5Input &from_;
    uint64_t bytes_; // compressed bytes not yet read
    z_stream_s *z_;
    bool ended_ = false;
    unsigned char packed_[buffer_size];
};

} // namespace kn

#endif
