#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace pm {

// Words whose first byte is the top one, unaligned.

// The reverse is the same.
inline std::uint64_t top_byte_first(std::uint64_t word) {
    return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

inline std::uint64_t load_u64_from_top(const void* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return top_byte_first(word);
}

inline void store_u64_from_top(void* bytes, std::uint64_t word) {
    word = top_byte_first(word);
    std::memcpy(bytes, &word, sizeof word);
}

} // namespace pm
