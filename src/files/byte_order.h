// Reversing the byte order.
#ifndef QUORVEX_FILES_BYTE_ORDER_H
#define QUORVEX_FILES_BYTE_ORDER_H

#include <cstdint>

namespace kn {

constexpr uint16_t reversed(uint16_t x) { return static_cast<uint16_t>(x << 8 | x >> 8); }
constexpr uint32_t reversed(uint32_t x) { return x << 24 | (x & 0xff00) << 8 | (x >> 8 & 0xff00) | x >> 24; }
constexpr uint64_t reversed(uint64_t x) {
    return uint64_t(reversed(static_cast<uint32_t>(x))) << 32 | reversed(static_cast<uint32_t>(x >> 32));
}

} // namespace kn

#endif
