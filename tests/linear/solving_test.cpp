// Linear solving, judged by residuals: the measure is that of LAPACK's own testers, error / (size eps norm),
// which stays below 30 for a backward stable result whatever the condition.
#include <chrono>
#include <cmath>
#include <complex>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/scratch.h"
#include "engine/blas_call.h"
#include "platform/platform.h"
#include "support/support.h"

using namespace test;

namespace {

constexpr double inf = INFINITY, nan_ = NAN;

double norm1(const Mm &a) { return a.size() == 0 ? 0 : scalar(max(sum(abs(full(a)), 1))); }

double ratio(const Mm &error, double scale, int n) {
    double e = norm1(error);
    return e == 0 ? 0 : e / (scale * n * scalar(eps));
}
double solution_ratio(const Mm &a, const Mm &x, const Mm &b) {
    return ratio(full(a) * full(x) - full(b), norm1(a) * norm1(x), std::max(a.rows(), a.cols()));
}

bool any_nonfinite(const Mm &x) { return scalar(any(mnot(isfinite(Mm(x(c_p)))))) != 0; }

[[maybe_unused]] size_t address_space() {
    size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * kn::os::page_size();
}

struct Case {
    const char *name;
    Mm a;
};

Mm hilbert(int n) {
    Mm k = colon(1, n);
    return rdivide(1, repmat(k, n, 1) + repmat(ctranspose(k), 1, n) - 1);
}

// Square matrices of order n, none singular.
std::vector<Case> square_cases(int n) {
    Mm r = randn(n, n), s = randn(n, n), scale = diag(power(10.0, linspace(-8, 8, n)));
    Mm k = repmat(colon(1, n), n, 1),
       second = diag(2 * ones(1, n)) - diag(ones(1, n - 1), 1) - diag(ones(1, n - 1), -1);
    return {{"random", r},
            {"complex", r + i * s},
            {"symmetric", r + ctranspose(r)},
            {"complex symmetric", r + ctranspose(r) + i * (s + ctranspose(s))},
            {"graded", scale * r},
            {"graded columns", (r + i * s) * scale},
            {"ill-conditioned", hilbert(std::min(n, 10))},
            {"near overflow", r * 1e300},
            {"near underflow", (r + ctranspose(r)) * 1e-290},
            {"triangular", triu(r) + n * eye(n)},
            {"second difference", second},
            {"zero diagonal", mdouble(abs(k - ctranspose(k)))},
            {"permutation", eye(n)(c_p, colon(n, -1, 1))}};
}

Mm random_sparse(int m, int n, double density, Random &random) {
    std::vector<std::pair<int, double>> entries;
    for (int k = 0; k < m * n; ++k)
        if (random.below(1000) < 1000 * density || k % (m + 1) == 0)
            entries.push_back({k, random.below(2000) / 1000.0 - 1.0005});
    return sparse_of(m, n, entries);
}

} // namespace

TEST(Solving, residuals_of_square_systems) {
    for (int n : {2, 3, 17, 130})
        for (const auto &[name, a] : square_cases(n)) {
            SCOPED_TRACE(name + (" " + std::to_string(n)));
            const int m = a.rows();
            Mm b = randn(m, 3), zb = b + i * randn(m, 3);
            EXPECT_LT(solution_ratio(a, mldivide(a, b), b), 30);
            EXPECT_LT(solution_ratio(a, mldivide(a, zb), zb), 30);
            Mm c = ctranspose(zb), y = c / a;
            EXPECT_EQ(y.rows(), 3);
            EXPECT_LT(ratio(y * a - c, norm1(a) * norm1(y), m), 30);

            Mm l, u, p, permuted, u2;
            lu(a, i_o, l, u, p);
            lu(a, i_o, permuted, u2);
            EXPECT_LT(ratio(l * u - p * a, norm1(a), m), 30);
            EXPECT_LT(ratio(permuted * u2 - a, norm1(a), m), 30);
            EXPECT_SAME(l, tril(l));
            EXPECT_SAME(u, triu(u));
            EXPECT_SAME(p * permuted, l);
            EXPECT_LE(scalar(max(max(abs(l)))), std::sqrt(2) * (1 + 1e-15));
            EXPECT_SAME(lu_L(a), permuted);
            EXPECT_SAME(lu_U(a), u);

            Mm x = inv(a);
            EXPECT_LT(ratio(x * a - eye(m), norm1(a) * norm1(x), m), 30);
            // An estimate of the norm of the inverse is a lower bound, mostly within a factor of ten.
            double true_rcond = 1 / norm1(a) / norm1(x), estimate = scalar(rcond(a));
            EXPECT_GT(estimate, true_rcond / 3);
            EXPECT_LT(estimate, std::min(20 * true_rcond, 1.001));
        }
}

