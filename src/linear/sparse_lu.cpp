#include "linear/sparse_lu.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <numeric>

#include <slu_ddefs.h>

#include "base/number_tests.h"
#include "base/poll.h"
#include "engine/blas_call.h"
#include "linear/exact_rank.h"
#include "linear/superlu_memory.h"
#include "quorvex/messages.h"
#include "value/constants.h"
#include "value/header.h"

namespace kn {
namespace {

// visit(in_l, i, j, v) for the entries of l below the diagonal and of u that aren't zero, column by column. A
// block of columns of l has one list of rows; on and above the diagonal it holds elements of u.
template <class F> void each_entry(const SuperMatrix &lower, const SuperMatrix &upper, F visit) {
    const auto &l = *static_cast<const SCformat *>(lower.Store);
    const auto &u = *static_cast<const NCformat *>(upper.Store);
    const double *in_l = static_cast<const double *>(l.nzval), *in_u = static_cast<const double *>(u.nzval);
    auto entry = [&](bool below, int i, int j, double v) {
        if (v != 0) visit(below, i, j, v);
    };
    for (int j = 0; j < upper.ncol; ++j) {
        for (int k = u.colptr[j]; k < u.colptr[j + 1]; ++k) entry(false, u.rowind[k], j, in_u[k]);
        const int block = l.sup_to_col[l.col_to_sup[j]], *row = l.rowind + l.rowind_colptr[block];
        const int begin = l.nzval_colptr[j], rows = l.nzval_colptr[j + 1] - begin;
        for (int k = 0; k < rows; ++k) entry(k > j - block, row[k], j, in_l[begin + k]);
    }
}

// Whether a pivot is so small, relative to its column of a and of u, that it may be a rounded zero. False for
// a matrix with infinities or NaN.
bool suspicious(const CompressedColumns &a, const int *column_order, const SuperMatrix &l,
                const SuperMatrix &u, double *pivot, double *largest) {
    constexpr double small = 1e-8;
    const int n = a.cols();
    for (int c = 0; c < n; ++c) {
        double &most = largest[column_order[c]] = 0;
        for (int k = a.start()[c]; k < a.start()[c + 1]; ++k) {
            if (!is_finite(a.re()[k])) return false;
            most = std::max(most, std::fabs(a.re()[k]));
        }
        pivot[c] = 0;
    }
    each_entry(l, u, [&](bool below, int i, int j, double v) {
        if (i == j) pivot[j] = std::fabs(v);
        if (!below) largest[j] = std::max(largest[j], std::fabs(v));
    });
    for (int j = 0; j < n; ++j)
        if (pivot[j] < small * largest[j]) return true;
    return false;
}

} // namespace

// -- Systems.

// The work for SuperluCall::run.
struct SparseLu::System {
    const CompressedColumns *a;
    int *column_order, *row_order;
    superlu_options_t options;
    SuperMatrix l, u;
    int info;
    double *x; // right-hand sides, q of them
    int q;

    static void factor(void *context) {
        System &s = *static_cast<System *>(context);
        const int n = s.a->cols();
        SuperMatrix a, permuted;
        SuperLUStat_t statistics;
        GlobalLU_t global;
        StatInit(&statistics);
        dCreate_CompCol_Matrix(&a, n, n, s.a->entries(), s.a->re(), s.a->row(), s.a->start(), SLU_NC, SLU_D,
                               SLU_GE);
        if (s.options.ColPerm != MY_PERMC) get_perm_c(s.options.ColPerm, &a, s.column_order);
        int *parent = intMalloc(n);
        sp_preorder(&s.options, &a, s.column_order, parent, &permuted);
        dgstrf(&s.options, &permuted, sp_ienv(2), sp_ienv(1), parent, nullptr, 0, s.column_order, s.row_order,
               &s.l, &s.u, &global, &statistics, &s.info);
        SUPERLU_FREE(parent);
        Destroy_CompCol_Permuted(&permuted);
        Destroy_SuperMatrix_Store(&a);
        StatFree(&statistics);
    }

