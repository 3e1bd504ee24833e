// The block allocator: which layer serves a request, alignment, reuse, and blocks from several threads.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "base/block_alloc.h"
#include "platform/platform.h"
#include "support/support.h"

namespace {

using byte = unsigned char;

byte *take(size_t n) {
    byte *p = static_cast<byte *>(kn_block_alloc(n));
    EXPECT_TRUE(p && reinterpret_cast<uintptr_t>(p) % 8 == 0) << n;
    return p;
}

bool is_small(const byte *p) { return p[-1] == 0; }

TEST(BlockAlloc, the_byte_before_a_block_tells_its_layer) {
    constexpr size_t limit = 0x20000 - 8;
    for (size_t n : {size_t(0), size_t(5), limit, limit + 1, size_t(1) << 22}) {
        byte *p = take(n);
        EXPECT_EQ(is_small(p), n <= limit) << n;
        EXPECT_LE(p[-1], 9) << n;
        std::memset(p, 1, n);
        kn_block_free(p);
    }
    kn_block_free(nullptr);
    EXPECT_EQ(kn_block_alloc(SIZE_MAX), nullptr);
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

} // namespace