TEST(Solving, least_squares_and_basic_solutions) {
    for (auto [m, n] : {std::pair{3, 2}, {2, 3}, {40, 7}, {7, 40}, {200, 90}, {1, 5}, {5, 1}, {90, 200}})
        for (bool is_complex : {false, true}) {
            Mm a = randn(m, n), b = randn(m, 2);
            if (is_complex) a = a + i * randn(m, n);
            Mm x = mldivide(a, b);
            ASSERT_EQ(x.rows(), n);
            ASSERT_EQ(x.cols(), 2);
            Mm r = b - a * x;
            if (m > n) {
                EXPECT_LT(ratio(ctranspose(a) * r, norm1(a) * norm1(a) * (norm1(x) + norm1(b)), m), 30);
            } else {
                EXPECT_LT(solution_ratio(a, x, b), 30);
                EXPECT_EQ(scalar(sum(x(c_p, 1) == 0)), n - m);
            }
        }
    // The longest column leads, then the longest of what the first one leaves of the others.
    EXPECT_NEAR_ULP(mldivide(M({{1, 5, 0, 0}, {0, 5, 0, 3}}), col({10, 7})), col({0, 2, 0, -1}), 4);
    EXPECT_TRUE(any_nonfinite(mldivide(M({{1, 0}, {1, 0}, {1, 0}}), col({1, 2, 3}))));
}

// Elimination by columns as LINPACK has it: a multiplier stays in the row it was computed for.
TEST(Solving, packed_factors) {
    for (bool is_complex : {false, true})
        for (int n : {1, 2, 5, 40}) {
            Mm a = randn(n, n);
            if (is_complex) a = a + i * randn(n, n);
            if (n == 5) a(c_p, 3) = zeros(5, 1);
            std::vector<std::complex<double>> w(n * n);
            for (int k = 0; k < n * n; ++k) w[k] = {a.addr()[k], is_complex ? a.addi()[k] : 0.0};
            auto size = [](std::complex<double> z) { return std::fabs(z.real()) + std::fabs(z.imag()); };
            for (int k = 0; k < n - 1; ++k) {
                auto at = [&](int r, int c) -> auto & { return w[r + c * n]; };
                int pivot = k;
                for (int r = k + 1; r < n; ++r)
                    if (size(at(r, k)) > size(at(pivot, k))) pivot = r;
                if (size(at(pivot, k)) == 0) continue;
                std::swap(at(k, k), at(pivot, k));
                for (int r = k + 1; r < n; ++r) at(r, k) /= -at(k, k);
                for (int c = k + 1; c < n; ++c) {
                    std::swap(at(k, c), at(pivot, c));
                    for (int r = k + 1; r < n; ++r) at(r, c) += at(r, k) * at(k, c);
                }
            }
            Mm got = lu(a);
            ASSERT_EQ(got.isc(), is_complex);
            for (int k = 0; k < n * n; ++k) {
                EXPECT_NEAR(got.addr()[k], w[k].real(), 1e-12);
                EXPECT_NEAR(is_complex ? got.addi()[k] : 0, w[k].imag(), 1e-12);
            }
        }
}

