// The short way to blocks of one size.
//
// kn_block_alloc and kn_block_free serve every size. Numbers, which are made and dropped all the time, take
// and give their blocks right here: one list, no call. Where the list is empty, or somebody has to see every
// block (locks, the allocation probe, the address sanitizer), it is a call after all.
#ifndef QUORVEX_BASE_BLOCK_ALLOC_H
#define QUORVEX_BASE_BLOCK_ALLOC_H

#include <bit>
#include <cstddef>
#include <cstdint>

#include "quorvex/memory.h"
#include "quorvex/startup.h"

#if defined(__SANITIZE_ADDRESS__)
#define KN_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KN_ASAN 1
#endif
#endif

namespace kn {

// How a small block lies in memory, and the sizes there are: see block_alloc.cpp.
namespace block_format {

inline constexpr std::size_t front_size = 8; // before the data
inline constexpr unsigned char in_use = 0xEF;
inline constexpr int class_count = 48;

// The next free block of the size, while this one is free.
inline unsigned char *&next(unsigned char *data) { return *reinterpret_cast<unsigned char **>(data); }
inline unsigned char &state(unsigned char *data) { return data[-3]; }

// Sizes are the multiples of 16 up to 128, then four between each power of two and the next.
constexpr int class_of(std::size_t size) {
    if (size <= 128) return static_cast<int>((size + 15) / 16) - 1;
    const int log2 = static_cast<int>(std::bit_width(size - 1)) - 1;
    return 4 * log2 - 24 + static_cast<int>((size - 1) >> (log2 - 2));
}
constexpr std::size_t size_of(int size_class) {
    if (size_class < 8) return 16 * static_cast<std::size_t>(size_class + 1);
    return (std::size_t{5} + size_class % 4) << (size_class / 4 + 3);
}

} // namespace block_format

// The free blocks of each size, by their data.
extern unsigned char *free_blocks[block_format::class_count];

// A block that kn_block_alloc(n) would give, from the list of its size; null where it takes the call.
template <std::size_t n> unsigned char *quick_alloc() {
#if defined(KN_ASAN) || defined(QUORVEX_ALLOC_PROBE)
    return nullptr;
#else
    if (kn_threads_flag) return nullptr; // before the list is read, which another thread may be changing
    unsigned char *&list = free_blocks[block_format::class_of(n + block_format::front_size)];
    unsigned char *p = list;
    if (!p) return nullptr;
    list = block_format::next(p);
    block_format::state(p) = block_format::in_use;
    return p;
#endif
}

// kn_block_free of a block that was asked for with n; false where it takes the call.
template <std::size_t n> bool quick_free([[maybe_unused]] void *block) {
#if defined(KN_ASAN) || defined(QUORVEX_ALLOC_PROBE)
    return false;
#else
    if (kn_threads_flag) return false;
    unsigned char *&list = free_blocks[block_format::class_of(n + block_format::front_size)];
    unsigned char *p = static_cast<unsigned char *>(block);
    block_format::state(p) = 0;
    block_format::next(p) = list;
    list = p;
    return true;
#endif
}

// Makes a block longer without copying it, though it may move. Null: nothing was done, as always for small
// blocks.
void *extend_block(void *block, std::size_t n);

// To be called after about this number of blocks of n bytes each went through quick_free, which does not
// count them: there may be memory to return to the system.
void quick_freed(std::size_t blocks, std::size_t n);

} // namespace kn

#endif
