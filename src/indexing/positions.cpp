// What one subscript selects: a run, a list, index values or the bits of a mask.

#include "indexing/selection.h"

#include <bit>

#include "kernels/kernel_table.h"

namespace kn {

kn_size *Positions::list_of(kn_size n) {
    if (n <= static_cast<kn_size>(std::size(near_.list))) return near_.list;
    far_.emplace(n);
    return static_cast<kn_size *>(static_cast<void *>(far_->get()));
}

MaskWord *Positions::bits_of(kn_size n) {
    ptrdiff_t words = words_of(n);
    if (words <= static_cast<ptrdiff_t>(std::size(near_.bits))) return near_.bits;
    far_.emplace(words);
    return far_->get();
}

void Positions::set_run(kn_size first, kn_size count) {
    kind_ = run;
    first_ = first;
    count_ = count;
    least_ = first;
    largest_ = count > 0 ? first + (count - 1) : -1;
}

// Ascending without gaps: a run.
bool Positions::settle(kn_size *list, kn_size n) {
    if (n == 0) {
        set_run(0, 0);
        return true;
    }
    kind_ = listed;
    count_ = n;
    list_ = list;
    if (list[n - 1] - list[0] != n - 1) return true;
    for (kn_size k = 1; k < n; ++k)
        if (list[k] != list[0] + k) return true;
    set_run(list[0], n);
    return true;
}

bool Positions::settle(MaskWord *bits, ptrdiff_t n, ptrdiff_t count) {
    ptrdiff_t first = 0, last = words_of(n) - 1;
    if (count == 0) {
        set_run(0, 0);
        return true;
    }
    while (bits[first] == 0) ++first;
    while (bits[last] == 0) --last;
    kind_ = masked;
    count_ = count;
    bits_ = bits;
    least_ = 64 * first + std::countr_zero(bits[first]);
    largest_ = 64 * last + 63 - std::countl_zero(bits[last]);
    if (largest_ - least_ == count_ - 1) set_run(least_, count_);
    return true;
}

bool Positions::set_values(const double *v, kn_size n, bool alone) {
    if (n <= 1) {
        set_run(n == 1 ? position(*v) : 0, n);
        return true;
    }
    bool near = n <= static_cast<kn_size>(std::size(near_.list));
    if (near) { // quicker than a call
        counts_ = true;
        least_ = size_max;
        largest_ = before_all;
        for (kn_size k = 0; k < n; ++k) {
            kn_size at = near_.list[k] = position(v[k]);
            counts_ = counts_ && at >= 0 && static_cast<double>(at) == v[k] - 1.0;
            least_ = std::min(least_, at);
            largest_ = std::max(largest_, at);
        }
        return settle(near_.list, n);
    }
    bool wanted = !alone || n <= 1 << 14; // a longer list doesn't stay in the cache
    kn_size *list = wanted ? list_of(n) : nullptr;
    if (wanted && !list) return false;
    PositionRange range = kernels().moves->positions(list, v, n);
    counts_ = range.counts;
    least_ = range.least;
    largest_ = range.largest;
    if (list) return settle(list, n);
    kind_ = valued;
    count_ = n;
    values_ = v;
    return true;
}

bool Positions::set(const Mm &s, kn_size extent, kn_size mask_end, bool alone) {
    kn_size stored = s.getnnz();
    counts_ = false;
    if (is_colon(s)) {
        set_run(0, extent);
        return true;
    }
    if (!s.islogical()) return set_values(s.addr(), stored, alone);
    if (s.issparse()) {
        set_run(0, 0);
        if (stored == 0) return true;
        kind_ = listed;
        count_ = stored;
        list_ = s.getindex();
        least_ = list_[0];
        largest_ = list_[stored - 1];
        return true;
    }
    const double *mask = s.addr();
    kn_size end = std::min(stored, mask_end);
    if (alone) {
        MaskWord *bits = bits_of(end);
        return bits && settle(bits, end, kernels().moves->mask_bits(bits, mask, end));
    }
    kn_size *list = list_of(count_true(mask, end) + 1); // one more: the last write of the loop below
    if (!list) return false;
    kn_size count = 0;
    for (kn_size k = 0; k < end; ++k) {
        list[count] = k;
        count += selects(mask[k]);
    }
    if (count > 0) {
        least_ = list[0];
        largest_ = list[count - 1];
    }
    return settle(list, count);
}

bool Positions::set_nonzero(const unsigned char *x, kn_size n, bool alone) {
    counts_ = false;
    if (alone) {
        MaskWord *bits = bits_of(n);
        return bits && settle(bits, n, kernels().moves->byte_bits(bits, x, n));
    }
    kn_size *list = list_of(n - std::count(x, x + n, 0) + 1);
    if (!list) return false;
    kn_size count = 0;
    for (kn_size k = 0; k < n; ++k) {
        list[count] = k;
        count += x[k] != 0;
    }
    if (count > 0) {
        least_ = list[0];
        largest_ = list[count - 1];
    }
    return settle(list, count);
}

bool Positions::set_nonzero(const Mm &x) {
    kn_size n = x.getnnz();
    counts_ = false;
    MaskWord *bits = bits_of(n);
    if (!bits) return false;
    ptrdiff_t count = kernels().moves->nonzero_bits(bits, x.addr(), n);
    if (x.isc()) {
        Scratch<MaskWord> imaginary(words_of(n));
        if (!imaginary) return false;
        kernels().moves->nonzero_bits(imaginary.get(), x.addi(), n);
        count = 0;
        for (ptrdiff_t k = 0; k < words_of(n); ++k) count += std::popcount(bits[k] |= imaginary[k]);
    }
    return settle(bits, n, count);
}

bool Positions::set_others(const Positions &gone, kn_size n) {
    counts_ = false;
    MaskWord *bits = bits_of(n);
    if (!bits) return false;
    const ptrdiff_t words = words_of(n);
    std::fill_n(bits, words, ~MaskWord{0});
    if (n % 64 != 0) bits[words - 1] = (MaskWord{1} << n % 64) - 1;
    if (gone.kind_ == masked) {
        ptrdiff_t given = std::min(words, words_of(gone.largest_ + 1));
        for (ptrdiff_t k = 0; k < given; ++k) bits[k] &= ~gone.bits_[k];
    } else {
        bool whole = gone.is_run(); // words at once
        for (kn_size k = 0; k < gone.count_; ++k) {
            kn_size at = gone[k];
            if (at < 0 || at >= n) continue;
            bool all = whole && at % 64 == 0 && gone.count_ - k >= 64;
            bits[at / 64] &= all ? 0 : ~(MaskWord{1} << at % 64);
            if (all) k += 63;
        }
    }
    ptrdiff_t count = 0;
    for (ptrdiff_t k = 0; k < words; ++k) count += std::popcount(bits[k]);
    return settle(bits, n, count);
}

kn_size Positions::found(kn_size k) const {
    if (kind_ == valued) return position(values_[k]);
    const MaskWord *word = bits_;
    for (kn_size in_word; k >= (in_word = std::popcount(*word)); ++word) k -= in_word;
    MaskWord left = *word;
    while (k-- > 0) left &= left - 1;
    return 64 * (word - bits_) + std::countr_zero(left);
}

kn_size Positions::first_outside(ptrdiff_t extent) const {
    if (inside(extent)) return -1;
    kn_size k = 0;
    while ((*this)[k] >= 0 && (*this)[k] < extent) ++k;
    return k;
}

} // namespace kn