TEST(Solving, determinants) {
    EXPECT_SAME(det(M({{2, 1}, {7, 4}})), Mm(1.0));
    EXPECT_SAME(det(M({{0, 1}, {1, 0}})), Mm(-1.0));
    EXPECT_SAME(det(M({{1, 2}, {2, 4}})), Mm(0.0));
    EXPECT_SAME(det(U8({{200, 3}, {100, 2}})), Mm(100.0));
    EXPECT_SAME(det(sparse(M({{0, 1}, {1, 0}}))), Mm(1.0)); // without the sign of the interchange
    EXPECT_SAME(det(Mm()), Mm(1.0));
    EXPECT_SAME(det(complex_of(M({{0, 2}, {3, 0}}), M({{1, 0}, {0, 4}}))), C(-10, 0));
    EXPECT_NEAR_ULP(det(0.5 * eye(3)), Mm(0.125), 1);
    Mm magic = M({{16, 2, 3, 13}, {5, 11, 10, 8}, {9, 7, 6, 12}, {4, 14, 15, 2}});
    EXPECT_SAME(det(magic), Mm(-136.0));
    Mm big = i * 1e200 * eye(3); // the mantissa holds it, the power doesn't
    EXPECT_TRUE(any_nonfinite(det(big)));
}

TEST(Solving, singular_matrices_give_what_the_kernels_leave) {
    Mm one = ones(2, 2), p = M({{1, 2}, {2, 4}});
    EXPECT_EQ(printed([&] { EXPECT_TRUE(any_nonfinite(mldivide(one, ones(2, 1)))); }), "");
    EXPECT_TRUE(any_nonfinite(mldivide(i * one, ones(2, 1))));
    EXPECT_TRUE(any_nonfinite(mldivide(M({{1, 2}, {3, 6}}), ones(2, 1))));
    EXPECT_SAME(inv(p), M({{2, 4}, {0.5, 0}})); // the factors
    EXPECT_TRUE(any_nonfinite(inv(i * p)));
    EXPECT_SAME(inv(0.0), Mm(inf));
    EXPECT_SAME(inv(C(0, 2)), C(0, -0.5));
    EXPECT_SAME(rcond(p), Mm(0.0));
    EXPECT_SAME(rcond(eye(4)), Mm(1.0));
    Mm nans = nan_ * ones(2, 1);
    EXPECT_SAME(mldivide(sparse(one), ones(2, 1)), nans);                       // by its values
    EXPECT_SAME(mldivide(sparse_of(2, 2, {{0, 1}, {2, 1}}), ones(2, 1)), nans); // by its pattern
    EXPECT_SAME(mldivide(sparse_of(3, 2, {{0, 1}}), ones(3, 1)), nans);
    EXPECT_SAME(mldivide(sparse_of(2, 2, {}), ones(2, 1)), nans);
    EXPECT_SAME(full(lu_U(sparse_of(2, 2, {{0, 1}, {2, 1}}))), M({{1, 1}, {0, 0}}));
    EXPECT_SAME(det(sparse_of(2, 2, {{0, 1}, {2, 1}})), Mm(0.0));
}

TEST(Solving, matrix_powers) {
    Mm a = M({{1, 1}, {1, 0}}), z = C(0, 1) * a;
    EXPECT_SAME(mpower(a, 30), M({{1346269, 832040}, {832040, 514229}}));
    EXPECT_SAME(mpower(a, -3), M({{-1, 2}, {2, -3}}));
    EXPECT_SAME(real(mpower(z, U8({{2}}))), -(a * a));
    EXPECT_SAME(mpower(TM("ab;c")(M({{1, 2}, {3, 4}})), 1), M({{97, 98}, {59, 99}}));
    EXPECT_SAME(mpower(U8({{0, 20}, {20, 0}}), 2), 400 * eye(2));
    EXPECT_SAME(mpower(sparse(a), 5), sparse(mpower(a, 5)));
    EXPECT_SAME(mpower(sparse(a), -1), sparse(inv(a)));
    EXPECT_SAME(mpower(sparse(a), 0), speye(2));
    EXPECT_SAME(mpower(z, 0), eye(2));
    EXPECT_SAME(mpower(2, 0.5), power(2, 0.5));
    EXPECT_EQ(mpower(Mm(), 2).size(), 0);
    EXPECT_SAME(mpower(0.5 * eye(2), 1e300), zeros(2, 2));
    EXPECT_RAISES(mpower(a, a), "mpower: base or exponent must be a scalar");
    for (const Mm &e : {Mm(0.5), Mm(nan_), Mm(inf), C(2, 1)})
        EXPECT_RAISES(mpower(a, e), "mpower: only whole powers of a matrix are supported");
    EXPECT_RAISES(mpower(2, a), "mpower: only whole powers of a matrix are supported");
    EXPECT_RAISES(mpower(named("r", ones(1, 2)), 2),
                  "mpower: square matrix expected, but matrix r has 1 rows and 2 columns");
}

