// Every function with random values of every kind in every place: what comes back is a valid value or a
// reported error, the inputs stay as they were, and nothing leaks, whether the error handler throws or
// returns.
#include <exception>

#include "base/scratch.h"
#include "support/functions.h"
#include "support/support.h"
#include "value/header.h"

#ifdef QUORVEX_ALLOC_PROBE // which keeps the sizes that random numbers ask for in bounds

using kn::alloc_probe;

namespace {

constexpr int rounds = 200; // for each function and count

// A copy that shares nothing.
Mm deep(const Mm &m) {
    Mm copy;
    copy.deepcopy(m, kn_none);
    if (m.gettype() == kn_Mm)
        for (int k = 1; k <= m.getnnz(); ++k) copy.mr(k) = deep(m.mr(k));
    return copy;
}

void check_deep(const Mm &m) {
    kn::check(m);
    if (m.gettype() == kn_Mm)
        for (int k = 1; k <= m.getnnz(); ++k) check_deep(m.mr(k));
}

// An imaginary plane of zeros may be dropped, or given, on the way.
bool unchanged(const Mm &now, const Mm &before) {
    now.getreal(0);
    before.getreal(0);
    return static_cast<bool>(test::same(now, before));
}

// One call; the failure to tell, or nothing.
std::string called(const test::Function &f, const std::vector<Mm> &inputs, bool throwing) {
    try {
        auto call = [&] { check_deep(f.call(inputs.data())); };
        test::Returning errors;
        throwing ? (void)test::raised(call) : call();
    } catch (const std::exception &e) {
        return std::string("a foreign exception escapes: ") + e.what();
    }
    return "";
}

void run(bool throwing) {
    test::Random random(4500);
    test::Warnings warnings;
    test::Unattended unattended;
    for (const test::Function &f : test::functions()) {
        if (!f.form) continue;
        unattended.go_home();
        for (int round = 0; round < (f.count ? rounds : 1); ++round) {
            std::vector<Mm> inputs, before;
            for (int k = 0; k < f.count; ++k) {
                // Now and then the same value twice, in one block: extents that agree, and aliases.
                inputs.push_back(k > 0 && random.below(3) == 0 ? inputs.back() : random.any());
                before.push_back(deep(inputs.back()));
            }
            std::string fault;
            long live = alloc_probe.live;
            test::printed([&] { fault = called(f, inputs, throwing); });
            for (int k = 0; k < f.count; ++k)
                if (fault.empty() && !unchanged(inputs[k], before[k]))
                    fault = "input " + std::to_string(k + 1) + " changed";
            // A first call may build what stays; a second one may not.
            if (fault.empty() && alloc_probe.live != live) {
                live = alloc_probe.live;
                test::printed([&] { called(f, inputs, throwing); });
                if (alloc_probe.live != live) fault = "a block leaks";
            }
            if (fault.empty()) continue;
            ADD_FAILURE() << f.title() << ": " << fault << testing::PrintToString(before);
            break;
        }
    }
    format();
    lasterr();
}

TEST(RandomArguments, with_a_handler_that_throws) { run(true); }
TEST(RandomArguments, with_a_handler_that_returns) { run(false); }

} // namespace

#else

TEST(RandomArguments, with_any_handler) {
    GTEST_SKIP() << "a build with QUORVEX_ALLOC_PROBE bounds the sizes";
}

#endif
