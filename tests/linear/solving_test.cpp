// Linear solving, judged by residuals: the measure is that of LAPACK's own testers, error / (size eps norm),
// which stays below 30 for a backward stable result whatever the condition.
#include <chrono>
#include <cmath>
#include <fstream>
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

// Square matrices of order n, none singular.
std::vector<std::pair<const char *, Mm>> square_cases(int n) {
    Mm r = randn(n, n), s = randn(n, n), scale = diag(power(10.0, linspace(-8, 8, n)));
    Mm k = repmat(colon(1, n), n, 1), h = repmat(colon(1, std::min(n, 10)), std::min(n, 10), 1);
    return {{"random", r},
            {"complex", r + i * s},
            {"symmetric", r + ctranspose(r)},
            {"complex symmetric", r + ctranspose(r) + i * (s + ctranspose(s))},
            {"graded", scale * r},
            {"graded columns", (r + i * s) * scale},
            {"ill-conditioned", rdivide(1, h + ctranspose(h) - 1)}, // of Hilbert
            {"near overflow", r * 1e300},
            {"near underflow", (r + ctranspose(r)) * 1e-290},
            {"triangular", triu(r) + n * eye(n)},
            {"zero diagonal", mdouble(abs(k - ctranspose(k)))},
            {"permutation", fliplr(eye(n))}};
}

// Both forms of lu; returns the lower factor.
Mm expect_factors(const Mm &a) {
    Mm l, u, p, permuted, u2;
    lu(a, i_o, l, u, p);
    lu(a, i_o, permuted, u2);
    EXPECT_LT(ratio(full(l) * full(u) - full(p) * full(a), norm1(a), a.rows()), 30);
    EXPECT_LT(ratio(full(permuted) * full(u2) - full(a), norm1(a), a.rows()), 30);
    for (const Mm &m : {l, u, p}) EXPECT_EQ(m.issparse(), a.issparse());
    EXPECT_SAME(full(l), tril(full(l)));
    EXPECT_SAME(full(u), triu(full(u)));
    EXPECT_SAME(full(p) * full(permuted), full(l));
    return l;
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
            EXPECT_LT(ratio(y * a - c, norm1(a) * norm1(y), m), 30);

            EXPECT_LE(scalar(max(max(abs(expect_factors(a))))), std::sqrt(2) * (1 + 1e-15));
            Mm x = inv(a);
            EXPECT_LT(ratio(x * a - eye(m), norm1(a) * norm1(x), m), 30);
            // An estimate of the norm of the inverse is a lower bound, mostly within a factor of ten.
            double true_rcond = 1 / norm1(a) / norm1(x), estimate = scalar(rcond(a));
            EXPECT_GT(estimate, true_rcond / 3);
            EXPECT_LT(estimate, std::min(5 * true_rcond, 1.001));
        }
}

