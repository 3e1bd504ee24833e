// Reading numbers and characters by the pieces of a format.
//
// A piece is matched as scanf does: blanks in it match any blanks or none, other text matches itself; then
// the conversion takes the longest run that looks like its kind of number (a word for s, one character for
// c). An input that ends too early gives -1, one that doesn't match 0.
//
// In a stream, reading continues after what was matched. In a text, c advances by one character and every
// other conversion by one word with the blanks around it, wherever its match began or ended; a piece without
// conversion does not advance. A pass through all pieces that neither advances nor reads anything is the last
// one.

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "base/ascii.h"
#include "platform/platform.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "text/format/format_list.h"
#include "value/header.h"
#include "value/strings.h"

namespace kn {
namespace {

bool is_hex_digit(int c) { return is_digit(c) || (to_lower(c) >= 'a' && to_lower(c) <= 'f'); }

// The source: the next character, or EOF.
class TextInput {
  public:
    explicit TextInput(std::string_view text)
        : start_(text.data()), at_(start_), end_(start_ + text.size()) {}
    int peek() const { return at_ < end_ ? static_cast<unsigned char>(*at_) : EOF; }
    void next() { ++at_; }
    ptrdiff_t moved() const { return piece_ - start_; }

    void begin_piece() { at_ = piece_; }
    void end_piece(char conversion) {
        at_ = piece_;
        if (conversion == 'c') {
            if (at_ < end_) ++at_;
        } else if (conversion != Piece::no_conversion) {
            skip(true);
            skip(false);
            skip(true);
        }
        piece_ = at_;
    }

  private:
    void skip(bool blanks) {
        while (at_ < end_ && is_white(static_cast<unsigned char>(*at_)) == blanks) ++at_;
    }
    const char *start_, *at_, *end_, *piece_ = start_;
};

class StreamInput {
  public:
    explicit StreamInput(std::FILE *file) : file_(file) {}
    ~StreamInput() {
        if (known_ && ahead_ != EOF) std::ungetc(ahead_, file_);
    }
    StreamInput(const StreamInput &) = delete;
    StreamInput &operator=(const StreamInput &) = delete;
    int peek() {
        if (!known_) ahead_ = std::getc(file_);
        known_ = true;
        return ahead_;
    }
    void next() {
        known_ = false;
        ++moved_;
    }
    ptrdiff_t moved() const { return moved_; }
    void begin_piece() {}
    void end_piece(char) {}

  private:
    std::FILE *file_;
    bool known_ = false;
    int ahead_ = 0;
    ptrdiff_t moved_ = 0;
};

// The values read.
class ScannedNumbers {
  public:
    void append(double x) { bytes_.append(std::string_view(reinterpret_cast<const char *>(&x), sizeof x)); }
    explicit operator bool() const { return static_cast<bool>(bytes_); }
    kn_size count() const { return static_cast<kn_size>(bytes_.size() / sizeof(double)); }
    // The first n, or as many as there are.
    void copy(double *to, kn_size n) const {
        const size_t bytes = sizeof *to * static_cast<size_t>(std::min(n, count()));
        if (bytes > 0) std::memcpy(to, bytes_.view().data(), bytes);
        std::fill(to + bytes / sizeof *to, to + n, 0.0);
    }

