// The block allocator behind every value: blocks of 48 sizes up to 128 KB, above that memory of its own from
// the system. Of what is freed no more is kept than loops can use again: 16 MB of small blocks, and large
// ones up to 24 MB and as much as is alive (at most 512 MB, an eighth of the machine's memory, and 32
// blocks). Live and kept large blocks together never take 8 MB more than was alive at once before.
#ifndef QUORVEX_MEMORY_H
#define QUORVEX_MEMORY_H

#include <stddef.h>

#include "quorvex/export.h"

// A block of `n` bytes, 8-byte aligned, or null when memory is exhausted; nothing is reported here. The byte
// before the block tells where it came from: 0 the small blocks, 1 to 8 the C heap (the distance to the
// address `malloc` gave; under the address sanitizer only), 9 a large block, whose data are aligned to 64
// bytes.
QUORVEX_API void *kn_block_alloc(size_t n);

// Gives a block back; null is accepted.
QUORVEX_API void kn_block_free(void *p);

#endif
