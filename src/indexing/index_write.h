// Assignment with subscripts.
//
// An engine works out the positions, gives the target its new extents, an unshared block and, where the
// source is complex, an imaginary plane (all in `resize`), and then scatters the source. The target keeps its
// flags. vwcopy1 and vwcopy2 serve one and two subscripts on a plain matrix, vwcopyn everything else. An
// empty source deletes: index_delete.cpp. Sparse targets: index_sparse.cpp.
#ifndef QUORVEX_INDEXING_INDEX_WRITE_H
#define QUORVEX_INDEXING_INDEX_WRITE_H

#include <cstring>

#include "indexing/index_messages.h"
#include "indexing/index_move.h"
#include "quorvex/messages.h"
#include "quorvex/sparse.h"
#include "value/fields.h"
#include "value/number_block.h"

namespace kn {

// Room for a value that grows from n to m elements: half as much again, so that appending is amortised.
inline kn_size grown_room(kn_size n, kn_size m) { return n <= size_max / 2 ? std::max(m, n + n / 2) : m; }

// Elements keep their linear order, not only their subscripts, when all extents but the last one that grows
// stay.
inline bool keeps_order(const kn_size *from, const kn_size *to) {
    kn_size last = 3;
    while (last > 0 && to[last] == 1) --last;
    return std::equal(from, from + last, to);
}

// Makes the target ready to be written: extents `dims`, an unshared block, an imaginary plane if `complex`.
// Old elements stay at their subscripts, or (linear) at their linear positions; new places are blank. In the
// old block where it has room.
template <class T> bool resize(Mm &t, const kn_size *dims, int complex, bool linear) {
    kn_size n = t.getnnz(), m = product(4, dims);
    if (m < 0) {
        out_of_memory();
        return false;
    }
    linear = linear || n == 0 || keeps_order(t.getdims(), dims);
    if (!t.dirty() && linear && m <= t.getp() && (t.isc() || !complex)) {
        if (m > n) clear<T>(t, n, m);
        set_extents(t, dims);
        return true;
    }

    kn_size room = m > n ? grown_room(n, m) : m;
    if (linear && !complex && m > n && room <= size_max - block_slack && Header::extend(t, room)) {
        clear<T>(t, n, m);
        set_extents(t, dims);
        return true;
    }
    Mm fresh(complex || t.isc(), 0, 0, room, 1, t.gettype());
    if (lacks(fresh, room) || !copy_fields(fresh, t)) return false;
    bool cleared = std::is_same_v<T, Mm> && !t.isstruct(); // new cells are empty from the start
    set_extents(fresh, dims);
    Selection old;
    if (linear)
        old.next().set_run(0, n);
    else
        for (int k = 0; k < 4; ++k) old.next().set_run(0, t.getdims()[k]);
    if (!cleared) clear<T>(fresh, linear ? n : 0, m);
    if (n > 0) scatter<T>(fresh, old, t);
    replace_block(t, fresh);
    return true;
}

// x(:) = src
template <class T> bool assign_all(Mm &t, const Mm &src) {
    kn_size n = t.getnnz(), s = src.getnnz();
    if (t.isc() && !src.isc()) t.getreal(1);
    if (s == 0) return make_empty(t);
    if (n == 0) return true;
    if (s != 1 && s != n) {
        const char *x = kn_display_name(t), *y = kn_display_name(src);
        error("%s(:)=%s: size(%s) different than size(%s)", x, y, x, y);
        return false;
    }
    kn_size dims[4];
    std::memcpy(dims, t.getdims(), sizeof dims);
    if (s > 1 && !t.dirty() && s <= t.getp()) { // the source's block and flags
        t = src;
        set_extents(t, dims);
        check(t);
        return true;
    }
    Selection all;
    all.next().set_run(0, n);
    if (!resize<T>(t, dims, src.isc(), true)) return false;
    scatter<T>(t, all, src);
    check(t);
    return true;
}

template <class T> bool vwcopy1(Mm &t, const Mm &src, const Mm &i) {
    kn_size n = t.getnnz(), s = src.getnnz();
    if (is_colon(i)) return assign_all<T>(t, src);
    if (i.getnnz() == 0) return true;
    if (s == 0) return delete1(t, i);

    Selection sel;
    if (!sel.add_alone(i, n)) return false;
    // A mask makes the target as long as itself; numbers count rounded.
    ptrdiff_t m = i.islogical() ? i.getnnz() : largest_rounded(i, sel[0]);
    if (m <= 0) {
        error("%s(%s): index is non-positive", kn_display_name(t), kn_display_name(i));
        return false;
    }
    kn_size count = sel[0].count();
    bool fits = s == 1 || s == count;

    kn_size dims[4] = {1, 1, 1, 1};
    if (m <= n)
        std::memcpy(dims, t.getdims(), sizeof dims);
    else
        dims[t.rows() > 1 ? 0 : 1] = m;
    // A source that doesn't fit is found out when the target has grown already.
    if ((fits || m > n) && !resize<T>(t, dims, fits && src.isc(), true)) return false;
    if (!fits) {
        const char *x = kn_display_name(t), *index = kn_display_name(i), *y = kn_display_name(src);
        if (i.islogical())
            error("%s(%s)=%s: a logical assignment ; source size != number of non zeros in index", x, index,
                  y);
        else
            error("%s(%s)=%s: size(%s) different than size(%s)", x, index, y, y, index);
        return false;
    }
    if (count > 0) scatter<T>(t, sel, src);
    check(t);
    return true;
}

template <class T> bool vwcopy2(Mm &t, const Mm &src, const Mm &i, const Mm &j) {
    const Mm *const subscripts[] = {&i, &j};
    static const char *const texts[] = {"%s(%s,%s)=%s: row index is non-positive",
                                        "%s(%s,%s)=%s: col index is non-positive"};
    kn_size s = src.getnnz();
    kn_size dims[4];
    std::memcpy(dims, t.getdims(), sizeof dims);
    if (t.getnnz() == 0) dims[2] = dims[3] = 1;

    Selection sel;
    for (int k = 0; k < 2; ++k) {
        const kn_size *extents = s == 1 && t.getnnz() > 0 ? t.getdims() : src.getdims();
        if (!sel.add(*subscripts[k], s == 0 ? t.getdims()[k] : extents[k])) return false;
        if (sel[k].count() == 0 && !is_colon(*subscripts[k])) return true;
    }
    if (s == 0) return delete2(t, i, j);
    auto report = [&](const char *text) {
        error(text, kn_display_name(t), kn_display_name(i), kn_display_name(j), kn_display_name(src));
        return false;
    };
    if (s != 1 && sel.total() != s)
        return report("%s(%s,%s)=%s: size(row index)*size(col index) is different than size(source)");
    for (int k = 0; k < 2; ++k) {
        const Mm &index = *subscripts[k];
        bool numbers = !is_colon(index) && !index.islogical();
        ptrdiff_t m = numbers ? largest_rounded(index, sel[k]) : sel[k].largest() + 1;
        if (numbers && m < 1) return report(texts[k]);
        dims[k] = std::max(dims[k], m);
    }
    if (!resize<T>(t, dims, src.isc(), false)) return false;
    scatter<T>(t, sel, src);
    check(t);
    return true;
}

// The extents that hold the selection.
inline void grow_extents(kn_size *dims, const Mm &t, const Subscripts &s, const Selection &sel) {
    auto reach = [](kn_size &extent, const Positions &p) { extent = std::max(extent, p.largest() + 1); };
    for (int k = 0; k < 4; ++k) dims[k] = t.size() > 0 ? t.getdims()[k] : 1;
    if (s.n > 1) {
        for (int k = 0; k < s.n; ++k) reach(dims[k], sel[k]);
    } else if (!is_colon(s[0]) && sel[0].largest() >= t.size()) {
        reach(dims[t.vectordim() - 1], sel[0]); // only vectors come here
    }
}

// Makes the source of x(...) = src, for `total` selected elements, full unless it is to be written into a
// sparse value. False after a report when it has neither one element nor `total`.
inline bool match_source(Mm &src, const Mm &t, kn_size total) {
    const kn_size size = src.size();
    if (size != 1 && size != total) {
        error("In indexed assignment to the matrix %s, the index size was %td but right hand side has %td "
              "elements",
              kn_display_name(t), total, size);
        return false;
    }
    if (src.issparse() && t.issparse() && size > 1) return true;
    if (src.issparse()) src = full(src);
    return !lacks(src, size);
}

// What the subscripts select, `counts` from kn_index_dims, and the extents that hold it. False after a
// report.
inline bool select_target(Selection &sel, kn_size *dims, const Mm &t, const Subscripts &s,
                          const kn_size *counts) {
    for (int k = 0; k < s.n; ++k)
        if (!sel.add(s[k], counts[k])) return false;
    if (!sel.reaches(t, s, Selection::growing, 1)) return false;
    grow_extents(dims, t, s, sel);
    return true;
}

// x(...) = src; an empty source deletes.
template <class T> bool assign_elements(Mm &t, const Subscripts &s, Mm src) {
    if (s.n == 0) {
        t = src;
        return true;
    }
    if (src.size() == 0) return vwcopy0(t, s);

    // In an empty target a colon among several subscripts counts as the extent of the source.
    const kn_size *colon_extents = t.size() == 0 && s.n > 1 ? src.getdims() : t.getdims();
    kn_size counts[4], dims[4];
    const kn_size total = kn_index_dims(t, s, colon_extents, 1, counts);
    if (total <= 0) return total == 0;
    Selection sel;
    if (!match_source(src, t, total) || !select_target(sel, dims, t, s, counts)) return false;
    if constexpr (std::is_same_v<T, double>)
        if (t.issparse()) return write_sparse(t, sel, dims, src);
    if (!resize<T>(t, dims, src.isc(), false)) return false;
    scatter<T>(t, sel, src);
    check(t);
    return true;
}

// x{...} = src: the first selected element becomes the source as it is.
inline bool assign_value(Mm &t, const Subscripts &s, const Mm &source) {
    const Mm src = source;
    if (s.n == 0) return true;
    kn_size counts[4], dims[4];
    const kn_size total = kn_index_dims(t, s, t.getdims(), 1, counts);
    if (total <= 0) return total == 0;
    Selection sel;
    if (!select_target(sel, dims, t, s, counts) || !resize<Mm>(t, dims, 0, false)) return false;
    Odometer lines(sel, t.getdims());
    const ptrdiff_t line = lines.kn_next_index();
    re<Mm>(t)[line + lines.line()[0] * lines.stride()] = src;
    check(t);
    return true;
}

template <class T> bool vwcopyn(Mm &t, Mr_idx_type kind, const Subscripts &s, const Mm &src) {
    if constexpr (std::is_same_v<T, Mm>)
        if (kind == Mr_brace) return assign_value(t, s, src);
    return assign_elements<T>(t, s, src);
}

} // namespace kn

#endif
