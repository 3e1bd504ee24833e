// Parsing of formats.
//
// After a percent sign any of "*#0123456789+-." may follow, then a modifier, then the letter. A letter that
// is no conversion makes all of it text, except for the modifier, which is lost; the search continues after
// the percent sign. So the second sign of "%%" may begin a conversion itself, as in "%%d". C reads "%%"
// as a percent sign and sees no conversion there: that piece has one, and is written as text.

#include "text/format/format_list.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "base/ascii.h"
#include "quorvex/messages.h"
#include "special/scalar_kernels.h"
#include "value/strings.h"

namespace kn {
namespace {

constexpr int largest_field = 1000000;

bool is_one_of(char c, const char *set) { return c && std::strchr(set, c); }

// The digits at `at`, which is moved past them; INT_MAX when the number does not fit an int.
int read_int(const char *&at) {
    long long n = 0;
    for (; is_digit(*at); ++at) n = std::min<long long>(10 * n + (*at - '0'), INT_MAX);
    return static_cast<int>(n);
}

// The flags that C defines for a conversion.
const char *flags_of(char conversion) {
    switch (conversion) {
    case 'd':
    case 'i': return "-+0";
    case 'o':
    case 'x':
    case 'X': return "-#0";
    case 'u': return "-0";
    case 'c':
    case 's':
    case 'p': return "-";
    default: return "-+#0";
    }
}

// The fields of a conversion; false when their order is unknown to C. What can be read is a subset of what
// can be written.
bool read_fields(Piece &piece, std::string_view conversion) {
    const bool number = !is_one_of(piece.conversion, "csnp");
    const char *at = conversion.data() + 1;
    const char *const letter = conversion.data() + conversion.size() - (number ? 2 : 1);
    piece.suppressed = *at == '*';
    if (piece.suppressed) ++at;
    if (const int width = read_int(at); width > 0) piece.width = width;
    piece.readable = at == letter;

    // In writing there is no argument for a "*".
    char flags[8] = "", *flag = flags;
    for (at = conversion.data() + 1; is_one_of(*at, "-+#0*"); ++at)
        if (is_one_of(*at, flags_of(piece.conversion)) && !is_one_of(*at, flags)) *flag++ = *at;
    const char *const width = at;
    const int columns = read_int(at);
    const char *const behind_width = at;
    while (*at == '*') ++at;
    const char *const point = at;
    if (*at == '.') {
        if (*++at == '*')
            ++at;
        else
            piece.precision = read_int(at);
    }
    if (at != letter) return false;

    if (columns > largest_field) piece.too_large = {width, static_cast<size_t>(behind_width - width)};
    if (piece.precision > largest_field) piece.too_large = {point, static_cast<size_t>(at - point)};
    if (is_one_of(piece.conversion, "cp")) piece.precision = -1;
    piece.left = is_one_of('-', flags);
    piece.plain = flags[piece.left] == '\0';
    piece.columns = columns;
    char size[12] = "", precision[14] = "";
    if (columns > 0) std::snprintf(size, sizeof size, "%d", columns);
    if (piece.precision >= 0) std::snprintf(precision, sizeof precision, ".%d", piece.precision);
    std::snprintf(piece.c_format, sizeof piece.c_format, "%%%s%s%s%s%c", flags, size, precision,
                  number ? "l" : "", piece.conversion);
    return true;
}

} // namespace

bool flatten(const Mm &m, TextBuffer &out) {
    m.warn_uninit();
    Codes codes(m);
    if (!codes) return false;
    char *const to = out.room(static_cast<size_t>(codes.size()));
    if (!to) return false;
    ptrdiff_t n = 0;
    for (; n < codes.size(); ++n) {
        const unsigned char byte = to_byte(codes.data()[n]);
        if (byte == 0) break;
        to[n] = static_cast<char>(byte);
    }
    out.advance(static_cast<size_t>(n));
    return true;
}

bool format_unescape(const Mm &fmt, TextBuffer &out) {
    TextBuffer text;
    if (!flatten(fmt, text)) return false;
    char *to = out.room(text.size());
    if (!to) return false;
    const char *const start = to;
    for (const char *at = text.c_str(); *at; ++at) {
        if (*at != '\\') {
            *to++ = *at;
            continue;
        }
        ++at;
        if (!*at) break;
        *to++ = *at == 'n' ? '\n' : *at == 'r' ? '\r' : *at == 't' ? '\t' : *at;
    }
    out.advance(static_cast<size_t>(to - start));
    return true;
}

kn_size values_of(const Mm &list) { return is_cell(list) ? list.size() : 1; }

const Mm &value_of(const Mm &list, kn_size k) { return is_cell(list) ? list.mr(k) : list; }

FormatList::FormatList(const Mm &fmt) {
    TextBuffer format;
    if (!format_unescape(fmt, format)) return;
    // All texts of the pieces are reserved here, so that they don't move: an "l" for a letter, and the text
    // as shown.
    if (!text_.room(3 * format.size())) return;
    const char *at = format.c_str();
    pieces_.emplace(std::count(at, at + format.size(), '%') + 1);
    if (!*pieces_) return;
    do {
        Piece &piece = (*pieces_)[++last_];
        piece = Piece();
        at = parse_piece(at, piece);
        if (!is_one_of(piece.conversion, "=cs")) chars_only_ = false;
    } while (*at);
}

bool FormatList::has(char conversion) const {
    return std::any_of(pieces_->get(), pieces_->get() + last_ + 1,
                       [=](const Piece &p) { return p.conversion == conversion; });
}

bool FormatList::printable() const {
    for (ptrdiff_t k = 0; k <= last_; ++k) {
        const std::string_view digits = (*pieces_)[k].too_large;
        if (digits.empty()) continue;
        const bool width = digits[0] != '.';
        error("sprintf: %s %.*s is too large", width ? "field width" : "precision",
              static_cast<int>(std::min<size_t>(digits.size() - !width, 40)), digits.data() + !width);
        return false;
    }
    return true;
}

// Parses one piece of the format and returns what follows it.
const char *FormatList::parse_piece(const char *at, Piece &piece) {
    const size_t start = text_.size();
    size_t percent = start;
    while (*at) {
        percent = text_.size();
        text_.append(*at);
        if (*at++ != '%') continue;
        size_t n = std::strspn(at, "*#0123456789+-.");
        text_.append({at, n});
        at += n;
        if (is_one_of(*at, "lhLHbtBT")) piece.modifier = *at++;
        const bool number = is_one_of(*at, "dDiIoOuUxXfFeEgG");
        if (!number && !is_one_of(*at, "csnp")) continue;
        if (number) text_.append('l');
        text_.append(*at);
        piece.conversion = is_one_of(*at, "DIOU") ? static_cast<char>(*at - 'A' + 'a') : *at;
        ++at;
        break;
    }
    piece.text = {text_.data() + start, text_.size() - start};
    piece.skip = piece.text.find('*') != std::string_view::npos;
    understand(piece, percent - start);
    return at;
}

// Determines how C reads the piece, whose conversion begins at `percent`.
void FormatList::understand(Piece &piece, size_t percent) {
    const std::string_view all = piece.text;
    const bool converts = piece.conversion != Piece::no_conversion;
    const size_t start = text_.size(), end = converts ? percent : all.size();
    size_t k = 0;
    for (; k < end; ++k) {
        text_.append(all[k]);
        if (all[k] == '%' && k + 1 < all.size() && all[k + 1] == '%') ++k;
    }
    // When k is past `percent`, that sign was the second one of "%%".
    piece.for_c = converts && k == percent && read_fields(piece, all.substr(percent));
    if (piece.for_c)
        piece.text = all.substr(0, percent);
    else
        text_.append(all.substr(k));
    piece.shown = {text_.data() + start, text_.size() - start};
}

} // namespace kn
