// Address space and memory on Linux. Reserved space is a mapping without access, which costs neither memory
// nor commit charge; committing it changes the access, and fails where the system would exceed its limit.
#include "platform/platform.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kn::os {

namespace {

void *map_anonymous(std::size_t bytes, int access) {
    void *p = mmap(nullptr, bytes, access, MAP_PRIVATE | MAP_ANONYMOUS | (access ? 0 : MAP_NORESERVE), -1, 0);
    return p == MAP_FAILED ? nullptr : p;
}

// A mapping with an alignment can't be requested: one that is larger by the alignment is trimmed.
char *map_aligned(std::size_t bytes, std::size_t alignment, int access) {
    if (bytes > SIZE_MAX - alignment) return nullptr;
    char *wide = static_cast<char *>(map_anonymous(bytes + alignment, access));
    if (!wide) return nullptr;
    const std::size_t before = -reinterpret_cast<std::uintptr_t>(wide) & (alignment - 1);
    if (before > 0) munmap(wide, before);
    munmap(wide + before + bytes, alignment - before);
    return wide + before;
}

} // namespace

std::size_t page_size() {
    static const std::size_t size = sysconf(_SC_PAGESIZE);
    return size;
}

void *reserve(std::size_t bytes, std::size_t alignment) { return map_aligned(bytes, alignment, PROT_NONE); }

bool commit(void *at, std::size_t bytes) { return mprotect(at, bytes, PROT_READ | PROT_WRITE) == 0; }

void *map(std::size_t bytes) {
    constexpr int access = PROT_READ | PROT_WRITE;
    if (bytes < huge_page) return map_anonymous(bytes, access);
    void *p = map_aligned(bytes, huge_page, access);
    if (p) madvise(p, bytes, MADV_HUGEPAGE);
    return p;
}

// At the limit of mappings a process can't cut one in two; then at least the memory is released.
void unmap(void *p, std::size_t bytes) {
    if (munmap(p, bytes) != 0) madvise(p, bytes, MADV_DONTNEED);
}

bool unmap_end(void *p, std::size_t bytes) {
    unmap(p, bytes);
    return true;
}

// Moves to an address with the alignment of a new mapping.
void *remap(void *p, std::size_t bytes, std::size_t longer) {
    char *place = map_aligned(longer, longer < huge_page ? page_size() : huge_page, PROT_NONE);
    if (!place) return nullptr;
    if (mremap(p, bytes, longer, MREMAP_MAYMOVE | MREMAP_FIXED, place) == MAP_FAILED) {
        munmap(place, longer);
        return nullptr;
    }
    if (longer >= huge_page) madvise(place, longer, MADV_HUGEPAGE);
    return place;
}

void offer(void *p, std::size_t bytes) { madvise(p, bytes, MADV_FREE); }

void discard(void *p, std::size_t bytes) { madvise(p, bytes, MADV_DONTNEED); }

std::size_t physical_memory() { return static_cast<std::size_t>(sysconf(_SC_PHYS_PAGES)) * page_size(); }

// The second number of /proc/self/statm counts the resident pages.
std::size_t process_memory() {
    std::FILE *file = std::fopen("/proc/self/statm", "re");
    if (!file) return 0;
    unsigned long pages = 0;
    const bool read = std::fscanf(file, "%*u %lu", &pages) == 1;
    std::fclose(file);
    return read ? pages * page_size() : 0;
}

// Setting the signal mask with an invalid operation changes nothing, but the kernel reads the new mask first
// and returns EFAULT when it can't: a read of eight bytes that never faults here.
bool readable(const void *p, std::size_t n) {
    constexpr std::uintptr_t word = 8;
    constexpr int no_valid_way = -1;
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(p), last = first + n - 1,
                         page = page_size();
    if (n == 0) return true;
    if (last < first || first < word) return false; // a mask at null means none; nothing is mapped there

    const int saved = errno;
    bool fine = true;
    for (std::uintptr_t at = first; fine; at = (at & ~(page - 1)) + page) {
        syscall(SYS_rt_sigprocmask, no_valid_way, at & ~(word - 1), nullptr, word);
        fine = errno != EFAULT;
        if (last - at < page - (at & (page - 1))) break; // the last byte lies in this page
    }
    errno = saved;
    return fine;
}

} // namespace kn::os
