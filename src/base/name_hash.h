// The hash of a name in the library's tables: FNV-1a, of 32 bits.
#ifndef QUORVEX_BASE_NAME_HASH_H
#define QUORVEX_BASE_NAME_HASH_H

#include <string_view>

namespace kn {

constexpr unsigned name_hash(std::string_view name) {
    unsigned h = 2166136261u;
    for (char c : name) h = (h ^ static_cast<unsigned char>(c)) * 16777619u;
    return h;
}

} // namespace kn

#endif
