#include "linear/exact_rank.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "base/poll.h"

namespace kn {
namespace {

// Numbers modulo p = 2^61 - 1, from 0 to p - 1. Multiplication by 2 rotates their 61 bits by one.
using Residue = std::uint64_t;
constexpr int bits = 61;
constexpr Residue p = (Residue{1} << bits) - 1;

constexpr Residue reduced(std::uint64_t x) {
    x = (x & p) + (x >> bits);
    return x >= p ? x - p : x;
}
constexpr Residue shifted(Residue x, int by) { return by == 0 ? x : ((x << by) & p) | x >> (bits - by); }
constexpr Residue difference(Residue x, Residue y) { return x >= y ? x - y : x + p - y; }
constexpr Residue product(Residue x, Residue y) {
    constexpr std::uint64_t low = 0xFFFFFFFF;
    const std::uint64_t x1 = x >> 32, x0 = x & low, y1 = y >> 32, y0 = y & low;
    const Residue high = reduced(x1 * y1 << 3), middle = shifted(reduced(x1 * y0 + x0 * y1), 32);
    return reduced(high + middle + reduced(x0 * y0));
}
static_assert(product(p - 1, p - 1) == 1 && product(Residue{1} << 40, Residue{1} << 40) == 1 << 19);

// x to the power of p - 2
Residue inverse(Residue x) {
    Residue y = 1;
    for (int k = bits - 1; k >= 0; --k) {
        y = product(y, y);
        if ((p - 2) >> k & 1) y = product(y, x);
    }
    return y;
}

Residue residue(double x) {
    int exponent;
    const double whole = std::ldexp(std::frexp(std::fabs(x), &exponent), 53);
    const int by = ((exponent - 53) % bits + bits) % bits;
    const Residue r = shifted(reduced(static_cast<std::uint64_t>(whole)), by);
    return x < 0 ? difference(0, r) : r;
}

// The columns of the lower factor, below their pivots.
class Lower {
  public:
    struct Entry {
        int row;
        Residue value;
    };
    explicit Lower(int n) : start_(n + ptrdiff_t{1}) {
        if (start_) start_[0] = 0;
    }
    ~Lower() { heap_free(entries_); }
    Lower(const Lower &) = delete;
    Lower &operator=(const Lower &) = delete;
    explicit operator bool() const { return static_cast<bool>(start_); }

    const Entry *begin(int k) const { return entries_ + start_[k]; }
    const Entry *end(int k) const { return entries_ + start_[k + 1]; }

    // Room for this many entries in column k; false when memory is exhausted.
    bool begin_column(int k, ptrdiff_t more) {
        start_[k + 1] = start_[k];
        if (start_[k] + more <= room_) return true;
        const ptrdiff_t wanted = 2 * room_ + more;
        auto *longer = static_cast<Entry *>(heap_alloc(sizeof(Entry) * static_cast<size_t>(wanted)));
        if (!longer) return out_of_memory(), false;
        std::copy_n(entries_, start_[k], longer);
        heap_free(std::exchange(entries_, longer));
        room_ = wanted;
        return true;
    }
    void add(int k, int row, Residue value) { entries_[start_[k + 1]++] = {row, value}; }

  private:
    Scratch<ptrdiff_t> start_;
    Entry *entries_ = nullptr;
    ptrdiff_t room_ = 0;
};

// One column after another: it is solved with the columns of the lower factor before it that it needs, which
// a search from its entries finds (Gilbert and Peierls, Sparse partial pivoting in time proportional to
// arithmetic operations, SIAM J. Sci. Stat. Comput. 9, 1988).
class Elimination {
  public:
    explicit Elimination(const CompressedColumns &a)
        : a_(a), n_(a.cols()), lower_(n_), step_of_(n_), met_(n_), path_(n_), rows_(n_), next_(n_), x_(n_) {
        if (!*this) return;
        std::fill_n(step_of_.get(), n_, -1);
        std::fill_n(met_.get(), n_, -1);
    }
    explicit operator bool() const { return lower_ && step_of_ && met_ && path_ && rows_ && next_ && x_; }

    Rank eliminate(int k, int column, int wanted_row) {
        top_ = n_;
        new_rows_ = 0;
        for (int e = a_.start()[column]; e < a_.start()[column + 1]; ++e) search(a_.row()[e], k);
        for (int e = a_.start()[column]; e < a_.start()[column + 1]; ++e)
            x_[a_.row()[e]] = residue(a_.re()[e]);
        for (int t = top_; t < n_; ++t) subtract(rows_[t]);

        int pivot = -1;
        for (int t = 0; t < new_rows_ && pivot != wanted_row; ++t)
            if (x_[rows_[t]] != 0 && (pivot < 0 || rows_[t] == wanted_row)) pivot = rows_[t];
        if (pivot < 0) return Rank::deficient;
        if (!lower_.begin_column(k, new_rows_)) return Rank::unknown;
        const Residue factor = inverse(x_[pivot]);
        for (int t = 0; t < new_rows_; ++t)
            if (const int row = rows_[t]; row != pivot && x_[row] != 0)
                lower_.add(k, row, product(x_[row], factor));
        step_of_[pivot] = k;
        return Rank::full;
    }

  private:
    // Lists the rows that a nonzero in `row` leads to: those without a pivot from the beginning of rows_,
    // the others from its end, each before all that it leads to.
    void search(int row, int k) {
        if (met_[row] == k) return;
        int depth = 0;
        auto enter = [&](int r) {
            met_[r] = k;
            x_[r] = 0;
            if (step_of_[r] < 0) {
                rows_[new_rows_++] = r;
            } else {
                path_[depth++] = r;
                next_[r] = lower_.begin(step_of_[r]);
            }
        };
        enter(row);
        while (depth > 0) {
            const int r = path_[depth - 1];
            const Lower::Entry *&e = next_[r], *end = lower_.end(step_of_[r]);
            while (e < end && met_[e->row] == k) ++e;
            if (e < end) {
                enter(e++->row);
            } else {
                rows_[--top_] = r;
                --depth;
            }
        }
    }

    void subtract(int row) {
        if (x_[row] == 0) return;
        const int k = step_of_[row];
        for (const Lower::Entry *e = lower_.begin(k); e < lower_.end(k); ++e)
            x_[e->row] = difference(x_[e->row], product(x_[row], e->value));
    }

    const CompressedColumns &a_;
    const int n_;
    Lower lower_;
    Scratch<int> step_of_, met_, path_, rows_;
    Scratch<const Lower::Entry *> next_;
    Scratch<Residue> x_;
    int top_ = 0, new_rows_ = 0;
};

} // namespace

Rank exact_rank(const CompressedColumns &a, const int *column_order, const int *row_order) {
    const int n = a.cols();
    Elimination elimination(a);
    Scratch<int> column(n), row(n);
    if (!elimination || !column || !row) return Rank::unknown;
    for (int k = 0; k < n; ++k) {
        column[column_order[k]] = k;
        row[row_order[k]] = k;
    }
    for (int k = 0; k < n; ++k) {
        if (interrupted()) return Rank::unknown;
        const Rank rank = elimination.eliminate(k, column[k], row[k]);
        if (rank != Rank::full) return rank;
    }
    return Rank::full;
}

} // namespace kn
