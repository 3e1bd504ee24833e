// The memory of the small blocks: spans of whole pages, cut from chunks of address space.
//
// A chunk is chunk_size bytes at a multiple of chunk_size. Its first pages hold a record for each page:
//
//     | Span of page 0, 1, ... | first page of the span of page 0, 1, ... |   pages ...
//
// so that the span of any address is found by masking. The record of a span's first page describes the span.
// `first` is right for every page of a span in use, and for the last page of a free one; that is what its
// neighbours need to become one span with it.
//
// Free spans hold no memory: what was used before is given to the system first.
#ifndef QUORVEX_BASE_PAGE_HEAP_H
#define QUORVEX_BASE_PAGE_HEAP_H

#include <cstddef>
#include <cstdint>

namespace kn {

inline constexpr std::size_t heap_page = 4096, chunk_size = std::size_t{32} << 20;

struct Span {
    Span *previous, *next; // in the list of free spans of this length
    std::uint32_t pages;
    std::uint32_t marks; // for the user
    bool used;
};

// All members are used under the lock of the block allocator. Constant initialization: values live before and
// after all static objects.
class PageHeap {
  public:
    // A span with this number of pages, contents unspecified; null without memory.
    Span *allocate(std::uint32_t pages);
    // Frees a span and returns its memory to the system.
    void release(Span *span);

    static unsigned char *memory(Span *span);
    static Span *span_of(const void *p);

  private:
    struct Chunk;

    static constexpr std::uint32_t listed = 64; // longer free spans share the last list

    static Chunk *chunk_of(const void *p);
    Span *&list_of(std::uint32_t pages);
    void link(Span *span);
    void unlink(Span *span);
    Span *find(std::uint32_t pages);
    bool extend(std::uint32_t pages);

    Span *free_[listed + 1] = {};
    Chunk *latest_ = nullptr;
};

} // namespace kn

#endif
