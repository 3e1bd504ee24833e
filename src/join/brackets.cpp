// Bracket expressions and cell constructors: comma lists made into values.
//
// A bracket of plain double matrices, [a, b; c], is laid out in one pass into one block. Nothing is checked
// there: a short row is filled with zeros, and an item taller than its row (the last item of a row decides
// its height) runs on into the next column, as far as the block goes. Everything else is joined pairwise.
#include <algorithm>
#include <cstring>

#include "base/scratch.h"
#include "join/concat.h"
#include "quorvex/indexing.h"
#include "quorvex/startup.h"
#include "value/constants.h"
#include "value/header.h"
#include "value/planes.h"

namespace kn {
namespace {

bool ends_row(const Mc &list, kn_size k) { return !list.number(k) && list.item(k).issamename(kn_semi_name); }
bool is_content(const Mm &x) { return x.rows() != 0 && x.cols() != 0; }

// What the items have in common, and the size of the plain result.
struct Survey {
    bool plain = true, complex = false, str = false, any_logical = false, all_logical = true;
    bool even = true;    // the items tile the result
    bool stacked = true; // each row is one item
    kn_size rows = 0, cols = 0;

    explicit Survey(const Mc &list) {
        kn_size n = list.count();
        for (kn_size k = 0; k < n; k++) {
            bool end = ends_row(list, k);
            if (list.number(k)) {
                all_logical = false;
                place(1, 1);
            } else if (!end) {
                look_at(list.item(k));
            }
            if (end || k == n - 1) end_row();
        }
        all_logical = all_logical && any_logical;
    }

  private:
    kn_size height_ = 0, width_ = 0;

    void look_at(const Mm &x) {
        if (x.issparse() || x.gettype() != kn_double || x.getndims() > 2) plain = false;
        complex = complex || x.isc();
        str = str || x.isstr();
        any_logical = any_logical || x.islogical();
        all_logical = all_logical && x.islogical();
        if (plain && is_content(x)) place(x.rows(), x.cols());
    }

    void place(kn_size r, kn_size c) {
        if (width_ > 0) {
            stacked = false;
            if (height_ != r) even = false;
        }
        height_ = r;
        width_ += c;
    }

