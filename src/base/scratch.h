// Temporary arrays, the C heap, and the probe that counts allocations and makes one fail.
#ifndef QUORVEX_BASE_SCRATCH_H
#define QUORVEX_BASE_SCRATCH_H

#include <stddef.h>

namespace kn {

// malloc and free, called through the allocation probe; null when memory is exhausted. Every allocation of
// the library passes here or through kn_block_alloc.
void *heap_alloc(size_t bytes);
void heap_free(void *p);
// strdup on that heap.
char *heap_copy(const char *text);

// Reports "Out of memory!".
void out_of_memory();

// An array of n elements for the time of a scope, not cleared. When memory is exhausted it reports "Out of
// memory!"; should the handler return, it converts to false. A negative n at release is the warning "possible
// memory overwrite".
void *scratch_alloc(ptrdiff_t n, size_t element);
void scratch_release(void *p, ptrdiff_t n);

template <class T> class Scratch {
  public:
    explicit Scratch(ptrdiff_t n) : n_(n), p_(static_cast<T *>(scratch_alloc(n, sizeof(T)))) {}
    ~Scratch() { scratch_release(p_, n_); }
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;
    explicit operator bool() const { return p_ != nullptr; }
    T *get() const { return p_; }
    T &operator[](ptrdiff_t k) const { return p_[k]; }

  private:
    ptrdiff_t n_;
    T *p_;
};

// Allocation probe, in builds with QUORVEX_ALLOC_PROBE: `allocations` made so far; number `fail_at` (counted
// from 1, 0 never) fails, and all later ones too if `fail_after` is set; so do those of more than `largest`
// bytes (0 no limit); `live` blocks.
struct AllocProbe {
    long allocations, fail_at, live;
    bool fail_after;
    size_t largest = 0;
};
extern AllocProbe alloc_probe;

#ifdef QUORVEX_ALLOC_PROBE
inline bool allocation_fails(size_t bytes) {
    long k = ++alloc_probe.allocations;
    if (alloc_probe.largest != 0 && bytes > alloc_probe.largest) return true;
    return alloc_probe.fail_at != 0 &&
           (k == alloc_probe.fail_at || (alloc_probe.fail_after && k > alloc_probe.fail_at));
}
inline void count_live(int change) { alloc_probe.live += change; }
#else
inline bool allocation_fails(size_t) { return false; }
inline void count_live(int) {}
#endif

} // namespace kn

#endif
