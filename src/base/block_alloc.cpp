// The block allocator: blocks of 48 sizes up to 128 KB, cut from spans of pages, and above that the layer of
// large blocks.
//
// Eight bytes precede the data of a small block:
//
//     | - | - | - | - | - | 0xEF while in use, else 0 | size class | 0 | data (while free: the next free
//     block)
//
// The last byte isn't 0 in a large block (base/large_blocks.h), so it shows where a block is returned to. The
// size class and the 0 are written once, when the span is cut. Data are aligned to 16.
//
// A freed block returns to the list of its size, last in, first out. When the lists hold more than a loop is
// likely to need again, the spans all of whose blocks are free go back to the page heap, and their memory to
// the system.
//
// Under the address sanitizer only the data of a live block is addressable.

#include "quorvex/memory.h"

#include <algorithm>
#include <cstdint>

#include "base/block_alloc.h"
#include "base/large_blocks.h"
#include "base/lock.h"
#include "base/page_heap.h"
#include "base/scratch.h"

#ifdef KN_ASAN
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(p, n) ((void)(p), (void)(n))
#define ASAN_UNPOISON_MEMORY_REGION(p, n) ((void)(p), (void)(n))
#endif

namespace kn {

using namespace block_format;
using byte = unsigned char;

constinit byte *free_blocks[class_count] = {};

namespace {

constexpr size_t small_limit = 0x20000;         // front included
constexpr ptrdiff_t kept = ptrdiff_t{16} << 20; // bytes in free blocks that are left alone
constexpr ptrdiff_t look_step = ptrdiff_t{1} << 20;

static_assert(class_of(small_limit) == class_count - 1 && size_of(class_count - 1) == small_limit);
static_assert([] {
    for (size_t size = 1; size <= small_limit; ++size) {
        const int c = class_of(size);
        if (size_of(c) < size || (c > 0 && size_of(c - 1) >= size)) return false;
        if (size > 1000) size += size / 100;
    }
    return true;
}());

// 32 KB, at least 8 blocks, but one block of those above 16 KB.
constexpr uint32_t span_pages(int size_class) {
    const size_t size = size_of(size_class), blocks = size > 16384 ? 1 : 8;
    const size_t pages = (blocks * size + front_size + heap_page - 1) / heap_page;
    return static_cast<uint32_t>(std::max<size_t>(blocks * size < 32768 && blocks > 1 ? 8 : 0, pages));
}
constexpr uint32_t span_blocks(int size_class) {
    return static_cast<uint32_t>((span_pages(size_class) * heap_page - front_size) / size_of(size_class));
}

class SmallBlocks {
  public:
    byte *allocate(int c) {
        if (!free_blocks[c] && !refill(c)) return nullptr;
        byte *p = free_blocks[c];
        ASAN_UNPOISON_MEMORY_REGION(p, size_of(c) - front_size);
        ASAN_UNPOISON_MEMORY_REGION(p - front_size, front_size);
        free_blocks[c] = next(p);
        state(p) = in_use;
        --free_in_[c];
        return p;
    }

    // A block that is not in use is not ours and is left alone.
    void release(byte *p) {
        if (state(p) != in_use) return;
        const int c = p[-2];
        state(p) = 0;
        next(p) = free_blocks[c];
        free_blocks[c] = p;
        ASAN_POISON_MEMORY_REGION(p - front_size, size_of(c));
        freed(c, 1);
    }

    void freed(int c, ptrdiff_t n) {
        free_in_[c] += n;
        if (free_in_[c] < look_at_[c]) return;
        if (free_bytes() > limit_) {
            recount();
            if (free_bytes() > limit_) trim();
        }
        for (int k = 0; k < class_count; ++k) look_at_[k] = free_in_[k] + look_step / bytes_of(k) + 1;
    }

    // Gives the spans without a block in use back.
    void trim() {
        for (int c = 0; c < class_count; ++c)
            if (free_in_[c] * bytes_of(c) > kept / class_count) trim(c);
        limit_ = std::max(kept, free_bytes() / 2 * 3);
    }