    static void substitute(void *context) {
        System &s = *static_cast<System *>(context);
        SuperMatrix x;
        SuperLUStat_t statistics;
        StatInit(&statistics);
        dCreate_Dense_Matrix(&x, s.a->cols(), s.q, s.x, s.a->cols(), SLU_DN, SLU_D, SLU_GE);
        dgstrs(NOTRANS, &s.l, &s.u, s.column_order, s.row_order, &x, &statistics, &s.info);
        Destroy_SuperMatrix_Store(&x);
        StatFree(&statistics);
    }
};

SparseLu::SparseLu(const CompressedColumns &a, const int *order)
    : n_(a.cols()), column_order_(n_), row_order_(n_), system_(1) {
    if (!column_order_ || !row_order_ || !system_) return;
    constexpr int natural = 32; // up to here no other order is faster
    const colperm_t filling_least = symmetric_pattern(a, row_order_.get()) ? MMD_AT_PLUS_A : COLAMD;
    const int without = match_rows(a, row_order_.get());
    if (without < 0) return;
    singular_ = without > 0;
    done_ = singular_ || factor(a, order, order || n_ <= natural ? MY_PERMC : filling_least);
}

bool SparseLu::factor(const CompressedColumns &a, const int *order, int way) {
    System &s = *system_.get();
    s = {&a, column_order_.get(), row_order_.get(), {}, {}, {}, 0, nullptr, 0};
    set_default_options(&s.options);
    s.options.ColPerm = static_cast<colperm_t>(way);
    if (order)
        std::copy_n(order, n_, column_order_.get());
    else
        std::iota(column_order_.get(), column_order_.get() + n_, 0);
    if (interrupted()) return false;
    BlasCall blas(BlasWork::alone);
    if (!blas || !call_.run(System::factor, &s)) return false;
    if (s.info > n_) return out_of_memory(), false;
    singular_ = s.info != 0;
    Scratch<double> pivot(n_), largest(n_);
    if (!pivot || !largest) return false;
    if (singular_ || !suspicious(a, s.column_order, s.l, s.u, pivot.get(), largest.get())) return true;
    const Rank rank = exact_rank(a, s.column_order, s.row_order);
    singular_ = rank == Rank::deficient;
    return rank != Rank::unknown;
}

bool SparseLu::solve(double *x, kn_size q) {
    if (singular_) {
        std::fill_n(x, n_ * q, raw_nan);
        return true;
    }
    System &s = *system_.get();
    const int most = std::max(1, (1 << 20) / n_);
    for (kn_size j = 0; j < q; j += s.q) {
        if (interrupted()) return false;
        s.x = x + j * n_;
        s.q = static_cast<int>(std::min<kn_size>(most, q - j));
        BlasCall blas(BlasWork::alone);
        if (!blas || !call_.run(System::substitute, &s)) return false;
    }
    return true;
}

namespace {

// -- Factors.

struct Factors {
    const CompressedColumns &a;
    int *column_order, *row_order, *parent;
    SuperMatrix l, u;
    int info;
};

// Omits the step before the factorisation that would reorder the columns by their elimination tree. The tree
// is replaced by a chain, each column the child of the next one; its leaves aren't merged.
void factor(void *context) {
    Factors &f = *static_cast<Factors *>(context);
    const int n = f.a.cols();
    NCPformat store;
    store.nnz = f.a.entries();
    store.nzval = f.a.re();
    store.rowind = f.a.row();
    store.colbeg = f.a.start();
    store.colend = f.a.start() + 1;
    SuperMatrix a = {SLU_NCP, SLU_D, SLU_GE, n, n, &store};
    superlu_options_t options;
    set_default_options(&options);
    options.ColPerm = NATURAL;
    SuperLUStat_t statistics;
    StatInit(&statistics);
    GlobalLU_t global;
    dgstrf(&options, &a, 1, sp_ienv(1), f.parent, nullptr, 0, f.column_order, f.row_order, &f.l, &f.u,
           &global, &statistics, &f.info);
    StatFree(&statistics);
}

void destroy(void *context) {
    Factors &f = *static_cast<Factors *>(context);
    Destroy_SuperNode_Matrix(&f.l);
    Destroy_CompCol_Matrix(&f.u);
}

// Structurally singular columns have no pivot: they get a stored zero.
bool complete(const CompressedColumns &a, CompressedColumns &out) {
    const int n = a.cols();
    Scratch<int> row_of(n), column_of(n);
    if (!row_of || !column_of || match_rows(a, row_of.get()) < 0) return false;
    std::fill_n(column_of.get(), n, -1);
    for (int c = 0; c < n; ++c)
        if (row_of[c] >= 0) column_of[row_of[c]] = c;
    int spare = 0;
    for (int c = 0; c < n; ++c) {
        out.begin_column();
        for (int k = a.start()[c]; k < a.start()[c + 1]; ++k) out.add(a.row()[k], a.re()[k], 0, true);
        if (row_of[c] >= 0) continue;
        while (column_of[spare] >= 0) ++spare;
        out.add(spare++, 0, 0, true);
    }
    return true;
}

// The entries of a sparse matrix in any order.
class UnorderedEntries {
  public:
    explicit UnorderedEntries(int n) : list_(n) {}
    explicit operator bool() const { return static_cast<bool>(list_); }
    void add(kn_size position, double v) { list_[count_++] = {position, v}; }

