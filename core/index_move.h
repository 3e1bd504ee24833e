// How elements move: gathered from selected places, scattered into them, cleared.
#ifndef QUORVEX_CORE_INDEX_MOVE_H
#define QUORVEX_CORE_INDEX_MOVE_H

#include <algorithm>

#include "core/index_engine.h"
#include "core/odometer.h"

namespace kn {

template <class T> T *re(const Mm &m) { return static_cast<T *>(Header::pr(m)); }
template <class T> T *im(const Mm &m) { return static_cast<T *>(Header::pi(m)); }

// What stands in a place that nobody wrote: 0; in a cell []; in a structure empty fields.
template <class T> T blank(const Mm &) { return T(0); }
template <> inline Mm blank<Mm>(const Mm &m) {
    return m.isstruct() ? Mm(0, 0, 0, 1, m.getnfields(), kn_Mm) : Mm();
}

// One line. `to` may lie at or before `from` in the same array when the positions ascend.
template <class T> void gather(T *to, const T *from, const Positions &p, ptrdiff_t stride) {
    int n = p.count();
    if (p.is_run()) {
        from += p.first() * stride;
        if (n == 1)
            *to = *from;
        else if (stride == 1)
            std::copy_n(from, n, to);
        else
            for (int k = 0; k < n; ++k) to[k] = from[k * stride];
    } else if (stride == 1) {
        for (int k = 0; k < n; ++k) to[k] = from[p.list()[k]];
    } else {
        for (int k = 0; k < n; ++k) to[k] = from[p.list()[k] * stride];
    }
}

// The next elements of `from` (step 1), or one element again and again (step 0).
template <class T> void scatter(T *to, const Positions &p, ptrdiff_t stride, const T *from, int step) {
    int n = p.count();
    if (!p.is_run()) {
        const int *at = p.list();
        if (stride == 1 && step == 1)
            for (int k = 0; k < n; ++k) to[at[k]] = from[k];
        else
            for (int k = 0; k < n; ++k) to[at[k] * stride] = from[k * step];
        return;
    }
    to += p.first() * stride;
    if (n == 1)
        *to = *from;
    else if (stride == 1 && step == 1)
        std::copy_n(from, n, to);
    else if (stride == 1)
        std::fill_n(to, n, *from);
    else
        for (int k = 0; k < n; ++k) to[k * stride] = from[k * step];
}

// A selection of `from` into the elements of `to` in order; an imaginary plane when `to` has one.
template <class T> void gather(const Mm &to, const Mm &from, const Selection &s) {
    auto plane = [&](T *out, const T *in) {
        Odometer lines(s, from.getdims());
        for (ptrdiff_t at; (at = lines.kn_next_index()) >= 0; out += lines.line().count())
            gather(out, in + at, lines.line(), lines.stride());
    };
    plane(re<T>(to), re<T>(from));
    if (to.isc()) plane(im<T>(to), im<T>(from));
}

// The elements of `from` in order, or its only one, into a selection of `to`; real ones get the imaginary
// part 0.
template <class T> void scatter(const Mm &to, const Selection &s, const Mm &from) {
    auto plane = [&](T *out, const T *in, int step) {
        Odometer lines(s, to.getdims());
        ptrdiff_t advance = static_cast<ptrdiff_t>(lines.line().count()) * step;
        for (ptrdiff_t at; (at = lines.kn_next_index()) >= 0; in += advance)
            scatter(out + at, lines.line(), lines.stride(), in, step);
    };
    int step = from.getnnz() != 1;
    plane(re<T>(to), re<T>(from), step);
    if constexpr (!std::is_same_v<T, Mm>) {
        const T zero = 0;
        if (to.isc()) plane(im<T>(to), from.isc() ? im<T>(from) : &zero, from.isc() ? step : 0);
    }
}

// Clears the elements from `first` up to `end`.
template <class T> void clear(const Mm &m, int first, int end) {
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
