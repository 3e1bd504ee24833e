// No holder of a block ever sees another's change.
//
// Variables, elements of a cell and fields of a structure exchange values in every pattern (copies, moves,
// parameters by value, whole containers) while operations on temporaries and assignments write in place. Each
// holder has a model that shares nothing; after each step all of them must agree.
#include <complex>
#include <utility>

#include "base/parallel.h"
#include "kernels/kernel_table.h"
#include "support/support.h"

using namespace test;

namespace {

constexpr int rounds = 10000;

enum Kind { real, complex, bytes, kinds };
using Cx = std::complex<double>;
using Model = std::vector<Cx>;

template <class F> Model combined(Kind kind, const Model &a, const Model &b, F f) {
    Model out(std::max(a.size(), b.size()));
    for (size_t k = 0; k < out.size(); ++k) {
        const Cx x = f(a[a.size() == 1 ? 0 : k], b[b.size() == 1 ? 0 : k]);
        out[k] = kind == bytes ? static_cast<unsigned char>(static_cast<int>(x.real())) : x;
    }
    return out;
}

class Sharing {
  public:
    Sharing(Kind kind, int n) : kind_(kind), n_(n), random_(static_cast<unsigned>(n)) {
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
    static constexpr int steps = 9;

    using Value = std::pair<Mm, Model>;

    Kind kind_;
    int n_;
    Random random_;
    Mm x_[variables] = {}, c_, s_, d_;
    Model models_[holders];

    Value fresh() {
        const bool complex = kind_ == Kind::complex && random_.below(2);
        Value v{Mm(complex, 0, 0, 1, random_.below(3) ? n_ : 1, kn_double), {}};
        for (int k = 0; k < v.first.size(); ++k) {
            v.second.push_back(Cx(random_.below(9), complex ? 1 + random_.below(9) : 0));
            v.first.addr()[k] = v.second.back().real();
            if (complex) v.first.addi()[k] = v.second.back().imag();
        }
        if (kind_ == bytes) v.first = muint8(v.first);
        return v;
    }

    static double index(int k) { return k + 1.0; }
    // f of the variable, or of the reference to the element or field.
    template <class F> void on(int k, F f) {
        if (k < variables)
            f(x_[k]);
        else if (k < variables + cells)
            f(c_.br(index(k - variables)));
        else if (k < variables + cells + fields)
            f(s_.member(k % 2 ? "a" : "b"));
        else
            f(d_.br(index(k - variables - cells - fields)));
    }
    Mm value(int k) {
        Mm v;
        on(k, [&](const auto &holder) { v = holder; });
        return v;
    }
    void store(int k, const Value &v) {
        on(k, [&](auto &&holder) { holder = v.first; });
        models_[k] = v.second;
    }
    bool agrees(int k) {
        const Mm v = value(k), re = mdouble(v);
        const Model &m = models_[k];
        if (v.size() != static_cast<int>(m.size())) return false;
        for (int e = 0; e < v.size(); ++e)
            if (m[static_cast<size_t>(e)] != Cx(re.addr()[e], v.isc() ? v.addi()[e] : 0)) return false;
        return true;
    }

    void step(int what) {
        int to = random_.below(holders), h[3];
        for (int &k : h) k = random_.below(holders);
        const Model a = models_[h[0]], b = models_[h[1]], c = models_[h[2]];
        Mm va = value(h[0]), vb = value(h[1]), vc = value(h[2]);
        const std::plus<Cx> plus;
        const std::minus<Cx> minus;
        switch (what) {
        case 0: return store(to, fresh());
        case 1: return store(to, {va, a});
        case 2: // a temporary on the right, and one on the left of that
            return store(to, {va + (vb - vc), combined(kind_, a, combined(kind_, b, c, minus), plus)});
        case 3: { // two temporaries; one result is looked at again after it was an operand
            Mm t = va + vb, u = t, v = std::move(t) - (vc + va);
            const Model m = combined(kind_, a, b, plus);
            store(to, {v, combined(kind_, m, combined(kind_, c, a, plus), minus)});
            return store((to + 1) % holders, {u, m});
        }
        case 4: { // one element, in place or in a copy
            int k = random_.below(static_cast<int>(models_[to].size())), x = random_.below(200);
            on(to, [&](auto &&holder) { holder(index(k)) = static_cast<double>(x); });
            models_[to][static_cast<size_t>(k)] = x;
            return;
        }
        case 5: { // a parameter by value
            auto with_7 = [](Mm x) { return x(1.0) = 7.0, x; };
            Model m = a;
            m[0] = 7;
            return store(to, {with_7(va), m});
        }
        case 6: // the container as a whole
            d_ = c_;
            for (int k = 0; k < cells; ++k) models_[holders - cells + k] = models_[variables + k];
            return;
        case 7: { // moved away, then filled anew
            int v = random_.below(variables);
            const Model m = models_[v];
            Mm taken = std::move(x_[v]) + va;
            store(v, fresh());
            return store(to, {taken, combined(kind_, m, a, plus)});
        }
        default: // elements, and the same value on both sides
            if (a.size() == b.size())
                store(to, {times((va + vb) - vb, vb), combined(kind_, a, b, std::multiplies<Cx>())});
            for (const Cx &x : models_[to]) // numbers must not run away
                if (!(std::abs(x) < 1e6)) return store(to, fresh());
        }
    }
};

TEST(Sharing, holders_never_see_each_other) {
    for (const kn::KernelTable *const *table = kn::available_kernels(); *table; ++table) {
        const kn::KernelTable &last = kn::use_kernels(**table);
        for (int kind = 0; kind < kinds; ++kind)
            for (int n : {2, 9, 40}) Sharing(static_cast<Kind>(kind), n).run();
        kn::use_kernels(last);
    }
}

// Large enough for threads, with one and with several.
TEST(Sharing, large_temporaries) {
    const Mm a = randn(700.0, 1000.0), b = randn(700.0, 1000.0);
    for (int threads : {1, 3}) {
        kn::set_thread_count(threads);
        Mm c = a, d = a;
        c = c + times(b, b) - a;
        d(1.0) = 5.0;
        kn::set_thread_count(0);
        for (int k = 0; k < a.size(); ++k)
            ASSERT_EQ(c.addr()[k], (a.addr()[k] + b.addr()[k] * b.addr()[k]) - a.addr()[k]) << threads;
        EXPECT_NE(a.r(1.0), 5.0);
    }
}

} // namespace
