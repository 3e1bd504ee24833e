// The variables of a MAT-file of level 5, one after another. File format: mat5_layout.h.

#include <algorithm>
#include <cstring>
#include <utility>

#include "files/byte_order.h"
#include "files/mat/mat5_decode.h"
#include "files/stream_calls.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"

using namespace kn;
using namespace kn::mat5;

namespace {

// Whether one name is a prefix of the other.
bool agree(const char *a, const char *b) {
    return std::strncmp(a, b, std::min(std::strlen(a), std::strlen(b))) == 0;
}

} // namespace

void Mat5Reader::rewind() { in_.seek(std::min<uint64_t>(header_bytes, in_.size())); }

// Passes the next variable to use(decoder, end), inflated if necessary, and moves past it. `use` returns the
// end of the matrix element, or 0 for a failure that has been reported.
template <class Use> bool Mat5Reader::variable(bool quiet, Use use) {
    const uint64_t start = in_.at(), size = in_.size();
    uint32_t w[2] = {};
    const bool whole = in_.get(w, sizeof w);
    const bool swap = w[0] > 0x10000;
    const uint64_t bytes = swap ? reversed(w[1]) : w[1];
    uint64_t next = size;
    bool done = false;
    passed_ = start;
    cut_ = start + sizeof w + bytes > size;
    if (whole && (swap ? reversed(w[0]) : w[0]) == compressed) {
        Mat5Inflated inflated(in_, bytes);
        Mat5Decoder decoder(inflated, file_, quiet);
        done = inflated && use(decoder, inflated.size()) != 0;
        if (done && !quiet && !inflated.ends_soundly()) done = decoder.unread();
        next = start + sizeof w + bytes;
    } else {
        Mat5Decoder decoder(in_, file_, quiet, start);
        if (whole && !in_.seek(start)) return decoder.unread();
        const uint64_t end = use(decoder, size);
        done = end != 0;
        if (done) next = start + ((end - start + 7) & ~uint64_t{7});
    }
    if (in_.seek(std::min(next, size)) || !done) return done;
    return Mat5Decoder(in_, file_, quiet).unread();
}

bool Mat5Reader::next(Mat5Entry &entry) {
    entry.name[0] = '\0';
    return variable(true, [&](Mat5Decoder &decoder, uint64_t end) -> uint64_t {
        Mat5Decoder::Head h;
        const uint64_t start = decoder.at();
        if (!decoder.head(h, end)) return 0;
        entry = h.entry;
        entry.type = decoder.class_word(h.type());
        entry.bytes = decoder.bytes_of(h, h.end - start);
        return h.end;
    });
}

bool Mat5Reader::back() { return in_.seek(passed_); }

// After the last variable less than a tag is left. A file of unknown size can't be read.
bool Mat5Reader::at_end() {
    constexpr uint64_t tag_bytes = 8;
    if (in_.size() > 0 && in_.left() < tag_bytes) return true;
    error("load5: '%s' could not read header", file_);
    return false;
}

bool Mat5Reader::copy(std::FILE *to) {
    char block[1 << 12];
    const uint64_t end = in_.at();
    const Mat5Decoder decoder(in_, file_, false);
    if (cut_ || !back()) return decoder.unread();
    while (in_.at() < end) {
        const size_t n = static_cast<size_t>(std::min<uint64_t>(end - in_.at(), sizeof block));
        if (!in_.get(block, n)) return decoder.unread();
        if (io::write(block, 1, n, to) != n) return decoder.failed("load: '%s' could not write data set");
    }
    return true;
}

bool Mat5Reader::read(Mm &target) {
    name_[0] = '\0';
    const bool ended = in_.left() < 8;
    const char *const wanted = target.getname();
    Mm out;
    const bool done = variable(false, [&](Mat5Decoder &decoder, uint64_t end) -> uint64_t {
        Mat5Decoder::Head h;
        if (!decoder.head(h, end)) return 0;
        std::strcpy(name_, h.entry.name);
        if (wanted && h.has_data && !agree(name_, wanted))
            warning("load5: '%s': variable named '%s' loaded into '%s'", file_, name_, wanted);
        return decoder.value(h, out) ? h.end : 0;
    });
    target = done ? std::move(out) : ended ? nop_M : x_M;
    return done;
}

bool Mat5Reader::read_named(Mm &target) {
    const char *wanted = target.getname();
    if (!wanted) {
        error("Could not load unnamed variable from file '%s'", file_);
        return false;
    }
    const auto is = [wanted](const char *name) { return std::strcmp(wanted, name) == 0; };
    if (is("ans") || is("ans_")) return true;
    if (is("i_")) wanted = "i";
    if (is("j_")) wanted = "j";

    Mat5Entry entry;
    rewind();
    while (next(entry))
        if (std::strncmp(entry.name, wanted, 127) == 0) return back() && read(target);
    back();
    at_end();
    return false;
}