TEST(Solving, least_squares_and_basic_solutions) {
    for (auto [m, n] : {std::pair{3, 2}, {2, 3}, {40, 7}, {7, 40}, {200, 90}, {1, 5}, {5, 1}, {90, 200}})
        for (bool is_complex : {false, true}) {
            Mm a = randn(m, n), b = randn(m, 2);
            if (is_complex) a = a + i * randn(m, n);
            const Mm x = mldivide(a, b), r = b - a * x;
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

// Elimination by columns as LINPACK has it: a multiplier stays, negated, in the row it was computed for.
TEST(Solving, packed_factors) {
    const Mm a = M({{1, 2, 4}, {4, 8, 4}, {2, 8, 4}}), z = randn(40, 40) + i * randn(40, 40);
    EXPECT_SAME(lu(a), M({{4, 8, 4}, {-0.25, 4, 2}, {-0.5, 0, 3}}));
    EXPECT_SAME(triu(lu(z)), lu_U(z));
    EXPECT_SAME(lu(M({{0, 1}, {0, 2}})), M({{0, 1}, {0, 2}}));
}

TEST(Solving, determinants) {
    EXPECT_SAME(det(M({{0, 1}, {1, 0}})), Mm(-1.0));
    EXPECT_SAME(det(U8({{200, 3}, {100, 2}})), Mm(100.0));
    EXPECT_SAME(det(sparse(M({{0, 1}, {1, 0}}))), Mm(1.0)); // without the sign of the interchange
    EXPECT_SAME(det(Mm()), Mm(1.0));
    EXPECT_SAME(det(complex_of(M({{0, 2}, {3, 0}}), M({{1, 0}, {0, 4}}))), C(-10, 0));
    EXPECT_TRUE(any_nonfinite(det(i * 1e200 * eye(3)))); // the mantissa holds it, the power doesn't
}

TEST(Solving, singular_matrices_give_what_the_kernels_leave) {
    Mm one = ones(2, 2), p = M({{1, 2}, {2, 4}});
    EXPECT_EQ(printed([&] { EXPECT_TRUE(any_nonfinite(mldivide(one, ones(2, 1)))); }), "");
    EXPECT_TRUE(any_nonfinite(mldivide(i * one, ones(2, 1))));
    EXPECT_SAME(inv(p), M({{2, 4}, {0.5, 0}})); // the factors
    EXPECT_TRUE(any_nonfinite(inv(i * p)));
    EXPECT_SAME(inv(C(0, 2)), C(0, -0.5));
    EXPECT_SAME(rcond(p), Mm(0.0));
    const Mm nans = nan_ * ones(2, 1), flat = sparse_of(2, 2, {{0, 1}, {2, 1}});
    EXPECT_SAME(mldivide(sparse(one), ones(2, 1)), nans); // by its values
    EXPECT_SAME(mldivide(flat, ones(2, 1)), nans);        // by its pattern
    EXPECT_SAME(full(lu_U(flat)), full(flat));
    EXPECT_SAME(det(flat), Mm(0.0));
}

TEST(Solving, matrix_powers) {
    Mm a = M({{1, 1}, {1, 0}}), z = C(0, 1) * a;
    EXPECT_SAME(mpower(a, 30), M({{1346269, 832040}, {832040, 514229}}));
    EXPECT_SAME(mpower(a, -3), M({{-1, 2}, {2, -3}}));
    EXPECT_SAME(real(mpower(z, U8({{2}}))), -(a * a));
    EXPECT_SAME(mpower(sparse(a), -1), sparse(inv(a)));
    EXPECT_RAISES(mpower(a, a), "mpower: base or exponent must be a scalar");
    for (const Mm &e : {Mm(0.5), Mm(nan_), Mm(inf), C(2, 1)})
        EXPECT_RAISES(mpower(a, e), "mpower: only whole powers of a matrix are supported");
    EXPECT_RAISES(mpower(named("r", ones(1, 2)), 2),
                  "mpower: square matrix expected, but matrix r has 1 rows and 2 columns");
}

// Whole numbers of which one row is made of two others, or isn't: what is singular is known exactly.
TEST(Solving, singular_sparse_systems) {
    Random random(5);
    for (int t = 0; t < 600; ++t) {
        const int n = 3 + random.below(t % 10 ? 30 : 90), r = random.below(n);
        Mm a = 10 * n * eye(n); // which dominates
        for (int k = 0; k < n * n; ++k)
            if (random.below(n) < 3) a.addr()[k] += random.below(19) - 9;
        const bool singular = t % 2;
        if (singular) a(r + 1, c_p) = 2 * a((r + 1) % n + 1, c_p) - 3 * a((r + 2) % n + 1, c_p);
        if (t % 3 == 0) a = 0.125 * (a + C(0, 1) * a);
        const Mm s = sparse(a), b = ones(n, 1);
        ASSERT_EQ(any_nonfinite(mldivide(s, b)), singular) << t;
        ASSERT_EQ(any_nonfinite(lusolve(s, b, speye(n))), singular) << t;
    }
}

TEST(Solving, dispatch_and_shapes) {
    EXPECT_SAME(mldivide(2, M({{2, 4}})), M({{1, 2}}));
    EXPECT_SAME(mldivide(nd({2, 1, 2}, {1, 2, 4, 8}), 8.0), nd({2, 1, 2}, {8, 4, 2, 1}));
    EXPECT_RAISES(mldivide(M({{1, 2}, {3, 4}}), col({1, 2, 3})),
                  "mldivide: a,b does not have the same number of rows");
    Mm rect = ones(2, 3), l, u;
    for (const char *name : {"lu", "inv", "det", "rcond"}) {
        Mm *const out = &l;
        EXPECT_RAISES(
            kn_call_function(name, CL(rect), 1, &out),
            name + std::string(": square matrix expected, but matrix (temporary) has 2 rows and 3 columns"));
    }
    EXPECT_RAISES(lu(sparse(i * eye(2)), i_o, l, u), "lu: Complex sparse not supported.");
    EXPECT_RAISES(mldivide(ones(1, 2), cell(1, 2)),
                  "mldivide: numeric data expected, but matrix (temporary) is not");
    Mm a = M({{1, 2}, {3, 5}});
    lu(a, i_o, a, u); // an output may be the input
    EXPECT_NEAR_ULP(a * u, M({{1, 2}, {3, 5}}), 2);
}

TEST(Solving, hermitian_within_a_tolerance) {
    Mm a = M({{1, 2}, {2, 3}});
    EXPECT_TRUE(istrue(ishermitian(M({{1, 2 + 1e-15}, {2, 3}}))));
    EXPECT_FALSE(istrue(ishermitian(M({{1, 2 + 1e-14}, {2, 3}}))));
    EXPECT_TRUE(istrue(ishermitian(complex_of(a, M({{0, 1}, {-1, 0}})))));
    EXPECT_FALSE(istrue(ishermitian(complex_of(a, M({{0, 1}, {1, 0}})))));
    EXPECT_TRUE(istrue(ishermitian(M({{1, nan_}, {nan_, inf}}))));
    EXPECT_FALSE(istrue(ishermitian(nan_)));
    EXPECT_FALSE(istrue(ishermitian(sparse(M({{1, 0}, {2, 3}})))));
    EXPECT_RAISES(ishermitian(named("r", ones(1, 2))), "ishermitian: 'r' matrix not square");
    // Only the lower triangle is read then.
    Mm b = M({{1e-16, 1e-15}, {0, 1e-16}});
    EXPECT_SAME(mldivide(b, col({1e-16, 0})), col({1, 0}));
}

TEST(Solving, sparse_agrees_with_full) {
    for (auto [m, n] : {std::pair{1, 2}, {2, 2}, {30, 30}, {30, 12}, {12, 30}, {90, 90}})
        for (int kinds = 0; kinds < 4; ++kinds) {
            SCOPED_TRACE(std::to_string(m) + " by " + std::to_string(n) + " " + std::to_string(kinds));
            Mm a = sprandn(m, n, 0.15) + sparse(diag(randn(1, std::max(m, n)))(colon(1, m), colon(1, n))),
               b = randn(m, 2);
            if (kinds & 1) a = a + i * sprandn(m, n, 0.1);
            if (kinds & 2) b = b + i * randn(m, 2);
            Mm x = mldivide(a, b);
            ASSERT_TRUE(!x.issparse() && x.rows() == n && x.isc() == (a.isc() || b.isc()));
            EXPECT_SAME(full(mldivide(a, sparse(b))), x);
            if (m > n) {
                EXPECT_LT(norm1(x - mldivide(full(a), b)), 1e-8 * norm1(x));
            } else {
                EXPECT_LT(solution_ratio(a, x, b), 30);
                EXPECT_EQ(norm1(x(colon(m + 1, n), c_p)), 0);
            }
            if (m != n) continue;
            EXPECT_LT(solution_ratio(a, lusolve(a, b, fliplr(speye(n))), b), 30);
            if (kinds & 1) continue;
            expect_factors(a);
            EXPECT_NEAR(std::fabs(scalar(det(a)) / scalar(det(full(a)))), 1, 1e-9);
            const Mm inverse = inv(a), wanted = inv(full(a));
            EXPECT_TRUE(inverse.issparse());
            EXPECT_LT(norm1(inverse - wanted), 1e-9 * norm1(wanted));
        }
    Mm a = sparse(M({{1, 2}, {3, 4}})), b = ones(2, 1);
    EXPECT_RAISES(lusolve(full(a), b, a), "getIr: sparse matrix expected, but matrix (temporary) is full");
    EXPECT_RAISES(lusolve(a, b, named("q", a)), "lusolve: q is not a permutation of 2 columns");
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
        kn_poll_handler = [] { return answer; };
        answer = 0;
        work();
        EXPECT_LT(error(), 30);
        std::this_thread::sleep_for(std::chrono::milliseconds(25)); // since the hook was asked
        answer = 1;
        EXPECT_EQ(raised(work), "Interrupted");
        kn_poll_handler = nullptr;
    }
}

#ifndef __SANITIZE_ADDRESS__
// In a separate process, which has not called BLAS yet; and in a child of it, where the threads are gone.
TEST(Solving, without_address_space) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto work = [] {
        Mm a = randn(40, 40), z = a + i * a, b = randn(40, 1);
        const Mm s = sparse(a), tall = ones(40, 3), symmetric = a + ctranspose(a);
        const std::function<void()> calls[] = {[&] { inv(a); },
                                               [&] { det(z); },
                                               [&] { rcond(a); },
                                               [&] { mtimes(a, z); },
                                               [&] { mldivide(a, b); },
                                               [&] { mldivide(s, b); },
                                               [&] { mldivide(tall, b); },
                                               [&] { mldivide(symmetric, b); }};
        size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        for (int child = 0; child < 2; ++child) {
            alarm(30); // a call that waits for memory waits for ever
            rlimit limit = {pages * kn::os::page_size() + (20 << 20), RLIM_INFINITY};
            setrlimit(RLIMIT_AS, &limit);
            for (const auto &c : calls)
                if (raised(c) != "Out of memory!") _exit(2);
            limit.rlim_cur = RLIM_INFINITY;
            setrlimit(RLIMIT_AS, &limit);
            if (child == 0 && fork() != 0) break;
        }
        for (const auto &c : calls) c();
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

#endif

// Longley (1967). The certified coefficients are those of the NIST collection of statistical reference data.
TEST(Solving, longley_regression) {
    const Mm table = load(TM(QUORVEX_TEST_DATA "/longley.txt")), y = table(c_p, 1),
             x = (BR(ones(16, 1)), table(c_p, colon(2, 7)));
    const Mm certified = col({-3482258.63459582, 15.0618722713733, -0.0358191792925910, -2.02022980381683,
                              -1.03322686717359, -0.0511041056535807, 1829.15146461355});
    EXPECT_LT(scalar(max(abs(rdivide(mldivide(x, y) - certified, certified)))), 1e-9);
}
