// The parts of a variable in a MAT-file of level 5: tags, head, numbers. File format: mat5_layout.h.
#include "files/mat/mat5_decode.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <type_traits>

#include "files/byte_order.h"
#include "files/precision.h"
#include "quorvex/messages.h"

namespace kn {

using namespace mat5;

namespace {

constexpr struct {
    const char *word;
    int bytes; // of an element in memory, 0: no fixed size
} classes[] = {{"unknown", 0},
               {"cell", 0},
               {"struct", 0},
               {"object", 0},
               {"char", 8},
               {"sparse", 8},
               {"double", 8},
               {"single", 8},
               {"int8", 8},
               {"uint8", 1},
               {"int16", 8},
               {"uint16", 8},
               {"int32", 8},
               {"uint32", 8},
               {"int64", 8},
               {"uint64", 8},
               {"function_handle", 0},
               {"opaque", 0}};

const auto &class_of(uint32_t type) { return classes[type < std::size(classes) ? type : no_class]; }

} // namespace

const char *Mat5Decoder::class_word(Class type) { return class_of(type).word; }

double Mat5Decoder::bytes_of(const Head &h, uint64_t in_file) {
    double n = class_of(h.type()).bytes * (h.entry.complex ? 2 : 1);
    if (n == 0) return static_cast<double>(in_file);
    if (h.type() == sparse_class) return n * h.room;
    for (int k = 0; k < std::min(h.entry.ndims, most_dims); ++k) n *= static_cast<double>(h.entry.dims[k]);
    return n;
}

bool Mat5Decoder::failed(const char *format) const {
    if (!quiet_) error(format, file_);
    return false;
}

bool Mat5Decoder::unread() const { return failed("load: '%s' could not read data set"); }

// ---- Tags ----

bool Mat5Decoder::align(uint64_t end) {
    const uint64_t pad = (origin_ - in_.at()) & 7;
    return pad == 0 || (left(end) >= pad && in_.seek(in_.at() + pad));
}

bool Mat5Decoder::tag(Tag &t, uint64_t end) {
    uint32_t w[1];
    if (!align(end) || !words(w, end)) return false;
    t.type = w[0] & 0xffff;
    t.bytes = w[0] >> 16;
    if (t.bytes > 4) return false;
    if (t.bytes == 0) {
        if (!words(w, end)) return false;
        t.bytes = w[0];
    }
    t.end = in_.at() + t.bytes;
    return t.end <= end;
}

// ---- The head ----

bool Mat5Decoder::name(char (&to)[Mat5Entry::name_size], uint64_t end) {
    Tag t;
    to[0] = '\0';
    if (!tag(t, end)) return failed("load5: could not read name name in file '%s'");
    size_t length = t.bytes;
    if (length >= sizeof to) {
        if (!quiet_) warning("load5: name field is too long in file '%s'", file_);
        length = sizeof to - 1;
    }
    if (!in_.get(to, length) || !in_.seek(t.end))
        return failed("load5: could not read name name in file '%s'");
    to[length] = '\0';
    return true;
}

// The tag, which gives byte order and size. `start` is its offset.
bool Mat5Decoder::head_tag(Head &h, uint64_t end, uint64_t &start) {
    uint32_t first[2];
    start = in_.at();
    h.end = end;
    swap_ = false;
    if (!words(first, end)) return failed("load5: '%s' could not read header");
    if (surplus_ && first[0] != matrix && first[0] != reversed(matrix)) {
        start = in_.at();
        if (!words(first, end)) return failed("load5: '%s' could not read header");
    }
    surplus_ = false;
    swap_ = first[0] > 0x10000;
    const uint32_t bytes = word(first[1]);
    h.end = std::min(end, start + 8 + bytes);
    h.has_data = bytes != 0;
    return true;
}

bool Mat5Decoder::dimensions(Mat5Entry &e, uint32_t bytes, uint64_t end) {
    uint32_t dim[1];
    const uint64_t n = bytes / 4, after = in_.at() + 4 * n;
    if (n > most_dims && !quiet_) {
        error("load5: Can not read matrix from file '%s' which has more then %s dimensions.", file_, "4");
        return false;
    }
    if (after > end) return failed("loadv5: file '%s' ended prematurely.");
    for (uint64_t k = 0; k < std::min<uint64_t>(n, most_dims); ++k) {
        if (!words(dim, end)) return failed("loadv5: file '%s' ended prematurely.");
        e.dims[k] = static_cast<int32_t>(dim[0]);
        if (e.dims[k] < 0) return failed("load5: '%s' contained matrix with negative dimension");
    }
    if (!in_.seek(after)) return failed("loadv5: file '%s' ended prematurely.");
    if (n == 1) e.dims[1] = 1;
    if (n > 2) e.ndims = static_cast<int>(n);
    return true;
}

bool Mat5Decoder::head(Head &h, uint64_t end) {
    Mat5Entry &e = h.entry;
    uint64_t start;
    uint32_t w[6];
    e.name[0] = '\0';
    e.ndims = 2;
    std::fill_n(e.dims, most_dims, 0);
    h.flags = h.room = 0;
    if (!head_tag(h, end, start)) return false;
    if (h.has_data) {
        if (!words(w, h.end)) return failed("load5: '%s' could not read header");
        h.flags = w[2];
        h.room = w[3];
        if (h.type() != opaque_class) {
            if (!dimensions(e, w[5], h.end)) return false;
        } else if (!in_.seek(start + 24)) {
            return failed("load5: '%s' could not read header");
        }
    }
    e.complex = h.flags & complex_flag;
    e.logical = h.flags & logical_flag;
    return !h.has_data || name(e.name, h.end);
}

// ---- Numbers ----

// The stored form of numbers of a type. The types that only classes beyond text, double and uint8 use are
// accepted in these classes only; for all others type 7 is unknown, too.
bool Mat5Decoder::layout(const Tag &t, Class type, Layout &l) const {
    constexpr int codes[] = {-1, 8, 5, 3, 4, 2, 7, -1, 1, 0}, sizes[] = {8, 4, 4, 2, 2, 1, 8, 4, 1, 8, 8};
    const bool other_number =
        type == single_class || (type > uint8_class && type <= last_number_class) || type == int8_class;
    l.code = t.type < std::size(codes) ? codes[t.type] : -1;
    if (type == text_class && t.type == int8) l.code = 5;
    if (type == text_class && t.type == utf16) l.code = 4;
    if (type == text_class && t.type == utf32) l.code = 7;
    if (other_number && t.type == single) l.code = 1;
    if (other_number && t.type == int64) l.code = 9;
    if (other_number && t.type == uint64) l.code = 10;
    if (l.code < 0) return failed("loadsave5: unknown data format");
    l.size = sizes[l.code];
    l.wide_signed = t.type == int64;
    return true;
}

namespace {

// 64-bit codes are read as unsigned; here the sign counts.
void decode_signed(const unsigned char *from, double *to, int n, bool swap) {
    const bool big = swap == (std::endian::native == std::endian::little);
    for (int k = 0; k < n; ++k, from += 8) {
        uint64_t x = 0;
        for (int b = 0; b < 8; ++b) x |= uint64_t{from[b]} << 8 * (big ? 7 - b : b);
        to[k] = static_cast<double>(static_cast<int64_t>(x));
    }
}

// Truncates: to a byte, keeping the low bits; to a size, clamping, since a clamped index is out of range for
// every matrix.
unsigned char converted(double x, unsigned char) {
    constexpr double limit = 9223372036854775808.0;
    return x > -limit && x < limit ? static_cast<unsigned char>(static_cast<int64_t>(x)) : 0;
}
kn_size converted(double x, kn_size) { return double_to_size(x); }

} // namespace

// The first n numbers of an element.
template <class T> bool Mat5Decoder::numbers(T *to, kn_size n, const Tag &t, const Layout &l) {
    if (uint64_t{t.bytes} / static_cast<uint64_t>(l.size) < static_cast<uint64_t>(n)) return unread();
    const bool as_they_are =
        std::is_same_v<T, double> ? l.code == 0 && !swap_ : std::is_same_v<T, unsigned char> && l.size == 1;
    if (as_they_are) {
        if (!in_.get(to, static_cast<size_t>(n) * sizeof(T))) return unread();
    } else {
        constexpr int room = 512;
        unsigned char block[8 * room];
        double decoded[room];
        for (kn_size done = 0; done < n; done += room) {
            const int m = static_cast<int>(std::min<kn_size>(room, n - done));
            if (!in_.get(block, static_cast<size_t>(m * l.size))) return unread();
            double *x = decoded;
            if constexpr (std::is_same_v<T, double>) x = to + done;
            if (l.wide_signed)
                decode_signed(block, x, m, swap_);
            else
                decode_elements(block, x, m, l.code, swap_);
            if constexpr (!std::is_same_v<T, double>)
                for (int k = 0; k < m; ++k) to[done + k] = converted(x[k], T());
        }
    }
    return in_.seek(t.end) || unread();
}

template <class T> bool Mat5Decoder::plane(T *to, kn_size n, Class type, uint64_t end) {
    Tag t;
    Layout l;
    if (n == 0) return true;
    return (tag(t, end) || unread()) && layout(t, type, l) && numbers(to, n, t, l);
}

template bool Mat5Decoder::numbers(kn_size *, kn_size, const Tag &, const Layout &);
template bool Mat5Decoder::plane(double *, kn_size, Class, uint64_t);
template bool Mat5Decoder::plane(unsigned char *, kn_size, Class, uint64_t);

} // namespace kn
