// Address space and memory on Windows.
#include "platform/platform.h"
#include "platform/win32_common.h"

#include <cstdint>
#include <psapi.h>

namespace kn::os {

namespace {

const SYSTEM_INFO &system_info() {
    static const SYSTEM_INFO info = [] {
        SYSTEM_INFO asked = {};
        GetSystemInfo(&asked);
        return asked;
    }();
    return info;
}

} // namespace

std::size_t page_size() { return system_info().dwPageSize; }

// An aligned address is found by a larger reservation, which can't be cut: it is released, and its aligned
// part reserved. Another thread may have taken it by then.
void *reserve(std::size_t bytes, std::size_t alignment) {
    if (bytes > SIZE_MAX - alignment) return nullptr;
    for (int attempt = 0; attempt < 8; ++attempt) {
        void *wide = VirtualAlloc(nullptr, bytes + alignment, MEM_RESERVE, PAGE_NOACCESS);
        if (!wide) return nullptr;
        const auto start = (reinterpret_cast<std::uintptr_t>(wide) + alignment - 1) & ~(alignment - 1);
        VirtualFree(wide, 0, MEM_RELEASE);
        if (void *p = VirtualAlloc(reinterpret_cast<void *>(start), bytes, MEM_RESERVE, PAGE_NOACCESS))
            return p;
    }
    return nullptr;
}

bool commit(void *at, std::size_t bytes) {
    return VirtualAlloc(at, bytes, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

// Huge pages need a privilege here and are not requested.
void *map(std::size_t bytes) {
    return VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void unmap(void *p, std::size_t) { VirtualFree(p, 0, MEM_RELEASE); }

bool unmap_end(void *, std::size_t) { return false; }

void *remap(void *, std::size_t, std::size_t) { return nullptr; }

void offer(void *p, std::size_t bytes) { VirtualAlloc(p, bytes, MEM_RESET, PAGE_READWRITE); }

void discard(void *p, std::size_t bytes) {
    if (VirtualFree(p, bytes, MEM_DECOMMIT)) commit(p, bytes);
}

std::size_t physical_memory() {
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    if (!GlobalMemoryStatusEx(&status)) return 0;
    return static_cast<std::size_t>(status.ullTotalPhys < SIZE_MAX ? status.ullTotalPhys : SIZE_MAX);
}

// From kernel32, so that no further library is linked.
std::size_t process_memory() {
    PROCESS_MEMORY_COUNTERS counters = {};
    return K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) ? counters.WorkingSetSize
                                                                                    : 0;
}

bool readable(const void *p, std::size_t n) {
    constexpr DWORD closed = PAGE_NOACCESS | PAGE_GUARD | PAGE_EXECUTE;
    const char *at = static_cast<const char *>(p);
    while (n > 0) {
        MEMORY_BASIC_INFORMATION region;
        if (!VirtualQuery(at, &region, sizeof region)) return false;
        if (region.State != MEM_COMMIT || (region.Protect & closed)) return false;
        const std::size_t rest = static_cast<const char *>(region.BaseAddress) + region.RegionSize - at;
        if (n <= rest) break;
        at += rest;
        n -= rest;
    }
    return true;
}

} // namespace kn::os
