// Large blocks: alignment, contents, what the cache keeps and gives again, and its bounds.
#include "base/large_blocks.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/platform.h"
#include "quorvex/memory.h"
#include "support/support.h"

namespace {

using byte = unsigned char;

constexpr size_t KB = 1024, MB = 1024 * KB;

byte *take(size_t n) { return static_cast<byte *>(kn_block_alloc(n)); }

class LargeBlocks : public testing::Test {
  protected:
    void SetUp() override { kn::release_large_blocks(); }
    const kn::LargeCacheUse bound = kn::large_cache_bound();
    const bool cached = bound.blocks > 0; // not under the address sanitizer
};

TEST_F(LargeBlocks, a_request_gets_the_smallest_kept_block_that_suffices_or_the_beginning_of_a_larger_one) {
    if (!cached) GTEST_SKIP() << "nothing is kept";
    byte *live = take(600 * MB); // allows as much to be kept; its pages are never touched
    byte *small = take(24 * MB - KB), *big = take(40 * MB - KB);
    kn_block_free(big);
    kn_block_free(small);
    byte *first = take(23 * MB), *second = take(38 * MB);
    EXPECT_EQ(first, small);
    EXPECT_EQ(second, big);
    kn_block_free(live); // live blocks are few now, and with new ones must not exceed what was alive
    for (byte *p : {first, second}) kn_block_free(p);
    EXPECT_LE(kn::large_cache_use().bytes, 24 * MB);
}

TEST_F(LargeBlocks, what_is_kept_stays_within_its_bounds) {
    if (!cached) GTEST_SKIP() << "nothing is kept";
    for (size_t size : {200 * KB, bound.bytes / 6}) {
        std::vector<byte *> live;
        for (int l = 0; l < 50; ++l) live.push_back(take(size));
        size_t alive = 50 * (size + 2 * MB);
        for (byte *p : live) {
            ASSERT_NE(p, nullptr);
            kn_block_free(p);
            alive -= size + 2 * MB;
            const kn::LargeCacheUse use = kn::large_cache_use();
            ASSERT_LE(use.blocks, bound.blocks);
            ASSERT_LE(use.bytes, std::min(bound.bytes, alive + 24 * MB + 2 * MB));
        }
        if (size > 24 * MB) continue;
        byte *last = take(size);
        EXPECT_NE(std::find(live.end() - bound.blocks, live.end(), last), live.end()) << "the latest stay";
        kn_block_free(last);
    }
}

TEST_F(LargeBlocks, an_impossible_one_is_null_and_frees_the_cache_first) {
    kn_block_free(take(3 * MB));
    for (size_t n : {SIZE_MAX / 4, SIZE_MAX}) EXPECT_EQ(take(n), nullptr);
    EXPECT_EQ(kn::large_cache_use().blocks, 0u);
}

} // namespace