  private:
    static constexpr ptrdiff_t bytes_of(int c) { return static_cast<ptrdiff_t>(size_of(c)); }

    ptrdiff_t free_bytes() const {
        ptrdiff_t bytes = 0;
        for (int c = 0; c < class_count; ++c) bytes += free_in_[c] * bytes_of(c);
        return bytes;
    }

    [[gnu::no_sanitize_address]] void recount() {
        for (int c = 0; c < class_count; ++c) {
            free_in_[c] = 0;
            for (byte *p = free_blocks[c]; p; p = next(p)) ++free_in_[c];
        }
    }

    bool refill(int c) {
        Span *span = heap_.allocate(span_pages(c));
        if (!span) return false;
        const size_t size = size_of(c);
        const uint32_t n = span_blocks(c);
        byte *memory = PageHeap::memory(span), *first = memory + 2 * front_size;
        ASAN_UNPOISON_MEMORY_REGION(memory, span->pages * heap_page);
        for (uint32_t k = 0; k < n; ++k) {
            byte *p = first + k * size;
            next(p) = k + 1 < n ? p + size : nullptr;
            p[-1] = 0;
            p[-2] = static_cast<byte>(c);
            state(p) = 0;
        }
        ASAN_POISON_MEMORY_REGION(memory, span->pages * heap_page);
        free_blocks[c] = first;
        free_in_[c] = n; // the list was empty, whatever was counted
        return true;
    }

    // Marks in each span count its free blocks: up for all blocks of the list, then down again.
    [[gnu::no_sanitize_address]] void trim(int c) {
        const uint32_t blocks = span_blocks(c);
        ptrdiff_t n = 0;
        for (byte *p = free_blocks[c]; p; p = next(p), ++n) ++PageHeap::span_of(p)->marks;
        byte **link = &free_blocks[c];
        Span *full = nullptr;
        for (byte *p = *link, *after; p; p = after) {
            after = next(p);
            Span *span = PageHeap::span_of(p);
            if (span->marks >= blocks) { // stays above until the last of its blocks has been taken out
                --n;
                if (++span->marks == 2 * blocks) {
                    span->next = full;
                    full = span;
                }
            } else {
                *link = p;
                link = &next(p);
            }
        }
        *link = nullptr;
        for (byte *p = free_blocks[c]; p; p = next(p)) PageHeap::span_of(p)->marks = 0;
        while (full) {
            Span *after = full->next;
            full->marks = 0;
            heap_.release(full);
            full = after;
        }
        free_in_[c] = n;
    }

    PageHeap heap_;
    ptrdiff_t free_in_[class_count] = {}; // but for what quick_alloc and quick_free have done since a count
    ptrdiff_t look_at_[class_count] = {}; // free blocks at which free_bytes is compared with the limit
    ptrdiff_t limit_ = kept;
};

constinit SmallBlocks small_blocks;

} // namespace

void quick_freed(size_t blocks, size_t n) {
    Lock lock(Guarded::blocks);
    small_blocks.freed(class_of(n + front_size), static_cast<ptrdiff_t>(blocks));
}

void *extend_block(void *block, size_t n) {
    const byte *p = static_cast<byte *>(block);
    return p[-1] && !allocation_fails(n) ? large_grow(block, n) : nullptr;
}

} // namespace kn

using namespace kn;

void *kn_block_alloc(size_t n) {
    if (n > SIZE_MAX - small_limit || allocation_fails(n)) return nullptr;
    byte *p;
    if (n > small_limit - front_size) {
        p = static_cast<byte *>(large_alloc(n));
    } else {
        const int c = class_of(n + front_size);
        Lock lock(Guarded::blocks);
        p = small_blocks.allocate(c);
        if (!p) {
            release_large_blocks();
            small_blocks.trim();
            p = small_blocks.allocate(c);
        }
    }
    if (p) count_live(1);
    return p;
}

void kn_block_free(void *block) {
    if (!block) return;
    count_live(-1);
    byte *p = static_cast<byte *>(block);
    if (p[-1]) {
        large_free(p);
    } else {
        Lock lock(Guarded::blocks);
        small_blocks.release(p);
    }
}
