// The product of two sparse matrices, column by column: the columns of a that the entries of a column of b
// select are added up in accumulators, one for each row, and the rows that were met are listed. Source: F. G.
// Gustavson, "Two fast algorithms for sparse matrices: multiplication and permuted transposition", ACM Trans.
// Math. Software 4 (1978) 250-269.
//
// The time is that of the products formed; the list of rows is brought into order by a sort where it is short
// or wide, else by bits.
#include <algorithm>
#include <bit>
#include <cstdint>

#include "base/poll.h"
#include "base/scratch.h"
#include "engine/multiply.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "sparse/compressed_columns.h"
#include "value/header.h"
#include "value/planes_as_numbers.h"
#include "value/sparse_walk.h"

namespace {

using kn::Scratch;

// The rows of one column after another.
class Rows {
  public:
    explicit Rows(kn_size rows) : column_of_(rows), list_(rows), bits_(rows / 64 + 1) {
        if (!*this) return;
        std::fill_n(column_of_.get(), rows, kn_size(-1));
        std::fill_n(bits_.get(), rows / 64 + 1, Word{0});
    }
    explicit operator bool() const { return column_of_ && list_ && bits_; }
    kn_size count() const { return n_; }

    void begin(kn_size column) {
        column_ = column;
        n_ = 0;
    }
    // Whether the row is new in this column.
    bool add(kn_size row) {
        if (column_of_[row] == column_) return false;
        column_of_[row] = column_;
        list_[n_++] = row;
        return true;
    }

    // f(row) for each of them in ascending order.
    template <class F> void in_order(F f) {
        constexpr kn_size few = 64;
        kn_size *list = list_.get(), *end = list + n_;
        if (n_ == 0) return;
        const auto [least, largest] = std::minmax_element(list, end);
        const kn_size first = *least / 64, last = *largest / 64;
        if (n_ < few || (last - first) / 8 > n_) {
            std::sort(list, end);
            std::for_each(list, end, f);
            return;
        }
        for (const kn_size *row = list; row < end; ++row) bits_[*row / 64] |= Word{1} << *row % 64;
        for (kn_size w = first; w <= last; ++w) {
            for (Word left = bits_[w]; left != 0; left &= left - 1) f(64 * w + std::countr_zero(left));
            bits_[w] = 0;
        }
    }

  private:
    using Word = std::uint64_t;
    Scratch<kn_size> column_of_, list_;
    Scratch<Word> bits_;
    kn_size n_ = 0, column_ = 0;
};

// Entries to begin with: as many as products are formed, where these aren't many times the factors' entries.
kn_size first_room(const Mm &a, const Mm &b, const kn_size *starts) {
    const kn_size both = a.getnnz() + b.getnnz();
    kn_size products = 0;
    kn::for_entries(b, [&](kn_size, kn_size r, kn_size) { products += starts[r + 1] - starts[r]; });
    return products <= 4 * both ? products : both;
}

// Makes room for `more` entries after the first `count`.
bool extend(Mm &out, kn_size count, kn_size more) {
    const kn_size room = out.getp();
    if (more <= room - count) return true;
    const kn_size wanted = std::max(count + more, 2 * room);
    out.getnnz() = count;
    out.extend_nnz(wanted);
    return !kn::lacks(out, wanted);
}

template <class A, class B> Mm product(const Mm &a, const Mm &b) {
    using C = kn::ProductOf<A, B>;
    const kn_size m = a.rows(), nb = b.getnnz(), *ia = a.getindex(), *ib = b.getindex();
    const kn::PlanesOf<A> x(a);
    const kn::PlanesOf<B> y(b);
    Scratch<kn_size> starts(a.cols() + 1);
    Scratch<C> sums(m);
    Rows rows(m);
    if (!starts || !sums || !rows) return x_M;
    kn::column_starts(a, a.cols(), starts.get());
    Mm out(a.isc() || b.isc(), 1, first_room(a, b, starts.get()), m, b.cols(), kn_double);
    if (!out.issparse()) return x_M;

    kn_size count = 0;
    kn::ColumnWalk walk(b.rows());
    for (kn_size e = 0; e < nb;) {
        walk.row(ib[e]);
        rows.begin(walk.column());
        for (; e < nb && ib[e] < walk.end(); ++e) {
            const kn_size r = ib[e] - walk.begin(), begin = r * m;
            const B factor = y[e];
            for (kn_size k = starts[r]; k < starts[r + 1]; ++k) {
                const kn_size row = ia[k] - begin;
                if (rows.add(row)) sums[row] = C();
                sums[row] += x[k] * factor;
            }
        }
        if (kn::interrupted() || !extend(out, count, rows.count())) return x_M;
        kn_size *index = out.getindex();
        const kn::PlanesOf<C> z(out);
        const kn_size begin = walk.column() * m;
        rows.in_order([&](kn_size row) {
            index[count] = begin + row;
            z.set(count++, sums[row]);
        });
    }
    out.getnnz() = count;
    kn::check(out);
    return out;
}

// The numbers among those given, ascending, each once.
class Used {
  public:
    explicit Used(kn_size most) : list_(most) {}
    explicit operator bool() const { return bool(list_); }
    void add(kn_size number) { list_[n_++] = number; }
    void settle() {
        std::sort(list_.get(), list_.get() + n_);
        n_ = std::unique(list_.get(), list_.get() + n_) - list_.get();
    }
    kn_size count() const { return n_; }
    kn_size operator[](kn_size k) const { return list_[k]; }
    // Which of them a number is; -1 for none.
    kn_size find(kn_size number) const {
        const kn_size *begin = list_.get(), *end = begin + n_, *at = std::lower_bound(begin, end, number);
        return at < end && *at == number ? at - begin : -1;
    }

