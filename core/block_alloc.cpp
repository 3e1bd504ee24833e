// The block allocator: a front layer over power-of-two buckets over a private heap, and above 128 KB the
// layer of large blocks.
//
// A block from the buckets, of 2^(b+3) bytes in bucket b, starts 4 bytes before an 8-byte boundary:
//
//     | 0xEF, b, -, - | 8 bytes of the front layer, the last of them 0 | data ... |
//       header          (while free: the next free block)
//
// In a large block the byte before the data isn't 0 (core/large_blocks.h). So that byte tells where to give a
// block back. Blocks of a bucket are cut from pieces of the page unit (8 system pages); they return to their
// bucket, last in, first out, and never to the system. Nothing is searched, split or merged.
//
// The private heap is contiguous: chunks of 128 MB are reserved one behind the other and committed as they
// are used.
//
// Under the address sanitizer only the data of a live block is addressable.

#include "quorvex/memory.h"

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "core/block_alloc.h"
#include "core/large_blocks.h"
#include "core/lock.h"
#include "core/scratch.h"
#include "platform/platform.h"

#ifdef KN_ASAN
#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(p, n) ((void)(p), (void)(n))
#define ASAN_UNPOISON_MEMORY_REGION(p, n) ((void)(p), (void)(n))
#endif

namespace kn {

using byte = unsigned char;

constinit byte *bucket_heads[bucket_count] = {};

namespace {

using namespace block_format;

constexpr size_t small_limit = 0x20000; // front layer included
constexpr size_t chunk_size = 0x8000000;

struct PrivateHeap {
    byte *commit_end = nullptr;
    byte *reserve_end = nullptr;
    byte *brk = nullptr;

    // `incr` more bytes at the end of the heap, or null.
    byte *grow(size_t incr, size_t unit) {
        if (!reserve_end || brk + incr >= reserve_end) {
            if (commit_end != reserve_end) {
                if (!os::commit(commit_end, static_cast<size_t>(reserve_end - commit_end))) return nullptr;
                commit_end = reserve_end;
            }
            byte *chunk = static_cast<byte *>(os::reserve(reserve_end, chunk_size));
            if (!chunk) return nullptr;
#ifdef KN_ASAN
            __lsan_register_root_region(chunk, chunk_size);
#endif
            if (!reserve_end) commit_end = brk = chunk;
            reserve_end = chunk + chunk_size;
        }
        byte *start = brk;
        brk += incr;
        if (brk > commit_end) {
            size_t excess = (static_cast<size_t>(brk - commit_end) + unit - 1) / unit * unit;
            size_t left = static_cast<size_t>(reserve_end - commit_end);
            if (excess > left) excess = left;
            if (!os::commit(commit_end, excess)) {
                brk = start;
                return nullptr;
            }
            commit_end += excess;
        }
        return start;
    }
};

struct Buckets {
    static constexpr auto &heads = bucket_heads;

    size_t page_unit = 0;
    int page_bucket = 0;
    PrivateHeap heap;

    bool start() {
        page_unit = os::page_size() * 8;
        page_bucket = std::bit_width(page_unit) - 4;
        // Blocks start 4 bytes before a page, so that what lies behind their header is aligned.
        return heap.grow(page_unit - header_size, page_unit) != nullptr;
    }

    int bucket_of(size_t m) const {
        if (m <= page_unit - header_size) return std::bit_width(m + header_size - 1) - 3;
        // A large block comes with one page unit more than its size.
        size_t size = m + header_size > page_unit ? m + header_size - page_unit : 1;
        int b = std::bit_width(size - 1) - 3;
        return b > page_bucket ? b : page_bucket;
    }

    void refill(int b) {
        size_t size = size_t(1) << (b + 3);
        size_t bytes = size >= page_unit ? size + page_unit : page_unit;
        size_t blocks = size >= page_unit ? 1 : page_unit / size;
        byte *piece = heap.grow(bytes, page_unit);
        if (!piece) return;
        for (size_t k = 0; k < blocks; ++k)
            next(piece + k * size) = k + 1 < blocks ? piece + (k + 1) * size : nullptr;
        heads[b] = piece;
        ASAN_POISON_MEMORY_REGION(piece, bytes);
    }

    // What lies behind the header of a block with room for m bytes, or null.
    byte *take(size_t m) {
        if (!page_unit && !start()) {
            page_unit = 0;
            return nullptr;
        }
        int b = bucket_of(m);
        if (!heads[b]) {
            refill(b);
            if (!heads[b]) return nullptr;
        }
        byte *block = heads[b];
        ASAN_UNPOISON_MEMORY_REGION(block, header_size + m);
        heads[b] = next(block);
        block[0] = magic;
        block[1] = static_cast<byte>(b);
        return block + header_size;
    }

    // A block without the magic value is not ours and is left alone.
    void give(byte *p) {
        byte *block = p - header_size;
        if (block[0] != magic) return;
        int b = block[1];
        block[0] = 0;
        next(block) = heads[b];
        heads[b] = block;
        size_t size = size_t(1) << (b + 3);
        ASAN_POISON_MEMORY_REGION(block, size >= page_unit ? size + page_unit : size);
    }
};

constinit Buckets buckets;

constexpr int block_lock = 2;

} // namespace
} // namespace kn

using namespace kn;

void *kn_block_alloc(size_t n) {
    if (n > SIZE_MAX - small_limit || allocation_fails(n)) return nullptr;
    size_t m = n + front_size;
    byte *p;
    if (m > small_limit) {
        p = static_cast<byte *>(large_alloc(n));
        if (!p) return nullptr;
    } else {
        Lock lock(block_lock);
        p = buckets.take(m);
        if (!p) {
            release_large_blocks();
            p = buckets.take(m);
        }
        if (!p) return nullptr;
        p += front_size;
        p[-1] = 0;
    }
    count_live(1);
    return p;
}

void kn_block_free(void *block) {
    if (!block) return;
    count_live(-1);
    byte *p = static_cast<byte *>(block);
    if (p[-1]) {
        large_free(p);
    } else {
        Lock lock(block_lock);
        buckets.give(p - front_size);
    }
}
