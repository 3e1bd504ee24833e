// The element engine: the constructor through which every element operation passes.
//
// It settles in this order: values without content, sparse operands, cells and classes, mixed element types,
// empty operands, the shape of the result. Then it allocates the result once and hands it to the loops of the
// element type. Nothing of the object under construction is written before the result is complete, so that an
// error may be thrown anywhere.

#include "engine/element_engine.h"

#include <algorithm>
#include <atomic>

#include "base/parallel.h"
#include "base/poll.h"
#include "engine/sparse_plan.h"
#include "kernels/kernel_table.h"
#include "kernels/op_core.h"
#include "kernels/op_rows.h"
#include "quorvex/classes.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"
#include "value/number_argument.h"

namespace kn {

int dimension_in(const Mm &dim) { return dim.size() < 1 ? -1 : double_to_int(first_number(dim)); }

namespace {

// How a result lies to its operands.
struct Shape {
    kn_size dims[4];
    kn_size len = 1, stride = 1, outer = 1;
};

// -- Empty operands: the empty double, but for these.

Mm of_empty(const Mm &a, const Mm &b, op_t op, int d) {
    bool no_a = a.getnnz() < 1, no_b = b.getnnz() < 1;
    switch (op) {
    case op_all:
    case op_prod:
        if (d == 0) return 1.0;
        break;
    case op_any:
    case op_sum:
        if (d == 0) return 0.0;
        break;
    case op_eq: return no_a && no_b ? 1.0 : 0.0;
    case op_ne: return no_a != no_b ? 1.0 : 0.0;
    default: break;
    }
    return Mm();
}

// -- Shapes. False after a report.

bool incompatible(const Mm &a, const Mm &b, op_t op) {
    report_incompatible(op_name(op), a, b);
    return false;
}

bool shape_along(const Mm &a, const Mm &b, op_t op, int d, Shape &s) {
    if (d < 0) {
        error("%s: dim argument may not be empty", op_name(op));
        return false;
    }
    if (d == 0) d = a.nsingleton();
    if (d > 4) {
        error("%s: dimension=%d does not exist for matrix %s", op_name(op), d, kn_display_name(a));
        return false;
    }
    std::copy(a.getdims(), a.getdims() + 4, s.dims);
    kn_size *extent = &s.dims[d - 1];
    s.len = *extent;
    for (int k = 0; k < 4; ++k) (k < d - 1 ? s.stride : s.outer) *= k == d - 1 ? 1 : s.dims[k];
    switch (op) {
    case op_diff: --*extent; break;
    case op_del2:
    case op_gradient:
        // One coordinate for each element of a slice.
        if (b.getnnz() < s.len) return incompatible(a, b, op);
        break;
    case op_cumprod:
    case op_cumsum:
    case op_unwrap: break;
    case op_all:
    case op_any:
    case op_max_1:
    case op_median:
    case op_min_1:
    case op_prod:
    case op_sum: *extent = 1; break;
    default:
        error("op_dims: wrong do_dim");
        // The extents stay a's: b must fit them.
        if (b.getnnz() != 1 && b.getnnz() < a.getnnz()) return incompatible(a, b, op);
    }
    return true;
}

bool shape_of_elements(const Mm &a, const Mm &b, op_t op, Shape &s) {
    if (b.getnnz() != 1 && a.getnnz() != 1 && !same_size(a, b)) return incompatible(a, b, op);
    const Mm &like = b.getnnz() == 1 ? a : b;
    std::copy(like.getdims(), like.getdims() + 4, s.dims);
    return true;
}

// -- The loops.

template <class T> Operand<T> operand(const Mm &m) {
    T *tag = nullptr;
    return {m.getpr(tag), m.getpi(tag), m.getnnz() == 1 ? 0 : 1};
}

// Work of an element-wise loop is shared among threads from `shared_from` on, by pieces of about `grain`;
// both in the unit of Loops::cost. A helper that has to be woken needs the time of 1.2e5 units.
constexpr ptrdiff_t shared_from = 300000, grain = 50000;

bool is_shared(ptrdiff_t n, ptrdiff_t cost) { return n >= shared_from / cost; }

// Between portions of this much work, 15 ms of one thread, a call can be interrupted.
constexpr ptrdiff_t portion = ptrdiff_t{60} << 20;

// f(begin, end) on ranges of n elements. False when interrupted.
template <class F> bool by_ranges(ptrdiff_t n, ptrdiff_t cost, F f) {
    if (!is_shared(n, cost)) {
        f(ptrdiff_t(0), n);
        return true;
    }
    for (ptrdiff_t from = 0; from < n;) {
        const ptrdiff_t size = std::min(n - from, std::max<ptrdiff_t>(portion / cost, 64) / 64 * 64);
        parallel_for(size, std::max<ptrdiff_t>(grain / cost, 64) / 64 * 64,
                     [=](ptrdiff_t begin, ptrdiff_t end) { f(from + begin, from + end); });
        from += size;
        if (from < n && interrupted()) return false;
    }
    return true;
}

// The same for slices, by whole outer ones.
template <class T> bool by_slices(const Loops<T> &loops, const Slices<T> &s) {
    const ptrdiff_t each = s.len * s.stride, results = s.total / s.outer;
    const ptrdiff_t step = std::max<ptrdiff_t>(portion / 16 / each, 1); // along slices an element costs more
    auto from = [](auto *p, ptrdiff_t k) { return p ? p + k : p; };
    for (ptrdiff_t o = 0; o < s.outer; o += step) {
        if (o > 0 && interrupted()) return false;
        Slices<T> part = s;
        part.outer = std::min(step, s.outer - o);
        part.total = part.outer * results;
        part.are = from(s.are, o * each);
        part.aim = from(s.aim, o * each);
        part.re = from(s.re, o * results);
        part.im = from(s.im, o * results);
        part.position = from(s.position, o * results);
        loops.along(part);
    }
    return true;
}

// A scalar operand moved to `first`.
template <class T> void settle(Operand<T> &o, T (&first)[2]) {
    if (o.step || !o.re) return;
    first[0] = *o.re;
    if (o.im) first[1] = *o.im;
    o = {first, o.im ? first + 1 : nullptr, 0};
}

template <class T> bool run_elements(const Loops<T> &loops, Elements<T> e) {
    const int cost = loops.cost[e.im || e.a.im || e.b.im];
    if (!is_shared(e.n, cost)) {
        loops.elements(e);
        return true;
    }
    T a[2], b[2]; // no range may find a scalar overwritten by another one's results
    settle(e.a, a);
    settle(e.b, b);
    return by_ranges(e.n, cost, [&](ptrdiff_t begin, ptrdiff_t end) { loops.elements(part(e, begin, end)); });
}

// False when interrupted.
template <class T>
bool run_loops(Mm &out, const Mm &a, const Mm &b, op_t op, const Shape &s, double *position) {
    T *tag = nullptr;
    T *re = out.getpr(tag), *im = out.getpi(tag);
    ptrdiff_t n = out.getnnz();
    if (!is_op(op)) {
        error("op_core: unknown op");
        clear(re, im, n);
        return true;
    }
    const Loops<T> &loops = loops_of<T>()[op];
    if (loops.elements) return run_elements(loops, {re, im, n, operand<T>(a), operand<T>(b)});
    // Without a dimension one element is looked at; the others are zero.
    if (s.len * s.stride * s.outer < a.getnnz()) clear(re, im, n);
    return by_slices(loops, {re, im, n, a.getpr(tag), a.getpi(tag), b.getpr(tag), b.getpi(tag), s.len,
                             s.stride, s.outer, position});
}

bool run(Mm &out, const Mm &a, const Mm &b, op_t op, const Shape &s, double *position) {
    if (a.gettype() == kn_uint8)
        return run_loops<unsigned char>(out, a, b, op, s, position);
    else
        return run_loops<double>(out, a, b, op, s, position);
}

// False when there is no memory for the positions, or interrupted.
bool with_positions(Mm &out, const Mm &a, const Mm &b, op_t op, const Shape &s, Mm &extra) {
    Mm positions(0, 0, 0, 4, s.dims, kn_double);
    if (lacks(positions, out.getnnz())) return false;
    std::fill(positions.addr(), positions.addr() + positions.getnnz(), 0.0);
    if (!run(out, a, b, op, s, positions.addr())) return false;
    extra = positions;
    return true;
}

// All returns name `out`, so that it is built where the caller wants it.
Mm computed(int complex_result, const Mm &a, const Mm &b, op_t op, const Shape &s, Mm &extra) {
    kn_matrix_types t = a.gettype();
    Mm out(complex_result, 0, 0, 4, s.dims, t);
    kn_size n = product(4, s.dims);
    if (n < 0 || lacks(out, n)) {
        out = x_M;
        return out;
    }
    bool wanted = (op == op_max_1 || op == op_min_1) && !extra.issamename(kn_l_name);
    if (!(wanted ? with_positions(out, a, b, op, s, extra) : run(out, a, b, op, s, nullptr))) out = x_M;
    check(out);
    return out;
}

Mm operation(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim, Mm &extra) {
    if (a.gettype() == kn_none) a.warn_uninit();
    if (b.gettype() == kn_none) b.warn_uninit();
    if (a.issparse() || b.issparse()) return sparse_operation(complex_result, a, b, dim, op, do_dim, extra);

    kn_matrix_types t = a.gettype();
    if (t == kn_Mm || b.gettype() == kn_Mm) {
        if (a.isstruct() || b.isstruct()) return call_class_function(op_name(op), a, b);
        error("Operation can not be performed on non-numerical datatypes");
        return x_M;
    }
    if (t != b.gettype()) {
        if (t != kn_uint8 && b.gettype() != kn_uint8) {
            error("M::M(op): inconsistent datatypes");
            return x_M;
        }
        Mm bytes_a = muint8(a), bytes_b = muint8(b);
        if (bytes_a.gettype() != kn_uint8 || bytes_b.gettype() != kn_uint8) return x_M;
        return operation(complex_result, bytes_a, bytes_b, dim, op, do_dim, extra);
    }
    if (a.getnnz() < 1 || b.getnnz() < 1) return of_empty(a, b, op, dimension_in(dim));

    Shape s;
    bool fits = do_dim ? shape_along(a, b, op, dimension_in(dim), s) : shape_of_elements(a, b, op, s);
    if (!fits) return x_M;
    if (do_dim && op == op_diff && s.len < 2) return Mm();
    return computed(complex_result, a, b, op, s, extra);
}

} // namespace

bool element_loops(Mm &out, const Mm &a, const Mm &b, op_t op) {
    return run(out, a, b, op, Shape(), nullptr);
}

Realness real_elements(op_t op, double *out, const double *x, ptrdiff_t n) {
    const KernelTable &table = kernels();
    const auto within = table.numbers[op].within;
    std::atomic<bool> left = false;
    const bool done = by_ranges(n, table.doubles[op].cost[0], [&](ptrdiff_t begin, ptrdiff_t end) {
        if (left.load(std::memory_order_relaxed)) return;
        if (!within(out + begin, x + begin, end - begin)) left.store(true, std::memory_order_relaxed);
    });
    if (!done) return Realness::interrupted;
    return left ? Realness::left : Realness::real;
}

void report_incompatible(const char *function, const Mm &a, const Mm &b) {
    error("%s: incompatible dimensions of: %s, %s", function, kn_display_name(a), kn_display_name(b));
}

Mm element_operation(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim,
                     Mm &extra) {
    Mm out = operation(complex_result, a, b, dim, op, do_dim, extra);
    out.getflags().scalar_only = 0; // a class method may have set it
    return out;
}

} // namespace kn

Mm::Mm(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim, Mm &extra)
    : Mm(kn::element_operation(complex_result, a, b, dim, op, do_dim, extra)) {}
