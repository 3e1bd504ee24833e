// How the kernels along a dimension walk their slices (Slices in kernels/op_core.h): always in the order of
// memory.
//
// With `stride` 1 a slice is a run of `len` neighbours; else `stride` slices lie side by side in `len` rows.
// Three walks serve:
//
//   reduce       one value for each slice, of its elements in order: the running values of a few slices in
//                registers, those of many in the result, row by row
//   accumulate   the same, every running value stored
//   over_lanes   slices of neighbours, or few side by side, in lanes (kernels/loops/lanes.h)
//
// Large work is shared by threads (base/parallel.h); where it may be cut depends on the extents alone.
#ifndef QUORVEX_KERNELS_LOOPS_SLICES_H
#define QUORVEX_KERNELS_LOOPS_SLICES_H

#include <algorithm>
#include <utility>

#include "base/parallel.h"
#include "kernels/op_core.h"

namespace kn::inline KN_ISA::kernel {

// Planes of `a` that the operation works on: 1 or 2, or 0 when there is nothing to compute. A complex result
// that was not asked for, and every complex array of bytes, gives zeros. A result plane that was asked for a
// real array is cleared.
template <class T> int planes(const Slices<T> &s) {
    if (s.aim && (!s.im || sizeof(T) == 1)) {
        clear(s.re, s.im, s.total);
        return 0;
    }
    if (s.im && !s.aim) clear<T>(nullptr, s.im, s.total);
    return s.aim ? 2 : 1;
}

// f(offset of the slice in the operand, offset of its first result) for each slice.
template <class T, class F> void for_each_slice(const Slices<T> &s, ptrdiff_t results, F f) {
    for (ptrdiff_t o = 0; o < s.outer; ++o)
        for (ptrdiff_t i = 0; i < s.stride; ++i) f(o * s.len * s.stride + i, o * results * s.stride + i);
}

// f(begin, end) for ranges of n parts with the given number of elements each. Like parallel_for, but f is
// compiled once.
template <class F> [[gnu::noinline]] void run_range(void *context, ptrdiff_t begin, ptrdiff_t end) noexcept {
    (*static_cast<const F *>(context))(begin, end);
}
template <class F> void share_parts(ptrdiff_t n, ptrdiff_t elements_each, F f) {
    constexpr ptrdiff_t worth = 1 << 17;
    const ptrdiff_t grain = std::max<ptrdiff_t>(1, worth / elements_each);
    if (n <= grain) return run_range<F>(&f, 0, n);
    share_ranges(n, grain, run_range<F>, &f);
}

// f(k) for each of n parts.
template <class F> void share(ptrdiff_t n, ptrdiff_t elements_each, F f) {
    share_parts(n, elements_each, [f](ptrdiff_t begin, ptrdiff_t end) {
        for (; begin < end; ++begin) f(begin);
    });
}

// v = step(v, x) over R elements.
template <int R, class T, class X, class Step> inline T over(T v, const X *x, ptrdiff_t stride, Step step) {
    [&]<size_t... r>(std::index_sequence<r...>) {
        ((v = step(v, x[static_cast<ptrdiff_t>(r) * stride])), ...);
    }
    (std::make_index_sequence<R>());
    return v;
}

// R rows over n running values.
template <int R, class T, class Step>
inline void over_rows(T *__restrict v, const T *__restrict x, ptrdiff_t stride, ptrdiff_t n, Step step) {
    for (ptrdiff_t l = 0; l < n; ++l) v[l] = over<R>(v[l], x + l, stride, step);
}

// Rows of many slices are worked on in pieces that stay in the first-level cache.
constexpr ptrdiff_t piece = 1024;

// f(offset of the first element, offset of the first result, slices) for pieces; for `joined` of them where
// the same thread takes them.
template <class T, class F>
void for_each_piece(const Slices<T> &s, ptrdiff_t results, F f, ptrdiff_t joined = 1) {
    const ptrdiff_t len = s.len, stride = s.stride, each = (stride + piece - 1) / piece;
    share_parts(s.outer * each, len * std::min(piece, stride), [=](ptrdiff_t begin, ptrdiff_t end) {
        while (begin < end) {
            ptrdiff_t o = begin / each, p = begin % each, n = std::min({joined, each - p, end - begin});
            f(o * len * stride + p * piece, o * results * stride + p * piece,
              std::min(n * piece, stride - p * piece));
            begin += n;
        }
    });
}

// f.operator()<W>() for W = w, which is 1 to `most`.
template <int most, class F> inline void with_width(ptrdiff_t w, F f) {
    if constexpr (most > 1)
        if (w < most) return with_width<most - 1>(w, f);
    f.template operator()<most>();
}

// So many slices are run at once where they are neighbours or fewer than `few` side by side.
template <class T> constexpr int at_once = sizeof(T) == 1 ? 1 : 4;
constexpr ptrdiff_t few = 8;

// f.operator()<W>(offset of the first element, offset of the first result, distance of two slices) for groups
// of W slices, `most` neighbours.
template <class T, class F>
void for_each_group(const Slices<T> &s, ptrdiff_t results, ptrdiff_t neighbours, F f) {
    const ptrdiff_t len = s.len, stride = s.stride, outer = s.outer;
    const ptrdiff_t line = stride == 1 ? outer : stride, pitch = stride == 1 ? len : 1;
    const ptrdiff_t most = stride == 1 ? neighbours : at_once<T>;
    const ptrdiff_t to_pitch = stride == 1 ? results : 1, groups = (line + most - 1) / most;
    share(groups * (stride == 1 ? 1 : outer), len * most, [=](ptrdiff_t g) {
        const ptrdiff_t before = stride == 1 ? 0 : g / groups; // lines; a division is slow
        const ptrdiff_t o = before * stride, i = (g - before * groups) * most;
        with_width<at_once<T>>(std::min<ptrdiff_t>(most, line - i), [=]<int W>() {
            f.template operator()<W>(o * len + i * pitch, o * results + i * to_pitch, pitch);
        });
    });
}

// f.operator()<L>(begin, end) for ranges of slices that are neighbours, of L elements.
constexpr ptrdiff_t tiny = 8;
template <class T, class F> void for_each_tiny(const Slices<T> &s, F f) {
    with_width<tiny>(s.len, [=, outer = s.outer]<int L>() {
        share_parts(outer, L, [=](ptrdiff_t begin, ptrdiff_t end) { f.template operator()<L>(begin, end); });
    });
}
template <class T> bool are_tiny(const Slices<T> &s) {
    return s.stride == 1 && s.len <= tiny && sizeof(T) > 1;
}

// Slices with more elements than this do not fit the processor's caches.
constexpr ptrdiff_t in_cache = 1 << 17;

// Announces n elements to the memory.
template <class T> inline void announce(const T *x, ptrdiff_t n) {
#if defined(__GNUC__)
    for (ptrdiff_t k = 0; k < n; k += 64 / static_cast<ptrdiff_t>(sizeof(T))) __builtin_prefetch(x + k);
#else
    (void)x, (void)n;
#endif
}

// One result for each slice: start(first element), then step(value, element) over all its elements.
template <class T, class Start, class Step>
void reduce(T *out, const T *x, const Slices<T> &s, Start start, Step step) {
    const ptrdiff_t len = s.len, stride = s.stride;
    if (are_tiny(s))
        return for_each_tiny(s, [=]<int L>(ptrdiff_t begin, ptrdiff_t end) {
            for (; begin < end; ++begin) out[begin] = over<L>(start(x[begin * L]), x + begin * L, 1, step);
        });
    // The processor foresees only long runs when there are several at once.
    const bool unforeseen = stride == 1 && len >= 64 && len < 512 && len * s.outer > in_cache;
    if (stride < few)
        return for_each_group(s, 1, at_once<T>, [=]<int W>(ptrdiff_t at, ptrdiff_t to, ptrdiff_t pitch) {
            const T *c = x + at;
            if (unforeseen) announce(c + W * len, W * len);
            T v[W];
            for (int w = 0; w < W; ++w) v[w] = start(c[w * pitch]);
            for (ptrdiff_t k = 0; k < len; ++k)
                for (int w = 0; w < W; ++w) v[w] = step(v[w], c[w * pitch + k * stride]);
            for (int w = 0; w < W; ++w) out[to + w] = v[w];
        });
    for_each_piece(s, 1, [=](ptrdiff_t at, ptrdiff_t to, ptrdiff_t n) {
        const T *row = x + at;
        T *v = out + to;
        for (ptrdiff_t l = 0; l < n; ++l) v[l] = start(row[l]);
        ptrdiff_t k = 0;
        for (; k + 4 <= len; k += 4) over_rows<4>(v, row + k * stride, stride, n, step);
        for (; k < len; ++k) over_rows<1>(v, row + k * stride, stride, n, step);
    });
}

// The start that does not look at the element.
template <class T> auto from(T start) {
    return [start](T) { return start; };
}

// The same, storing every step. Neighbours one by one where they don't fit the cache: more runs at once would
// only be more runs for the memory.
template <class T, class Step> void accumulate(T *out, const T *x, const Slices<T> &s, T start, Step step) {
    const ptrdiff_t len = s.len, stride = s.stride;
    if (are_tiny(s))
        return for_each_tiny(s, [=]<int L>(ptrdiff_t begin, ptrdiff_t end) {
            for (ptrdiff_t k = begin * L; k < end * L; k += L)
                for (T v = start, *y = out + k, *last = y + L; y < last; ++y) *y = v = step(v, x[y - out]);
        });
    if (stride < few)
        return for_each_group(s, len, s.total > in_cache ? 1 : at_once<T>,
                              [=]<int W>(ptrdiff_t at, ptrdiff_t to, ptrdiff_t pitch) {
                                  const T *__restrict c = x + at;
                                  T *__restrict y = out + to;
                                  T v[W];
                                  for (int w = 0; w < W; ++w) v[w] = start;
                                  for (ptrdiff_t k = 0; k < len; ++k)
                                      for (int w = 0; w < W; ++w)
                                          y[w * pitch + k * stride] = v[w] =
                                              step(v[w], c[w * pitch + k * stride]);
                              });
    auto rows = [=](ptrdiff_t at, ptrdiff_t to, ptrdiff_t n) {
        const T *__restrict row = x + at;
        T *__restrict y = out + to;
        for (ptrdiff_t l = 0; l < n; ++l) y[l] = step(start, row[l]);
        for (ptrdiff_t k = 1; k < len; ++k) {
            T *__restrict next = y + k * stride;
            const T *last = next - stride;
            for (ptrdiff_t l = 0; l < n; ++l) next[l] = step(last[l], row[k * stride + l]);
        }
    };
    for_each_piece(s, len, rows, 8);
}

// Cuts slices of `len` elements, `stride` of them side by side, in parts that threads may share: f(first
// element, elements, partial) for each, and in their order merge(first element, partial) until that is true.
// `batch` parts are begun together, then twice as many.
template <class Partial, class F, class Merge>
void in_parts(ptrdiff_t len, ptrdiff_t part, ptrdiff_t stride, ptrdiff_t batch, F f, Merge merge) {
    constexpr ptrdiff_t most = 64;
    Partial partial[most];
    for (ptrdiff_t at = 0, n; at < len; at += n * part, batch = std::min(2 * batch, most)) {
        n = std::min(batch, (len - at + part - 1) / part);
        share(n, part * stride, [=, &partial](ptrdiff_t k) {
            f(at + k * part, std::min(part, len - at - k * part), partial[k]);
        });
        for (ptrdiff_t k = 0; k < n; ++k)
            if (merge(at + k * part, partial[k])) return;
    }
}

#define KN_ALONG(Name, f)                               \
    void Name::along(const Slices<double> &s) { f(s); } \
    void Name::along(const Slices<unsigned char> &s) { f(s); }

} // namespace kn::inline KN_ISA::kernel

#endif
