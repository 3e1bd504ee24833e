// Blocks of elements between a stream and arrays, one loop for each pair of types.

#include "files/precision.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "base/scratch.h"
#include "files/byte_order.h"
#include "files/stream_calls.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"

namespace kn {
namespace {

// Bytes in one call of the stream library. A file system allocates space for a large block at once.
constexpr size_t block_bytes = 1 << 16, large_block_bytes = 1 << 22;
constexpr double two32 = 4294967296.0;

// ---- Codes ----

// Calls f with a value of the type for the code; `otherwise` for an unknown one.
template <class R, class F> R with_type(int code, R otherwise, F f) {
    switch (code) {
    case 0:
    case 6: return f(double());
    case 1: return f(float());
    case 2: return f(int32_t());
    case 3: return f(int16_t());
    case 4: return f(uint16_t());
    case 5: return f(uint8_t());
    case 7: return f(uint32_t());
    case 8: return f(int8_t());
    case 9:
    case 10: return f(uint64_t());
    }
    return otherwise;
}

// Stream items in an element: a 64-bit integer is two 32-bit items.
template <class Raw> constexpr size_t items = std::is_same_v<Raw, uint64_t> ? 2 : 1;

constexpr struct {
    std::string_view name;
    int code;
} names[] = {
    {"double", 0},         {"float64", 0}, {"real*8", 0},      {"adouble", 0},       {"float", 1},
    {"float32", 1},        {"real*4", 1},  {"long", 2},        {"int", 2},           {"integer*4", 2},
    {"int32", 2},          {"short", 3},   {"int16", 3},       {"integer*2", 3},     {"ushort", 4},
    {"unsigned short", 4}, {"uint16", 4},  {"uchar", 5},       {"unsigned char", 5}, {"uint8", 5},
    {"long double", 6},    {"float80", 6}, {"real*10", 6},     {"unsigned long", 7}, {"unsigned int", 7},
    {"ulong", 7},          {"uint", 7},    {"uint32", 7},      {"char", 8},          {"char*1", 8},
    {"int8", 8},           {"schar", 8},   {"signed char", 8}, {"integer*1", 8},     {"integer*8", 9},
    {"int64", 9},          {"uint64", 10},
};

// ---- Bytes ----

template <size_t bytes>
using Unsigned = std::conditional_t<bytes == 2, uint16_t, std::conditional_t<bytes == 4, uint32_t, uint64_t>>;

// In place; uses memcpy, since the elements may be of any type.
template <class T> void reverse(T *x, size_t n) {
    if constexpr (sizeof(T) > 1) {
        for (size_t k = 0; k < n; ++k) {
            Unsigned<sizeof(T)> u;
            std::memcpy(&u, x + k, sizeof u);
            u = reversed(u);
            std::memcpy(x + k, &u, sizeof u);
        }
    }
}

// ---- Numbers to integers ----

uint64_t two_words(double x) {
    return low_bits(x / two32) << 32 | static_cast<uint32_t>(low_bits(x - std::floor(x / two32) * two32));
}

// Numbers that all fit 32 bits, as in nearly all blocks, are converted by vector instructions.
template <class Raw> void truncate(const double *x, size_t n, Raw *to) {
    constexpr uint64_t magnitude = ~uint64_t{0} >> 1, most = std::bit_cast<uint64_t>(two32 / 2) - 1;
    for (size_t step = 512; n > 0; x += step, to += step, n -= step) {
        step = std::min(step, n);
        uint64_t beyond = 0;
        for (size_t k = 0; k < step; ++k) beyond |= most - (std::bit_cast<uint64_t>(x[k]) & magnitude);
        if (beyond >> 63)
            for (size_t k = 0; k < step; ++k) to[k] = static_cast<Raw>(low_bits(x[k]));
        else
            for (size_t k = 0; k < step; ++k) to[k] = static_cast<Raw>(static_cast<int32_t>(x[k]));
    }
}

// ---- Conversions of blocks ----

template <class Raw, class To> void decode(const Raw *from, size_t n, To *to) {
    for (size_t k = 0; k < n; ++k) {
        if constexpr (std::is_floating_point_v<Raw> && std::is_integral_v<To>)
            to[k] = static_cast<To>(low_bits(from[k]));
        else
            to[k] = static_cast<To>(from[k]);
    }
}

template <class From, class Raw> void encode(const From *from, size_t n, Raw *to) {
    if constexpr (std::is_integral_v<From> || std::is_floating_point_v<Raw>) {
        for (size_t k = 0; k < n; ++k) to[k] = static_cast<Raw>(from[k]);
    } else if constexpr (items<Raw> == 2) {
        for (size_t k = 0; k < n; ++k) to[k] = two_words(from[k]);
    } else {
        truncate(from, n, to);
    }
}

// Types that differ at most in signedness: the bytes are unchanged.
template <class A, class B>
constexpr bool alike = sizeof(A) == sizeof(B) && std::is_integral_v<A> == std::is_integral_v<B>;

// ---- Streams ----

template <class Raw> size_t read_block(Raw *to, size_t n, std::FILE *stream, bool swap, size_t &got) {
    got = io::read(to, sizeof(Raw) / items<Raw>, n * items<Raw>, stream);
    const size_t whole = (got + items<Raw> - 1) / items<Raw>;
    if (got < whole * items<Raw>) std::memset(reinterpret_cast<char *>(to + whole) - 4, 0, 4);
    if (swap) reverse(to, whole);
    return whole;
}

template <class Raw, class To> ptrdiff_t read(To *to, ptrdiff_t count, std::FILE *stream, bool swap) {
    const size_t n = static_cast<size_t>(count);
    size_t done = 0, total = 0, got;
    if constexpr (alike<Raw, To>) {
        done = read_block(to, n, stream, swap, total);
    } else {
        constexpr size_t room = block_bytes / sizeof(Raw);
        Raw block[room];
        for (bool more = true; more && done < n;) {
            const size_t wanted = std::min(n - done, room),
                         whole = read_block(block, wanted, stream, swap, got);
            decode(block, whole, to + done);
            done += whole;
            total += got;
            more = got == wanted * items<Raw>;
        }
    }
    if (done > 0) std::fill(to + done, to + n, To());
    return static_cast<ptrdiff_t>(total);
}

template <class To> ptrdiff_t read_as(To *to, ptrdiff_t n, std::FILE *stream, int code, bool swap) {
    if (n < 1) return 0;
    return with_type(code, ptrdiff_t{0}, [&](auto raw) { return read<decltype(raw)>(to, n, stream, swap); });
}

// Converts into the block and writes it, repeated until all is written.
template <class Raw, class From>
ptrdiff_t write_blocks(const From *from, size_t n, Raw *block, size_t room, std::FILE *stream, bool swap) {
    size_t done = 0;
    for (bool more = true; more && done < n;) {
        const size_t m = std::min(n - done, room);
        encode(from + done, m, block);
        if (swap) reverse(block, m);
        const size_t got = io::write(block, sizeof(Raw), m, stream);
        done += got;
        more = got == m;
    }
    return static_cast<ptrdiff_t>(done);
}

template <class Raw, class From>
ptrdiff_t write(const From *from, ptrdiff_t count, std::FILE *stream, bool swap) {
    const size_t n = static_cast<size_t>(count);
    if constexpr (alike<Raw, From>)
        if (!swap || sizeof(Raw) == 1) return static_cast<ptrdiff_t>(io::write(from, sizeof(Raw), n, stream));
    constexpr size_t room = block_bytes / sizeof(Raw), large_room = large_block_bytes / sizeof(Raw);
    if (n <= room) {
        Raw block[room];
        return write_blocks(from, n, block, room, stream, swap);
    }
    Scratch<Raw> block(static_cast<ptrdiff_t>(std::min(n, large_room)));
    return block ? write_blocks(from, n, block.get(), large_room, stream, swap) : 0;
}

template <class From>
ptrdiff_t write_as(const From *from, ptrdiff_t n, std::FILE *stream, int code, bool swap) {
    return with_type(code, ptrdiff_t{-1},
                     [&](auto raw) { return n < 1 ? 0 : write<decltype(raw)>(from, n, stream, swap); });
}

template <class From>
void encode_apart(const From *from, ptrdiff_t count, int code, bool swap, char *to, size_t stride) {
    with_type(code, false, [&](auto raw) {
        using Raw = decltype(raw);
        Raw block[512];
        for (size_t n = static_cast<size_t>(count), m; n > 0; n -= m, from += m) {
            m = std::min(n, std::size(block));
            encode(from, m, block);
            if (swap) reverse(block, m);
            for (size_t k = 0; k < m; ++k, to += stride) std::memcpy(to, block + k, sizeof(Raw));
        }
        return true;
    });
}

} // namespace

Precision file_precision(const Mm &m) {
    char text[31];
    Mstr_row(m, text, sizeof text);
    int code = 0;
    const auto *found =
        std::find_if(std::begin(names), std::end(names), [&](auto &p) { return p.name == text; });
    if (found != std::end(names))
        code = found->code;
    else
        error("fileio: unknown precision %s", text);
    return {code, with_type(code, 0, [](auto raw) { return static_cast<int>(sizeof raw); })};
}

ptrdiff_t read_elements(double *to, ptrdiff_t n, std::FILE *stream, int code, bool swap) {
    return read_as(to, n, stream, code, swap);
}
ptrdiff_t read_elements_int32(int *to, ptrdiff_t n, std::FILE *stream, int code, bool swap) {
    return read_as(to, n, stream, code, swap);
}
ptrdiff_t read_elements_byte(unsigned char *to, ptrdiff_t n, std::FILE *stream, int code, bool swap) {
    return read_as(to, n, stream, code, swap);
}

void decode_elements(const void *from, double *to, ptrdiff_t n, int code, bool swap) {
    with_type(code, false, [&](auto raw) {
        using Raw = decltype(raw);
        Raw block[512];
        for (ptrdiff_t done = 0; done < n;) {
            const size_t m = std::min<size_t>(static_cast<size_t>(n - done), std::size(block));
            std::memcpy(block, static_cast<const char *>(from) + static_cast<size_t>(done) * sizeof(Raw),
                        m * sizeof(Raw));
            if (swap) reverse(block, m);
            decode(block, m, to + done);
            done += static_cast<ptrdiff_t>(m);
        }
        return true;
    });
}

void encode_elements(const double *from, ptrdiff_t n, int code, bool swap, char *to, size_t stride) {
    encode_apart(from, n, code, swap, to, stride);
}
void encode_elements(const unsigned char *from, ptrdiff_t n, int code, bool swap, char *to, size_t stride) {
    encode_apart(from, n, code, swap, to, stride);
}

ptrdiff_t write_elements(const double *from, ptrdiff_t n, std::FILE *stream, int code, bool swap) {
    return write_as(from, n, stream, code, swap);
}
ptrdiff_t write_elements(const unsigned char *from, ptrdiff_t n, std::FILE *stream, int code, bool swap) {
    return write_as(from, n, stream, code, swap);
}

int write_element(double value, std::FILE *stream, int code, bool swap) {
    const int written = static_cast<int>(write_elements(&value, 1, stream, code, swap));
    return written == 1 && code >= 9 ? 2 : written;
}

} // namespace kn
