// Buffers between a MAT-file of level 5 and its reader or writer, and zlib input on top of one.
#include "files/mat/mat5_bytes.h"

#include <algorithm>
#include <climits>

#include <zlib.h>

#include "base/scratch.h"
#include "files/stream_calls.h"

namespace kn {

// ---- Output ----

Mat5Output::Mat5Output(std::FILE *stream) : stream_(stream), origin_(io::tell(stream)) {}

bool Mat5Output::flush() {
    const size_t n = size_;
    size_ = 0;
    before_ += n;
    return n == 0 || io::write(buffer_, 1, n, stream_) == n;
}

bool Mat5Output::put_slowly(const void *from, size_t n) {
    if (!flush()) return false;
    if (n <= sizeof buffer_) return put(from, n);
    before_ += n;
    return io::write(from, 1, n, stream_) == n;
}

bool Mat5Output::patch(uint64_t at, uint32_t word) {
    if (at >= before_) {
        std::memcpy(buffer_ + (at - before_), &word, sizeof word);
        return true;
    }
    if (!flush() || origin_ < 0) return false;
    auto go = [this](uint64_t to) {
        return io::seek(stream_, origin_ + static_cast<long long>(to), SEEK_SET) == 0;
    };
    return go(at) && io::write(&word, sizeof word, 1, stream_) == 1 && go(before_);
}

// ---- Input ----

bool Mat5Input::get_slowly(char *to, size_t n) {
    const size_t taken = ready();
    if (n > left()) return false;
    std::memcpy(to, next_, taken);
    next_ = end_ = buffer_;
    to += taken;
    n -= taken;
    if (n >= buffer_size) {
        const size_t got = fill(to, n);
        behind_ += got;
        return got == n;
    }
    const size_t got = fill(buffer_, buffer_size);
    behind_ += got;
    end_ += got;
    return n <= got && get(to, n);
}

bool Mat5Input::seek_slowly(uint64_t to) {
    next_ = end_ = buffer_;
    if (!jump(behind_, to)) {
        size_ = 0;
        return false;
    }
    behind_ = to;
    return true;
}

Mat5File::Mat5File(std::FILE *stream) : stream_(stream) {
    const long long end = io::seek(stream, 0, SEEK_END) == 0 ? io::tell(stream) : -1;
    if (end > 0 && io::seek(stream, 0, SEEK_SET) == 0) size_ = static_cast<uint64_t>(end);
}

size_t Mat5File::fill(char *to, size_t n) { return io::read(to, 1, n, stream_); }

bool Mat5File::jump(uint64_t, uint64_t to) {
    return to <= size_ && io::seek(stream_, static_cast<long long>(to), SEEK_SET) == 0;
}

// ---- Inflated input ----

namespace {

// A byte of a deflated stream gives at most 1032: two bits give a run of 258.
constexpr uint64_t largest_ratio = 1032;

void *z_alloc(void *, unsigned n, unsigned size) { return heap_alloc(size_t{n} * size); }
void z_free(void *, void *p) { heap_free(p); }

} // namespace

Mat5Inflated::Mat5Inflated(Mat5Input &from, uint64_t bytes)
    : from_(from), bytes_(std::min(bytes, from.left())),
      z_(static_cast<z_stream *>(heap_alloc(sizeof(z_stream)))) {
    size_ = bytes_ * largest_ratio;
    if (z_) {
        *z_ = {};
        z_->zalloc = z_alloc;
        z_->zfree = z_free;
        if (inflateInit(z_) == Z_OK) return;
        heap_free(z_);
        z_ = nullptr;
    }
    out_of_memory();
}

Mat5Inflated::~Mat5Inflated() {
    if (!z_) return;
    inflateEnd(z_);
    heap_free(z_);
}

size_t Mat5Inflated::fill(char *to, size_t n) {
    size_t got = 0;
    while (got < n && !ended_) {
        if (z_->avail_in == 0) {
            const size_t more = static_cast<size_t>(std::min<uint64_t>(bytes_, sizeof packed_));
            if (more == 0 || !from_.get(packed_, more)) break;
            bytes_ -= more;
            z_->next_in = packed_;
            z_->avail_in = static_cast<unsigned>(more);
        }
        const unsigned wanted = static_cast<unsigned>(std::min<size_t>(n - got, UINT_MAX));
        z_->next_out = reinterpret_cast<unsigned char *>(to + got);
        z_->avail_out = wanted;
        const int result = inflate(z_, Z_NO_FLUSH);
        got += wanted - z_->avail_out;
        ended_ = result == Z_STREAM_END;
        if (result == Z_MEM_ERROR) out_of_memory();
        if (result != Z_OK && !ended_) break;
    }
    return got;
}

bool Mat5Inflated::jump(uint64_t from, uint64_t to) {
    char passed[buffer_size];
    while (from < to) {
        const size_t step = static_cast<size_t>(std::min<uint64_t>(to - from, sizeof passed));
        if (fill(passed, step) < step) return false;
        from += step;
    }
    return from == to;
}

bool Mat5Inflated::ends_soundly() {
    char rest[64];
    return ended_ || (fill(rest, sizeof rest) < sizeof rest && ended_);
}

} // namespace kn
