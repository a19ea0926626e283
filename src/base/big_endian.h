#pragma once

#include <cstdint>

namespace pm {

// Words whose first byte is the top one, unaligned.

inline std::uint64_t load_u64_from_top(const unsigned char* bytes) {
    return static_cast<std::uint64_t>(bytes[0]) << 56 | static_cast<std::uint64_t>(bytes[1]) << 48 |
           static_cast<std::uint64_t>(bytes[2]) << 40 | static_cast<std::uint64_t>(bytes[3]) << 32 |
           static_cast<std::uint64_t>(bytes[4]) << 24 | static_cast<std::uint64_t>(bytes[5]) << 16 |
           static_cast<std::uint64_t>(bytes[6]) << 8 | static_cast<std::uint64_t>(bytes[7]);
}

inline void store_u64_from_top(unsigned char* bytes, std::uint64_t word) {
    bytes[0] = static_cast<unsigned char>(word >> 56);
    bytes[1] = static_cast<unsigned char>(word >> 48);
    bytes[2] = static_cast<unsigned char>(word >> 40);
    bytes[3] = static_cast<unsigned char>(word >> 32);
    bytes[4] = static_cast<unsigned char>(word >> 24);
    bytes[5] = static_cast<unsigned char>(word >> 16);
    bytes[6] = static_cast<unsigned char>(word >> 8);
    bytes[7] = static_cast<unsigned char>(word);
}

} // namespace pm