    void end_row() {
        if (width_ > 0 && cols > 0 && width_ != cols) even = false;
        rows += height_;
        cols = std::max(cols, width_);
        height_ = width_ = 0;
    }
};

// Columns of a plane of an item, with the first element at `to`; zeros for a plane that is not there. Nothing
// is written at or after `end`.
void lay(double *to, const double *end, ptrdiff_t stride, const double *from, ptrdiff_t rows, kn_size cols) {
    if (rows <= 4 && rows <= stride && from && (cols - 1) * stride + rows <= end - to) {
        for (ptrdiff_t r = 0; r < rows; r++)
            for (kn_size c = 0; c < cols; c++) to[r + c * stride] = from[r + c * rows];
        return;
    }
    for (kn_size c = 0; c < cols && to < end; c++, to += stride) {
        ptrdiff_t n = std::min(rows, end - to);
        if (from)
            copy_run(to, from + c * rows, n);
        else
            std::fill_n(to, n, 0.0);
        if (stride > end - to) break;
    }
}

// A plane of the result (imaginary: 1) from the columns [first, first + most) of each item.
void lay_items(const Mc &list, double *plane, int imaginary, kn_size rows, ptrdiff_t n, kn_size first,
               kn_size most) {
    ptrdiff_t row = 0, col = 0;
    kn_size height = 0;
    for (kn_size k = 0; k < list.count(); k++) {
        const double *from = list.number(k);
        kn_size m = 1, width = 1; // extents of the item
        if (from) {
            if (imaginary) from = nullptr;
        } else {
            const Mm &x = list.item(k);
            if (x.issamename(kn_semi_name)) {
                row += height;
                col = height = 0;
                continue;
            }
            if (!is_content(x)) continue;
            from = imaginary ? x.addi() : x.addr();
            m = x.rows();
            width = x.cols();
        }
        if (from) from += first * m;
        lay(plane + row + (col + first) * rows, plane + n, rows, from, m, std::min(width - first, most));
        col += width;
        height = m;
    }
}

Mm tiled(const Mc &list, const Survey &s) {
    const kn_size rows = s.rows, cols = s.cols;
    Mm out(s.complex, 0, 0, rows, cols, kn_double);
    kn_size extents[] = {rows, cols}, n = product(2, extents);
    if (n < 0 || lacks(out, n)) return x_M;

    // Low items on top of each other are laid some columns at a time, so that the lines of the result that
    // they share are still in the cache.
    kn_size most = s.stacked && s.even && rows > 0 ? std::max<kn_size>(4096 / rows, 1) : cols;
    double *planes[] = {out.addr(), out.addi()};
    for (int p = 0; p < 2; p++) {
        if (!planes[p]) continue;
        if (!s.even) std::fill_n(planes[p], n, 0.0);
        for (kn_size c = 0; c < cols; c += std::min(most, cols - c))
            lay_items(list, planes[p], p, rows, n, c, most);
    }
    check(out);
    return out;
}

Mm joined(const Mc &list) {
    Mm all, row;
    bool begun = false; // the row has an item
    auto end_row = [&] {
        if (!begun) return;
        if (all.size() > 0)
            all = join(1, all, row);
        else
            all = row;
        row = nothing_M;
        begun = false;
    };
    for (kn_size k = 0; k < list.count(); k++) {
        const Mm &x = list.item(k);
        if (ends_row(list, k)) {
            end_row();
        } else {
            if (row.size() > 0)
                row = join(2, row, x);
            else
                row = x;
            begun = true;
        }
    }
    end_row();
    return all;
}

// ---- Numbers ----

bool is_number(const Mm &x) {
    const M_types &f = x.getflags();
    return x.getnnz() == 1 && x.getndims() == 2 && f.type == kn_double && !(f.str | f.sparse | f.logical) &&
           !x.isc();
}

// Whether the items are rows of numbers, equally long, as in most brackets; the size of the result.
bool are_numbers(const Mc &list, kn_size &rows, kn_size &cols) {
    kn_size n = list.count(), width = 0;
    rows = cols = 0;
    for (kn_size k = 0; k < n; k++) {
        bool end = ends_row(list, k);
        if (!end && !list.number(k) && !is_number(list.item(k))) return false;
        width += !end;
        if (!end && k < n - 1) continue;
        if (rows > 0 && width != cols) return false;
        cols = width;
        width = 0;
        rows++;
    }
    return cols > 0;
}

Mm of_numbers(const Mc &list, kn_size rows, kn_size cols) {
    Mm out(0, 0, 0, rows, cols, kn_double);
    if (lacks(out, rows * cols)) return x_M;
    ptrdiff_t at = 0;
    for (kn_size k = 0; k < list.count(); k++) {
        const double *x = list.number(k);
        if (!x && ends_row(list, k)) {
            at -= rows * cols - 1;
        } else {
            out.addr()[at] = x ? *x : *list.item(k).addr();
            at += rows;
        }
    }
    check(out);
    return out;
}

Mm brackets(const Mc &list) {
    kn_size rows, cols;
    if (are_numbers(list, rows, cols)) return of_numbers(list, rows, cols);
    Survey s(list);
    Mm out = s.plain ? tiled(list, s) : joined(list);
    out.setlogical(s.all_logical);
    out.setstr(s.str);
    return out;
}

// ---- Cells ----

bool is_argument_list(const Mm &x) {
    const char *name = x.getname();
    return name && (std::strcmp(name, "varargin") == 0 || std::strcmp(name, "args") == 0);
}

// The list with the elements of item k in its place.
Mm braces_with_spliced(const Mc &list, kn_size k);

Mm braces(const Mc &list) {
    kn_size n = list.count();
    for (kn_size k = 0; k < n; k++)
        if (!list.number(k) && is_argument_list(list.item(k))) return braces_with_spliced(list, k);

    kn_size rows = 0, cols = 0, width = 0;
    for (kn_size k = 0; k < n; k++) {
        bool end = ends_row(list, k);
        if (!end) width++;
        if (!end && k < n - 1) continue;
        rows++;
        cols = std::max(cols, width);
        width = 0;
    }
    Mm out(0, 0, 0, rows, cols, kn_Mm);
    kn_size extents[] = {rows, cols}, size = product(2, extents);
    if (size < 0 || lacks(out, size)) return x_M;
    kn_size row = 1, col = 1;
    for (kn_size k = 0; k < n; k++) {
        const double *x = list.number(k);
        if (x) {
            out.mr(row, col++) = *x;
        } else if (ends_row(list, k)) {
            row++;
            col = 1;
        } else {
            out.mr(row, col++) = list.item(k);
        }
    }
    check(out);
    return out;
}

Mm braces_with_spliced(const Mc &list, kn_size k) {
    const Mm &args = list.item(k);
    bool unset = args.gettype() == kn_none;
    if (!unset && !is_cell(args)) {
        error("%s must be cell array", "varargin");
        return x_M;
    }
    Mc spliced;
    for (kn_size l = 0; l < k; l++) spliced, list.item(l);
    for (kn_size l = 1; !unset && l <= args.getnnz(); l++) spliced, args.mr(l);
    for (kn_size l = k + 1; l < list.count(); l++) spliced, list.item(l);
    return braces(spliced);
}

} // namespace
} // namespace kn

Mm::Mm(const Mc &list) : Mm(list.is_cell() ? kn::braces(list) : kn::brackets(list)) {}
