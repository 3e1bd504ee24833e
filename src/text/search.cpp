// Searching text: findstr, strrep, strtok, strmatch.

#include <algorithm>
#include <cstring>

#include "base/scratch.h"
#include "kernels/array_moves.h"
#include "kernels/kernel_table.h"
#include "quorvex/arrays.h"
#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/text.h"
#include "text/text_buffer.h"
#include "value/strings.h"

namespace {

using namespace kn;

// Finds a word by the algorithm of Knuth, Morris and Pratt: no character of a text is read more than twice.
class Finder {
  public:
    explicit Finder(const Codes &word) : word_(word.data()), n_(word.size()), border_(n_ + 1) {
        if (!border_) return;
        // border_[k]: how long a proper prefix of the first k characters is also their suffix, at most
        border_[0] = -1;
        for (ptrdiff_t k = 0; k < n_; ++k) border_[k + 1] = longer(border_[k], word_[k]);
    }
    explicit operator bool() const { return static_cast<bool>(border_); }

    // Calls found(offset) for each occurrence of the word; an empty word has none.
    template <class F> void each(const Codes &text, F found) const {
        if (n_ == 0) return;
        const double *const codes = text.data();
        const auto find_pair = kernels().moves->find_pair;
        ptrdiff_t matched = 0;
        for (ptrdiff_t k = 0; k < text.size(); ++k) {
            if (matched == n_) matched = border_[n_];
            if (matched == 0) { // skip to where both the first and the last character of the word match
                const ptrdiff_t places = text.size() - n_ + 1 - k;
                const double *at = codes + k;
                const ptrdiff_t passed = find_pair(at, at + n_ - 1, places, word_[0], word_[n_ - 1]);
                if (passed >= places) return;
                k += passed;
            }
            matched = longer(matched, codes[k]);
            if (matched == n_) found(k + 1 - n_);
        }
    }

  private:
    // The length of the matched prefix after the character c.
    ptrdiff_t longer(ptrdiff_t matched, double c) const {
        while (matched >= 0 && word_[matched] != c) matched = border_[matched];
        return matched + 1;
    }

    const double *word_;
    ptrdiff_t n_;
    Scratch<kn_size> border_;
};

Mm replace(const Mm &s, const Mm &old, const Mm &now) {
    for (const Mm *x : {&s, &old, &now})
        if (error_text_row(*x, "strrep")) return x_M;
    const Codes text(s), word(old), in_place(now);
    if (!text || !word || !in_place) return x_M;
    const Finder finder(word);
    if (!finder) return x_M;

    TextBuffer found; // positions
    finder.each(text, [&](ptrdiff_t at) { found.append({reinterpret_cast<const char *>(&at), sizeof at}); });
    if (!found) return x_M;
    const size_t count = found.size() / sizeof(kn_size);
    if (count == 0) return s;

    // Calls part(from, size) for the unchanged parts and the replacements, in order.
    auto each_part = [&](auto part) {
        ptrdiff_t done = 0;
        for (size_t k = 0; k < count; ++k) {
            kn_size at;
            std::memcpy(&at, found.data() + k * sizeof at, sizeof at);
            part(text.data() + done, std::max<ptrdiff_t>(at - done, 0));
            part(in_place.data(), in_place.size());
            done = at + word.size();
        }
        part(text.data() + done, text.size() - done);
    };
    long long n = 0;
    each_part([&](const double *, ptrdiff_t size) { n += size; });
    Mm out(0, 0, 0, 1, n, kn_double);
    if (lacks(out, n)) return x_M;
    double *to = out.addr();
    each_part([&](const double *from, ptrdiff_t size) { to = std::copy_n(from, size, to); });
    out.setstr(1);
    return out;
}

// ---- Tokens ----

template <class Delimits> Mm tokenise(const Mm &s, Delimits delimits, Mm &token, Mm &remainder) {
    if (error_text_row(s, "strtok")) return x_M;
    const Codes text(s);
    if (!text) return x_M;
    const double *end = text.data() + text.size(), *begin = std::find_if_not(text.data(), end, delimits),
                 *rest = std::find_if(begin, end, delimits);
    Mm first = row_of_text(begin, rest - begin), after = row_of_text(rest, end - rest);
    token = first;
    remainder = after;
    return x_M;
}

// ---- Rows that match ----

// Whether the row of codes, `step` apart, begins with s; `exact`: and has only blanks after it.
bool begins(const double *row, ptrdiff_t n, ptrdiff_t step, const Codes &s, bool exact) {
    if (n < s.size()) return false;
    for (ptrdiff_t k = 0; k < s.size(); ++k)
        if (row[k * step] != s.data()[k]) return false;
    for (ptrdiff_t k = s.size(); exact && k < n; ++k)
        if (row[k * step] != 0 && row[k * step] != ' ') return false;
    return true;
}

Mm match(const Mm &s, const Mm &rows, bool exact) {
    if (error_text(s, "strmatch") || (!is_cell(rows) && error_text(rows, "strmatch"))) return x_M;
    const Codes text(s);
    const kn_size n = is_cell(rows) ? rows.size() : rows.rows();
    Scratch<double> positions(n);
    if (!text || !positions) return x_M;
    kn_size found = 0;
    auto look = [&](kn_size k, const double *row, ptrdiff_t size, ptrdiff_t step) {
        if (begins(row, size, step, text, exact)) positions[found++] = k + 1;
    };
    if (is_cell(rows)) {
        const CellItems elements(rows);
        for (kn_size k = 0; k < n; ++k) {
            if (!is_text(elements[k])) continue;
            const Codes element(elements[k]);
            if (element) look(k, element.data(), element.size(), 1);
        }
    } else {
        const Codes matrix(rows);
        for (kn_size k = 0; matrix && k < n; ++k) look(k, matrix.data() + k, matrix.cols(), n);
    }
    Mm out(0, 0, 0, found, 1, kn_double);
    if (lacks(out, found)) return x_M;
    std::copy_n(positions.get(), found, out.addr());
    return out;
}

} // namespace

