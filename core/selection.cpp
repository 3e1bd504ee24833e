// Positions from subscripts, and the tests of what lies outside.

#include "core/selection.h"

#include <bit>
#include <cstdint>

#include "core/index_messages.h"
#include "core/scalar_kernels.h"

namespace kn {

namespace {

int count_nonzero(const double *mask, int n) {
    int count = 0;
    for (int k = 0; k < n; ++k) count += selects(mask[k]);
    return count;
}

// Stored elements of a subscript that is no colon.
int count_selected(const Mm &s) {
    bool mask = s.islogical() && !s.issparse();
    return mask ? count_nonzero(s.addr(), s.getnnz()) : s.getnnz();
}

// The place, from 0, of an index value. Without a comparison or a conversion, which would cost more than the
// move: beside 2^52 the last bits of a double count ones. `odd` is 0 for a whole number; a value below 1 has
// a place beyond every extent.
struct Place {
    uint64_t at, odd;
    explicit Place(double v) {
        constexpr double shift = 0x1p52;
        double x = v - 1.0, shifted = x + shift;
        at = std::bit_cast<uint64_t>(shifted) ^ std::bit_cast<uint64_t>(shift);
        odd = std::bit_cast<uint64_t>(shifted - shift - x);
    }
};

// Positions of index values that are all whole numbers from 1 on; false when one is not.
bool count_positions(int *list, const double *v, int n) {
    uint64_t fault = 0;
    for (int k = 0; k < n; ++k) {
        Place p(v[k]);
        list[k] = static_cast<int>(static_cast<uint32_t>(p.at));
        fault |= p.odd | (p.at + 1) >> 31;
    }
    return fault == 0;
}

} // namespace

bool all_inside(const Mm &s, int extent) {
    if (s.gettype() != kn_double || s.issparse() || s.islogical()) return false;
    const double *v = s.addr();
    const uint64_t last = static_cast<uint64_t>(extent) - 1;
    uint64_t odd = 0, outside = 0;
    for (int k = 0, n = s.getnnz(); k < n; ++k) {
        Place p(v[k]);
        odd |= p.odd;
        outside |= p.at | (last - p.at);
    }
    return odd == 0 && outside >> 63 == 0;
}

int scalar_position(const Mm &base, int n, const Mm *const *s) {
    auto inside = [](const Mm &i, int extent) {
        if (!is_scalar_subscript(i)) return -1;
        double at = *i.addr() - 1.0;
        return at > -1.0 && at < extent ? static_cast<int>(at) : -1;
    };
    if (base.issparse() || n <= 0) return -1;
    if (n == 1) return inside(*s[0], base.getnnz());
    ptrdiff_t at = 0;
    const int *dims = base.getdims();
    for (int k = n; k-- > 0;) {
        int l = inside(*s[k], dims[k]);
        if (l < 0) return -1;
        at = at * dims[k] + l;
    }
    return static_cast<int>(at);
}

// -- Positions of one subscript.

int *Positions::room(int n) {
    if (n <= static_cast<int>(std::size(near_))) return near_;
    far_.emplace(n);
    return far_->get();
}

// Ascending without gaps: a run.
void Positions::settle(int *list, int n) {
    count_ = n;
    list_ = list;
    if (n == 0) {
        set_run(0, 0);
        return;
    }
    if (static_cast<long long>(largest_) - list[0] != n - 1) return;
    for (int k = 1; k < n; ++k)
        if (list[k] != list[0] + k) return;
    set_run(list[0], n);
}

void Positions::set_run(int first, int count) {
    list_ = nullptr;
    first_ = first;
    count_ = count;
    least_ = first;
    largest_ = count > 0 ? first + (count - 1) : -1;
}

bool Positions::set_values(const double *v, int n) {
    if (n <= 1) {
        set_run(n == 1 ? position(*v) : 0, n);
        return true;
    }
    int *list = room(n);
    if (!list) return false;
    constexpr ptrdiff_t block = 1024; // stays in the cache for all loops
    int least = 0, largest = INT_MIN;
    counts_ = true;
    for (ptrdiff_t start = 0; start < n; start += block) {
        int *at = list + start, m = static_cast<int>(std::min(n - start, block));
        if (!count_positions(at, v + start, m)) {
            for (int k = 0; k < m; ++k) at[k] = position(v[start + k]);
            for (int k = 0; k < m; ++k) least = std::min(least, at[k]);
            counts_ = false;
        }
        for (int k = 0; k < m; ++k) largest = std::max(largest, at[k]);
    }
    least_ = least;
    largest_ = largest;
    settle(list, n);
    return true;
}

bool Positions::set(const Mm &s, int extent, int mask_end) {
    int stored = s.getnnz();
    counts_ = false;
    if (is_colon(s)) {
        set_run(0, extent);
    } else if (!s.islogical()) {
        return set_values(s.addr(), stored);
    } else if (s.issparse()) {
        const int *index = s.getindex();
        set_run(0, 0);
        if (stored == 0) return true;
        count_ = stored;
        list_ = index;
        least_ = index[0];
        largest_ = index[stored - 1];
    } else {
        const double *mask = s.addr();
        int end = std::min(stored, mask_end);
        int *list = room(count_nonzero(mask, end) + 1); // one more: the last write of the loop below
        if (!list) return false;
        int count = 0;
        for (int k = 0; k < end; ++k) {
            list[count] = k;
            count += selects(mask[k]);
        }
        if (count > 0) {
            least_ = list[0];
            largest_ = list[count - 1];
        }
        settle(list, count);
    }
    return true;
}

bool Positions::set_nonzero(const char *mask, int n) {
    counts_ = false;
    int count = static_cast<int>(n - std::count(mask, mask + n, 0));
    int *list = room(count + 1);
    if (!list) return false;
    count = 0;
    for (int k = 0; k < n; ++k) {
        list[count] = k;
        count += mask[k] != 0;
    }
    if (count > 0) {
        least_ = list[0];
        largest_ = list[count - 1];
    }
    settle(list, count);
    return true;
}

int Positions::first_outside(int extent) const {
    if (count_ == 0 || (least_ >= 0 && largest_ < extent)) return -1;
    int k = 0;
    while ((*this)[k] >= 0 && (*this)[k] < extent) ++k;
    return k;
}

// -- All subscripts.

int Selection::total() const {
    int counts[4] = {1, 1, 1, 1};
    for (int k = 0; k < n_; ++k) counts[k] = at_[k].count();
    return product(4, counts);
}

bool Selection::reaches(const Mm &base, const Subscripts &s, Mode mode, int strict) const {
    const int *dims = base.getdims();
    bool vector = base.vectordim() != 0;
    auto extent = [&](int k) {
        if (n_ == 1 && !vector) return base.size();
        if (mode == growing) return INT_MAX;
        return n_ == 1 ? base.size() : dims[k];
    };
    int bad = -1, element = 0;
    for (int k = 0; k < n_; ++k) {
        int e = at_[k].first_outside(extent(k));
        if (e == 0 || (e > 0 && bad < 0)) {
            bad = k;
            element = e;
        }
    }
    if (bad < 0) return true;
    if (!strict) return false;

    int at = at_[bad][element];
    if (at < 0)
        report_not_positive(s[bad], base, at);
    else if (n_ > 1)
        report_outside_dimension(s[bad], base, at, dims[bad]);
    else if (vector)
        report_outside_vector(s[bad], base, at);
    else
        report_outside_matrix(s[bad], base, at);
    return false;
}

int kn_index_dims(const Mm &base, const Subscripts &s, const int *extents, int strict, int *dims) {
    std::fill_n(dims, 4, 1);
    for (int k = 0; k < s.n; ++k) {
        if (is_colon(s[k])) {
            dims[k] = s.n == 1 ? base.size() : extents[k];
            continue;
        }
        dims[k] = count_selected(s[k]);
        if (s[k].issparse() && !s[k].islogical() && dims[k] < s[k].size()) {
            if (strict) report_sparse_zero(s[k], base);
            return -1;
        }
    }
    int total = product(4, dims);
    if (total < 0) out_of_memory();
    return total;
}

int largest_rounded(const Mm &s, const Positions &p) {
    if (p.are_counts()) return p.largest() + 1;
    const double *v = s.addr();
    int n = s.getnnz();
    double largest = 0;
    for (int k = 0; k < n; ++k) {
        if (!(v[k] >= 0.5)) return 0;
        largest = std::max(largest, v[k]);
    }
    return double_to_int(round_half_away(largest));
}

} // namespace kn
