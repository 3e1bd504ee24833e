// str2num: a list of numbers in a text; nothing is evaluated.
//
// The text is scanned twice, to count and to fill. Blanks and tabs separate tokens; each of "\n;,[]" is a
// token itself. ";" and newline begin a row; "[", "]" and "," are skipped. Any other token is a number,
// joined with the following ones where a sign is separated by blanks ("1 + 2i", "1e- 5").

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "base/ascii.h"
#include "base/scratch.h"
#include "platform/platform.h"
#include "quorvex/builders.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "quorvex/text.h"
#include "special/scalar_kernels.h"
#include "text/number_from_text.h"
#include "text/text_buffer.h"
#include "value/constants.h"
#include "value/header.h"

namespace {

using namespace kn;

constexpr char marks[] = "\n;,[]", stops[] = "\n;,[] \t";

bool is_sign(char c) { return c == '+' || c == '-'; }
bool is_sign(std::string_view token) { return token.size() == 1 && is_sign(token[0]); }

class Tokens {
  public:
    explicit Tokens(const char *text) : at_(text) { next(); }
    explicit operator bool() const { return !token_.empty(); }
    std::string_view token() const { return token_; }
    void next() {
        at_ += std::strspn(at_, " \t");
        size_t n = *at_ && std::strchr(marks, *at_) ? 1 : std::strcspn(at_, stops);
        token_ = {at_, n};
        at_ += n;
    }

  private:
    const char *at_;
    std::string_view token_;
};

// Calls `number` with the text of each number, and whether it begins a row.
template <class F> void scan(const char *text, TextBuffer &word, F number) {
    bool new_row = true;
    Tokens in(text);
    auto append_token = [&] {
        if (!in) return;
        word.append(in.token());
        in.next();
    };
    while (in) {
        std::string_view token = in.token();
        if (std::strchr(marks, token[0])) {
            new_row = new_row || token == ";" || token == "\n";
            in.next();
            continue;
        }
        word.clear();
        append_token();
        if (token.size() > 1 && is_sign(token.back())) {
            append_token();
        } else if (is_sign(in.token())) {
            append_token();
            append_token();
        }
        if (!word.goes_on()) return;
        number(word, new_row);
        new_row = false;
    }
}

struct ParsedNumber {
    double re = 0, im = 0;
};

ParsedNumber special_word(std::string_view word) {
    auto is = [&](std::string_view w) {
        return std::equal(word.begin(), word.end(), w.begin(), w.end(),
                          [](char a, char b) { return to_lower(a) == b; });
    };
    if (is("inf")) return {raw_inf};
    if (is("-inf")) return {-raw_inf};
    if (is("nan") || is("-nan")) return {raw_nan};
    return {};
}

bool is_imaginary(const TextBuffer &word) { return word.view().back() == 'i'; }

// Reads re, re+imi or imi, the most common forms; false for all others, which sscanf may still accept.
bool plain_number(std::string_view text, ParsedNumber &z) {
    if (text.size() > 1 && text[0] == '+' && (is_digit(text[1]) || text[1] == '.')) text.remove_prefix(1);
    const char *last = text.data() + text.size();
    auto [end, problem] = std::from_chars(text.data(), last, z.re);
    if (problem != std::errc()) return false;
    if (end == last) return true;
    auto in_digits = [](char c) { return is_digit(c) || c == '.'; };
    if (*--last != 'i' || !in_digits(end[-1])) return false;
    if (end == last) {
        z = {0, z.re};
        return true;
    }
    if (!is_sign(*end) || !in_digits(end[1])) return false;
    auto [im_end, im_problem] = std::from_chars(end + 1, last, z.im);
    if (*end == '-') z.im = -z.im;
    return im_problem == std::errc() && im_end == last;
}

// The value of a number's text. An "i" without a number before it is 1i.
ParsedNumber value_of(TextBuffer &word) {
    ParsedNumber z;
    std::string_view text = word.view();
    if (plain_number(text, z)) return z;
    bool imaginary = is_imaginary(word);
    if (imaginary && (text.size() == 1 || is_sign(text[text.size() - 2])))
        word.replace(text.size() - 1, 1, "1i");
    z = {};
    const os::PlainNumbers plain;
    switch (std::sscanf(word.c_str(), "%lg %lg", &z.re, &z.im)) {
    case 2: return z;
    case 1: return imaginary ? ParsedNumber{0, z.re} : ParsedNumber{z.re, 0};
    default: return special_word(word.view());
    }
}

} // namespace

bool kn::text_number(const Mm &s, TextNumber &x) {
    constexpr int most = 63;
    const kn_size n = s.getnnz();
    if (!s.isstr() || s.gettype() != kn_double || s.issparse() || s.rows() != 1 || n > most) return false;
    char text[most];
    const double *code = s.addr();
    for (kn_size k = 0; k < n; ++k) text[k] = static_cast<char>(to_byte(code[k]));
    std::string_view word(text, static_cast<size_t>(n));
    auto parts = [](char c) { return c == ' ' || c == '\t'; };
    while (!word.empty() && parts(word.front())) word.remove_prefix(1);
    while (!word.empty() && parts(word.back())) word.remove_suffix(1);
    ParsedNumber z;
    if (word.empty() || !plain_number(word, z)) return false;
    x = {z.re, z.im, word.back() == 'i'};
    return true;
}

Mm str2num(const Mm &s) {
    if (!s.isstr()) {
        error("str2num: input is not a string");
        return 0.0;
    }
    if (s.size() == 0) return nop_M;
    if (TextNumber x; text_number(s, x) && !x.complex) return x.re;
    const kn_size size = Mstr_size(s);
    Scratch<char> text(size);
    if (!text) return x_M;
    Mstr(s, text.get(), size);

    TextBuffer word;
    int rows = 0, cols = 0, col = 0, complex = 0;
    scan(text.get(), word, [&](TextBuffer &number, bool new_row) {
        rows += new_row;
        col = new_row ? 1 : col + 1;
        cols = std::max(cols, col);
        if (is_imaginary(number)) complex = 1;
    });
    Mm out = czeros(complex, rows, cols);
    if (!word || (rows > 0 && out.getnnz() == 0)) return x_M;

    double *re = out.addr(), *im = out.addi();
    ptrdiff_t row = -1, at = 0;
    scan(text.get(), word, [&](TextBuffer &number, bool new_row) {
        row += new_row;
        at = new_row ? row : at + rows;
        ParsedNumber z = value_of(number);
        re[at] = z.re;
        if (im) im[at] = z.im;
    });
    return out;
}
