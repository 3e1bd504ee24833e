// Address space and memory on Linux. Reserved space is a mapping without access, which costs neither memory
// nor commit charge; committing it changes the access, and fails where the system would not lend that much.
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

// The first hole to look for. Its use is aligned to a huge page, so that the system may use them.
constexpr std::size_t largest_hole = std::size_t{1} << (sizeof(void *) == 8 ? 40 : 30);

void *map_anonymous(void *at, std::size_t bytes, int access, int flags) {
    void *p = mmap(at, bytes, access, MAP_PRIVATE | MAP_ANONYMOUS | flags, -1, 0);
    return p == MAP_FAILED ? nullptr : p;
}

void *map_without_access(void *at, std::size_t bytes, int flags) {
    return map_anonymous(at, bytes, PROT_NONE, flags);
}

void *map_exactly(void *at, std::size_t bytes) {
    void *p = map_without_access(at, bytes, MAP_FIXED_NOREPLACE);
    if (p && p != at) { // a kernel that doesn't know the flag takes the place as a mere hint
        munmap(p, bytes);
        return nullptr;
    }
    return p;
}

} // namespace

std::size_t page_size() {
    static const std::size_t size = sysconf(_SC_PAGESIZE);
    return size;
}

std::size_t allocation_granularity() { return page_size(); }

// The system fills free space from its upper end, or from its lower end under an unlimited stack. A quarter
// up a large hole is a place that both reach late, with three quarters of the hole behind it.
void *reserve(void *at, std::size_t bytes) {
    if (at) return map_exactly(at, bytes);
    for (std::size_t hole = largest_hole; hole / 4 > bytes; hole /= 4) {
        void *low = map_without_access(nullptr, hole, MAP_NORESERVE);
        if (!low) continue;
        munmap(low, hole);
        const std::uintptr_t place = (reinterpret_cast<std::uintptr_t>(low) + hole / 4) & ~(huge_page - 1);
        if (void *p = map_exactly(reinterpret_cast<void *>(place), bytes)) return p;
    }
    return map_without_access(nullptr, bytes, 0);
}

bool commit(void *at, std::size_t bytes) { return mprotect(at, bytes, PROT_READ | PROT_WRITE) == 0; }

// A mapping can't be asked for by its alignment: one that is larger by a huge page is cut to the right place.
void *map(std::size_t bytes) {
    constexpr int access = PROT_READ | PROT_WRITE;
    if (bytes < huge_page) return map_anonymous(nullptr, bytes, access, MAP_POPULATE);
    if (bytes > SIZE_MAX - huge_page) return nullptr;
    char *wide = static_cast<char *>(map_anonymous(nullptr, bytes + huge_page, access, 0));
    if (!wide) return nullptr;
    const std::size_t before = -reinterpret_cast<std::uintptr_t>(wide) & (huge_page - 1);
    if (before > 0) munmap(wide, before);
    munmap(wide + before + bytes, huge_page - before);
    madvise(wide + before, bytes, MADV_HUGEPAGE);
    return wide + before;
}

// A process that has all the mappings it may have can't cut one in two; then at least the memory goes back.
void unmap(void *p, std::size_t bytes) {
    if (munmap(p, bytes) != 0) madvise(p, bytes, MADV_DONTNEED);
}

void offer(void *p, std::size_t bytes) { madvise(p, bytes, MADV_FREE); }

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

// Setting the signal mask in no valid way changes nothing, but the kernel fetches the new mask first and says
// EFAULT when it can't: a read of eight bytes that never faults here.
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
