// Loading a matrix from text: each line is a row, and the count of numbers in it is the number of columns.
//
// A line ends at a newline, or after 262143 characters. Leading white space is skipped; an empty line and one
// that begins with "%" or "#" are ignored. Blanks, tabs and commas separate tokens, of which the first 31
// characters count: a token that begins as a number is that number ("3;" is 3, "0x1f" is 31), one with a
// capital I or N is Inf, -Inf, NaN or else 0, and any other is skipped.

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "base/ascii.h"
#include "base/number_tests.h"
#include "base/scratch.h"
#include "files/mat/matfile.h"
#include "platform/platform.h"
#include "quorvex/arrays.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "text/number_text.h"
#include "value/constants.h"
#include "value/header.h"

namespace kn {
namespace {

constexpr int line_size = 262144;
constexpr size_t token_length = 31;

bool separates(char c) { return c == ' ' || c == ',' || c == '\t' || c == '\r' || c == '\n'; }

// A token with a capital I or N, in the spelling of any formatter.
double not_finite(std::string_view token) {
    TextBuffer text;
    text.append(token);
    for (double x : {raw_nan, -raw_inf, raw_inf}) respell(text, 0, x);
    auto holds = [&](std::string_view word) { return text.view().find(word) != std::string_view::npos; };
    return holds("-Inf") ? -raw_inf : holds("Inf") ? raw_inf : holds("NaN") ? raw_nan : 0;
}

// Whether a token counts as a number.
bool number_of(std::string_view token, double &x) {
    char text[token_length + 1];
    text[token.copy(text, token_length)] = '\0';
    if (std::strpbrk(text, "IN")) {
        x = not_finite(text);
        return true;
    }
    char *end;
    const os::PlainNumbers plain;
    x = std::strtod(text, &end);
    if (std::isnan(x)) x = raw_nan;
    return end != text;
}

// A finite number in the usual spelling, the most common one; returns its end, or null for any other token.
const char *plain_number(const char *at, const char *end, double &x) {
    const auto [behind, problem] = std::from_chars(at, end, x);
    const bool plain = problem == std::errc() && is_finite(x) &&
                       behind - at <= static_cast<ptrdiff_t>(token_length) &&
                       (behind == end || separates(*behind));
    return plain ? behind : nullptr;
}

// The numbers row by row, as bytes.
class Table {
  public:
    explicit operator bool() const { return static_cast<bool>(bytes_); }

    // Appends a line. False when its count of numbers differs from the lines before.
    bool append(const char *at, const char *end) {
        while (at < end && is_white(*at)) ++at;
        if (at == end || *at == '%' || *at == '#') return true;
        ptrdiff_t n = 0;
        for (; at < end; ++at) {
            if (separates(*at)) continue;
            double x;
            const char *behind = plain_number(at, end, x);
            bool counts = behind != nullptr;
            if (!counts) {
                behind = at;
                while (behind < end && !separates(*behind)) ++behind;
                counts = number_of({at, behind}, x);
            }
            if (counts) {
                bytes_.append({reinterpret_cast<const char *>(&x), sizeof x});
                ++n;
            }
            at = behind;
            if (at == end) break;
        }
        if (n == 0) return true;
        if (rows_++ == 0) cols_ = n;
        return n == cols_;
    }

    // False, after a report, when memory is exhausted.
    bool value(Mm &out) const {
        const kn_size count = rows_ * cols_;
        if (count == 0) return true;
        out = Mm(0, 0, 0, cols_, rows_, kn_double);
        if (lacks(out, count)) return false;
        std::memcpy(out.addr(), bytes_.view().data(), bytes_.size());
        if (rows_ == 1 || cols_ == 1)
            out.reshape(rows_, cols_);
        else
            out = transpose(out);
        return !lacks(out, count);
    }

  private:
    TextBuffer bytes_;
    kn_size rows_ = 0, cols_ = 0;
};

bool load(const MatFile &file, Mm &out) {
    Scratch<char> line(line_size);
    if (!line) return false;
    Table table;
    while (io::gets(line.get(), line_size, file.get())) {
        if (!table.append(line.get(), line.get() + std::strlen(line.get()))) {
            error("loadascii: matrix in %s is not rectangular", file.name);
            return false;
        }
        if (!table) return false;
    }
    if (!std::feof(file.get())) {
        error("load: %s could not be read", file.name);
        return false;
    }
    return table.value(out);
}

} // namespace

bool text_load(const MatFile &file, Mm &t) {
    Mm out;
    const bool loaded = load(file, out);
    t = loaded ? out : x_M;
    return loaded;
}

} // namespace kn
