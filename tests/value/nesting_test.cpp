// Values nested deeply are compared, shown, converted and freed in a small stack.
#include <pthread.h>

#include <algorithm>
#include <string>

#include "support/support.h"
#include "value/header.h"

using namespace test;

namespace {

constexpr int depth = 20000; // a tenth of it, each level calling the next, overflows the stack below

Mm cells(int n, Mm inside) {
    for (int k = 0; k < n; ++k) inside = cell_of(1, 1, {inside});
    return inside;
}

void in_small_stack(void (*work)()) {
    pthread_attr_t small;
    pthread_attr_init(&small);
    pthread_attr_setstacksize(&small, 256 << 10);
    pthread_t thread;
    auto run = [](void *f) -> void * { return reinterpret_cast<void (*)()>(f)(), nullptr; };
    ASSERT_EQ(pthread_create(&thread, &small, run, reinterpret_cast<void *>(work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&small);
}

TEST(Nesting, takes_no_stack) {
    in_small_stack([] {
        Mm a = cells(depth, TM("x ")), b = cells(depth, TM("x ")), s;
        for (int k = 0; k < depth; ++k) {
            Mm outer;
            outer.member("next") = s;
            s = outer;
        }
        EXPECT_EQ(isequal(a, b).r(), 1);
        EXPECT_EQ(isequal(s, s).r(), 1);
        EXPECT_EQ(isequal(deblank(upper(a)), cells(depth, TM("X"))).r(), 1);
        EXPECT_SAME(strvcat(a, a), strvcat(TM("x "), TM("x ")));
        EXPECT_SAME(str2double(cells(depth, TM("7"))), 7.0);
        const std::string text = printed([&] { celldisp(a); });
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), depth + 1);
    });
}

} // namespace
