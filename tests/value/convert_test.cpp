// full and sparse, text and strings, there and back.
#include <cmath>

#include "support/support.h"

using namespace test;

namespace {

TEST(SparseConversion, keeps_nonzeros_nan_and_truth) {
    Mm a = M({{0, 3, -0.0}, {NAN, 0, 5}}), truth = test::logical_of(M({{0, 1}}));
    EXPECT_SAME(sparse(a), sparse_of(2, 3, {{1, NAN}, {2, 3}, {5, 5}}));
    EXPECT_SAME(full(sparse(TM("Hi"))), M({{72, 105}}));
    EXPECT_TRUE(sparse(truth).islogical() && !full(sparse(truth)).islogical());
    EXPECT_SAME(sparse(test::U8({{0, 200}})), sparse_of(1, 2, {{1, 200}}));
    EXPECT_RAISES(sparse(test::named("c", test::cell_of(1, 1, {1.0}))),
                  "sparse: numeric data expected, but matrix c is not");
    EXPECT_RAISES(full(sparse_of(10000, 10000, {{7, 1}})), "full: matrix too large");
}

TEST(TextConversion, a_text_may_fill_its_buffer) {
    char buf[4] = "";
    Mstr(TM("abc"), buf, sizeof buf);
    EXPECT_STREQ(buf, "abc");
}

} // namespace