  private:
    Scratch<kn_size> list_;
    kn_size n_ = 0;
};

// The entries of x at other rows and columns, those with a row or column -1 left out.
template <class Row, class Column> Mm moved(const Mm &x, kn_size m, kn_size n, Row row_of, Column column_of) {
    Mm out(x.isc(), 1, x.getnnz(), m, n, kn_double);
    if (!out.issparse()) return x_M;
    kn_size e = 0;
    kn::for_entries(x, [&](kn_size k, kn_size row, kn_size column) {
        const kn_size r = row_of(row), c = column_of(column);
        if (r < 0 || c < 0) return;
        out.getindex()[e] = r + c * m;
        out.addr()[e] = x.addr()[k];
        if (x.isc()) out.addi()[e] = x.addi()[k];
        ++e;
    });
    out.getnnz() = e;
    return out;
}

// The same with the rows and columns of `a` that have entries as the only ones, where it has many more of
// them: time and memory then follow the entries.
template <class A, class B> Mm product_of_few(const Mm &a, const Mm &b) {
    constexpr kn_size usual = 1 << 24;
    if (std::max(a.rows(), a.cols()) <= usual + 16 * a.getnnz()) return product<A, B>(a, b);
    Used rows(a.getnnz()), inner(a.getnnz());
    if (!rows || !inner) return x_M;
    kn::for_entries(a, [&](kn_size, kn_size row, kn_size column) { rows.add(row), inner.add(column); });
    rows.settle();
    inner.settle();
    auto same = [](kn_size k) { return k; };
    auto used_row = [&](kn_size k) { return rows.find(k); };
    auto used_inner = [&](kn_size k) { return inner.find(k); };
    const Mm few_a = moved(a, rows.count(), inner.count(), used_row, used_inner),
             few_b = moved(b, inner.count(), b.cols(), used_inner, same);
    if (!few_a.issparse() || !few_b.issparse()) return x_M;
    const Mm few = product<A, B>(few_a, few_b);
    if (!few.issparse()) return x_M;
    return moved(
        few, a.rows(), b.cols(), [&](kn_size k) { return rows[k]; }, same);
}

} // namespace

void sparse_match(Mm &a, Mm &b) {
    a = sparse(a);
    b = sparse(b);
}

Mm sparse_product(const Mm &full_or_sparse_a, const Mm &full_or_sparse_b) {
    Mm a = full_or_sparse_a, b = full_or_sparse_b;
    sparse_match(a, b);
    if (!a.issparse() || !b.issparse() || !kn::conform(full_or_sparse_a, full_or_sparse_b)) return x_M;
    return kn::by_planes(
        a, b, []<class A, class B>(const Mm &x, const Mm &y, A, B) { return product_of_few<A, B>(x, y); });
}