// Whole numbers of which one row is made of two others, or isn't: what is singular is known exactly.
TEST(Solving, singular_sparse_systems) {
    EXPECT_TRUE(istrue(all(isnan(mldivide(sparse(M({{1, 0, 1}, {0, 4, 4}, {2, 5, 7}})), ones(3, 1))))));
    Random random(5);
    for (int t = 0; t < 600; ++t) {
        const int n = 3 + random.below(t % 10 ? 30 : 90), r = random.below(n), s = (r + 1) % n,
                  u = (r + 2) % n;
        Mm a = zeros(n, n), last = eye(n);
        for (int k = 0; k < n * n; ++k)
            if (random.below(n) < 3) a.addr()[k] = random.below(19) - 9;
        a = a + 10 * n * eye(n); // which dominates
        const bool singular = t % 2;
        if (singular) a(r + 1, c_p) = 2 * a(s + 1, c_p) - 3 * a(u + 1, c_p);
        if (t % 3 == 0) a = 0.125 * (a + C(0, 1) * a);
        Mm x = mldivide(sparse(a), ones(n, 1)), y = lusolve(sparse(a), ones(n, 1), speye(n));
        ASSERT_EQ(any_nonfinite(x), singular) << t;
        ASSERT_EQ(any_nonfinite(y), singular) << t;
    }
}

TEST(Solving, dispatch_and_shapes) {
    EXPECT_SAME(mldivide(2, M({{2, 4}})), M({{1, 2}}));
    EXPECT_SAME(invdiv(2, M({{2, 4}})), M({{1, 2}}));
    EXPECT_SAME(mldivide(nd({2, 1, 2}, {1, 2, 4, 8}), 8.0), nd({2, 1, 2}, {8, 4, 2, 1}));
    EXPECT_RAISES(mldivide(M({{1, 2}, {3, 4}}), col({1, 2, 3})),
                  "mldivide: a,b does not have the same number of rows");
    EXPECT_RAISES(M({{1, 2, 3}}) / M({{1, 2}}), "mldivide: a,b does not have the same number of rows");
    for (const Mm &x : {mldivide(Mm(), 3.0), mldivide(3.0, Mm()), Mm() / M({{1, 2}}), inv(Mm()), rcond(Mm()),
                        lu(Mm()), lu_L(Mm())})
        EXPECT_EQ(x.size(), 0);
    EXPECT_EQ(mldivide(U8({{2, 0}, {0, 4}}), col({2, 4})).gettype(), kn_double);
    EXPECT_SAME(mldivide(TM("ab"), Mm(97.0)).size(), Mm(2.0));
    Mm rect = ones(2, 3), l, u, p;
    const char *functions[] = {"lu", "lu", "lu", "lu", "inv", "det", "rcond"};
    const std::function<void()> calls[] = {
        [&] { lu(rect); },   [&] { lu(rect, i_o, l, u); }, [&] { lu(rect, i_o, l, u, p); },
        [&] { lu_L(rect); }, [&] { inv(rect); },           [&] { det(rect); },
        [&] { rcond(rect); }};
    for (int k = 0; k < 7; ++k)
        EXPECT_EQ(
            raised(calls[k]),
            functions[k] +
                std::string(": square matrix expected, but matrix (temporary) has 2 rows and 3 columns"));
    EXPECT_RAISES(lu(sparse(i * eye(2)), i_o, l, u), "lu: Complex sparse not supported.");
    EXPECT_RAISES(mldivide(M({{1, 2}}), cell_of(1, 2, {1.0, 2.0})),
                  "mldivide: numeric data expected, but matrix (temporary) is not");
    Mm a = M({{1, 2}, {3, 5}});
    lu(a, i_o, a, u); // an output may be the input
    EXPECT_NEAR_ULP(a * u, M({{1, 2}, {3, 5}}), 2);
}

