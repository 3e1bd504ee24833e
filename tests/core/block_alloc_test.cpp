// The block allocator: which layer serves a request, alignment, reuse, and blocks from several threads.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "quorvex/memory.h"
#include "support/support.h"

namespace {

using byte = unsigned char;

byte *take(size_t n) {
    byte *p = static_cast<byte *>(kn_block_alloc(n));
    EXPECT_TRUE(p && reinterpret_cast<uintptr_t>(p) % 8 == 0) << n;
    return p;
}

bool from_buckets(const byte *p) { return p[-1] == 0; }

TEST(BlockAlloc, the_byte_before_a_block_tells_its_layer) {
    constexpr size_t limit = 0x20000 - 8;
    for (size_t n : {size_t(0), size_t(5), limit, limit + 1, size_t(1) << 22}) {
        byte *p = take(n);
        EXPECT_EQ(from_buckets(p), n <= limit) << n;
        EXPECT_LE(p[-1], 9) << n;
        std::memset(p, 1, n);
        kn_block_free(p);
    }
    kn_block_free(nullptr);
    EXPECT_EQ(kn_block_alloc(SIZE_MAX), nullptr);
}

TEST(BlockAlloc, a_freed_block_comes_back_first_to_its_bucket) {
    // A block has 12 bytes more than its data. From the page unit of 32 KB on it has that unit more, too.
    // The least and the most data of one bucket.
    const size_t buckets[][2] = {{0, 4}, {21, 52}, {8181, 16372}, {16373, 65524}, {65525, 98292}};
    for (auto [smallest, largest] : buckets) {
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

TEST(BlockAlloc, blocks_do_not_overlap) {
    struct {
        byte *p;
        std::vector<byte> held;
    } live[300] = {};
    test::Random random(1);
    for (int round = 0; round < 8000; ++round) {
        auto &[p, held] = live[random.below(300)];
        ASSERT_TRUE(std::equal(held.begin(), held.end(), p));
        kn_block_free(p);
        held.assign(static_cast<size_t>(random.below(1 << (4 + random.below(14)))), static_cast<byte>(round));
        p = take(held.size());
        std::fill_n(p, held.size(), static_cast<byte>(round));
    }
    for (auto &b : live) kn_block_free(b.p);
}

TEST(BlockAlloc, the_heap_grows_past_its_first_chunk) {
    std::vector<byte *> live;
    for (int k = 0; k < 1200; ++k) { // of 128 KB and a page unit each, in chunks of 128 MB
        live.push_back(take(0x20000 - 8));
        live.back()[0] = live.back()[0x20000 - 9] = static_cast<byte>(k);
    }
    for (int k = 0; k < 1200; ++k) {
        EXPECT_TRUE(live[k][0] == static_cast<byte>(k) && live[k][0x20000 - 9] == static_cast<byte>(k));
        kn_block_free(live[k]);
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

} // namespace
