// No holder of a block ever sees another's change.
//
// Variables, elements of a cell and fields of a structure exchange values in every pattern (copies, moves,
// parameters by value, whole containers) while operations on temporaries and assignments write in place. Each
// holder has a model that shares nothing; after each step all of them must agree, to the bit.
#include <utility>

#include "base/parallel.h"
#include "kernels/kernel_table.h"
#include "support/support.h"

using namespace test;

namespace {

#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
constexpr int rounds = 2000;
#else
constexpr int rounds = 10000;
#endif

enum class Kind { real, complex, bytes };

struct Model {
    bool complex = false;
    std::vector<double> re, im;

    int size() const { return static_cast<int>(re.size()); }
};

double narrowed(Kind kind, double x) {
    return kind == Kind::bytes ? static_cast<unsigned char>(static_cast<int>(x)) : x;
}

template <class F> Model combined(Kind kind, const Model &a, const Model &b, F f) {
    Model out;
    out.complex = a.complex || b.complex;
    for (int k = 0; k < std::max(a.size(), b.size()); ++k) {
        size_t i = a.size() == 1 ? 0 : static_cast<size_t>(k), j = b.size() == 1 ? 0 : static_cast<size_t>(k);
        auto [re, im] = f(a.re[i], a.im[i], b.re[j], b.im[j]);
        out.re.push_back(narrowed(kind, re));
        out.im.push_back(out.complex ? im : 0);
    }
    return out;
}
using Pair = std::pair<double, double>;
Pair sum(double a, double b, double c, double d) { return {a + c, b + d}; }
Pair difference(double a, double b, double c, double d) { return {a - c, b - d}; }
Pair product(double a, double b, double c, double d) { return {a * c - b * d, a * d + b * c}; }
Pair real_product(double a, double, double c, double) { return {a * c, 0}; }

// What a function does with a parameter that it took by value.
Mm bumped(Mm x, const Mm &at, const Mm &by) {
    x(at) = by;
    return x;
}

class Sharing {
  public:
    Sharing(Kind kind, int n, unsigned seed) : kind_(kind), n_(n), random_(seed) {
        for (int k = 0; k < holders; ++k) store(k, fresh());
    }

    void run() {
        for (int round = 0; round < rounds; ++round) {
            int what = random_.below(steps);
            step(what);
            for (int k = 0; k < holders; ++k)
                ASSERT_TRUE(agrees(k)) << "holder " << k << " after step " << what << " of round " << round;
        }
    }

  private:
    // Holders 0 to 4 are variables, 5 to 7 elements of a cell, 8 and 9 fields, 10 and on elements of a copy
    // of the cell.
    static constexpr int variables = 5, cells = 3, fields = 2, holders = variables + 2 * cells + fields;
    static constexpr int steps = 12;

    using Value = std::pair<Mm, Model>;

    Kind kind_;
    int n_;
    Random random_;
    Mm x_[variables] = {}, c_, s_, d_;
    Model models_[holders];

    Value fresh() {
        Value v;
        int n = random_.below(3) ? n_ : 1;
        v.second.complex = kind_ == Kind::complex && random_.below(2);
        v.first = Mm(v.second.complex, 0, 0, 1, n, kn_double);
        for (int k = 0; k < n; ++k) {
            v.second.re.push_back(random_.below(9));
            v.second.im.push_back(v.second.complex ? 1 + random_.below(9) : 0);
            v.first.addr()[k] = v.second.re.back();
            if (v.second.complex) v.first.addi()[k] = v.second.im.back();
        }
        if (kind_ == Kind::bytes) v.first = muint8(v.first);
        return v;
    }

    static double index(int k) { return k + 1.0; }
    Mm value(int k) {
        if (k < variables) return x_[k];
        if (k < variables + cells) return c_.br(index(k - variables));
        if (k < variables + cells + fields) return s_.member(k % 2 ? "a" : "b");
        return d_.br(index(k - variables - cells - fields));
    }
    void store(int k, const Value &v) {
        if (k < variables)
            x_[k] = v.first;
        else if (k < variables + cells)
            c_.br(index(k - variables)) = v.first;
        else if (k < variables + cells + fields)
            s_.member(k % 2 ? "a" : "b") = v.first;
        else
            d_.br(index(k - variables - cells - fields)) = v.first;
        models_[k] = v.second;
    }
    void write(int k, const Mm &at, const Mm &by) {
        if (k < variables)
            x_[k](at) = by;
        else if (k < variables + cells)
            c_.br(index(k - variables))(at) = by;
        else if (k < variables + cells + fields)
            s_.member(k % 2 ? "a" : "b")(at) = by;
        else
            d_.br(index(k - variables - cells - fields))(at) = by;
    }

