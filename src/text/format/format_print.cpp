// Writing values by the pieces of a format.
//
// Output is treated as C strings: a piece ends at a null character. Layouts are those of snprintf; plain
// conversions get the same text without it.

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/number_tests.h"
#include "platform/platform.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "special/scalar_kernels.h"
#include "text/format/format_list.h"
#include "value/strings.h"

namespace kn {
namespace {

// The state after %n: it consumes a value but stays at its element, which then counts as 0.
struct Rest {
    const double *at;
    ptrdiff_t n;
    bool cleared = false;

    double first() const { return cleared ? 0 : *at; }
    void next() {
        ++at;
        --n;
        cleared = false;
    }
};

template <class T> void append_by(TextBuffer &out, const char *c_format, T value) {
    constexpr size_t usual = 120;
    auto write = [&](char *to, size_t room) {
        const os::PlainNumbers plain;
        return std::snprintf(to, room + 1, c_format, value);
    };
    char *to = out.room(usual);
    if (!to) return;
    const int n = write(to, usual);
    if (n < 0) return;
    const size_t size = static_cast<size_t>(n);
    if (size > usual) {
        to = out.room(size);
        if (!to) return;
        write(to, size);
    }
    const void *null = std::memchr(to, '\0', size);
    out.advance(null ? static_cast<size_t>(static_cast<const char *>(null) - to) : size);
}

// Pads what was appended from `start` on to the least width of its piece.
void pad(TextBuffer &out, size_t start, const Piece &piece) {
    const size_t n = out.size() - start, width = static_cast<size_t>(piece.columns);
    if (n >= width) return;
    out.append_blanks(width - n);
    if (!out || piece.left) return;
    char *const text = out.data() + start;
    std::memmove(text + (width - n), text, n);
    std::memset(text, ' ', width - n);
}

// Truncates. Out-of-range numbers give the nearest limit; an unsigned one beyond the range of `long` wraps.
long whole(double x, bool is_unsigned) {
    using Long = std::numeric_limits<long>;
    constexpr double half = 2.0 * static_cast<double>(Long::max() / 2 + 1);
    if (x < -half) return Long::min();
    if (x < half) return static_cast<long>(x);
    if (!is_unsigned) return Long::max();
    return x < 2 * half ? static_cast<long>(static_cast<unsigned long>(x)) : -1;
}

// The bytes of a value in memory order, two hexadecimal digits each, the low digit first.
template <class T> void append_bytes(TextBuffer &out, T value) {
    unsigned char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    for (unsigned char b : bytes) {
        out.append("0123456789ABCDEF"[b & 15]);
        out.append("0123456789ABCDEF"[b >> 4]);
    }
}

void append_integer(TextBuffer &out, const Piece &piece, double x) {
    switch (piece.modifier) {
    case 'b':
    case 'B': return append_bytes(out, x);
    case 't':
    case 'T': return append_bytes(out, static_cast<float>(x));
    }
    if (std::isnan(x)) return out.append("NaN");
    if (std::isinf(x)) return out.append(x > 0 ? "Inf" : "-Inf");
    out.append(piece.shown);
    if (!piece.for_c) return;
    const bool is_signed = piece.conversion == 'd' || piece.conversion == 'i';
    const long n = whole(x, !is_signed);
    if (!piece.plain || piece.precision >= 0 || !is_signed) return append_by(out, piece.c_format, n);
    constexpr size_t longest = 24;
    const size_t start = out.size();
    if (char *to = out.room(longest))
        out.advance(static_cast<size_t>(std::to_chars(to, to + longest, n).ptr - to));
    pad(out, start, piece);
}

void append_number(TextBuffer &out, const Piece &piece, double x) {
    const size_t start = out.size();
    out.append(piece.shown);
    if (piece.for_c) {
        const int precision = piece.precision < 0 ? 6 : piece.precision;
        const size_t longest = static_cast<size_t>(precision) + 400; // 308 digits of a whole number
        const size_t number = out.size();
        if (!piece.plain || !std::strchr("efg", piece.conversion)) {
            append_by(out, piece.c_format, x);
        } else if (piece.conversion == 'g') {
            if (char *to = out.room(Digits::room)) out.advance(Digits(precision).write(to, x));
        } else if (char *to = out.room(longest)) {
            const auto layout =
                piece.conversion == 'f' ? std::chars_format::fixed : std::chars_format::scientific;
            out.advance(static_cast<size_t>(std::to_chars(to, to + longest, x, layout, precision).ptr - to));
        }
        if (piece.plain) pad(out, number, piece);
    }
    if (out && !is_finite(x)) respell(out, start, x);
}

void append_string(TextBuffer &out, const Piece &piece, const Rest &rest) {
    out.append(piece.shown);
    if (!piece.for_c) return;
    TextBuffer text;
    const size_t n = static_cast<size_t>(rest.n);
    char *const to = text.room(n);
    if (!to) return;
    for (size_t k = 0; k < n; ++k) to[k] = static_cast<char>(to_byte(rest.at[k]));
    if (rest.cleared) to[0] = '\0';
    to[n] = '\0';
    if (piece.plain && piece.columns == 0 && piece.precision < 0)
        out.append(std::string_view(to));
    else
        append_by(out, piece.c_format, static_cast<const char *>(to));
}

} // namespace

bool format_print(FormatList &list, const Mm &value, TextBuffer &out) {
    if (value.issamename(kn_l_name)) return true;
    value.warn_uninit();
    Codes codes(value);
    if (!codes) return false;
    Rest rest{codes.data(), codes.size()};
    bool was_text = false; // the last piece had no conversion: a format of nothing else is not repeated
    for (bool done = false; !done; list.advance()) {
        const Piece &piece = list.piece();
        if (piece.conversion == Piece::no_conversion) {
            if (was_text) return true;
            out.append(piece.shown);
            was_text = true;
            continue;
        }
        if (rest.n < 1) return true;
        was_text = false;
        switch (piece.conversion) {
        case 'd':
        case 'i':
        case 'o':
        case 'u':
        case 'x':
        case 'X': append_integer(out, piece, rest.first()); break;
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G': append_number(out, piece, rest.first()); break;
        case 'c':
            out.append(piece.shown);
            if (piece.for_c) append_by(out, piece.c_format, static_cast<int>(to_byte(rest.first())));
            break;
        case 'p':
            out.append(piece.shown);
            if (piece.for_c) append_by(out, piece.c_format, static_cast<const void *>(rest.at));
            break;
        case 's':
            append_string(out, piece, rest);
            done = true; // with the value; the rest of the format is for the next one
            break;
        case 'n':
            rest.cleared = true;
            --rest.n;
            continue;
        default: error("sprintf: unknown type character"); return false;
        }
        rest.next();
        if (!out.goes_on()) return false;
    }
    return true;
}

} // namespace kn
