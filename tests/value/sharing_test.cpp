// No holder of a block ever sees another's change.
//
// Variables, elements of a cell and fields of a structure exchange values in every pattern (copies, moves,
// parameters by value, whole containers) while operations on temporaries and assignments write in place. Each
// holder has a model that shares nothing, made by the same operations one at a time on unshared values;
// after each step all of them must agree.
#include <utility>

#include "base/parallel.h"
#include "kernels/kernel_table.h"
#include "support/support.h"

using namespace test;

namespace {

constexpr int rounds = 10000;

enum Kind { real, complex, bytes, kinds };

Mm apart(const Mm &m) { // in an unshared block, without a plane of zeros
    Mm copy;
    copy.deepcopy(m, kn_none);
    copy.getreal(0);
    return copy;
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
                ASSERT_SAME(apart(value(k)), apart(models_[k]))
                    << "holder " << k << " after step " << what << " of round " << round;
        }
    }

  private:
    // Holders 0 to 4 are variables, 5 to 7 elements of a cell, 8 and 9 fields, 10 and on elements of a copy
    // of the cell.
    static constexpr int variables = 5, cells = 3, fields = 2, holders = variables + 2 * cells + fields;
    static constexpr int steps = 9;

    Kind kind_;
    int n_;
    Random random_;
    Mm x_[variables] = {}, c_, s_, d_, models_[holders];

    Mm fresh() {
        Mm m(kind_ == complex && random_.below(2), 0, 0, 1, random_.below(3) ? n_ : 1, kn_double);
        for (int k = 0; k < m.size(); ++k) {
            m.addr()[k] = random_.below(9);
            if (m.isc()) m.addi()[k] = 1 + random_.below(9);
        }
        return kind_ == bytes ? muint8(m) : m;
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
    void store(int k, const Mm &v, const Mm &model) {
        on(k, [&](auto &&holder) { holder = v; });
        models_[k] = apart(model);
    }
    void store(int k, const Mm &v) { store(k, v, v); }

    void step(int what) {
        int to = random_.below(holders), h[3];
        for (int &k : h) k = random_.below(holders);
        const Mm a = apart(models_[h[0]]), b = apart(models_[h[1]]), c = apart(models_[h[2]]);
        const Mm sum = a + b, difference = b - c, other = c + a, back = sum - b;
        Mm va = value(h[0]), vb = value(h[1]), vc = value(h[2]);
        switch (what) {
        case 0: return store(to, fresh());
        case 1: return store(to, va, a);
        case 2: // a temporary on the right, and one on the left of that
            return store(to, va + (vb - vc), a + difference);
        case 3: { // two temporaries; one result is looked at again after it was an operand
            Mm t = va + vb, u = t, v = std::move(t) - (vc + va);
            store(to, v, sum - other);
            return store((to + 1) % holders, u, sum);
        }
        case 4: { // one element, in place or in a copy
            const double at = index(random_.below(models_[to].size())), x = random_.below(200);
            on(to, [&](auto &&holder) { holder(at) = x; });
            models_[to](at) = x;
            return;
        }
        case 5: { // a parameter by value
            auto with_7 = [](Mm x) { return x(1.0) = 7.0, x; };
            Mm changed = a;
            changed(1.0) = 7.0;
            return store(to, with_7(va), changed);
        }
        case 6: // the container as a whole
            d_ = c_;
            for (int k = 0; k < cells; ++k) models_[holders - cells + k] = apart(models_[variables + k]);
            return;
        case 7: { // moved away, then filled anew
            int v = random_.below(variables);
            const Mm m = apart(models_[v]);
            Mm taken = std::move(x_[v]) + va;
            store(v, fresh());
            return store(to, taken, m + a);
        }
        default: // elements, and the same value on both sides
            if (a.size() == b.size()) store(to, times((va + vb) - vb, vb), times(back, b));
            if (!istrue(abs(models_[to]) < 1e6)) return store(to, fresh()); // numbers must not run away
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