    bool agrees(int k) {
        Mm v = value(k);
        const Model &m = models_[k];
        if (v.size() != m.size() || (v.isc() && !m.complex)) return false;
        Mm re = mdouble(v);
        auto equal = [](double x, double y) { return x == y || (x != x && y != y); };
        for (int e = 0; e < m.size(); ++e)
            if (!equal(re.addr()[e], m.re[static_cast<size_t>(e)]) ||
                (v.isc() && !equal(v.addi()[e], m.im[static_cast<size_t>(e)])))
                return false;
        return true;
    }

    void step(int what) {
        int to = random_.below(holders), h[3];
        for (int &k : h) k = random_.below(holders);
        const Model &a = models_[h[0]], &b = models_[h[1]], &c = models_[h[2]];
        Mm va = value(h[0]), vb = value(h[1]), vc = value(h[2]);
        bool wide = a.size() == b.size() || a.size() == 1 || b.size() == 1;
        auto times_model = kind_ == Kind::complex ? product : real_product;
        switch (what) {
        case 0: return store(to, fresh());
        case 1: return store(to, {va, a});
        case 2: // both operands shared
            if (wide) store(to, {va + vb, combined(kind_, a, b, sum)});
            return;
        case 3: // a temporary on the right, and one on the left of that
            store(to, {va + (vb - vc), combined(kind_, a, combined(kind_, b, c, difference), sum)});
            return;
        case 4:
            store(to, {(va + vb) - vc, combined(kind_, combined(kind_, a, b, sum), c, difference)});
            return;
        case 5: { // two temporaries; one result is looked at again after it was an operand
            Mm t = va + vb, u = t, v = std::move(t) - (vc + va);
            Model mt = combined(kind_, a, b, sum), ma = combined(kind_, c, a, sum);
            store(to, {v, combined(kind_, mt, ma, difference)});
            store((to + 1) % holders, {u, mt});
            return;
        }
        case 6: { // one element, in place or in a copy
            int k = random_.below(models_[to].size()), x = random_.below(200);
            write(to, index(k), static_cast<double>(x));
            models_[to].re[static_cast<size_t>(k)] = x;
            models_[to].im[static_cast<size_t>(k)] = 0;
            return;
        }
        case 7: { // a parameter by value
            int k = random_.below(a.size());
            Model m = a;
            m.re[static_cast<size_t>(k)] = 7;
            m.im[static_cast<size_t>(k)] = 0;
            store(to, {bumped(va, index(k), 7.0), m});
            return;
        }
        case 8: // the container as a whole
            d_ = c_;
            for (int k = 0; k < cells; ++k) models_[holders - cells + k] = models_[variables + k];
            return;
        case 9: { // moved away, then filled anew
            int v = random_.below(variables);
            Model m = models_[v];
            Mm taken = std::move(x_[v]) + va;
            store(v, fresh());
            store(to, {taken, combined(kind_, m, h[0] == v ? m : a, sum)});
            return;
        }
        case 10: // the same value on both sides
            store(to, {(va + 1.0) - va,
                       combined(kind_, combined(kind_, a, {false, {1}, {0}}, sum), a, difference)});
            return;
        case 11:
            if (a.size() == b.size()) store(to, {times(va + 0.0, vb), combined(kind_, a, b, times_model)});
            // Numbers must not run away.
            for (double &x : models_[to].re)
                if (!(std::fabs(x) < 1e6)) return store(to, fresh());
            return;
        default: return;
        }
    }
};

TEST(Sharing, holders_never_see_each_other) {
    for (const kn::KernelTable *const *table = kn::available_kernels(); *table; ++table) {
        const kn::KernelTable &last = kn::use_kernels(**table);
        for (Kind kind : {Kind::real, Kind::complex, Kind::bytes})
            for (int n : {2, 9, 40}) Sharing(kind, n, static_cast<unsigned>(n)).run();
        kn::use_kernels(last);
    }
}

// Large enough for threads, with one and with several.
TEST(Sharing, large_temporaries) {
    Mm a = randn(700.0, 1000.0), b = randn(700.0, 1000.0);
    for (int threads : {1, 3}) {
        kn::set_thread_count(threads);
        Mm c = a, d = a;
        c = c + times(b, b) - a;
        d(1.0) = 5.0;
        kn::set_thread_count(0);
        for (int k = 0; k < a.size(); ++k) {
            double x = b.addr()[k] * b.addr()[k];
            ASSERT_EQ(c.addr()[k], (a.addr()[k] + x) - a.addr()[k]) << k << " with threads: " << threads;
        }
        EXPECT_EQ(d.r(1.0), 5.0);
        EXPECT_NE(a.r(1.0), 5.0);
    }
}

} // namespace
