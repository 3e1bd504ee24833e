// Shared work: the ranges, results seen by the caller, calls within and beside each other, helpers' state,
// and processes that fork.
#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <cfenv>
#include <csignal>
#include <thread>
#include <vector>

#include "platform/platform.h"
#include "support/support.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

using kn::parallel_for;

class Parallel : public testing::Test {
  protected:
    void TearDown() override {
        kn_threads_flag = 0;
        kn::set_thread_count(0);
    }
};

// Each element's own count, and every range on its grains.
bool covers_once(ptrdiff_t n, ptrdiff_t grain) {
    std::vector<unsigned char> met(static_cast<size_t>(n));
    std::atomic<bool> on_grains = true;
    parallel_for(n, grain, [&](ptrdiff_t begin, ptrdiff_t end) {
        if (begin % grain || (end % grain && end != n) || begin >= end) on_grains = false;
        for (ptrdiff_t k = begin; k < end; ++k) ++met[static_cast<size_t>(k)];
    });
    return on_grains && std::ranges::all_of(met, [](unsigned char m) { return m == 1; });
}

// Shares work until another thread has taken part, and calls `seen` in that thread.
template <class F> bool in_helper(F seen) {
    const auto caller = std::this_thread::get_id();
    std::atomic<bool> there = false;
    const double end = kn::os::monotonic_clock() + 20;
    parallel_for(2, 1, [&](ptrdiff_t, ptrdiff_t) {
        if (std::this_thread::get_id() != caller) {
            seen();
            there = true;
        }
        while (!there && kn::os::monotonic_clock() < end) std::this_thread::yield();
    });
    return there;
}

TEST_F(Parallel, ranges_cover_everything_once_on_whole_grains) {
    test::Random random(2);
    for (int threads : {1, 2, 5}) {
        kn::set_thread_count(threads);
        for (ptrdiff_t grain : {1, 8, 1000, 200000}) ASSERT_TRUE(covers_once(100003, grain)) << threads;
        ASSERT_TRUE(covers_once(0, 1));
        for (int k = 0; k < 3000; ++k)
            ASSERT_TRUE(covers_once(1 + random.below(300), 1 + random.below(20))) << threads;
    }
}

TEST_F(Parallel, jobs_inside_and_beside_each_other_all_get_done) {
    kn::set_thread_count(3);
    std::atomic<bool> fine = true;
    auto caller = [&fine] {
        for (int round = 0; round < 1000; ++round) {
            std::vector<int> outer(40), inner(40 * 10);
            parallel_for(40, 1, [&](ptrdiff_t begin, ptrdiff_t end) {
                for (ptrdiff_t k = begin; k < end; ++k) {
                    ++outer[k];
                    parallel_for(10, 1, [&](ptrdiff_t b, ptrdiff_t e) {
                        for (; b < e; ++b) ++inner[10 * k + b];
                    });
                }
            });
            if (outer != std::vector<int>(40, 1) || inner != std::vector<int>(400, 1)) fine = false;
        }
    };
    std::thread a(caller), b(caller);
    caller();
    a.join();
    b.join();
    EXPECT_TRUE(fine);
}

TEST_F(Parallel, the_number_comes_from_the_environment_and_threaded_programs_ask_for_it) {
    auto with = [](const char *text) {
        kn::os::set_environment("QUORVEX_THREADS", text);
        kn::set_thread_count(0);
        return kn::thread_count();
    };
    const int by_default = with(nullptr);
    EXPECT_TRUE(by_default >= 1 && by_default <= 8);
    for (const char *nonsense : {"", "many", "0", "-3"}) EXPECT_EQ(with(nonsense), by_default) << nonsense;
    EXPECT_EQ(with("1"), 1);
    EXPECT_EQ(with("3"), 3);
    kn_threads_flag = 1;
    EXPECT_EQ(kn::thread_count(), 3);
    EXPECT_TRUE(in_helper([] {}));
    EXPECT_EQ(with(nullptr), 1);
}

#ifndef _WIN32
TEST_F(Parallel, helpers_round_to_nearest_and_take_no_signals) {
    kn::set_thread_count(1);
    std::fesetround(FE_UPWARD);
    kn::set_thread_count(2);
    int rounding = -1;
    sigset_t blocked;
    const bool there = in_helper([&] {
        rounding = std::fegetround();
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    });
    std::fesetround(FE_TONEAREST);
    ASSERT_TRUE(there);
    EXPECT_EQ(rounding, FE_TONEAREST);
    EXPECT_TRUE(sigismember(&blocked, SIGINT) && sigismember(&blocked, SIGALRM));
    EXPECT_FALSE(sigismember(&blocked, SIGSEGV)) << "a fault is reported wherever it happens";
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_FALSE(sigismember(&blocked, SIGINT)) << "the caller takes them as before";
}

#ifndef __SANITIZE_THREAD__ // which can't follow a fork
TEST_F(Parallel, a_forked_child_shares_with_helpers_of_its_own) {
    kn::set_thread_count(2);
    ASSERT_TRUE(in_helper([] {}));
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        _exit(in_helper([] {}) && covers_once(100000, 10) ? 7 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << status;
    EXPECT_TRUE(in_helper([] {}));
}

#endif
#endif

} // namespace
