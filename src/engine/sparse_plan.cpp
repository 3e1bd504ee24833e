// Element operations on sparse values. The group of the operation in the list of operations decides:
//
//     unary_zero               keeps zeros: computed on the stored values
//     product                  zero where one operand is: on the stored values when the other is a non-zero
//                              scalar, else by merge
//     union_                   zero where both are: dense with a non-zero scalar, else by merge
//     all others               dense
//
// Stored values: the operand is seen as a full column of its entries. Merge: both operands are spread over
// the union of their positions, as two full rows. Dense: both are made full, and the result sparse again.
// Results are sparse and store no zeros, but plus and minus with one sparse operand give a full result.
//
// The views have separate headers: the operands do not change, whatever an error handler does meanwhile.

#include "engine/sparse_plan.h"

#include <algorithm>

#include "base/number_tests.h"
#include "base/scratch.h"
#include "engine/element_engine.h"
#include "engine/sparse_reductions.h"
#include "kernels/op_rows.h"
#include "quorvex/sparse.h"
#include "quorvex/startup.h"
#include "value/header.h"

namespace kn {
namespace {

// The stored values of a sparse operand as a full column. The operand must outlive the view, since the view
// forgets the positions.
Mm stored_column(const Mm &a) {
    Mm column = a;
    kn_size n = a.getnnz(), one = n > 0 ? 1 : 0;
    Header::index(column) = nullptr;
    column.setsparse(0);
    column.getndims() = 2;
    kn_size extents[4] = {n, one, one, one};
    std::copy(extents, extents + 4, column.getdims());
    return column;
}

// A full zero is a stored element too.
bool holds_scalar(const Mm &x) { return x.size() == 1 && x.getnnz() > 0; }

struct Operation {
    int complex_result;
    const Mm &dim;
    op_t op;
    int do_dim;
    Mm &extra;

