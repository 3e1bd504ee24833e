// The loops of every instruction set that this processor has: against the baseline, to the bit where the set
// makes no difference, alone and in place, at any length and place; elementary functions against wider
// numbers.

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "base/parallel.h"
#include "kernels/kernel_table.h"
#include "kernels/loops/dimension_ops.h"
#include "kernels/loops/element_kernels.h"
#include "kernels/op_rows.h"
#include "support/support.h"

namespace {

using kn::KernelTable;
constexpr double inf = HUGE_VAL, nan = NAN;

// Whether the sets have separate functions for an operation, which differ from those of the baseline.
constexpr struct {
    bool real, complex;
} by_set[] = {
#define ROW(name, group, rule, K) \
    {kn::kernel::real_vectors<kn::kernel::K>, kn::kernel::complex_vectors<kn::kernel::K>},
    KN_OPERATIONS(ROW)
#undef ROW
};
constexpr int first_elementwise = op_abs;
bool is_unary(int op) { return kn::kernels().numbers[op].unary; }

std::vector<const KernelTable *> tables() {
    std::vector<const KernelTable *> all;
    for (auto p = kn::available_kernels(); *p; ++p) all.push_back(*p);
    return all;
}
const KernelTable &baseline() { return *tables().back(); }

const double special[] = {0.0,      -0.0,      1,      -1,    0.5,    -0.5,    2,       3,
                          -3,       1e-10,     inf,    -inf,  nan,    DBL_MIN, DBL_MAX, -DBL_MAX,
                          4.9e-324, -4.9e-324, 1e-310, 1e300, -1e300, 700,     709.782, 709.7828,
                          710,      710.47,    -708.4, -740,  -746,   1e9,     1.5e9,   1e22,
                          -1e9,     1024,      1025,   -1025, 0x1p53, 1e-300};

double random_number(test::Random &random) {
    if (random.below(4) == 0) return special[random.below(std::size(special))];
    if (random.below(3) == 0) return random.number();
    return std::ldexp(random.below(2000001) - 1e6, -random.below(30));
}

// An operand, its elements from an odd place on.
template <class T> struct Values {
    std::vector<T> re, im;
    bool complex;
    ptrdiff_t step;

    Values(test::Random &random, ptrdiff_t n, bool is_complex, ptrdiff_t by)
        : re(static_cast<size_t>(n + 1)), im(re), complex(is_complex), step(by) {
        for (auto *plane : {&re, &im})
            for (T &x : *plane)
                if constexpr (sizeof(T) == 1)
                    x = static_cast<T>(random.below(256));
                else
                    x = random_number(random);
    }
    kn::Operand<T> operand() const { return {re.data() + 1, complex ? im.data() + 1 : nullptr, step}; }
};

enum InPlace { apart, in_a, in_b };

// Both planes of the result; what is before and after it must not change.
template <class T>
std::vector<T> result(const KernelTable &table, int op, ptrdiff_t n, bool complex, const Values<T> &a,
                      const Values<T> &b, InPlace where = apart) {
    constexpr T guard = 77;
    std::vector<T> out(static_cast<size_t>(2 * (n + 2)), guard);
    T *re = out.data() + 1, *im = re + n + 2;
    kn::Operand<T> x = a.operand(), y = b.operand();
    if (where != apart) {
        kn::Operand<T> &o = where == in_a ? x : y;
        std::copy(o.re, o.re + n, re);
        o.re = re;
        if (complex && o.im) {
            std::copy(o.im, o.im + n, im);
            o.im = im;
        }
    }
    const kn::Elements<T> work = {re, complex ? im : nullptr, n, x, y};
    if constexpr (sizeof(T) == 1)
        table.bytes[op].elements(work);
    else
        table.doubles[op].elements(work);
    EXPECT_TRUE(re[-1] == guard && re[n] == guard && im[-1] == guard && im[n] == guard) << kn::op_name(op);
    return out;
}

template <class T> void expect_same_in_all_sets_and_in_place() {
    test::Random random(5);
    for (int op = first_elementwise; op < op_count_; ++op) {
        // The baseline has its own elementary functions, which nobody sees in bytes.
        const bool differs = sizeof(T) > 1 && (by_set[op].real || by_set[op].complex);
        for (ptrdiff_t n : {0, 1, 2, 3, 5, 7, 8, 9, 13, 16, 17, 31, 40})
            for (int form = 0; form < 24; ++form) {
                int steps = form % 3, planes = form / 3 % 4;
                bool complex = form / 12 || (planes && form % 5);
                if (is_unary(op) && steps == 2) steps = 0;
                Values<T> a(random, n, planes & 1, steps != 1), b(random, n, planes & 2, steps != 2);
                auto same = [](const auto &x, const auto &y) {
                    return std::ranges::equal(x, y, test::same_bits);
                };
                const auto wanted = result(*tables()[0], op, n, complex, a, b);
                for (const KernelTable *table : tables()) {
                    SCOPED_TRACE(table->name + std::string(" ") + kn::op_name(op) + " of " +
                                 std::to_string(n) + " form " + std::to_string(form));
                    const auto got = result(*table, op, n, complex, a, b);
                    ASSERT_TRUE((differs && table == &baseline()) || same(got, wanted));
                    ASSERT_TRUE(!(a.step || n == 1) || same(result(*table, op, n, complex, a, b, in_a), got));
                    ASSERT_TRUE(!(b.step || n == 1) || is_unary(op) ||
                                same(result(*table, op, n, complex, a, b, in_b), got));
                }
            }
    }
}

TEST(Kernels, results_are_the_same_in_all_sets_and_in_place) {
    expect_same_in_all_sets_and_in_place<double>();
    expect_same_in_all_sets_and_in_place<unsigned char>();
}

// NaN is met for the same operands in all sets, and of one sign, which display shows. But for sums and
// products of two NaN: which of them that is, the compiler decides.
TEST(Kernels, NaN_is_the_same_in_all_sets) {
    const double parts[] = {0.0, 1, -2, 4.9e-324, 1e300, inf, -inf, nan, -nan};
    constexpr size_t m = std::size(parts), n = m * m * m * m;
    test::Random random(7);
    Values<double> a(random, n, true, 1), b(random, n, true, 1);
    for (size_t k = 0; k < n; ++k) {
        a.re[k + 1] = parts[k % m], a.im[k + 1] = parts[k / m % m];
        b.re[k + 1] = parts[k / m / m % m], b.im[k + 1] = parts[k / m / m / m];
    }
    for (int op = first_elementwise; op < op_count_; ++op) {
        const bool one_sign = op != op_plus && op != op_times && op != op_mtimes;
        auto same = [=](double x, double y) {
            return std::isnan(x) == std::isnan(y) &&
                   (!one_sign || !std::isnan(x) || std::signbit(x) == std::signbit(y));
        };
        for (int form = 0; form < 4; ++form) {
            a.complex = form & 1, b.complex = form & 2;
            const ptrdiff_t count = is_unary(op) ? m * m : n;
            const auto wanted = result(baseline(), op, count, form != 0, a, b);
            for (const KernelTable *table : tables()) {
                const auto got = result(*table, op, count, form != 0, a, b);
                const auto [x, y] = std::ranges::mismatch(got, wanted, same);
                ASSERT_TRUE(x == got.end()) << table->name << " " << kn::op_name(op) << " " << form
                                            << " place " << x - got.begin() << ": " << *x << " " << *y;
            }
        }
    }
}

TEST(Kernels, large_results_do_not_depend_on_threads) {
    const Mm a = test::complex_of(randn(560.0, 560.0), randn(560.0, 560.0)), number = test::C(0.5, 2);
    for (int op : {op_abs, op_exp, op_times, op_lt, op_atan2})
        for (const Mm &x : {a, real(a)})
            for (const Mm &y : {a, number, Mm(0.5)}) {
                Mm results[2];
                for (int k = 0; k < 2; ++k) {
                    kn::set_thread_count(1 + 2 * k);
                    results[k] = Mm(1, x, y, nop_M, static_cast<op_t>(op), 0, l_M);
                }
                kn::set_thread_count(0);
                ASSERT_SAME(results[1], results[0]) << kn::op_name(op);
                const Mm few = test::row({1, 560}); // columns, which are not shared
                const Mm part(1, x(c_p, few), y.size() == 1 ? y : Mm(y(c_p, few)), nop_M,
                              static_cast<op_t>(op), 0, l_M);
                ASSERT_SAME(Mm(results[1](c_p, few)), Mm(part(c_p, c_p))) << kn::op_name(op);
            }
}

// -- Accuracy.

// Distance in units in the last place of the wanted value.
double ulps(double got, long double wanted) {
    const double nearest = static_cast<double>(wanted);
    if (std::isnan(got) || std::isnan(nearest)) return std::isnan(got) && std::isnan(nearest) ? 0 : inf;
    if (std::isinf(got) || std::isinf(nearest)) return got == nearest ? 0 : inf;
    int e;
    std::frexp(nearest, &e);
    return static_cast<double>(std::fabs(got - wanted) / std::ldexp(1.0L, std::max(e - 53, -1074)));
}

struct Range {
    double low, high;
    int smaller; // powers of two by which arguments are made smaller at random
};
struct Function {
    op_t op;
    long double (*exact)(long double);
    std::vector<Range> ranges;
    double most; // ulps
};
// In the baseline the hyperbolic functions are the C library's, within 2.2 units.
const Function functions[] = {
    {op_exp, std::exp, {{-10, 10, 0}, {-1, 1, 60}, {-708, 709, 0}, {-745, -708, 0}}, 0.7},
    {op_log, std::log, {{0.5, 2, 0}, {0, 1000, 0}, {0.99, 1.01, 0}, {0, 1e300, 2040}}, 0.6},
    {op_sin, std::sin, {{-10, 10, 60}, {-1e9, 1e9, 1000}}, 0.85},
    {op_cos, std::cos, {{-10, 10, 60}, {-1e9, 1e9, 60}}, 0.85},
    {op_tan, std::tan, {{-10, 10, 60}, {-1e9, 1e9, 1000}}, 1},
    {op_sinh, std::sinh, {{-5, 5, 60}, {-710, 710, 0}, {707, 710.4, 0}}, 1},
    {op_cosh, std::cosh, {{-5, 5, 60}, {-710, 710, 0}, {707, 710.4, 0}}, 1},
    {op_tanh, std::tanh, {{-5, 5, 60}, {-30, 30, 0}}, 1},
    {op_asin, std::asin, {{-1, 1, 0}, {-1, 1, 1000}}, 1},
    {op_acos, std::acos, {{-1, 1, 0}, {-1, 1, 60}}, 1},
    {op_atan, std::atan, {{-10, 10, 60}, {-1e300, 1e300, 2000}}, 1},
};

struct Worst {
    double ulp = 0, x = 0, y = 0;
    void see(double u, double a, double b = 0) {
        if (u > ulp) *this = {u, a, b};
    }
    void expect(const KernelTable &table, int op, double most) const {
        EXPECT_LE(ulp, most) << table.name << " " << kn::op_name(op) << " " << x << " " << y;
    }
};

constexpr int arguments = 20000;

double uniform(std::mt19937_64 &random, double low, double high) {
    return std::uniform_real_distribution(low, high)(random);
}

TEST(Kernels, elementary_functions_are_within_one_unit) {
    static_assert(LDBL_MANT_DIG >= 64);
    for (const Function &f : functions)
        for (const KernelTable *table : tables()) {
            std::mt19937_64 random(9);
            Worst worst;
            std::vector<double> x(arguments / f.ranges.size()), y(x.size());
            for (const Range &range : f.ranges) {
                for (double &v : x) {
                    v = uniform(random, range.low, range.high);
                    if (range.smaller) v = std::ldexp(v, -static_cast<int>(random() % range.smaller));
                }
                const kn::Operand<double> a = {x.data(), nullptr, 1};
                table->doubles[f.op].elements({y.data(), nullptr, static_cast<ptrdiff_t>(x.size()), a, a});
                for (size_t k = 0; k < x.size(); ++k) worst.see(ulps(y[k], f.exact(x[k])), x[k]);
            }
            bool hyperbolic = f.op == op_sinh || f.op == op_cosh || f.op == op_tanh;
            worst.expect(*table, f.op, hyperbolic && table == &baseline() ? 2.3 : f.most);
        }
}

TEST(Kernels, powers_and_angles_are_within_one_unit) {
    for (const KernelTable *table : tables()) {
        std::mt19937_64 random(10);
        Worst power, angle;
        const auto pow = table->numbers[op_power].binary, atan2 = table->numbers[op_atan2].binary;
        for (int k = 0; k < arguments; ++k) {
            double x = uniform(random, 0, 100), y = uniform(random, -5, 5);
            switch (k % 6) {
            case 0: break;
            case 1: x = std::ldexp(x, static_cast<int>(random() % 2000) - 1000), y /= 5; break;
            case 2: x = uniform(random, 0.9, 1.1), y *= 1400; break;
            case 3: x -= 50, y = std::round(y * 20); break;
            case 4: y = std::round(y * 4) / 2; break;
            case 5: x = std::ldexp(x, -static_cast<int>(random() % 1080)), y = std::round(y * 10) / 2; break;
            }
            power.see(ulps(pow(x, y), powl(x, y)), x, y);
            if (k % 2) x = -x;
            if (k % 3) y = std::ldexp(y, static_cast<int>(random() % 2000) - 1000);
            angle.see(ulps(atan2(y, x), atan2l(y, x)), x, y);
        }
        power.expect(*table, op_power, 0.7);
        angle.expect(*table, op_atan2, 1);
    }
}

// What programs expect to be exact.
TEST(Kernels, exact_powers_and_logarithms) {
    for (const KernelTable *table : tables()) {
        SCOPED_TRACE(table->name);
        const auto pow = table->numbers[op_power].binary;
        for (int base = 2; base <= 300; ++base) {
            long double p = 1;
            for (int e = 0; p < 0x1p53L; ++e, p *= base) ASSERT_EQ(pow(-base, e), e % 2 ? -p : p);
            ASSERT_EQ(pow(base, -1), 1.0 / base);
        }
        for (int e = -1074; e <= 1023; ++e) {
            const double two = std::ldexp(1.0, e);
            ASSERT_EQ(pow(2, e), two);
            ASSERT_EQ(table->numbers[op_pow2_1].unary(e), two);
            ASSERT_EQ(table->numbers[op_log2].unary(two), std::log(two) / kn::raw_ln2);
        }
        for (int e = -300; e <= 308; ++e) {
            const double ten = std::strtod(("1e" + std::to_string(e)).c_str(), nullptr);
            if (table != &baseline() || std::abs(e) <= 22) {
                ASSERT_EQ(pow(10, e), ten);
            }
            ASSERT_EQ(table->numbers[op_log10].unary(ten), std::log(ten) / kn::raw_ln10);
        }
    }
}

// Where almost nothing is left of the argument: beside multiples of pi / 2, few of them and many.
TEST(Kernels, sines_beside_their_zeros) {
    for (const KernelTable *table : tables()) {
        const auto sin = table->numbers[op_sin].unary, cos = table->numbers[op_cos].unary;
        Worst worst;
        for (int k = 1; k < arguments; ++k) {
            const double n = k < 1000 ? k : std::floor(k * 636619772.0 / arguments);
            double x = static_cast<double>(n * 1.57079632679489661923132169163975144L);
            for (double v : {std::nextafter(x, 0), x, std::nextafter(x, inf)}) {
                worst.see(ulps(sin(v), std::sin(static_cast<long double>(v))), v);
                worst.see(ulps(cos(v), std::cos(static_cast<long double>(v))), v);
            }
        }
        worst.expect(*table, op_sin, 0.85);
    }
}

// Where it matters what a function answers exactly: at zeros, infinities, the ends of the domain.
TEST(Kernels, special_values_are_those_of_the_baseline) {
    auto close = [](double x, double y) { return test::same_bits(x, y) || (x != 0 && ulps(x, y) <= 3); };
    for (const KernelTable *table : tables())
        for (int op = 0; op < op_count_; ++op) {
            if (!by_set[op].real) continue;
            SCOPED_TRACE(table->name + std::string(" ") + kn::op_name(op));
            const kn::NumberFunctions &got = table->numbers[op], &wanted = baseline().numbers[op];
            for (double x : special) {
                if (got.unary) {
                    EXPECT_TRUE(close(got.unary(x), wanted.unary(x))) << x << " " << got.unary(x);
                    continue;
                }
                for (double y : special)
                    EXPECT_TRUE(close(got.binary(x, y), wanted.binary(x, y)))
                        << x << " " << y << " " << got.binary(x, y) << " " << wanted.binary(x, y);
            }
        }
}

} // namespace
