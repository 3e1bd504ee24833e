// The block allocator: alignment, reuse, blocks from several threads, and what
// the cache of large blocks keeps and gives again.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "base/block_alloc.h"
#include "base/large_blocks.h"
#include "platform/platform.h"
#include "support/support.h"

namespace {

using byte = unsigned char;

constexpr size_t KB = 1024, MB = 1024 * KB;

byte *take(size_t n) {
    byte *p = static_cast<byte *>(kn_block_alloc(n));
    EXPECT_TRUE(p && reinterpret_cast<uintptr_t>(p) % 8 == 0) << n;
    return p;
}

TEST(BlockAlloc, a_freed_block_comes_back_first_to_its_size) {
    // The least and the most data of one size.
    const size_t sizes[][2] = {{0, 8}, {9, 24}, {121, 152}, {16377, 20472}, {114681, 131064}};
    for (auto [smallest, largest] : sizes) {
        byte *a = take(largest), *b = take(largest);
        kn_block_free(a);
        kn_block_free(b);
        byte *other = take(largest + 1);
        EXPECT_TRUE(other != a && other != b) << largest;
        EXPECT_EQ(take(largest), b) << largest;
        EXPECT_EQ(take(smallest), a) << largest;
        for (byte *p : {a, b, other}) kn_block_free(p);
    }
}

// Small and large ones.
TEST(BlockAlloc, live_blocks_keep_their_contents_while_others_come_and_go) {
    test::Random random(1);
    for (auto [count, least, bits, rounds] :
         {std::array{300, 0, 18, 8000}, std::array{12, 128 << 10, 23, 400}}) {
        struct Block {
            byte *p = nullptr;
            std::vector<byte> held;
        };
        std::vector<Block> live(static_cast<size_t>(count));
        for (int round = 0; round < rounds; ++round) {
            auto &[p, held] = live[static_cast<size_t>(random.below(count))];
            ASSERT_TRUE(std::equal(held.begin(), held.end(), p));
            kn_block_free(p);
            const int n = least + random.below(1 << (4 + random.below(bits - 4)));
            held.assign(static_cast<size_t>(n), static_cast<byte>(round));
            p = take(held.size());
            std::copy(held.begin(), held.end(), p);
        }
        for (auto &b : live) kn_block_free(b.p);
    }
}

// Sizes of many blocks and of one in a span, in more memory than one chunk has; every 1000th stays.
TEST(BlockAlloc, memory_of_freed_blocks_goes_back_and_live_ones_keep_their_contents) {
    [[maybe_unused]] const double before = static_cast<double>(kn::os::process_memory());
    for (size_t n : {size_t(80), size_t(5000), size_t(40000), size_t(131064)}) {
        const size_t count = (size_t(100) << 20) / n;
        std::vector<byte *> live;
        for (size_t k = 0; k < count; ++k) {
            live.push_back(take(n));
            std::memset(live.back(), static_cast<int>(k / 1000 % 251), n);
        }
        for (size_t k = 0; k < count; ++k)
            if (k % 1000 != 0) kn_block_free(live[k]);
#ifndef KN_ASAN
        EXPECT_LT(static_cast<double>(kn::os::process_memory()) - before, 64e6) << n;
#endif
        for (size_t k = 0; k < count; k += 1000) {
            EXPECT_TRUE(live[k][0] == k / 1000 % 251 && live[k][n - 1] == k / 1000 % 251) << n;
            kn_block_free(live[k]);
        }
    }
}

#ifndef QUORVEX_ALLOC_PROBE // whose counters are no atomics
// A block of a bucket, and a large one.
TEST(BlockAlloc, threads_share_blocks_under_the_lock) {
    EXPECT_NE(kn_set_MT(1), 0u);
    for (size_t n : {size_t(40), size_t(151) << 10}) {
        auto work = [n](byte mark) {
            byte *held[20] = {};
            for (int k = 0; k < 20000; ++k) {
                byte *&p = held[k % 20];
                if (p && (p[0] != mark || p[n - 1] != mark)) return ADD_FAILURE() << "given out twice: " << n;
                kn_block_free(p);
                p = static_cast<byte *>(kn_block_alloc(n));
                p[0] = p[n - 1] = mark;
            }
            for (byte *p : held) kn_block_free(p);
        };
        std::thread other(work, byte(1));
        work(2);
        other.join();
    }
    kn_set_MT(0);
}
#endif

// ---- Large blocks ----

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
    for (size_t n : {SIZE_MAX / 4, SIZE_MAX}) EXPECT_EQ(kn_block_alloc(n), nullptr);
    EXPECT_EQ(kn::large_cache_use().blocks, 0u);
}

} // namespace
