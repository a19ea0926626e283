#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pm::fuzz {

// Bytes as wide text: a unit for each byte, or for each two of them.
inline std::u16string wide_text(const std::uint8_t* data, std::size_t size, bool two_bytes) {
    std::u16string text;
    const std::size_t step = two_bytes ? 2 : 1;
    for (std::size_t at = 0; at + step <= size; at += step) {
        text += static_cast<char16_t>(two_bytes ? data[at] | data[at + 1] << 8 : data[at]);
    }
    return text;
}

} // namespace pm::fuzz
