#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace pm {

// Makes eight bytes of text eight units of the same numbers.
inline void widen_eight(const char* from, char16_t* to) {
    using Bytes = unsigned char __attribute__((vector_size(16)));
    using Words = std::uint64_t __attribute__((vector_size(16)));
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    const auto bytes = std::bit_cast<Bytes>(Words{word, 0});
    // Each beside a zero, by one instruction; a conversion takes several.
    constexpr Bytes zeros{};
    const Bytes units =
        std::endian::native == std::endian::little
            ? __builtin_shufflevector(bytes, zeros, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23)
            : __builtin_shufflevector(bytes, zeros, 16, 0, 17, 1, 18, 2, 19, 3, 20, 4, 21, 5, 22, 6, 23, 7);
    // Not std::memcpy: the library's checked form of it is a call where the room is known at run time only.
    __builtin_memcpy(to, &units, sizeof units);
}

} // namespace pm
