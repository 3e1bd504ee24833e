// Address space and memory on Linux. Reserved space is a mapping without access, which costs neither memory
// nor commit charge; committing it changes the access, and fails where the system would not lend that much.
#include "platform/platform.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace kn::os {

namespace {

// The first hole to look for, and what its use is aligned to: a huge page, so that the system may use them.
constexpr std::size_t largest_hole = std::size_t{1} << (sizeof(void *) == 8 ? 40 : 30);
constexpr std::size_t huge_page = std::size_t{1} << 21;

void *map_without_access(void *at, std::size_t bytes, int flags) {
    void *p = mmap(at, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | flags, -1, 0);
    return p == MAP_FAILED ? nullptr : p;
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
