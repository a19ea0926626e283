#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pmtool {

// The 32-bit little-endian word at `at`, all of which lies inside `bytes`.
inline std::uint32_t little_endian(std::string_view bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (std::size_t i = 4; i > 0; --i) {
        word = word << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
    }
    return word;
}

} // namespace pmtool