  private:
    TextBuffer bytes_;
};

enum Answer { ended = -1, unfit = 0, fits = 1 };

template <class In> class Scanner {
  public:
    explicit Scanner(In &in) : in_(in) {}

    // Reads by one piece. The result is in `word` (s, c) or `value`.
    Answer read(const Piece &piece) {
        blanks_ = false;
        word.clear();
        if (Answer a = match(piece.text); a != fits) return a;
        if (!piece.for_c) {
            if (blanks_) skip_blanks();
            return unfit;
        }
        const bool character = piece.conversion == 'c';
        if (blanks_ || !character) skip_blanks();
        if (!piece.readable) return unfit;
        if (in_.peek() == EOF) return ended;
        left_ = piece.width < 0 ? INT_MAX : piece.width;
        switch (piece.conversion) {
        case 'c': accept(); return word.view()[0] == '\0' ? unfit : fits;
        case 's':
            while (more() && !is_white(in_.peek())) accept();
            return fits;
        case 'd':
        case 'u': return integer(10, piece.conversion == 'd');
        case 'i': return integer(0, true);
        case 'o': return integer(8, false);
        case 'x':
        case 'X':
        case 'p': return integer(16, false);
        default: return number();
        }
    }
    bool at_end() { return in_.peek() == EOF; }

    TextBuffer word;
    double value = 0;

  private:
    void skip_blanks() {
        while (is_white(in_.peek())) in_.next();
    }
    bool more() { return left_ > 0 && in_.peek() != EOF; }
    void accept() {
        word.append(static_cast<char>(in_.peek()));
        drop();
    }
    void drop() {
        in_.next();
        --left_;
    }
    bool next_is(char c) { return more() && to_lower(in_.peek()) == c; }
    bool accept_all(const char *text) {
        for (; *text; ++text) {
            if (!next_is(*text)) return false;
            accept();
        }
        return true;
    }

    Answer match(std::string_view text) {
        for (size_t k = 0; k < text.size(); ++k) {
            const int c = static_cast<unsigned char>(text[k]);
            if (is_white(c)) {
                blanks_ = true;
                continue;
            }
            if (c == '%' && k + 1 < text.size() && text[k + 1] == '%') {
                ++k;
                blanks_ = true;
            }
            if (blanks_) skip_blanks();
            blanks_ = false;
            if (in_.peek() == EOF) return ended;
            if (in_.peek() != c) return unfit;
            in_.next();
        }
        return fits;
    }

    void accept_sign() {
        if (next_is('-') || next_is('+')) accept();
    }

    Answer integer(int base, bool is_signed) {
        accept_sign();
        const size_t sign = word.size();
        if (next_is('0')) {
            accept();
            if ((base == 0 || base == 16) && next_is('x')) {
                drop();
                base = 16;
            } else if (base == 0) {
                base = 8;
            }
        }
        if (base == 0) base = 10;
        while (more() &&
               (base == 16 ? is_hex_digit(in_.peek()) : in_.peek() >= '0' && in_.peek() < '0' + base))
            accept();
        if (!word || word.size() == sign) return unfit;
        const char *digits = word.c_str();
        value = static_cast<double>(is_signed ? std::strtol(digits, nullptr, base)
                                              : static_cast<long>(std::strtoul(digits, nullptr, base)));
        return fits;
    }

    bool accept_special() {
        if (next_is('n')) return accept_all("nan");
        return accept_all("inf") && (!next_is('i') || accept_all("inity"));
    }

    // Digits, point and exponent. Whether they are hexadecimal.
    bool accept_magnitude() {
        const size_t sign = word.size();
        bool hex = false, dot = false, exponent = false;
        if (next_is('0')) {
            accept();
            hex = left_ > 1 && next_is('x');
            if (hex) accept();
        }
        const char letter = hex ? 'p' : 'e';
        bool digits = !hex && word.size() > sign;
        for (; more(); accept()) {
            const int c = in_.peek();
            if (is_digit(c) || (hex && !exponent && is_hex_digit(c))) {
                digits = true;
            } else if (exponent && (c == '-' || c == '+') && to_lower(word.view().back()) == letter) {
            } else if (digits && !exponent && to_lower(c) == letter) {
                exponent = dot = true;
            } else if (!dot && c == '.') {
                dot = true;
            } else {
                break;
            }
        }
        return hex;
    }

    Answer number() {
        accept_sign();
        const size_t sign = word.size();
        if (next_is('n') || next_is('i')) {
            if (!accept_special()) return unfit;
        } else {
            const bool hex = accept_magnitude();
            if (word.size() == sign + (hex ? 2 : 0)) return unfit;
            if (word && !hex) {
                const char *at = word.data(), *end = at + word.size();
                auto [after, problem] = std::from_chars(at + (*at == '+'), end, value);
                if (problem == std::errc()) return fits;
                if (problem == std::errc::invalid_argument) return unfit;
            }
        }
        if (!word) return unfit;
        char *after;
        const char *text = word.c_str();
        const os::PlainNumbers plain;
        value = std::strtod(text, &after);
        return after == text ? unfit : fits;
    }

    In &in_;
    bool blanks_ = false; // the piece has blanks here
    int left_ = 0;        // characters left of the width
};

// False after a report.
template <class In> bool scan(FormatList &list, In in, kn_size limit, ScannedNumbers &out) {
    Scanner<In> scanner(in);
    ptrdiff_t moved = -1;
    kn_size nread = 0, nread_before = 0;
    for (; nread < limit; list.advance()) {
        if (list.at_start()) {
            if (in.moved() == moved && nread == nread_before) break;
            moved = in.moved();
            nread_before = nread;
        }
        const Piece &piece = list.piece();
        in.begin_piece();
        if (piece.conversion == 'n') {
            if (scanner.at_end()) break;
            if (!piece.skip) out.append(static_cast<double>(nread));
        } else {
            Answer answer = scanner.read(piece);
            if (answer == ended) break;
            if (answer == fits && piece.for_c) {
                nread += !piece.suppressed;
            } else if (answer != fits && piece.conversion != Piece::no_conversion && !piece.skip) {
                break;
            }
            if (piece.skip || answer != fits) {
            } else if (piece.conversion == 'c' || piece.conversion == 's') {
                for (char c : scanner.word.view()) out.append(static_cast<unsigned char>(c));
            } else if (piece.conversion != 'p') {
                out.append(scanner.value);
            }
        }
        in.end_piece(piece.conversion);
        if (!scanner.word.goes_on() || !out) return false;
    }
    return true;
}

} // namespace

bool format_scan(std::FILE *stream, std::string_view text, const Mm &fmt, const Mm &size, Mm &a, Mm &count,
                 Mm &msg) {
    FormatList list(fmt);
    if (!list) return false;
    Codes extents(size);
    if (!extents) return false;
    if (size.size() != 1 && size.size() != 2) {
        error("scanf: size %s is not one or two elements", kn_display_name(size));
        return false;
    }
    if (!stream && list.has('p')) {
        error("sscanf: p conversions can not be read from a text");
        return false;
    }
    const bool matrix = size.size() == 2;
    auto extent = [&](int k) { return std::max<kn_size>(double_to_size(extents.data()[k]), 0); };
    const kn_size m = extent(0), wanted[] = {m, matrix ? extent(1) : 1}, all = product(2, wanted),
                  limit = all < 0 ? size_max : all;

    ScannedNumbers numbers;
    if (!(stream ? scan(list, StreamInput(stream), limit, numbers)
                 : scan(list, TextInput(text), limit, numbers)))
        return false;

    const kn_size stored = numbers.count();
    kn_size rows = m, cols = 1;
    if (matrix)
        cols = m > 0 ? stored / m + (stored % m != 0) : 0;
    else if (list.chars_only())
        rows = 1, cols = stored;
    else
        rows = std::min(m, stored);
    Mm out(0, 0, 0, rows, cols, kn_double);
    if (rows > 0 && cols > 0 && out.getnnz() == 0) return false; // no memory
    numbers.copy(out.addr(), out.getnnz());
    out.setstr(list.chars_only());
    check(out);
    a = out;
    count = static_cast<double>(stored);
    msg = TM("");
    return true;
}

} // namespace kn
