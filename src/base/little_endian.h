#pragma once

#include <cstdint>

namespace pm {

// 32-bit words as the file formats store them: least significant byte first, unaligned.
inline std::uint32_t read_le32(const unsigned char* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
           static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

inline void write_le32(std::uint32_t value, unsigned char* bytes) {
    for (int byte = 0; byte < 4; ++byte) bytes[byte] = static_cast<unsigned char>(value >> (8 * byte));
}

} // namespace pm
