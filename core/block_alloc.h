// The short way to blocks of one size.
//
// kn_block_alloc and kn_block_free serve every size. Numbers, which are made and dropped all the time, take
// and give their blocks right here: one list, no call. Where the list is empty, or somebody has to see every
// block (locks, the allocation probe, the address sanitizer), it is a call after all.
#ifndef QUORVEX_CORE_BLOCK_ALLOC_H
#define QUORVEX_CORE_BLOCK_ALLOC_H

#include <bit>
#include <cstddef>

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

inline constexpr int bucket_count = 32;

// The free blocks of each bucket.
extern unsigned char *bucket_heads[bucket_count];

// How a block of a bucket lies in memory: see block_alloc.cpp.
namespace block_format {
inline constexpr std::size_t front_size = 8;  // before the data, inside what the bucket layer hands out
inline constexpr std::size_t header_size = 4; // before that
inline constexpr unsigned char magic = 0xEF;
inline unsigned char *&next(unsigned char *block) {
    return *reinterpret_cast<unsigned char **>(block + header_size);
}
constexpr int small_bucket(std::size_t n) { return std::bit_width(n + front_size + header_size - 1) - 3; }
} // namespace block_format

// A block that kn_block_alloc(n) would give, from the list of its size; null where it takes the call.
template <std::size_t n> unsigned char *quick_alloc() {
#if defined(KN_ASAN) || defined(QUORVEX_ALLOC_PROBE)
    return nullptr;
#else
    constexpr int b = block_format::small_bucket(n);
    unsigned char *block = bucket_heads[b];
    if (!block || kn_threads_flag) return nullptr;
    bucket_heads[b] = block_format::next(block);
    block[0] = block_format::magic;
    block[1] = b;
    unsigned char *p = block + block_format::header_size + block_format::front_size;
    p[-1] = 0;
    return p;
#endif
}

// kn_block_free of a block that was asked for with n; false where it takes the call.
template <std::size_t n> bool quick_free([[maybe_unused]] void *p) {
#if defined(KN_ASAN) || defined(QUORVEX_ALLOC_PROBE)
    return false;
#else
    if (kn_threads_flag) return false;
    constexpr int b = block_format::small_bucket(n);
    unsigned char *block =
        static_cast<unsigned char *>(p) - block_format::front_size - block_format::header_size;
    block[0] = 0;
    block_format::next(block) = bucket_heads[b];
    bucket_heads[b] = block;
    return true;
#endif
}

} // namespace kn

#endif
