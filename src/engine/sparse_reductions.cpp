// Reductions of sparse values that are too large to become full, from their entries.
//
// The entries of a slice along the dimension, with a single zero where the first element is missing, are a
// shorter slice, of which the element engine gives the same: zeros add nothing to a sum, and one does to a
// product or to the best element what many do. Slices of the same length are reduced together, as the
// columns of a matrix. Slices without entries give 0.

#include "engine/sparse_reductions.h"

#include <algorithm>

#include "base/number_tests.h"
#include "base/scratch.h"
#include "engine/element_engine.h"
#include "engine/sparse_plan.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {
namespace {

// The entries of one slice: those from `first` to `last` - 1 of the list.
struct Slice {
    kn_size first, last, gap, length; // where the zero comes in, and the length with it
};

// The entries ordered by slices. The index of each is that of its slice times `len`, plus its place in the
// slice.
class EntrySlices {
  public:
    EntrySlices(const Mm &a, int dim)
        : list_(a), len_(a.getdims()[dim - 1]), slices_(a.getnnz()), order_(a.getnnz()) {
        if (!slices_ || !order_) return;
        kn_size stride = 1;
        for (int k = 0; k < dim - 1; ++k) stride *= a.getdims()[k];
        if (stride > 1) {
            list_.deepcopy(a, kn_none);
            if (list_.dirty()) return;
            kn_size *index = list_.getindex();
            for (kn_size e = 0; e < a.getnnz(); ++e) {
                const kn_size line = index[e] / stride, slice = line / len_ * stride + index[e] % stride;
                index[e] = slice * len_ + line % len_;
            }
            if (!sort_entries(list_)) return;
        }
        find_slices();
        done_ = true;
    }
    explicit operator bool() const { return done_; }

    kn_size count() const { return count_; }
    const Slice &operator[](kn_size s) const { return slices_[s]; }
    kn_size index(kn_size s) const { return list_.getindex()[slices_[s].first] / len_; }
    kn_size len() const { return len_; }
    kn_size place(kn_size entry) const { return list_.getindex()[entry] % len_; }

    // f(slices, n, columns) for the slices of each length: n of their numbers, and the matrix that they are
    // the columns of. False when there is no memory for it, or f returns false.
    template <class F> bool by_length(F f) const {
        for (kn_size begin = 0, end; begin < count_; begin = end) {
            const kn_size length = slices_[order_[begin]].length;
            for (end = begin + 1; end < count_ && slices_[order_[end]].length == length;) ++end;
            Mm columns(list_.isc(), 0, 0, length, end - begin, kn_double);
            if (lacks(columns, length * (end - begin))) return false;
            for (kn_size c = begin; c < end; ++c) {
                const Slice &s = slices_[order_[c]];
                fill(columns.addr() + (c - begin) * length, list_.addr(), s);
                if (list_.isc()) fill(columns.addi() + (c - begin) * length, list_.addi(), s);
            }
            if (!f(order_.get() + begin, end - begin, columns)) return false;
        }
        return true;
    }

  private:
    Mm list_;
    kn_size len_, count_ = 0;
    Scratch<Slice> slices_;
    Scratch<kn_size> order_; // by length
    bool done_ = false;

