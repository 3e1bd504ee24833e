// Sparse bases and targets: selections move between lists of entries.
//
// Reading takes a line at a time: the entries of a column, or of the part of it that the first subscript
// selects, are consecutive, since entries ascend. Writing makes a sorted list of the new entries and merges
// it with the old one; at equal positions the last one written stays.

#include <cstring>

#include "base/number_tests.h"
#include "indexing/index_move.h"
#include "quorvex/sparse.h"
#include "value/constants.h"

namespace kn {

namespace {

// Entries as they are collected: it grows as they come.
class EntryBuilder {
  public:
    EntryBuilder(int complex, kn_size n) : list_(complex, 1, n, n, 1, kn_double), failed_(lacks(list_, n)) {}

    // Entry `slot` of `from` at another position.
    void add(kn_size position, const Mm &from, kn_size slot) {
        if (count_ == list_.getnnz()) extend();
        if (failed_) return;
        list_.getindex()[count_] = position;
        list_.addr()[count_] = from.addr()[slot];
        if (list_.isc()) list_.addi()[count_] = from.isc() ? from.addi()[slot] : 0.0;
        ++count_;
    }

    // The entries as a value of these extents, sorted. False when memory was exhausted.
    bool finish(const kn_size *dims) {
        if (failed_) return false;
        kn_size n = product(4, dims);
        for (int k = 0; k < 4; ++k) list_.getdims()[k] = n > 0 ? dims[k] : 0;
        list_.getndims() = n > 0 ? 4 : 2;
        list_.collapse();
        list_.getnnz() = count_;
        return sort_entries(list_);
    }
    Mm &value() { return list_; }
    kn_size count() const { return count_; }
    bool failed() const { return failed_; }

  private:
    Mm list_;
    kn_size count_ = 0;
    bool failed_;

    void extend() {
        const kn_size n = std::max<kn_size>(64, 2 * count_);
        list_.extend_nnz(n);
        failed_ = lacks(list_, n);
    }
};

// For each row the places in the first subscript that select it, as chains.
class Inverse {
  public:
    Inverse(const Positions &rows, kn_size extent) : head_(extent), next_(rows.count()) {
        if (!head_ || !next_) return;
        std::fill_n(head_.get(), extent, kn_size(-1));
        for (kn_size k = rows.count(); k-- > 0;) {
            next_[k] = head_[rows[k]];
            head_[rows[k]] = k;
        }
    }
    explicit operator bool() const { return head_ && next_; }
    kn_size head(kn_size row) const { return head_[row]; }
    kn_size next(kn_size k) const { return next_[k]; }

  private:
    Scratch<kn_size> head_, next_;
};

} // namespace

namespace {

// The first of the ascending positions from `at` on that is not below `least`, found in steps that double.
const kn_size *seek(const kn_size *at, const kn_size *end, kn_size least) {
    kn_size step = 1;
    while (step < end - at && at[step] < least) {
        at += step;
        step *= 2;
    }
    return std::lower_bound(at, at + std::min(step, end - at), least);
}

} // namespace

Mm select_sparse(const Mm &source, const Selection &s, const kn_size *dims) {
    const Mm base = source; // the error handler may assign to the variable
    const kn_size *index = base.getindex(), *end = index + base.getnnz();
    const Positions &rows = s[0];
    kn_size extent = s.n() == 1 ? base.size() : base.rows(), count = rows.count();
    const kn_size total = s.total();
    EntryBuilder out(base.isc(), 64);

    // A list of rows is looked up row by row, or, when it is long, turned round once.
    std::optional<Inverse> inverse;
    if (!rows.is_run() && base.getnnz() > 0 && extent <= total && extent / count <= base.getnnz()) {
        inverse.emplace(rows, extent);
        if (!*inverse) return nothing_M;
    }
    kn_size place = 0;           // of the line in the result
    const kn_size *near = index; // the entries of the line before; most lines follow it
    kn_size last = 0;
    Odometer lines(s, base.getdims(), 0);
    const bool all_columns = s.n() == 2 && s[1].is_run();
    for (kn_size line; !out.failed() && (line = lines.kn_next_index()) >= 0; place += count) {
        const kn_size least = line + (rows.is_run() ? rows.first() : 0),
                      span = rows.is_run() ? count : extent;
        const kn_size *from = near = seek(least < last ? index : near, end, least);
        last = least;
        if (all_columns && from == end) break;
        if (from == end || *from - least >= span) {
            if (!all_columns || *from - line < extent) continue;
            const kn_size next = *from / extent - s[1].first(); // columns without entries are passed over
            if (next >= s[1].count()) break;
            lines.skip_to(next);
            place = (next - 1) * count;
            continue;
        }
        if (rows.is_run()) {
            for (; from < end && *from - least < span; ++from)
                out.add(place + (*from - least), base, from - index);
        } else if (inverse) {
            for (; from < end && *from - line < extent; ++from)
                for (kn_size k = inverse->head(*from - line); k >= 0; k = inverse->next(k))
                    out.add(place + k, base, from - index);
        } else {
            for (kn_size k = 0; k < count && !out.failed(); ++k) {
                kn_size slot = base.search(line + rows[k]);
                if (slot >= 0) out.add(place + k, base, slot);
            }
        }
    }
    if (!out.finish(dims)) return nothing_M;
    Mm result = out.value();
    M_types flags = base.getflags();
    flags.persistent = flags.global = 0;
    result.getflags() = flags;
    check(result);
    return result;
}

namespace {

// Positions in order, for questions about single ones.
class Chosen {
  public:
    explicit Chosen(const Positions &p) : p_(p), list_(p.is_run() ? 0 : p.count()) {
        if (p.is_run() || !list_) return;
        for (kn_size k = 0; k < p.count(); ++k) list_[k] = p[k];
        std::sort(list_.get(), list_.get() + p.count());
        n_ = std::unique(list_.get(), list_.get() + p.count()) - list_.get();
    }
    explicit operator bool() const { return bool(list_); }
    bool has_equal() const { return !p_.is_run() && n_ < p_.count(); }
    // How many are below, each counted once.
    kn_size before(kn_size at) const {
        if (p_.is_run()) return std::clamp<kn_size>(at - p_.first(), 0, p_.count());
        return std::lower_bound(list_.get(), list_.get() + n_, at) - list_.get();
    }
    bool has(kn_size at) const { return before(at + 1) > before(at); }