TEST(Solving, hermitian_within_a_tolerance) {
    Mm a = M({{1, 2}, {2, 3}});
    EXPECT_TRUE(istrue(ishermitian(a)));
    EXPECT_TRUE(istrue(ishermitian(M({{1, 2 + 1e-15}, {2, 3}}))));
    EXPECT_FALSE(istrue(ishermitian(M({{1, 2 + 1e-14}, {2, 3}}))));
    EXPECT_TRUE(istrue(ishermitian(complex_of(a, M({{0, 1}, {-1, 0}})))));
    EXPECT_FALSE(istrue(ishermitian(complex_of(a, M({{0, 1}, {1, 0}})))));
    EXPECT_TRUE(istrue(ishermitian(M({{1, nan_}, {nan_, inf}}))));
    EXPECT_FALSE(istrue(ishermitian(nan_)));
    EXPECT_FALSE(istrue(ishermitian(U8({{1}}))));
    EXPECT_TRUE(istrue(ishermitian(sparse(a))));
    EXPECT_FALSE(istrue(ishermitian(sparse(M({{1, 0}, {2, 3}})))));
    EXPECT_RAISES(ishermitian(named("r", ones(1, 2))), "ishermitian: 'r' matrix not square");
    // Only the lower triangle is read then.
    Mm b = M({{1e-16, 1e-15}, {0, 1e-16}});
    EXPECT_SAME(mldivide(b, col({1e-16, 0})), col({1, 0}));
}

TEST(Solving, sparse_agrees_with_full) {
    Random random(7);
    for (auto [m, n] : {std::pair{1, 2}, {2, 2}, {30, 30}, {30, 12}, {12, 30}, {90, 90}, {120, 40}})
        for (int kinds = 0; kinds < 4; ++kinds) {
            SCOPED_TRACE(std::to_string(m) + " by " + std::to_string(n) + " " + std::to_string(kinds));
            Mm a = random_sparse(m, n, 0.15, random), b = randn(m, 2);
            if (kinds & 1) a = a + sparse(i * full(random_sparse(m, n, 0.1, random)));
            if (kinds & 2) b = b + i * randn(m, 2);
            Mm x = mldivide(a, b);
            ASSERT_FALSE(x.issparse());
            ASSERT_EQ(x.rows(), n);
            EXPECT_EQ(x.isc(), kinds != 0);
            EXPECT_SAME(full(mldivide(a, sparse(b))), x);
            if (m > n) {
                EXPECT_LT(norm1(x - mldivide(full(a), b)), 1e-8 * norm1(x));
            } else {
                EXPECT_LT(solution_ratio(a, x, b), 30);
                EXPECT_EQ(norm1(x(colon(m + 1, n), c_p)), 0);
            }
            if (m != n) continue;
            std::vector<std::pair<int, double>> backwards;
            for (int k = 0; k < n; ++k) backwards.push_back({n - 1 - k + k * n, 1});
            EXPECT_LT(solution_ratio(a, lusolve(a, b, sparse_of(n, n, backwards)), b), 30);
            if (kinds & 1) continue;
            Mm l, u, p, permuted, u2;
            lu(a, i_o, l, u, p);
            lu(a, i_o, permuted, u2);
            EXPECT_TRUE(l.issparse() && u.issparse() && p.issparse());
            EXPECT_SAME(full(l), tril(full(l)));
            EXPECT_SAME(full(u), triu(full(u)));
            EXPECT_SAME(full(p) * full(permuted), full(l));
            EXPECT_LT(ratio(full(l) * full(u) - full(p) * full(a), norm1(a), n), 30);
            EXPECT_NEAR(std::fabs(scalar(det(a)) / scalar(det(full(a)))), 1, 1e-9);
            EXPECT_TRUE(inv(a).issparse());
            EXPECT_LT(norm1(inv(a) - inv(full(a))), 1e-9 * norm1(inv(full(a))));
        }
    Mm a = sparse(M({{1, 2}, {3, 4}})), b = ones(2, 1);
    EXPECT_RAISES(lusolve(full(a), b, a), "getIr: sparse matrix expected, but matrix (temporary) is full");
    EXPECT_RAISES(lusolve(a, b, named("q", a)), "lusolve: q is not a permutation of 2 columns");
}

