// Joining two values: the checks and the choice of a way, then one way each for full elements (all three
// element types), for sparse entries, and for structures.
//
// Seen from dimension `dim`, a full value is a sequence of runs: the elements up to and with that dimension
// lie together. A joined value is a run of a, a run of b, and so on.
#include "join/concat.h"

#include <algorithm>
#include <numeric>

#include "base/scratch.h"
#include "indexing/reference.h"
#include "quorvex/builders.h"
#include "quorvex/classes.h"
#include "quorvex/concat.h"
#include "quorvex/indexing.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/planes.h"
#include "value/size_arguments.h"
#include "value/sparse_walk.h"

namespace kn {
namespace {

// The extents of a joined value, and their product; that is negative after "Out of memory!", when no value is
// so large.
kn_size joined_extents(Extents &e, int dim, const Mm &a, const Mm &b) {
    e.n = std::max(a.getndims(), dim);
    std::copy_n(a.getdims(), 4, e.d);
    kn_size added = b.getdims()[dim - 1];
    kn_size n = added <= size_max - e.d[dim - 1] ? (e.d[dim - 1] += added, product(4, e.d)) : -1;
    if (n < 0) out_of_memory();
    return n;
}

// Gives a side the form that the join takes. False after a failed conversion, which has reported.
bool convert(Mm &x, Mm (*form)(const Mm &)) {
    const kn_size n = x.size();
    x = form(x);
    return x.size() == n;
}

void join_flags(const Mm &out, const Mm &a, const Mm &b) {
    out.getflags().str = a.isstr() || b.isstr();
    out.getflags().logical = a.islogical() && b.islogical();
}

// ---- Full values ----

// The runs of one of the two, `steps` of them, each `step` after the last; of a plane that is not there,
// zeros.
template <class T> void lay_runs(T *to, ptrdiff_t step, const T *from, ptrdiff_t n, ptrdiff_t steps) {
    if (!from) {
        if constexpr (std::is_arithmetic_v<T>)
            for (ptrdiff_t k = 0; k < steps; k++) std::fill_n(to + k * step, n, T());
    } else if (n <= 4) { // a row after the other
        for (ptrdiff_t r = 0; r < n; r++)
            for (ptrdiff_t k = 0; k < steps; k++) to[k * step + r] = from[k * n + r];
    } else {
        for (ptrdiff_t k = 0; k < steps; k++) copy_run(to + k * step, from + k * n, n);
    }
}

template <class T> void interleave(void *to, void *a, ptrdiff_t na, void *b, ptrdiff_t nb, ptrdiff_t steps) {
    T *t = static_cast<T *>(to);
    const T *x = static_cast<const T *>(a), *y = static_cast<const T *>(b);
    const ptrdiff_t step = na + nb, most = 4096 / step + 1; // what is laid together stays in the cache
    for (ptrdiff_t k = 0; k < steps; k += most) {
        ptrdiff_t m = std::min(most, steps - k);
        lay_runs(t + k * step, step, x ? x + k * na : x, na, m);
        lay_runs(t + k * step + na, step, y ? y + k * nb : y, nb, m);
    }
}

template <class T> void interleave(const Mm &out, const Mm &a, const Mm &b, ptrdiff_t steps) {
    ptrdiff_t na = a.getnnz() / steps, nb = b.getnnz() / steps;
    interleave<T>(Header::pr(out), Header::pr(a), na, Header::pr(b), nb, steps);
    if (out.isc()) interleave<T>(Header::pi(out), Header::pi(a), na, Header::pi(b), nb, steps);
}

// The extents agree but for `dim`, and neither is empty.
Mm join_full(int dim, const Mm &a, const Mm &b) {
    Extents e;
    kn_size n = joined_extents(e, dim, a, b);
    if (n < 0) return x_M;
    Mm out(a.isc() || b.isc(), 0, 0, e.n, e.d, a.gettype());
    if (lacks(out, n)) return x_M;

    ptrdiff_t steps = product(4 - dim, e.d + dim);
    switch (a.gettype()) {
    case kn_none: break;
    case kn_double: interleave<double>(out, a, b, steps); break;
    case kn_uint8: interleave<unsigned char>(out, a, b, steps); break;
    case kn_Mm: interleave<Mm>(out, a, b, steps); break;
    }
    join_flags(out, a, b);
    check(out);
    return out;
}

// ---- Sparse matrices ----

struct EntryList {
    const double *re, *im;
    const kn_size *index;
    kn_size nnz, rows;
    explicit EntryList(const Mm &s)
        : re(s.addr()), im(s.addi()), index(s.getindex()), nnz(s.getnnz()), rows(s.rows()) {}
};

struct EntryWriter {
    double *re, *im;
    kn_size *index, e = 0;
    void append(const EntryList &s, kn_size k, kn_size position) {
        re[e] = s.re[k];
        if (im) im[e] = s.im ? s.im[k] : 0;
        index[e++] = position;
    }
};

// Both are matrices that agree in rows (dim 2) or columns, and neither is empty.
Mm join_sparse(int dim, const Mm &x, const Mm &y) {
    Extents extents;
    if (joined_extents(extents, dim, x, y) < 0) return x_M;
    Mm sx = x, sy = y;
    if (!convert(sx, sparse) || !convert(sy, sparse)) return x_M;
    kn_size nnz = sx.getnnz() + sy.getnnz();
    Mm out(sx.isc() || sy.isc(), 1, nnz, 2, extents.d, kn_double);
    if (lacks(out, nnz) || !out.issparse()) return x_M;

    EntryList a(sx), b(sy);
    EntryWriter to{out.addr(), out.addi(), out.getindex()};
    if (dim == 2) {
        for (kn_size k = 0; k < a.nnz; k++) to.append(a, k, a.index[k]);
        for (kn_size k = 0; k < b.nnz; k++) to.append(b, k, x.size() + b.index[k]);
    } else { // column by column
        ColumnWalk in_a(a.rows), in_b(b.rows);
        auto column = [](ColumnWalk &walk, const EntryList &s, kn_size k) {
            if (k >= s.nnz) return size_max;
            walk.row(s.index[k]);
            return walk.column();
        };
        for (kn_size ka = 0, kb = 0, rows = a.rows + b.rows; ka < a.nnz || kb < b.nnz;) {
            kn_size ca = column(in_a, a, ka), cb = column(in_b, b, kb), c = std::min(ca, cb);
            if (ca == c)
                for (; ka < a.nnz && a.index[ka] < in_a.end(); ka++)
                    to.append(a, ka, c * rows + a.index[ka] - in_a.begin());
            if (cb == c)
                for (; kb < b.nnz && b.index[kb] < in_b.end(); kb++)
                    to.append(b, kb, c * rows + a.rows + b.index[kb] - in_b.begin());
        }
    }
    join_flags(out, x, y);
    check(out);
    return out;
}

// ---- Structures ----

// The assignment that appends b to a matches the fields; its failure is that of the join. No class method
// takes part.
Mm join_structures(int dim, const Mm &a, const Mm &b) {
    Mm out = a, tail = b;
    out.setclassid(0);
    tail.setclassid(0);
    const kn_size first = a.size(dim) + 1, n = b.size(dim);
    Mm range(0, 0, 0, 1, n, kn_double);
    if (lacks(range, n)) return x_M;
    std::iota(range.addr(), range.addr() + n, static_cast<double>(first));
    const auto append_at = [&](const Mr &place) { return RefAccess::modify(out, place, tail); };
    if (!(dim == 1   ? append_at(out(range, c_p))
          : dim == 2 ? append_at(out(c_p, range))
          : dim == 3 ? append_at(out(c_p, c_p, range))
                     : append_at(out(c_p, c_p, c_p, range))))
        return x_M;
    out.setclassid(a.isstruct() ? a.getclassid() : 0);
    return out;
}

// ---- The choice ----

Mm join_matrices(int dim, const Mm &a, const Mm &b) {
    if (a.size() == 0) return b;
    if (b.size() == 0) return a;
    if (dim == 2 && a.rows() != b.rows()) {
        error("horzcat: # of rows different");
        return x_M;
    }
    if (dim != 2 && a.cols() != b.cols()) {
        error("vertcat: # of cols different");
        return x_M;
    }
    if (dim != 2) dim = 1;
    if (a.isstruct() || b.isstruct()) return join_structures(dim, a, b);
    if (a.issparse() || b.issparse()) return join_sparse(dim, a, b);
    return join_full(dim, a, b);
}

Mm join_arrays(int dim, const Mm &x, const Mm &y) {
    Mm a = x, b = y;
    if (!convert(a, full) || !convert(b, full)) return x_M;
    if (a.getndims() != b.getndims()) {
        error("cat: arguments do not have the same number of dimensions");
        return x_M;
    }
    if (dim < 1 || dim >= 5) {
        error("cat: no such dimension");
        return x_M;
    }
    for (int k = 1; k <= 4; k++)
        if (k != dim && a.size(k) != b.size(k)) {
            error("cat: arguments do not have compatible dimensions");
            return x_M;
        }
    if (a.size() == 0) return b; // both are
    if (a.isstruct() || b.isstruct()) return join_structures(dim, a, b);
    return join_full(dim, a, b);
}

Mm join_same_type(int dim, const Mm &a, const Mm &b) {
    bool matrices = dim <= 2 && a.getndims() == 2 && b.getndims() == 2;
    return matrices ? join_matrices(dim, a, b) : join_arrays(dim, a, b);
}

} // namespace

Mm join(int dim, const Mm &a, const Mm &b) {
    a.warn_uninit();
    b.warn_uninit();
    if (a.gettype() == kn_none || b.gettype() == kn_none) return x_M;
    if (a.gettype() == b.gettype()) return join_same_type(dim, a, b);
    if (a.gettype() == kn_Mm || b.gettype() == kn_Mm) {
        error("Operation can not be performed on mixed cell and numeric matrix");
        return x_M;
    }
    Mm x = a, y = b;
    return convert(x, muint8) && convert(y, muint8) ? join_same_type(dim, x, y) : x_M;
}

} // namespace kn

Mm horzcat(const Mm &a, const Mm &b) { return kn::join(2, a, b); }
Mm vertcat(const Mm &a, const Mm &b) { return kn::join(1, a, b); }
Mm cat(const Mm &dim, Mm a, Mm b) { return kn::join(double_to_int(mdouble(dim).r()), a, b); }
Mm cat(const Mm &dim, Mm a, Mm b, Mm c) { return cat(dim, cat(dim, a, b), c); }