  private:
    const Positions &p_;
    Scratch<kn_size> list_;
    kn_size n_ = 0;
};

} // namespace

bool delete_sparse(Mm &t, const Positions &gone, int d) {
    const kn_size extent = d < 0 ? t.size() : t.getdims()[d], stride = d < 0 ? 1 : product(d, t.getdims());
    const Chosen chosen(gone);
    if (!chosen) return false;
    const kn_size left = extent - chosen.before(extent);
    if (left == extent) return true;
    kn_size dims[4];
    shorten(dims, t, d, left);
    EntryBuilder rest(t.isc(), std::max<kn_size>(t.getnnz(), 1));
    if (rest.failed()) return false;
    for (kn_size e = 0; e < t.getnnz(); ++e) {
        const kn_size line = t.getindex()[e] / stride, at = line % extent;
        if (!chosen.has(at))
            rest.add((line / extent * left + at - chosen.before(at)) * stride + t.getindex()[e] % stride, t,
                     e);
    }
    if (!rest.finish(dims)) return false;
    replace_block(t, rest.value());
    check(t);
    return true;
}

namespace {

// Position in extents `to` of a position in extents `from`.
kn_size renumbered(kn_size position, const kn_size *from, const kn_size *to) {
    kn_size result = 0, stride = 1;
    for (int k = 0; k < 4; ++k) {
        result += position % from[k] * stride;
        position /= from[k];
        stride *= to[k];
    }
    return result;
}

} // namespace

bool write_sparse(Mm &t, const Selection &s, const kn_size *dims, const Mm &src) {
    const bool grows = std::memcmp(dims, t.getdims(), 4 * sizeof *dims) != 0;
    const kn_size total = s.total(), step = src.size() != 1;
    if (total == 1 && !grows && !t.dirty() && (t.isc() || !src.isc())) {
        Odometer one(s, dims);
        kn_size line = one.kn_next_index();
        kn_size slot = t.search(line + one.line()[0] * one.stride());
        if (slot >= 0) {
            t.addr()[slot] = *src.addr();
            if (t.isc()) t.addi()[slot] = src.isc() ? *src.addi() : 0.0;
            if (!is_nonzero(t.addr(), t.addi(), slot)) t.resparse();
            return true;
        }
    }
    if (product(4, dims) < 0) {
        out_of_memory();
        return false;
    }

    int complex = t.isc() || src.isc();
    // Of a sparse source only the entries are written, of a zero nothing; what they replace goes.
    const bool few = src.issparse() || (step == 0 && !is_nonzero(src.addr(), src.addi(), 0));
    std::optional<Chosen> chosen[4];
    for (int d = 0; few && d < s.n(); ++d) {
        if (!chosen[d].emplace(s[d])) return false;
        if (!chosen[d]->has_equal() || step == 0) continue;
        const Mm whole = full(src); // the last of equal positions counts
        return !whole.issparse() && whole.size() == total && write_sparse(t, s, dims, whole);
    }
    auto goes = [&](kn_size at) {
        if (!few) return false;
        for (int d = 0; d < s.n(); ++d) {
            const kn_size extent = s.n() == 1 ? size_max : dims[d];
            if (!chosen[d]->has(at % extent)) return false;
            at /= extent;
        }
        return at == 0;
    };
    EntryBuilder written(complex, few ? std::max<kn_size>(src.getnnz(), 1) : total);
    if (src.issparse()) {
        for (kn_size e = 0; e < src.getnnz(); ++e) {
            kn_size place = src.getindex()[e], stride = 1, at = 0;
            for (int d = 0; d < s.n(); ++d) {
                at += s[d][place % s[d].count()] * stride;
                place /= s[d].count();
                stride *= dims[d];
            }
            written.add(at, src, e);
        }
    } else if (!few) {
        Odometer lines(s, dims);
        kn_size k = 0;
        for (kn_size line; (line = lines.kn_next_index()) >= 0;)
            for (kn_size l = 0; l < lines.line().count(); ++l, k += step)
                written.add(line + lines.line()[l] * lines.stride(), src, k);
    }
    if (!written.finish(dims)) return false;
    const Mm &fresh = written.value();

    const kn_size *a = t.getindex(), *b = fresh.getindex();
    kn_size na = t.getnnz(), nb = fresh.getnnz();
    EntryBuilder merged(complex, std::max<kn_size>(na + nb, 1));
    if (merged.failed()) return false;
    for (kn_size i = 0, j = 0; i < na || j < nb;) {
        kn_size at = i < na ? grows ? renumbered(a[i], t.getdims(), dims) : a[i] : size_max;
        if (j < nb && b[j] <= at) {
            if (b[j] == at) ++i;
            while (j + 1 < nb && b[j + 1] == b[j]) ++j;
            if (is_nonzero(fresh.addr(), fresh.addi(), j)) merged.add(b[j], fresh, j);
            ++j;
        } else {
            if (is_nonzero(t.addr(), t.addi(), i) && !goes(at)) merged.add(at, t, i);
            ++i;
        }
    }
    if (!merged.finish(dims)) return false;
    replace_block(t, merged.value());
    check(t);
    return true;
}

} // namespace kn