// No result to compare with: nothing may hang, crash or write where it should not.
TEST(Solving, special_numbers_and_patterns) {
    Random random(11);
    for (int t = 0; t < 400; ++t) {
        int m = 1 + random.below(t % 8 ? 6 : 80), n = random.below(3) ? m : 1 + random.below(6);
        Mm a = random.matrix(m, n, t % 3 == 0), b = random.matrix(m, 1 + random.below(3)), l, u, p;
        if (t % 16 == 0) a = a * nan_;
        for (bool is_sparse : {false, true}) {
            if (is_sparse) a = sparse(a);
            EXPECT_EQ(mldivide(a, b).rows(), n);
            if (m != n || (is_sparse && a.isc())) continue;
            inv(a), det(a), rcond(a), lu(a), ishermitian(a);
            lu(a, i_o, l, u, p);
            EXPECT_EQ(u.size(), n * n);
        }
    }
}

// What is asked of BLAS and LAPACK when there is a hook is cut into pieces.
TEST(Solving, large_work_can_be_interrupted) {
    static int answer;
    kn::BlasCall alone(kn::BlasWork::alone); // threads that wait for each other are slow on a busy machine
    const int n = 660;
    Mm a = randn(n, n), b = randn(n, 3), w = randn(2 * n, n), s = a + ctranspose(a), x;
    Mm z = randn(450, 450) + i * randn(450, 450);
    const std::pair<std::function<void()>, std::function<double()>> table[] = {
        {[&] { x = a * s; }, [&] { return ratio(x * b - a * (s * b), norm1(a) * norm1(s) * norm1(b), n); }},
        {[&] { x = mldivide(a, s); }, [&] { return solution_ratio(a, x, s); }},
        {[&] { x = mldivide(s, b); }, [&] { return solution_ratio(s, x, b); }},
        {[&] { x = inv(a); }, [&] { return ratio(x * a - eye(n), norm1(a) * norm1(x), n); }},
        {[&] { x = inv(z); }, [&] { return ratio(x * z - eye(450), norm1(z) * norm1(x), n); }},
        {[&] { x = mldivide(w, w * b); }, [&] { return ratio(x - b, norm1(b), n); }},
    };
    for (const auto &[work, error] : table) {
        SCOPED_TRACE(&work - &table[0].first);
        kn_poll_handler = [] { return answer; };
        answer = 0;
        work();
        kn_poll_handler = nullptr;
        EXPECT_LT(error(), 30);
        std::this_thread::sleep_for(std::chrono::milliseconds(25)); // since the hook was asked
        kn_poll_handler = [] { return answer; };
        answer = 1;
        EXPECT_EQ(raised(work), "Interrupted");
        kn_poll_handler = nullptr;
    }
}

