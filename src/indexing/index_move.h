// How elements move: gathered from selected places, scattered into them, cleared.
#ifndef QUORVEX_INDEXING_INDEX_MOVE_H
#define QUORVEX_INDEXING_INDEX_MOVE_H

#include <algorithm>
#include <bit>

#include "base/parallel.h"
#include "indexing/index_engine.h"
#include "indexing/odometer.h"
#include "kernels/kernel_table.h"
#include "value/planes.h"

namespace kn {

template <class T> T *re(const Mm &m) { return static_cast<T *>(Header::pr(m)); }
template <class T> T *im(const Mm &m) { return static_cast<T *>(Header::pi(m)); }

// The value of an element never written: 0; in a cell []; in a structure empty fields.
template <class T> T blank(const Mm &) { return T(0); }
template <> inline Mm blank<Mm>(const Mm &m) {
    return m.isstruct() ? Mm(0, 0, 0, 1, m.getnfields(), kn_Mm) : Mm();
}

// Index values become positions a block at a time: f(first, block, count) with the places [first, first +
// count) of the subscript.
template <class F> void by_blocks(const Positions &p, ptrdiff_t begin, ptrdiff_t end, F f) {
    constexpr ptrdiff_t most = 128;
    kn_size block[most];
    for (; begin < end; begin += most) {
        ptrdiff_t count = std::min(end - begin, most);
        kernels().moves->positions(block, p.values() + begin, count);
        f(begin, block, count);
    }
}

// Whether positions ascend without gaps.
inline bool ascends(const kn_size *p, ptrdiff_t n) {
    if (p[n - 1] - p[0] != n - 1) return false;
    kn_size odd = 0;
    for (ptrdiff_t k = 1; k < n; ++k) odd |= p[k] ^ (p[0] + k);
    return odd == 0;
}

// f(place, position) for each position of a mask.
template <class F> void for_masked(const Positions &p, F f) {
    kn_size k = 0;
    for (const MaskWord *word = p.bits(); k < p.count(); ++word)
        for (MaskWord left = *word; left != 0; left &= left - 1, ++k)
            f(k, 64 * (word - p.bits()) + std::countr_zero(left));
}

constexpr ptrdiff_t gather_grain = 1 << 17; // worth waking a thread for

template <class T>
void gather_values(T *to, const T *from, const Positions &p, ptrdiff_t begin, ptrdiff_t end) {
    by_blocks(p, begin, end, [=](ptrdiff_t k, const kn_size *at, ptrdiff_t n) {
        if (ascends(at, n))
            copy_few(to + k, from + at[0], n);
        else
            for (ptrdiff_t l = 0; l < n; ++l) to[k + l] = from[at[l]];
    });
}

// One line. `to` may lie at or before `from` in the same array when the positions ascend and are no values.
template <class T> void gather(T *to, const T *from, const Positions &p, ptrdiff_t stride) {
    const ptrdiff_t n = p.count();
    const kn_size *at = p.list();
    switch (p.kind()) {
    case Positions::run:
        from += p.first() * stride;
        if (stride == 1)
            copy_run(to, from, n);
        else
            for (ptrdiff_t k = 0; k < n; ++k) to[k] = from[k * stride];
        break;
    case Positions::listed:
        if (stride == 1)
            for (ptrdiff_t k = 0; k < n; ++k) to[k] = from[at[k]];
        else
            for (ptrdiff_t k = 0; k < n; ++k) to[k] = from[at[k] * stride];
        break;
    case Positions::valued: // the only subscript, so the stride is 1, here and below
        if constexpr (std::is_same_v<T, Mm>)
            gather_values(to, from, p, 0, n);
        else
            parallel_for(n, gather_grain,
                         [&](ptrdiff_t begin, ptrdiff_t end) { gather_values(to, from, p, begin, end); });
        break;
    case Positions::masked:
        if constexpr (std::is_same_v<T, double>)
            kernels().moves->compress(to, n, from, p.bits(), p.largest() + 1);
        else
            for_masked(p, [=](kn_size k, ptrdiff_t from_at) { to[k] = from[from_at]; });
        break;
    }
}

// The next elements of `from` (step 1), or one element again and again (step 0).
template <class T> void scatter(T *to, const Positions &p, ptrdiff_t stride, const T *from, kn_size step) {
    const ptrdiff_t n = p.count();
    const kn_size *at = p.list();
    switch (p.kind()) {
    case Positions::run:
        to += p.first() * stride;
        if (stride == 1 && step == 1)
            copy_run(to, from, n);
        else if (stride == 1)
            fill_run(to, *from, n);
        else
            for (ptrdiff_t k = 0; k < n; ++k) to[k * stride] = from[k * step];
        break;
    case Positions::listed:
        if (stride == 1 && step == 1)
            for (ptrdiff_t k = 0; k < n; ++k) to[at[k]] = from[k];
        else
            for (ptrdiff_t k = 0; k < n; ++k) to[at[k] * stride] = from[k * step];
        break;
    case Positions::valued: // as in gather
        by_blocks(p, 0, n, [=](ptrdiff_t k, const kn_size *at, ptrdiff_t m) {
            if (step == 0) {
                const T x = *from;
                for (ptrdiff_t l = 0; l < m; ++l) to[at[l]] = x;
            } else if (ascends(at, m)) {
                copy_few(to + at[0], from + k, m);
            } else {
                for (ptrdiff_t l = 0; l < m; ++l) to[at[l]] = from[k + l];
            }
        });
        break;
    case Positions::masked:
        if constexpr (std::is_same_v<T, double>) {
            if (step == 1)
                kernels().moves->expand(to, p.bits(), p.largest() + 1, from, n);
            else
                kernels().moves->fill(to, p.bits(), p.largest() + 1, *from);
        } else {
            for_masked(p, [=](kn_size k, ptrdiff_t to_at) { to[to_at] = from[k * step]; });
        }
        break;
    }
}

// A selection of `from` into the elements of `to` in order; an imaginary plane when `to` has one.
template <class T> void gather(const Mm &to, const Mm &from, const Selection &s) {
    const Odometer from_start(s, from.getdims());
    const ptrdiff_t count = from_start.line().count(), lines = count > 0 ? s.total() / count : 0;
    auto plane = [&](T *out, const T *in) {
        auto range = [&](ptrdiff_t begin, ptrdiff_t end) {
            Odometer walk = from_start;
            walk.skip_to(begin);
            for (ptrdiff_t k = begin; k < end; ++k)
                gather(out + k * count, in + walk.kn_next_index(), walk.line(), walk.stride());
        };
        if (std::is_same_v<T, Mm> || out == in || lines < 2)
            range(0, lines);
        else
            parallel_for(lines, gather_grain / count + 1, range);
    };
    plane(re<T>(to), re<T>(from));
    if (to.isc()) plane(im<T>(to), im<T>(from));
}

// The elements of `from` in order, or its only one, into a selection of `to`; real ones get the imaginary
// part 0.
template <class T> void scatter(const Mm &to, const Selection &s, const Mm &from) {
    auto plane = [&](T *out, const T *in, kn_size step) {
        Odometer lines(s, to.getdims());
        ptrdiff_t advance = lines.line().count() * step;
        for (ptrdiff_t at; (at = lines.kn_next_index()) >= 0; in += advance)
            scatter(out + at, lines.line(), lines.stride(), in, step);
    };
    kn_size step = from.getnnz() != 1;
    plane(re<T>(to), re<T>(from), step);
    if constexpr (!std::is_same_v<T, Mm>) {
        const T zero = 0;
        if (to.isc()) plane(im<T>(to), from.isc() ? im<T>(from) : &zero, from.isc() ? step : 0);
    }
}

// Clears the elements from `first` up to `end`.
template <class T> void clear(const Mm &m, kn_size first, kn_size end) {
    const T nothing = blank<T>(m);
    std::fill(re<T>(m) + first, re<T>(m) + end, nothing);
    if (m.isc()) std::fill(im<T>(m) + first, im<T>(m) + end, nothing);
}

// Moves the kept elements of an unshared value together in its own block.
template <class T> void compact(Mm &t, const Selection &kept) {
    gather<T>(t, t, kept);
    if constexpr (std::is_same_v<T, Mm>) clear<Mm>(t, kept.total(), t.getnnz());
}

} // namespace kn

#endif
