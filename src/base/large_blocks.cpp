// A block is a mapping of whole pages:
//
//     | size of the mapping | ... | 9 | data ... |
//       0                           63  64
//
// From os::huge_page on it is in huge pages: one takes about as long to make as thirty small ones, which hold
// a sixteenth as much. The end of a block is rounded up to a huge page unless that wastes more than an
// eighth.
//
// The cache keeps freed blocks in the order of their freeing, so that temporaries that come and go in a loop
// don't have new pages mapped each time. It keeps no more than a loop can use:
//
// - as many bytes as live blocks have, and 24 MB;
// - at most 32 blocks, 512 MB and an eighth of the machine's memory;
// - no block for which live and cached ones together would exceed what was alive at once before, and 8 MB.
//
// A request gets the smallest kept block that suffices and is not larger by more than an eighth, else new
// memory within the last of these bounds, else the beginning of a larger kept block. The blocks freed first
// leave the cache first. Those in huge pages are offered to the system while they lie here: it takes their
// memory back when it needs some, also from an idle program. That costs less than 1 us for a huge page, a
// hundredth of an operation that fills it.
//
// A block that grows keeps its pages from 8 MB on, and gets whole huge pages. Below that a copy into a kept
// block costs less than new pages.

#include "base/large_blocks.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "base/block_alloc.h"
#include "base/lock.h"
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

void *large_grow(void *, size_t) { return nullptr; }

void release_large_blocks() {}

LargeCacheUse large_cache_use() { return {}; }

LargeCacheUse large_cache_bound() { return {}; }

#else

namespace {

constexpr size_t header = 64; // before the data
constexpr char origin = 9;
constexpr size_t max_blocks = 32;
constexpr size_t MB = size_t(1) << 20;
constexpr size_t max_bytes = 512 * MB;
constexpr size_t spare = 24 * MB;   // kept whatever is alive
constexpr size_t overhang = 8 * MB; // of live and kept blocks over the most that was alive
constexpr size_t least_grown = 8 * MB;

struct Mapping {
    char *start;
    size_t size;
};

// Without constructor and destructor, since values live before and after all static objects. All members are
// used under the lock.
struct Cache {
    Mapping blocks[max_blocks]; // those freed first come first
    size_t count, bytes;        // kept
    size_t live, most_live, limit;
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
        return m;
    }

    // The smallest that suffices, of equal ones the one freed last, which may still be in the processor's
    // caches; null when there is none.
    Mapping *find(size_t size, size_t largest) {
        Mapping *best = nullptr;
        for (Mapping *m = blocks; m != blocks + count; ++m)
            if (m->size >= size && m->size <= largest && (!best || m->size <= best->size)) best = m;
        return best;
    }

    // The block for a request; null when it needs new memory, for which there is room then.
    Mapping reuse(size_t size) {
        Mapping *kept = find(size, size + size / 8);
        const size_t most = std::max(most_live, live + size) + overhang;
        if (!kept && live + bytes + size > most) {
            kept = find(size, SIZE_MAX);
            while (!kept && count > 0 && live + bytes + size > most) drop(blocks);
        }
        if (!kept) return {};
        Mapping m = remove(kept);
        if (m.size - size > size / 8 && os::unmap_end(m.start + size, m.size - size)) m.size = size;
        lives(m.size);
        return m;
    }

    void lives(size_t size) {
        live += size;
        most_live = std::max(most_live, live);
    }

    // Keeps a block, or gives it back.
    void release(Mapping m) {
        live -= m.size;
        const size_t most = std::min(live + spare, byte_limit());
        const bool keep = m.size <= most;
        while (bytes > most - (keep ? m.size : 0) || (keep && count == max_blocks)) drop(blocks);
        if (!keep) return os::unmap(m.start, m.size);
        if (m.size >= os::huge_page) os::offer(m.start, m.size);
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
        Lock lock(Guarded::blocks);
        cache.drop_all();
        cache.limit = 0;
        cache.measured = true;
    }
} at_end;

size_t rounded(size_t bytes, size_t unit) { return (bytes + unit - 1) / unit * unit; }

// Bytes of the mapping for n bytes of data.
size_t mapping_size(size_t n) {
    const size_t pages = rounded(header + n, os::page_size()), huge = rounded(header + n, os::huge_page);
    return huge - pages <= pages / 8 ? huge : pages;
}

} // namespace

void *large_alloc(size_t n) {
    if (n > SIZE_MAX / 2) return nullptr;
    const size_t size = mapping_size(n);
    Mapping m;
    {
        Lock lock(Guarded::blocks);
        m = cache.reuse(size);
    }
    if (!m.start) {
        m = {static_cast<char *>(os::map(size)), size};
        if (!m.start) {
            release_large_blocks();
            m.start = static_cast<char *>(os::map(size));
            if (!m.start) return nullptr;
        }
        Lock lock(Guarded::blocks);
        cache.lives(size);
    }
    *reinterpret_cast<size_t *>(m.start) = m.size;
    m.start[header - 1] = origin;
    return m.start + header;
}

void *large_grow(void *p, size_t n) {
    char *start = static_cast<char *>(p) - header;
    const size_t size = *reinterpret_cast<size_t *>(start);
    if (size < least_grown || n > SIZE_MAX / 2) return nullptr;
    const size_t longer = rounded(header + n, os::huge_page);
    if (longer <= size) return nullptr;
    start = static_cast<char *>(os::remap(start, size, longer));
    if (!start) return nullptr;
    *reinterpret_cast<size_t *>(start) = longer;
    Lock lock(Guarded::blocks);
    cache.lives(longer - size);
    return start + header;
}

void large_free(void *p) {
    char *start = static_cast<char *>(p) - header;
    Lock lock(Guarded::blocks);
    cache.release({start, *reinterpret_cast<size_t *>(start)});
}

void release_large_blocks() {
    Lock lock(Guarded::blocks);
    cache.drop_all();
}

LargeCacheUse large_cache_use() {
    Lock lock(Guarded::blocks);
    return {cache.count, cache.bytes};
}

LargeCacheUse large_cache_bound() {
    Lock lock(Guarded::blocks);
    return {max_blocks, cache.byte_limit()};
}

#endif

} // namespace kn
