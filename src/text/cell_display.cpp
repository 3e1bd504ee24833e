// Cells as text: the layout of disp, the summaries it shares with structures, and celldisp.

#include <algorithm>
#include <cstdio>

#include "quorvex/display.h"
#include "quorvex/messages.h"
#include "quorvex/startup.h"
#include "text/number_text.h"
#include "text/value_display.h"
#include "value/header.h"
#include "value/nesting.h"
#include "value/strings.h"

namespace kn {
namespace {

constexpr kn_size longest_shown_text = 16;
constexpr double no_value_shown = 896;

double scalar_shown(const Mm &m) {
    switch (m.gettype()) {
    case kn_double: return m.getnnz() > 0 ? *m.addr() : 0; // a sparse zero is not stored
    case kn_uint8: return *m.getpr(static_cast<unsigned char *>(nullptr));
    case kn_none: m.warn_uninit(); break;
    case kn_Mm: break;
    }
    return no_value_shown;
}

void print_page(const Mm &m) {
    const Mm *elements = m.getpr(static_cast<Mm *>(nullptr));
    kn_size rows = m.rows(), cols = m.cols();
    auto element = [&](kn_size r, kn_size c) -> const Mm & { return elements[r + c * rows]; };
    TextBuffer line;
    size_t longest = 0;
    for (kn_size r = 0; r < rows; ++r)
        for (kn_size c = 0; c < cols && line.goes_on(); ++c) {
            line.clear();
            append_summary(line, element(r, c));
            longest = std::max(longest, line.size());
        }
    for (kn_size r = 0; r < rows; ++r) {
        line.clear();
        for (kn_size c = 0; c < cols && line.goes_on(); ++c) {
            line.append('[');
            size_t start = line.size();
            append_summary(line, element(r, c));
            size_t n = std::min(line.size() - start, longest);
            line.append("] ");
            line.append_blanks(longest - n);
        }
        line.append('\n');
        if (!line) return;
        kn_print_handler(line.c_str());
    }
}

} // namespace

void append_summary(TextBuffer &out, const Mm &m) {
    bool text = m.isstr() && m.gettype() != kn_Mm;
    if (!m.isstr() && m.gettype() < kn_Mm && !m.isc() && m.size() == 1) {
        append_number(out, scalar_shown(m), {Digits(4)});
    } else if (text && m.rows() == 1 && m.cols() <= longest_shown_text) {
        char characters[longest_shown_text + 1] = "";
        Mstr(m, characters, sizeof characters);
        out.append(characters);
    } else {
        append_extents(out, m);
        out.append(' ');
        out.append(kn_class_word(m));
    }
}

void print_cell(const Mm &m) {
    if (m.size() == 0)
        kn_print_handler("{}\n");
    else if (m.getndims() > 2)
        each_page(m, print_page);
    else
        print_page(m);
}

} // namespace kn

using namespace kn;

void value_summary(const Mm &m, char *buf, kn_size size) {
    TextBuffer text;
    append_summary(text, m);
    std::snprintf(buf, static_cast<size_t>(size), "%s", text.c_str());
}

Mm celldisp(const Mm &m) {
    if (!is_cell(m)) {
        error("%s is not a cell array.", kn_display_name(m));
        return x_M;
    }
    struct Step {
        const Mm *cell;
        kn_size next; // row by row
    };
    const Mm held(m, m.getname()); // in case a handler assigns to the variable
    Path<Step> path;
    if (!path.push({&held, 0})) return x_M;
    while (!path.empty()) {
        Step &step = path.top();
        const Mm &cell = *step.cell;
        const kn_size cols = cell.cols(), at = step.next++;
        if (at == cell.rows() * cols) {
            path.pop();
            continue;
        }
        const kn_size r = at / cols + 1, c = at % cols + 1;
        kn_printf("%s{%td,%td}\n", cell.getname() ? cell.getname() : "ans", r, c);
        const Mm &element = cell.mr(r, c);
        if (!is_cell(element))
            disp(element);
        else if (!path.push({&element, 0}))
            break;
    }
    return x_M;
}
