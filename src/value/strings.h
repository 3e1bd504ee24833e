// Reading the characters of values, whatever their element type and whether they are in cells.
#ifndef QUORVEX_VALUE_STRINGS_H
#define QUORVEX_VALUE_STRINGS_H

#include <cstddef>
#include <initializer_list>

#include "base/ascii.h"
#include "base/poll.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {

// The character codes of a value as full doubles, column by column: its own elements, or a converted copy for
// bytes and sparse values. False when there is none ("Can not convert %s into a numeric matrix" for cells).
// The pages of a value of more dimensions are side by side.
class Codes {
  public:
    explicit Codes(const Mm &m);

    explicit operator bool() const { return data_ != nullptr; }
    kn_size rows() const { return rows_; }
    kn_size cols() const { return cols_; }
    ptrdiff_t size() const { return rows_ * cols_; }
    const double *data() const { return data_; }

  private:
    Mm copy_; // shares the block of the value, or holds the converted one
    kn_size rows_ = 0, cols_ = 0;
    const double *data_ = nullptr;
};

// Characters, or an empty array: what counts as text.
inline bool is_text(const Mm &m) { return m.gettype() != kn_Mm && (m.isstr() || m.size() == 0); }

// Whether x is no text, or more than one row of it; that is reported then. A variable without a value, too.
bool error_text(const Mm &x, const char *caller);
bool error_text_row(const Mm &x, const char *caller);

// The elements of a cell, or the value itself as the only one. It must outlive this.
class CellItems {
  public:
    explicit CellItems(const Mm &m)
        : first_(is_cell(m) ? m.getpr(static_cast<Mm *>(nullptr)) : &m), count_(is_cell(m) ? m.getnnz() : 1) {
    }
    kn_size count() const { return count_; }
    // Element k, from 0; the only one counts for every k.
    const Mm &operator[](kn_size k) const { return first_[count_ == 1 ? 0 : k]; }

  private:
    const Mm *first_;
    kn_size count_;
};

// Which of several values, some of them cells, gives the shape of an answer for each of their elements: the
// first of more than one element, else the first cell. Null after a report when their sizes don't agree, "%s:
// cell arrays must be of same size".
const Mm *shape_of_cells(const char *caller, std::initializer_list<const Mm *> values);

// A cell of the extents of `like`, whose element k is f(k); x_M when memory is exhausted, or interrupted.
template <class F> Mm cell_of_answers(const Mm &like, F f) {
    Mm out = fresh_like(like, 0, kn_Mm);
    const kn_size n = like.getnnz();
    if (lacks(out, n)) return x_M;
    for (kn_size k = 0; k < n; ++k) {
        if (interrupted()) return x_M;
        out.mr(k + 1) = f(k);
    }
    return out;
}

// A row of text from n codes.
Mm row_of_text(const double *codes, kn_size n);

// White space, and NUL, which ends texts as blanks do.
inline bool is_blank(double c) { return c == 0 || is_white(c); }

} // namespace kn

// The functions that QUORVEX_LISTS_OF_TEXTS declares, through work({&a, &b, ...}).
#define KN_LISTS_OF_TEXTS(name, work)                                                              \
    Mm name(const Mm &a) { return work({&a}); }                                                    \
    Mm name(const Mm &a, const Mm &b) { return work({&a, &b}); }                                   \
    Mm name(const Mm &a, const Mm &b, const Mm &c) { return work({&a, &b, &c}); }                  \
    Mm name(const Mm &a, const Mm &b, const Mm &c, const Mm &d) { return work({&a, &b, &c, &d}); } \
    Mm name(const Mm &a, const Mm &b, const Mm &c, const Mm &d, const Mm &e) {                     \
        return work({&a, &b, &c, &d, &e});                                                         \
    }                                                                                              \
    Mm name(const Mm &a, const Mm &b, const Mm &c, const Mm &d, const Mm &e, const Mm &f) {        \
        return work({&a, &b, &c, &d, &e, &f});                                                     \
    }

#endif
