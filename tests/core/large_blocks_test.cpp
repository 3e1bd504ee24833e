// Large blocks: alignment, contents, what the cache keeps and gives again, and its bounds.
#include "core/large_blocks.h"

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

TEST_F(LargeBlocks, live_ones_keep_their_contents_while_others_come_and_go) {
    struct {
        byte *p;
        std::vector<byte> held;
    } live[12] = {};
    test::Random random(1);
    for (int round = 0; round < 400; ++round) {
        auto &[p, held] = live[random.below(12)];
        ASSERT_TRUE(std::equal(held.begin(), held.end(), p)) << round;
        kn_block_free(p);
        held.assign(128 * KB + static_cast<size_t>(random.below(1 << (10 + random.below(13)))),
                    static_cast<byte>(round));
        p = take(held.size());
        ASSERT_NE(p, nullptr);
        if (cached) {
            ASSERT_EQ(p[-1], 9);
            ASSERT_EQ(reinterpret_cast<uintptr_t>(p) % 64, 0u);
        }
        std::copy(held.begin(), held.end(), p);
    }
    for (auto &b : live) kn_block_free(b.p);
}

TEST_F(LargeBlocks, a_freed_one_serves_requests_down_to_its_half) {
    if (!cached) GTEST_SKIP() << "nothing is kept";
    byte *big = take(40 * MB), *small = take(24 * MB);
    kn_block_free(small);
    kn_block_free(big);
    byte *best = take(21 * MB), *next = take(21 * MB), *fresh = take(19 * MB);
    EXPECT_EQ(best, small);
    EXPECT_EQ(next, big);
    kn_block_free(next);
    byte *too_little = take(18 * MB), *larger = take(43 * MB);
    for (byte *p : {fresh, too_little, larger}) EXPECT_TRUE(p && p != big && p != small);
    for (byte *p : {best, fresh, too_little, larger}) kn_block_free(p);
    EXPECT_EQ(kn::large_cache_use().blocks, 5u);
    kn::release_large_blocks();
    EXPECT_EQ(kn::large_cache_use().bytes, 0u);
}

TEST_F(LargeBlocks, the_cache_keeps_to_each_of_its_bounds) {
    if (!cached) GTEST_SKIP() << "nothing is kept";
    // Few blocks in small pages, as many others as there may be, and few that are very large.
    const size_t sizes[] = {1 * MB, 2 * MB, bound.bytes / 6}, least_blocks[] = {10, bound.blocks, 5};
    for (int k = 0; k < 3; ++k) {
        std::vector<byte *> live;
        for (int l = 0; l < 50; ++l) live.push_back(take(sizes[k]));
        for (byte *p : live) {
            ASSERT_NE(p, nullptr);
            kn_block_free(p);
            const kn::LargeCacheUse use = kn::large_cache_use();
            ASSERT_LE(use.blocks, bound.blocks);
            ASSERT_LE(use.bytes, bound.bytes);
            ASSERT_LE(use.small_pages, bound.small_pages);
        }
        EXPECT_GE(kn::large_cache_use().blocks, least_blocks[k]) << sizes[k];
        byte *last = take(sizes[k]);
        EXPECT_NE(std::find(live.end() - bound.blocks, live.end(), last), live.end()) << "the latest stay";
        kn_block_free(last);
    }
    const size_t before = kn::large_cache_use().blocks;
    kn_block_free(take(bound.bytes));
    EXPECT_EQ(kn::large_cache_use().blocks, before) << "too large to keep";
}

TEST_F(LargeBlocks, an_impossible_one_is_null_and_frees_the_cache_first) {
    kn_block_free(take(3 * MB));
    for (size_t n : {SIZE_MAX / 4, SIZE_MAX / 2, SIZE_MAX - 256 * KB, SIZE_MAX}) EXPECT_EQ(take(n), nullptr);
    EXPECT_EQ(kn::large_cache_use().blocks, 0u);
}

} // namespace
