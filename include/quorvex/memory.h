// The block allocator of all values: blocks of 48 sizes up to 128 KB; larger blocks come from the system.
// Freed memory is kept for reuse up to a limit: 16 MB of small blocks, and large blocks up to 24 MB plus as
// much as is in use (at most 512 MB, an eighth of the machine's memory, and 32 blocks). Used and kept large
// blocks together never exceed the earlier peak of used ones by more than 8 MB.
#ifndef QUORVEX_MEMORY_H
#define QUORVEX_MEMORY_H

#include <stddef.h>

#include "quorvex/export.h"

// Allocates a block of `n` bytes, aligned to 8, or gives null when memory is exhausted, without a report. The
// byte before the block identifies its origin: 0 a small block, 1 to 8 the C heap (the distance to the
// address from `malloc`; only under the address sanitizer), 9 a large block, whose data are aligned to 64
// bytes.
QUORVEX_API void *kn_block_alloc(size_t n);

// Frees a block; null is accepted.
QUORVEX_API void kn_block_free(void *p);

#endif
