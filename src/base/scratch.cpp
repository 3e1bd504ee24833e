// The C heap, whose allocations the probe counts, and scratch arrays on it.

#include "base/scratch.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/large_blocks.h"
#include "quorvex/messages.h"

namespace kn {

constinit AllocProbe alloc_probe = {};

void *heap_alloc(size_t bytes) {
    if (allocation_fails(bytes)) return nullptr;
    if (bytes == 0) bytes = 1;
    void *p = std::malloc(bytes);
    if (!p) {
        release_large_blocks();
        p = std::malloc(bytes);
    }
    if (p) count_live(1);
    return p;
}

void heap_free(void *p) {
    if (!p) return;
    count_live(-1);
    std::free(p);
}

char *heap_copy(const char *text) {
    size_t bytes = std::strlen(text) + 1;
    char *copy = static_cast<char *>(heap_alloc(bytes));
    if (copy) std::memcpy(copy, text, bytes);
    return copy;
}

void out_of_memory() { error("Out of memory!"); }

void *scratch_alloc(ptrdiff_t n, size_t element) {
    size_t count = n > 0 ? static_cast<size_t>(n) : 0;
    void *p = count > SIZE_MAX / element ? nullptr : heap_alloc(count * element);
    if (!p) out_of_memory();
    return p;
}

void scratch_release(void *p, ptrdiff_t n) {
    heap_free(p);
    if (n < 0) warning("possible memory overwrite");
}

} // namespace kn
