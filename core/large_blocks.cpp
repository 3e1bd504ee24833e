// A block is a mapping of whole pages:
//
//     | size of the mapping | ... | 9 | data ... |
//       0                           63  64
//
// From os::huge_page on it is in huge pages: one takes about as long to make as thirty small ones, which hold
// a sixteenth as much. The end of a block is rounded up to a huge page unless that wastes more than a
// quarter.
//
// The cache keeps freed blocks in the order of their freeing and gives a request the smallest that is large
// enough and no more than twice as large as needed; so at least half of each live block is of use. It is
// bounded by the number of blocks, by bytes, and by bytes in small pages; the blocks freed first leave it
// first. Blocks in huge pages are offered to the system while they lie here: it takes their memory back when
// it needs some, also from an idle program. That costs less than 1 us for a huge page, a hundredth of an
// operation that fills it. For small pages it costs as much as filling them, therefore they are not offered,
// and few are kept.

#include "core/large_blocks.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "core/block_alloc.h"
#include "core/lock.h"
#include "platform/platform.h"

namespace kn {

#ifdef KN_ASAN

// The sanitizer knows what happens to the C heap, so nothing is kept.
void *large_alloc(size_t n) {
    constexpr size_t alignment = 8;
    if (n > SIZE_MAX - alignment) return nullptr;
    char *start = static_cast<char *>(std::malloc(n + alignment));
    if (!start) return nullptr;
    const size_t distance = alignment - (reinterpret_cast<uintptr_t>(start) & (alignment - 1));
    start[distance - 1] = static_cast<char>(distance);
    return start + distance;
}

void large_free(void *p) {
    char *data = static_cast<char *>(p);
    std::free(data - data[-1]);
}

void release_large_blocks() {}

LargeCacheUse large_cache_use() { return {}; }

LargeCacheUse large_cache_bound() { return {}; }

#else

namespace {

constexpr int block_lock = 2;
constexpr size_t header = 64; // before the data
constexpr char origin = 9;
constexpr size_t max_blocks = 32;
constexpr size_t max_bytes = size_t(512) << 20;
constexpr size_t max_small_pages = size_t(16) << 20;

struct Mapping {
    char *start;
    size_t size;

    bool in_small_pages() const { return size < os::huge_page; }
};

// Without constructor and destructor, since values live before and after all static objects. All members are
// used under the lock.
struct Cache {
    Mapping blocks[max_blocks]; // those freed first come first
    size_t count, bytes, small_pages, limit;
    bool measured;

    size_t byte_limit() {
        if (!measured) {
            limit = std::min(max_bytes, os::physical_memory() / 8);
            measured = true;
        }
        return limit;
    }

    Mapping remove(Mapping *place) {
        const Mapping m = *place;
        std::copy(place + 1, blocks + count, place);
        --count;
        bytes -= m.size;
        if (m.in_small_pages()) small_pages -= m.size;
        return m;
    }

    // The block for a request, its start null when there is none. Of equal ones the one freed last, which may
    // still be in the processor's caches.
    Mapping take(size_t size) {
        Mapping *best = nullptr;
        for (Mapping *m = blocks; m != blocks + count; ++m)
            if (m->size >= size && m->size / 2 <= size && (!best || m->size <= best->size)) best = m;
        return best ? remove(best) : Mapping{};
    }

    // Keeps a block, or gives it back.
    void give(Mapping m) {
        if (m.size > byte_limit()) return os::unmap(m.start, m.size);
        while (count == max_blocks || bytes + m.size > limit) drop(blocks);
        if (m.in_small_pages()) {
            for (Mapping *old = blocks; small_pages + m.size > max_small_pages;)
                old->in_small_pages() ? drop(old) : void(++old);
            small_pages += m.size;
        } else {
            os::offer(m.start, m.size);
        }
        bytes += m.size;
        blocks[count++] = m;
    }

    void drop(Mapping *place) {
        const Mapping m = remove(place);
        os::unmap(m.start, m.size);
    }

    void drop_all() {
        while (count > 0) drop(blocks);
    }
};

constinit Cache cache = {};

// Nothing is kept any more once the library is unloaded or the program ends.
struct AtEnd {
    ~AtEnd() {
        Lock lock(block_lock);
        cache.drop_all();
        cache.limit = 0;
        cache.measured = true;
    }
} at_end;

// Bytes of the mapping for n bytes of data.
size_t mapping_size(size_t n) {
    auto rounded = [](size_t bytes, size_t unit) { return (bytes + unit - 1) / unit * unit; };
    const size_t pages = rounded(header + n, os::page_size()), huge = rounded(header + n, os::huge_page);
    return huge - pages <= pages / 4 ? huge : pages;
}

} // namespace

void *large_alloc(size_t n) {
    if (n > SIZE_MAX / 2) return nullptr;
    Mapping m = {nullptr, mapping_size(n)};
    {
        Lock lock(block_lock);
        if (const Mapping kept = cache.take(m.size); kept.start) m = kept;
    }
    if (!m.start) m.start = static_cast<char *>(os::map(m.size));
    if (!m.start) {
        release_large_blocks();
        m.start = static_cast<char *>(os::map(m.size));
        if (!m.start) return nullptr;
    }
    *reinterpret_cast<size_t *>(m.start) = m.size;
    m.start[header - 1] = origin;
    return m.start + header;
}

void large_free(void *p) {
    char *start = static_cast<char *>(p) - header;
    Lock lock(block_lock);
    cache.give({start, *reinterpret_cast<size_t *>(start)});
}

void release_large_blocks() {
    Lock lock(block_lock);
    cache.drop_all();
}

LargeCacheUse large_cache_use() {
    Lock lock(block_lock);
    return {cache.count, cache.bytes, cache.small_pages};
}

LargeCacheUse large_cache_bound() {
    Lock lock(block_lock);
    return {max_blocks, cache.byte_limit(), max_small_pages};
}

#endif

} // namespace kn
