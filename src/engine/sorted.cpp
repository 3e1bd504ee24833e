// Sorted slices. A slice whose elements are neighbours is sorted in place in the result; any other is
// gathered into a scratch array, sorted and scattered back.

#include "engine/sorted.h"

#include <algorithm>

#include "base/poll.h"
#include "base/scratch.h"
#include "kernels/loops/complex_math.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {
namespace {

// An element with its keys, so that they are computed once.
struct Keyed {
    double size, turn;
    Z z;
};

bool before(unsigned char x, unsigned char y) { return x < y; }
bool before(double x, double y) { return x < y || (y != y && x == x); } // NaN comes after every number
bool before(const Keyed &x, const Keyed &y) {
    return before(x.size, y.size) || (!before(y.size, x.size) && before(x.turn, y.turn));
}

struct SliceLayout {
    kn_size len = 1;
    ptrdiff_t stride = 1, outer = 1;
};

// read(offset) and write(offset, element) reach the value; `slice` has room for one slice. False when
// interrupted.
template <class E, class Read, class Write>
bool sort_slices(const SliceLayout &s, E *slice, Read read, Write write) {
    for (ptrdiff_t o = 0; o < s.outer; ++o)
        for (ptrdiff_t i = 0; i < s.stride; ++i) {
            if (interrupted()) return false;
            ptrdiff_t start = o * s.len * s.stride + i;
            for (kn_size k = 0; k < s.len; ++k) slice[k] = read(start + k * s.stride);
            std::sort(slice, slice + s.len, [](const E &x, const E &y) { return before(x, y); });
            for (kn_size k = 0; k < s.len; ++k) write(start + k * s.stride, slice[k]);
        }
    return true;
}

template <class T> bool sort_real(const SliceLayout &s, const T *from, T *to) {
    if (s.stride == 1) {
        std::copy(from, from + s.len * s.outer, to);
        for (ptrdiff_t o = 0; o < s.outer; ++o) {
            if (interrupted()) return false;
            std::sort(to + o * s.len, to + (o + 1) * s.len, [](T x, T y) { return before(x, y); });
        }
        return true;
    }
    Scratch<T> slice(s.len);
    if (!slice) return false;
    return sort_slices(
        s, slice.get(), [from](ptrdiff_t k) { return from[k]; }, [to](ptrdiff_t k, T x) { to[k] = x; });
}

bool sort_complex(const SliceLayout &s, const Mm &a, Mm &out) {
    Scratch<Keyed> slice(s.len);
    if (!slice) return false;
    return sort_slices(
        s, slice.get(),
        [&a](ptrdiff_t k) {
            Z z = {a.addr()[k], a.addi()[k]};
            return Keyed{modulus(z), angle(z), z};
        },
        [&out](ptrdiff_t k, const Keyed &x) {
            out.addr()[k] = x.z.re;
            out.addi()[k] = x.z.im;
        });
}

} // namespace

Mm sorted_along(const Mm &a, int d) {
    const kn_size *dims = a.getdims();
    SliceLayout s;
    s.len = dims[d - 1];
    for (kn_size k = 0; k < d - 1; ++k) s.stride *= dims[k];
    for (kn_size k = d; k < 4; ++k) s.outer *= dims[k];

    bool bytes = a.gettype() == kn_uint8;
    Mm out = fresh_like(a, a.isc() && !bytes, a.gettype());
    if (lacks(out, a.getnnz())) return x_M;
    if (a.getnnz() == 0) return out;
    unsigned char *byte = nullptr;
    bool done = bytes     ? sort_real(s, a.getpr(byte), out.getpr(byte))
                : a.isc() ? sort_complex(s, a, out)
                          : sort_real(s, a.addr(), out.addr());
    return done ? out : x_M;
}

} // namespace kn