    Mm operator()(const Mm &a, const Mm &b) const {
        return element_operation(complex_result, a, b, dim, op, do_dim, extra);
    }
};

Mm dense(const Operation &run, const Mm &a, const Mm &b) {
    Mm out = run(full(a), full(b));
    return same_block(out, x_M) ? out : sparse(out); // after a report there is nothing to convert
}

// The sparse result of `like`'s size with these values. Without entries they say nothing of its planes.
Mm result(const Operation &run, const Mm &values, kn_size n, const kn_size *positions, const Mm &like) {
    if (values.getnnz() != n || same_block(values, x_M)) return x_M;
    if (n > 0) return sparse_entries(values, positions, like);
    return Mm(run.complex_result, 1, 0, like.getndims(), like.getdims(), kn_double);
}

// The operation on the entries of `matrix`; operand `a` or `b` is that matrix, the other is used as it is.
Mm on_stored(const Operation &run, const Mm &a, const Mm &b, bool first) {
    Mm matrix = sparse(first ? a : b);
    if (!matrix.issparse()) return x_M;
    Mm column = stored_column(matrix), other = first ? b : a;
    if (other.issparse()) other = full(other);
    Mm values = first ? run(column, other) : run(other, column);
    return result(run, values, matrix.getnnz(), matrix.getindex(), matrix);
}

// Which of two operands stores a position.
enum : unsigned char { in_a = 1, in_b = 2 };

// The union of two ascending lists. How many positions it has. Which list goes on is no branch: it can't be
// foretold. That both do can be, in matrices of one pattern.
kn_size unite(const kn_size *a, kn_size na, const kn_size *b, kn_size nb, kn_size *positions,
              unsigned char *where) {
    kn_size i = 0, j = 0, n = 0;
    for (; i < na && j < nb; ++n) {
        const kn_size p = a[i], q = b[j];
        if (p == q) {
            positions[n] = p;
            where[n] = in_a | in_b;
            ++i, ++j;
            continue;
        }
        const bool from_a = p < q;
        positions[n] = from_a ? p : q;
        where[n] = from_a ? in_a : in_b;
        i += from_a;
        j += !from_a;
    }
    for (; i < na; ++n) positions[n] = a[i++], where[n] = in_a;
    for (; j < nb; ++n) positions[n] = b[j++], where[n] = in_b;
    return n;
}

// One operand's values at each position of the union, 0 where it stores nothing.
Mm spread(const Mm &a, const unsigned char *where, unsigned char in_this, kn_size n) {
    Mm row(a.isc(), 0, 0, 1, n, kn_double);
    if (lacks(row, n)) return row;
    const kn_size last = std::max<kn_size>(a.getnnz() - 1, 0);
    for (const auto &[to, from] : {std::pair(row.addr(), a.addr()), std::pair(row.addi(), a.addi())}) {
        if (!to) continue;
        for (kn_size k = 0, e = 0; k < n; ++k) {
            const bool here = where[k] & in_this;
            const double x = from[std::min(e, last)];
            to[k] = here ? x : 0;
            e += here;
        }
    }
    return row;
}

Mm merge(const Operation &run, const Mm &full_or_sparse_a, const Mm &full_or_sparse_b) {
    Mm a = sparse(full_or_sparse_a), b = sparse(full_or_sparse_b);
    if (!a.issparse() || !b.issparse()) return x_M;
    const Mm &like = b.size() == 1 ? a : b;
    if (a.size() > 1 && b.size() > 1 && !same_size(a, b)) {
        report_incompatible(op_name(run.op), full_or_sparse_a, full_or_sparse_b);
        return x_M;
    }

    // The list of a sparse value without entries has the room, and the ownership, for the union. Positions
    // outside the result, of a matrix against an empty value, are left out.
    kn_size na = a.getnnz(), nb = b.getnnz();
    const kn_size *ia = a.getindex(), *ib = b.getindex();
    Mm list(0, 1, na + nb, std::max<kn_size>(na + nb, 1), 1, kn_double);
    if (lacks(list, na + nb)) return x_M;
    kn_size *positions = list.getindex();
    Scratch<unsigned char> where(na + nb);
    if (!where) return x_M;
    kn_size n = unite(ia, na, ib, nb, positions, where.get());
    while (n > 0 && positions[n - 1] >= like.size()) --n;

    Mm row_a = spread(a, where.get(), in_a, n), row_b = spread(b, where.get(), in_b, n);
    if (lacks(row_a, n) || lacks(row_b, n)) return x_M;
    return result(run, run(row_a, row_b), n, positions, like);
}

// Whether the operation gives 0 where nothing is stored, beside a scalar.
bool keeps_zeros(const Operation &run, const Mm &a, const Mm &b, bool scalar_a, bool scalar_b) {
    const Mm x = run(scalar_a ? full(a) : zero_M, scalar_b ? full(b) : zero_M);
    return x.size() == 1 && x.gettype() == kn_double && !is_nonzero(x.addr(), x.addi(), 0);
}

} // namespace

Mm sparse_entries(const Mm &values, const kn_size *positions, const Mm &like) {
    Mm x = values;
    if (x.gettype() != kn_double) x.deepcopy(values, kn_double);
    kn_size n = x.getnnz();
    Mm out(x.isc(), 1, n, like.getndims(), like.getdims(), kn_double);
    if (lacks(out, n)) return x_M;
    std::copy(positions, positions + n, out.getindex());
    std::copy(x.addr(), x.addr() + n, out.addr());
    if (x.isc()) std::copy(x.addi(), x.addi() + n, out.addi());
    out.setlogical(x.islogical());
    out.resparse();
    check(out);
    return out;
}

Mm sparse_operation(int complex_result, const Mm &a, const Mm &b, const Mm &dim, op_t op, int do_dim,
                    Mm &extra) {
    Operation run = {complex_result, dim, op, do_dim, extra};
    if ((op == op_plus || op == op_minus) && a.issparse() != b.issparse()) return run(full(a), full(b));

    SparseGroup group = is_op(op) ? op_rows[op].group : SparseGroup::binary_full;
    bool scalar_b = !do_dim && a.size() > 0 && a.size() != b.size() && holds_scalar(b);
    bool scalar_a = !do_dim && b.size() > 0 && a.size() != b.size() && holds_scalar(a);
    switch (group) {
    case SparseGroup::unary_zero: return on_stored(run, a, b, true);
    case SparseGroup::product:
        if (scalar_a || scalar_b) return on_stored(run, a, b, scalar_b);
        return merge(run, a, b);
    case SparseGroup::union_:
        if (!scalar_a && !scalar_b) return merge(run, a, b);
        [[fallthrough]];
    case SparseGroup::binary_full:
        if (do_dim || std::max(a.size(), b.size()) < too_large_for_full ||
            !keeps_zeros(run, a, b, scalar_a, scalar_b))
            return dense(run, a, b);
        return scalar_a || scalar_b ? on_stored(run, a, b, scalar_b) : merge(run, a, b);
    case SparseGroup::unary_full: return dense(run, a, b);
    case SparseGroup::reduction:
        if (const int d = dimension_in(dim);
            a.issparse() && a.size() >= too_large_for_full && d >= 0 && d <= 4 && reduces_entries(op))
            return reduce_entries(complex_result, a, d, op, extra);
        return dense(run, a, b);
    }
    return x_M;
}

} // namespace kn
