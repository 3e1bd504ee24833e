// Blocks above the limit of the buckets: memory directly from the system, with a cache of freed ones, so
// that temporaries in a loop don't have new pages mapped each time.
#ifndef QUORVEX_BASE_LARGE_BLOCKS_H
#define QUORVEX_BASE_LARGE_BLOCKS_H

#include <stddef.h>

namespace kn {

// `n` bytes, or null. They are aligned to 64 and the byte before them is 9. Under the address sanitizer they
// come from the C heap, 8-byte aligned, and the byte before them is the distance to the address malloc gave.
void *large_alloc(size_t n);
void large_free(void *p);

// Room for n bytes, contents kept; the block may move. Null: nothing was done, and a new block has to be
// made.
void *large_grow(void *p, size_t n);

// Gives all cached blocks back to the system.
void release_large_blocks();

// Blocks and bytes in the cache.
struct LargeCacheUse {
    size_t blocks, bytes;
};
LargeCacheUse large_cache_use();

// The most of each that the cache ever holds; nothing under the address sanitizer.
LargeCacheUse large_cache_bound();

} // namespace kn

#endif