#ifndef __SANITIZE_ADDRESS__
// In a process of its own, which has not called BLAS yet; and in a child of it, where the threads are gone.
TEST(Solving, without_address_space) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto work = [] {
        Mm a = randn(40, 40), z = a + i * a, b = randn(40, 1), s = sparse(a), l, u;
        const std::function<void()> calls[] = {[&] { inv(a); },
                                               [&] { det(z); },
                                               [&] { lu(a, i_o, l, u); },
                                               [&] { rcond(a); },
                                               [&] { a *z; },
                                               [&] { mldivide(a, b); },
                                               [&] { mldivide(s, b); },
                                               [&] { mldivide(z, b); },
                                               [&] { lusolve(s, b, speye(40)); },
                                               [&] { inv(sparse(z)); },
                                               [&] { det(s); },
                                               [&] { mldivide(ones(40, 3), b); },
                                               [&] { mldivide(a + ctranspose(a), b); }};
        const size_t now = address_space();
        for (int child = 0; child < 2; ++child) {
            alarm(30); // a call that waits for memory waits for ever
            rlimit limit = {now + (20 << 20), RLIM_INFINITY};
            setrlimit(RLIMIT_AS, &limit);
            for (const auto &call : calls)
                if (raised(call) != "Out of memory!") _exit(2);
            limit.rlim_cur = RLIM_INFINITY;
            setrlimit(RLIMIT_AS, &limit);
            if (child == 0 && fork() != 0) break;
        }
        for (const auto &call : calls) call();
        int status = 0;
        wait(&status);
        _exit(status == 0 ? 0 : 3);
    };
    EXPECT_EXIT(work(), testing::ExitedWithCode(0), "");
}
#endif

#ifdef QUORVEX_ALLOC_PROBE
TEST(Solving, sparse_inverse_without_a_full_matrix) {
    const int n = 1500;
    kn::alloc_probe.largest = n * n * sizeof(double) - 1;
    Mm got = inv(sparse_of(n, n, {{0, 1}, {1, 1}}) + speye(n));
    kn::alloc_probe.largest = 0;
    EXPECT_SAME(got, sparse_of(n, n, {{0, -0.5}, {1, -0.5}}) + speye(n));
}

// SuperLU's allocations are among those that fail: it is left at once, and nothing it held is lost.
TEST(Solving, sparse_factors_without_memory) {
    Random random(3);
    Mm a = random_sparse(12, 12, 0.2, random), b = ones(12, 1), l, u, p;
    const std::function<void()> calls[] = {[&] { mldivide(a, b); }, [&] { lu(a, i_o, l, u, p); },
                                           [&] { mldivide(a(c_p, colon(1, 7)), b); }};
    for (const auto &call : calls)
        for (int failures = 0;; ++failures) {
            l = u = p = nop_M;
            const long live = kn::alloc_probe.live;
            kn::alloc_probe.fail_at = kn::alloc_probe.allocations + failures + 1;
            std::string text = raised(call);
            bool failed = kn::alloc_probe.allocations >= kn::alloc_probe.fail_at;
            kn::alloc_probe.fail_at = 0;
            l = u = p = nop_M;
            ASSERT_EQ(text, failed ? "Out of memory!" : "(no error)");
            ASSERT_EQ(kn::alloc_probe.live, live);
            if (failed) continue;
            EXPECT_GT(failures, 40);
            break;
        }
}
#endif

// Longley (1967). The certified coefficients are those of the NIST collection of statistical reference data.
TEST(Solving, longley_regression) {
    std::ifstream file(QUORVEX_TEST_DATA "/longley.txt");
    std::vector<double> numbers;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        for (double x; line[0] != '%' && words >> x;) numbers.push_back(x);
    }
    ASSERT_EQ(numbers.size(), 16 * 7u);
    Mm table = ctranspose(nd({7, 16}, numbers)), y = table(c_p, 1),
       x = (BR(ones(16, 1)), table(c_p, colon(2, 7)));
    Mm certified = col({-3482258.63459582, 15.0618722713733, -0.0358191792925910, -2.02022980381683,
                        -1.03322686717359, -0.0511041056535807, 1829.15146461355});
    auto digits = [&](const Mm &beta) {
        return -std::log10(scalar(max(abs(rdivide(beta - certified, certified)))));
    };
    EXPECT_GT(digits(mldivide(x, y)), 9);
    Mm normal = ctranspose(x) * x, right = ctranspose(x) * y, l, u, p;
    lu(normal, i_o, l, u, p);
    // The normal equations square the condition, 5e9.
    EXPECT_GT(digits(mldivide(normal, right)), 3);
    EXPECT_GT(digits(mldivide(u, mldivide(l, p * right))), 3);
    RecordProperty("digits", std::to_string(digits(mldivide(x, y))) + " " +
                                 std::to_string(digits(mldivide(normal, right))));
}
