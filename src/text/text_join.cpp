// Text from other text: strcat, strjust, blanks.

#include <algorithm>

#include "base/scratch.h"
#include "quorvex/classes.h"
#include "quorvex/messages.h"
#include "quorvex/text.h"
#include "value/strings.h"

namespace {

using namespace kn;

constexpr double blank = ' ';

// The part of a row in a matrix of codes that is left when blanks are removed.
struct Part {
    const double *row;
    ptrdiff_t step; // from one character of the row to the next
    kn_size begin, end;

    Part(const Codes &text, kn_size r)
        : row(text.data() + r), step(text.rows()), begin(0), end(text.cols()) {}
    kn_size size() const { return end - begin; }
    void trim_end() {
        while (end > begin && is_blank(row[(end - 1) * step])) --end;
    }
    void trim_begin() {
        while (begin < end && is_blank(row[begin * step])) ++begin;
    }
    // Copies to the row of a matrix that begins at `to`, with this step between characters.
    void copy(double *to, ptrdiff_t to_step) const {
        for (kn_size k = begin; k < end; ++k, to += to_step) *to = row[k * step];
    }
};

// ---- strcat ----

// The texts, `count` of them, side by side; `trim`: without their trailing blanks.
Mm side_by_side(const Mm *const *texts, int count, bool trim) {
    kn_size m = 0;
    for (int k = 0; k < count; ++k) {
        texts[k]->warn_uninit();
        if (error_numeric(*texts[k], "strcat")) return x_M;
        const kn_size rows = texts[k]->rows();
        if (m > 1 && rows > 1 && rows != m) {
            error("strcat: # of rows different");
            return x_M;
        }
        m = std::max(m, rows);
    }
    Scratch<kn_size> ends(m);
    if (!ends) return x_M;
    kn_size width = 0;
    double *to = nullptr; // set in the second pass
    auto walk = [&] {
        std::fill_n(ends.get(), m, 0);
        for (int k = 0; k < count; ++k) {
            if (texts[k]->size() == 0) continue;
            const Codes codes(*texts[k]);
            if (!codes) return false;
            for (kn_size r = 0; r < m; ++r) {
                Part part(codes, codes.rows() == 1 ? 0 : r);
                if (trim) part.trim_end();
                if (to) part.copy(to + r + ends[r] * m, m);
                width = std::max(width, ends[r] += part.size());
            }
        }
        return true;
    };
    if (!walk()) return x_M;
    Mm out(0, 0, 0, m, width, kn_double);
    if (m > 0 && width > 0 && out.getnnz() == 0) return x_M;
    to = out.addr();
    std::fill_n(to, out.getnnz(), blank);
    if (out.getnnz() > 0 && !walk()) return x_M;
    out.setstr(1);
    return out;
}

constexpr int most = 6;

Mm join(std::initializer_list<const Mm *> inputs) {
    const int count = static_cast<int>(inputs.size());
    if (std::none_of(inputs.begin(), inputs.end(), [](const Mm *x) { return is_cell(*x); }))
        return side_by_side(inputs.begin(), count, true);
    const Mm *shape = shape_of_cells("strcat", inputs);
    if (!shape) return x_M;
    Mm trimmed[most]; // the inputs other than cells
    for (int k = 0; k < count; ++k) {
        const Mm *x = inputs.begin()[k];
        trimmed[k] = is_cell(*x) ? *x : side_by_side(&x, 1, true);
    }
    return cell_of_answers(*shape, [&](kn_size k) {
        const Mm *texts[most];
        for (int t = 0; t < count; ++t) texts[t] = &CellItems(trimmed[t])[k];
        return side_by_side(texts, count, false);
    });
}

} // namespace

KN_LISTS_OF_TEXTS(strcat, join)

Mm blanks(const Mm &n) {
    const kn_size cols = std::max<kn_size>(double_to_size(mdouble(n).r()), 0);
    Mm out(0, 0, 0, 1, cols, kn_double);
    if (lacks(out, cols)) return x_M;
    std::fill_n(out.addr(), cols, blank);
    out.setstr(1);
    return out;
}

Mm strjust(const Mm &s) { return strjust(s, setstr('r')); }

Mm strjust(const Mm &s, const Mm &how) {
    if (error_text(s, "strjust") || error_text(how, "strjust")) return x_M;
    const Codes codes(s), word(how);
    if (!codes || !word) return x_M;
    const double side = word.size() > 0 ? to_lower(*word.data()) : 0;
    if (side != 'l' && side != 'c' && side != 'r') {
        error("strjust: unknown side");
        return x_M;
    }
    Mm out = fresh_like(s, 0, kn_double);
    const kn_size n = s.size(), m = codes.rows();
    if (lacks(out, n)) return x_M;
    std::fill_n(out.addr(), n, blank);
    for (kn_size r = 0; r < m; ++r) {
        Part part(codes, r);
        part.trim_end();
        part.trim_begin();
        const kn_size room = codes.cols() - part.size(), before = side == 'l'   ? 0
                                                                  : side == 'c' ? room / 2
                                                                                : room;
        part.copy(out.addr() + r + before * m, m);
    }
    out.setstr(1);
    return out;
}