Mm findstr(const Mm &a, const Mm &b) {
    if (error_text_row(a, "findstr") || error_text_row(b, "findstr")) return x_M;
    const bool swapped = a.size() < b.size();
    const Codes text(swapped ? b : a), word(swapped ? a : b);
    if (!text || !word) return x_M;
    const Finder finder(word);
    if (!finder) return x_M;
    kn_size n = 0;
    finder.each(text, [&](ptrdiff_t) { ++n; });
    Mm out(0, 0, 0, n > 0, n, kn_double);
    if (lacks(out, n)) return x_M;
    double *to = out.addr();
    finder.each(text, [&](ptrdiff_t at) { *to++ = static_cast<double>(at + 1); });
    return out;
}

Mm strrep(const Mm &s, const Mm &old, const Mm &now) {
    if (!is_cell(s) && !is_cell(old) && !is_cell(now)) return replace(s, old, now);
    const Mm *shape = shape_of_cells("strrep", {&s, &old, &now});
    if (!shape) return x_M;
    const CellItems texts(s), words(old), others(now);
    return cell_of_answers(*shape, [&](kn_size k) { return replace(texts[k], words[k], others[k]); });
}

Mm strtok(const Mm &s, i_o_t, Mm &token, Mm &remainder) { return tokenise(s, is_blank, token, remainder); }

Mm strtok(const Mm &s, const Mm &delimiters, i_o_t, Mm &token, Mm &remainder) {
    if (error_text(delimiters, "strtok")) return x_M;
    const Codes codes(delimiters);
    if (!codes) return x_M;
    const double *first = codes.data(), *last = first + codes.size();
    return tokenise(
        s, [=](double c) { return std::find(first, last, c) != last; }, token, remainder);
}

Mm strtok(const Mm &s) {
    Mm token = x_M, remainder;
    strtok(s, i_o, token, remainder);
    return token;
}

Mm strtok(const Mm &s, const Mm &delimiters) {
    Mm token = x_M, remainder;
    strtok(s, delimiters, i_o, token, remainder);
    return token;
}

Mm strmatch(const Mm &s, const Mm &rows) { return match(s, rows, false); }

Mm strmatch(const Mm &s, const Mm &rows, const Mm &exact) {
    if (istrue(strcmp(exact, TM("exact")))) return match(s, rows, true);
    error("strmatch: third input must be 'exact'");
    return x_M;
}