    // n by n; empty when memory is exhausted.
    Mm matrix(int n) {
        Entry *first = list_.get(), *last = first + count_;
        std::sort(first, last, [](const Entry &a, const Entry &b) { return a.position < b.position; });
        Mm out(0, 1, count_, n, n, kn_double);
        if (lacks(out, count_)) return Mm();
        for (int k = 0; k < count_; ++k) {
            out.getindex()[k] = first[k].position;
            out.addr()[k] = first[k].value;
        }
        check(out);
        return out;
    }

  private:
    struct Entry {
        kn_size position;
        double value;
    };
    Scratch<Entry> list_;
    int count_ = 0;
};

} // namespace

kn_size most_entries() { return INT_MAX / sp_ienv(6); }

bool sparse_factors(const Mm &a, bool ordered, Mm &l, Mm &u, Mm &p) {
    const int n = static_cast<int>(a.rows());
    const kn_size order = n;
    CompressedColumns entries(a, n);
    if (!entries) return false;
    CompressedColumns all(n, n, entries.entries() + n, false);
    Scratch<int> column_order(n), row_order(n), parent(n);
    if (!all || !column_order || !row_order || !parent || !complete(entries, all)) return false;
    if (all.entries() > most_entries()) { // with zeros stored where columns have no pivot
        error("lu: matrix too large for SuperLU");
        return false;
    }
    for (int c = 0; c < n; ++c) column_order[c] = c, parent[c] = c + 1;

    Factors f = {all, column_order.get(), row_order.get(), parent.get(), {}, {}, 0};
    SuperluCall call;
    BlasCall blas(BlasWork::alone);
    if (!blas || !call.run(factor, &f)) return false;
    if (f.info > n) return out_of_memory(), false;
    Scratch<int> row_from(n);
    if (!row_from) return false;
    for (int r = 0; r < n; ++r) row_from[row_order[r]] = r;

    int in_l = n, in_u = 0;
    each_entry(f.l, f.u, [&](bool lower, int, int, double) { ++(lower ? in_l : in_u); });
    UnorderedEntries of_l(in_l), of_u(in_u), of_p(n);
    if (!of_l || !of_u || !of_p) return false;
    auto row_in_l = [&](int i) { return ordered ? i : row_from[i]; };
    for (int j = 0; j < n; ++j) {
        of_l.add(j * order + row_in_l(j), 1);
        of_p.add(j * order + row_order[j], 1);
    }
    each_entry(f.l, f.u, [&](bool lower, int i, int j, double v) {
        lower ? of_l.add(j * order + row_in_l(i), v) : of_u.add(j * order + i, v);
    });
    l = of_l.matrix(n);
    u = of_u.matrix(n);
    p = of_p.matrix(n);
    return call.run(destroy, &f) && l.size() > 0 && u.size() > 0 && p.size() > 0;
}

} // namespace kn