    void find_slices() {
        const kn_size *index = list_.getindex(), n = list_.getnnz();
        for (kn_size e = 0; e < n;) {
            Slice s = {e, e, 0, 0};
            const kn_size start = index[e] / len_ * len_;
            for (; e < n && index[e] - start < len_; ++e) s.gap += s.gap == index[e] - start;
            s.last = e;
            s.length = e - s.first + (e - s.first < len_);
            order_[count_] = count_;
            slices_[count_++] = s;
        }
        std::sort(order_.get(), order_.get() + count_,
                  [this](kn_size a, kn_size b) { return slices_[a].length < slices_[b].length; });
    }
    static void fill(double *to, const double *plane, const Slice &s) {
        to = std::copy_n(plane + s.first, s.gap, to);
        if (s.length > s.last - s.first) *to++ = 0;
        std::copy(plane + s.first + s.gap, plane + s.last, to);
    }
};

// One element for each slice.
Mm reduced(int complex_result, const EntrySlices &slices, op_t op, const Mm &like, Mm &extra) {
    const bool wants_places = (op == op_max_1 || op == op_min_1) && !extra.issamename(kn_l_name);
    Mm out(complex_result, 1, slices.count(), like.getndims(), like.getdims(), kn_double), places;
    if (lacks(out, slices.count()) || !out.issparse()) return x_M;
    if (wants_places) {
        places = Mm(0, 0, 0, like.getndims(), like.getdims(), kn_double);
        if (lacks(places, like.size())) return x_M;
        std::fill_n(places.addr(), like.size(), 1.0);
    }
    const bool done = slices.by_length([&](const kn_size *s, kn_size n, const Mm &columns) {
        Mm best, values = element_operation(complex_result, columns, zero_M, one_M, op, 1,
                                            wants_places ? best : l_M);
        if (values.getnnz() != n) return false;
        out.setlogical(values.islogical());
        for (kn_size k = 0; k < n; ++k) {
            const Slice &slice = slices[s[k]];
            out.getindex()[s[k]] = slices.index(s[k]);
            out.addr()[s[k]] = values.addr()[k];
            if (out.isc()) out.addi()[s[k]] = values.isc() ? values.addi()[k] : 0;
            if (!wants_places) continue;
            const kn_size at = static_cast<kn_size>(best.addr()[k]) - 1;
            const kn_size place = slice.length > slice.last - slice.first && at >= slice.gap
                                      ? at == slice.gap ? at : slices.place(slice.first + at - 1)
                                      : slices.place(slice.first + at);
            places.addr()[slices.index(s[k])] = static_cast<double>(place + 1);
        }
        return true;
    });
    if (!done) return x_M;
    if (wants_places) extra = places;
    out.resparse();
    check(out);
    return out;
}

// A running sum or product: each entry's value stands until the next one.
Mm running(int complex_result, const EntrySlices &slices, op_t op, const Mm &a, int dim) {
    Mm values(complex_result, 0, 0, a.getnnz(), 1, kn_double); // after each entry
    Scratch<double> at_gap(2 * slices.count());                // after the first missing element
    if (lacks(values, a.getnnz()) || !at_gap) return x_M;
    const bool computed = slices.by_length([&](const kn_size *s, kn_size n, const Mm &columns) {
        const Mm x = element_operation(complex_result, columns, zero_M, one_M, op, 1, l_M);
        if (x.getnnz() != columns.getnnz()) return false;
        for (kn_size k = 0; k < n; ++k) {
            const Slice &slice = slices[s[k]];
            for (kn_size from = k * slice.length, to = slice.first, l = 0; l < slice.length; ++l, ++from) {
                const double re = x.addr()[from], im = x.isc() ? x.addi()[from] : 0;
                if (l == slice.gap && slice.length > slice.last - slice.first) {
                    at_gap[2 * s[k]] = re, at_gap[2 * s[k] + 1] = im;
                    continue;
                }
                values.addr()[to] = re;
                if (values.isc()) values.addi()[to] = im;
                ++to;
            }
        }
        return true;
    });
    if (!computed) return x_M;

    // f(slice, first place, end, re, im) for each stretch of elements that have the same value, which is not
    // 0.
    auto stretches = [&](auto f) {
        for (kn_size s = 0; s < slices.count(); ++s) {
            const Slice &slice = slices[s];
            for (kn_size e = slice.first; e < slice.last; ++e) {
                const kn_size at = slices.place(e),
                              next = e + 1 < slice.last ? slices.place(e + 1) : slices.len();
                const double re = values.addr()[e], im = values.isc() ? values.addi()[e] : 0;
                if (is_nonzero(re) || is_nonzero(im)) f(s, at, at + 1, re, im);
                const bool first_gap = at + 1 == slice.gap;
                const double gap_re = first_gap ? at_gap[2 * s] : re,
                             gap_im = first_gap ? at_gap[2 * s + 1] : im;
                if (at + 1 < next && (is_nonzero(gap_re) || is_nonzero(gap_im)))
                    f(s, at + 1, next, gap_re, gap_im);
            }
        }
    };
    kn_size n = 0;
    stretches([&](kn_size, kn_size begin, kn_size end, double, double) { n += end - begin; });
    Mm out(complex_result, 1, n, a.getndims(), a.getdims(), kn_double);
    if (lacks(out, n) || !out.issparse()) return x_M;
    kn_size stride = 1, e = 0;
    for (int k = 0; k < dim - 1; ++k) stride *= a.getdims()[k];
    stretches([&](kn_size s, kn_size begin, kn_size end, double re, double im) {
        const kn_size slice = slices.index(s),
                      start = slice / stride * slices.len() * stride + slice % stride;
        for (kn_size k = begin; k < end; ++k, ++e) {
            out.getindex()[e] = start + k * stride;
            out.addr()[e] = re;
            if (out.isc()) out.addi()[e] = im;
        }
    });
    if (!sort_entries(out)) return x_M;
    check(out);
    return out;
}

} // namespace

bool reduces_entries(op_t op) {
    switch (op) {
    case op_all:
    case op_any:
    case op_cumprod:
    case op_cumsum:
    case op_max_1:
    case op_min_1:
    case op_prod:
    case op_sum: return true;
    default: return false;
    }
}

Mm reduce_entries(int complex_result, const Mm &a, int dim, op_t op, Mm &extra) {
    if (dim == 0) dim = a.nsingleton();
    const EntrySlices slices(a, dim);
    if (!slices) return x_M;
    if (op == op_cumsum || op == op_cumprod) return running(complex_result, slices, op, a, dim);
    kn_size dims[4];
    std::copy_n(a.getdims(), 4, dims);
    dims[dim - 1] = 1;
    Mm like(0, 1, 0, a.getndims(), dims, kn_double);
    return like.issparse() ? reduced(complex_result, slices, op, like, extra) : x_M;
}

} // namespace kn
