// The block allocator behind every value: power-of-two buckets over a private heap for requests up to 128 KB,
// above that memory of its own from the system. Of the larger blocks that are freed a few are kept for the
// next request: at most 32, which take at most 512 MB and an eighth of the machine's memory. What is kept is
// the system's to take back whenever it needs memory, but for 16 MB at most.
#ifndef QUORVEX_MEMORY_H
#define QUORVEX_MEMORY_H

#include <stddef.h>

#include "quorvex/export.h"

// A block of `n` bytes, 8-byte aligned, or null when memory is exhausted; nothing is reported here. The byte
// before the block tells where it came from: 0 the buckets, 1 to 8 the C heap (the distance to the address
// `malloc` gave; under the address sanitizer only), 9 a large block, whose data are aligned to 64 bytes.
QUORVEX_API void *kn_block_alloc(size_t n);

// Gives a block back; null is accepted.
QUORVEX_API void kn_block_free(void *p);

#endif
