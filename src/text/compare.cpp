// strcmp and similar functions: whether texts are equal, one by one or element by element of cells.

#include <algorithm>

#include "quorvex/classes.h"
#include "quorvex/messages.h"
#include "quorvex/structures.h"
#include "quorvex/text.h"
#include "value/number_block.h"
#include "value/strings.h"

namespace {

using namespace kn;

struct Comparison {
    const char *caller;
    bool fold;      // upper and lower case are the same
    bool beginning; // only the first n characters count
    kn_size n = 0;
};

bool equal_codes(const double *a, const double *b, ptrdiff_t n, bool fold) {
    if (!fold) return std::equal(a, a + n, b);
    return std::equal(a, a + n, b, [](double x, double y) { return to_lower(x) == to_lower(y); });
}

bool agree(const Mm &a, const Mm &b, const Comparison &rule) {
    if (!a.isstr() || !b.isstr() || !is_text(a) || !is_text(b)) return false;
    if (rule.beginning ? std::min(a.size(), b.size()) < rule.n : !same_size(a, b)) return false;
    const kn_size n = rule.beginning ? std::max<kn_size>(rule.n, 0) : a.size();
    if (n == 0) return true;
    const Codes x(a), y(b);
    return x && y && equal_codes(x.data(), y.data(), n, rule.fold);
}

// The value to compare: a matrix compared with a cell becomes the cell of its rows, in the cell's shape when
// the counts agree.
Mm beside_cell(const Mm &m, const Mm &other) {
    if (!is_cell(other) || !is_text(m) || m.rows() < 2) return m;
    Mm rows = cellstr(m);
    if (is_cell(rows) && rows.size() == other.size())
        return cell_of_answers(other, [&](kn_size k) { return rows.mr(k + 1); });
    return rows;
}

Mm compare(const Mm &a, const Mm &b, const Comparison &rule) {
    a.warn_uninit();
    b.warn_uninit();
    if (!is_cell(a) && !is_cell(b)) return Header::number(agree(a, b, rule), true);
    const Mm x = beside_cell(a, b), y = beside_cell(b, a);
    const Mm *shape = shape_of_cells(rule.caller, {&x, &y});
    if (!shape) return x_M;
    Mm out = Header::real_like(*shape);
    const kn_size n = shape->size();
    if (lacks(out, n)) return x_M;
    const CellItems from_x(x), from_y(y);
    Poll poll(256);
    for (kn_size k = 0; k < n; ++k) {
        if (poll.interrupted()) return x_M;
        out.addr()[k] = agree(from_x[k], from_y[k], rule);
    }
    out.setlogical(1);
    return out;
}

kn_size characters(const Mm &n) { return double_to_size(mdouble(n).r()); }

} // namespace

Mm strcmp(const Mm &a, const Mm &b) { return compare(a, b, {"strcmp", false, false}); }
Mm strcmpi(const Mm &a, const Mm &b) { return compare(a, b, {"strcmpi", true, false}); }

Mm strncmp(const Mm &a, const Mm &b, const Mm &n) {
    return compare(a, b, {"strncmp", false, true, characters(n)});
}

Mm strncmpi(const Mm &a, const Mm &b, const Mm &n) {
    return compare(a, b, {"strncmpi", true, true, characters(n)});
}
