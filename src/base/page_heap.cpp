#include "base/page_heap.h"

#include <algorithm>

#include "base/block_alloc.h"
#include "platform/platform.h"

#ifdef KN_ASAN
#include <sanitizer/lsan_interface.h>
#endif

namespace kn {

namespace {

constexpr std::uint32_t chunk_pages = chunk_size / heap_page;
constexpr std::uint32_t step = 256; // pages made accessible at once

} // namespace

struct PageHeap::Chunk {
    Span spans[chunk_pages];
    std::uint16_t first[chunk_pages];
    std::uint32_t accessible; // pages, from the start

    std::uint32_t index(const Span *span) const { return static_cast<std::uint32_t>(span - spans); }
    unsigned char *page(std::uint32_t k) { return reinterpret_cast<unsigned char *>(this) + k * heap_page; }
    static constexpr std::uint32_t head();

    // The free span that ends before page k; null when there is none.
    Span *free_before(std::uint32_t k) {
        if (k == head()) return nullptr;
        Span *span = &spans[first[k - 1]];
        return span->used ? nullptr : span;
    }
    Span *free_at(std::uint32_t k) { return k < accessible && !spans[k].used ? &spans[k] : nullptr; }
    void describe(Span *span, std::uint32_t pages, bool used) {
        const auto k = static_cast<std::uint16_t>(index(span));
        span->pages = pages;
        span->used = used;
        if (used)
            std::fill_n(first + k, pages, k);
        else
            first[k + pages - 1] = k;
    }
};

constexpr std::uint32_t PageHeap::Chunk::head() { return (sizeof(Chunk) + heap_page - 1) / heap_page; }

PageHeap::Chunk *PageHeap::chunk_of(const void *p) {
    return reinterpret_cast<Chunk *>(reinterpret_cast<std::uintptr_t>(p) & ~(chunk_size - 1));
}

unsigned char *PageHeap::memory(Span *span) {
    Chunk *chunk = chunk_of(span);
    return chunk->page(chunk->index(span));
}

Span *PageHeap::span_of(const void *p) {
    Chunk *chunk = chunk_of(p);
    const std::uintptr_t page = (reinterpret_cast<std::uintptr_t>(p) & (chunk_size - 1)) / heap_page;
    return &chunk->spans[chunk->first[page]];
}

Span *&PageHeap::list_of(std::uint32_t pages) { return free_[std::min(pages, listed)]; }

void PageHeap::link(Span *span) {
    Span *&list = list_of(span->pages);
    span->previous = nullptr;
    span->next = list;
    if (list) list->previous = span;
    list = span;
}

void PageHeap::unlink(Span *span) {
    (span->previous ? span->previous->next : list_of(span->pages)) = span->next;
    if (span->next) span->next->previous = span->previous;
}

// The shortest free span that suffices, but among the longest the first that does.
Span *PageHeap::find(std::uint32_t pages) {
    for (std::uint32_t n = std::min(pages, listed); n <= listed; ++n)
        for (Span *span = free_[n]; span; span = span->next)
            if (span->pages >= pages) return span;
    return nullptr;
}

// Makes more pages of the latest chunk accessible, at the last its rest; then begins a new chunk.
bool PageHeap::extend(std::uint32_t pages) {
    if (!latest_ || chunk_pages - latest_->accessible < pages) {
        auto *chunk = static_cast<Chunk *>(os::reserve(chunk_size, chunk_size));
        if (!chunk || !os::commit(chunk, Chunk::head() * heap_page)) return false;
#ifdef KN_ASAN
        __lsan_register_root_region(chunk, chunk_size);
#endif
        chunk->accessible = Chunk::head();
        latest_ = chunk;
    }
    const std::uint32_t start = latest_->accessible;
    std::uint32_t more = std::min((pages + step - 1) / step * step, chunk_pages - start);
    if (chunk_pages - start - more < step) more = chunk_pages - start;
    if (!os::commit(latest_->page(start), more * heap_page)) return false;
    latest_->accessible += more;
    Span *span = &latest_->spans[start];
    latest_->describe(span, more, true);
    release(span);
    return true;
}

Span *PageHeap::allocate(std::uint32_t pages) {
    Span *span = find(pages);
    if (!span && extend(pages)) span = find(pages);
    if (!span) return nullptr;
    unlink(span);
    Chunk *chunk = chunk_of(span);
    if (const std::uint32_t rest = span->pages - pages; rest > 0) {
        chunk->describe(span + pages, rest, false);
        link(span + pages);
    }
    chunk->describe(span, pages, true);
    return span;
}

void PageHeap::release(Span *span) {
    Chunk *chunk = chunk_of(span);
    os::discard(memory(span), span->pages * heap_page);
    std::uint32_t pages = span->pages;
    if (Span *after = chunk->free_at(chunk->index(span) + pages)) {
        unlink(after);
        pages += after->pages;
    }
    if (Span *before = chunk->free_before(chunk->index(span))) {
        unlink(before);
        pages += before->pages;
        span = before;
    }
    chunk->describe(span, pages, false);
    link(span);
}

} // namespace kn
