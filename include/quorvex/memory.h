// The block allocator behind every value: power-of-two buckets over a private heap for requests up to 128 KB,
// the C heap above that.
#ifndef QUORVEX_MEMORY_H
#define QUORVEX_MEMORY_H

#include <stddef.h>

#include "quorvex/export.h"

// A block of `n` bytes, 8-byte aligned, or null when memory is exhausted; nothing is reported here. The byte
// before the block tells where it came from: 0 the buckets, 1 to 8 the C heap (the distance to the address
// `malloc` gave).
QUORVEX_API void *kn_block_alloc(size_t n);

// Gives a block back; null is accepted.
QUORVEX_API void kn_block_free(void *p);

#endif
