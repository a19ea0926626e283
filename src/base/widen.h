#pragma once

#include <cstdint>
#include <cstring>

namespace pm {

// Makes eight bytes of text eight units of the same numbers.
inline void widen_eight(const char* from, char16_t* to) {
    using Bytes = unsigned char __attribute__((vector_size(8)));
    using Units = std::uint16_t __attribute__((vector_size(16)));
    Bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    const auto units = __builtin_convertvector(bytes, Units);
    std::memcpy(to, &units, sizeof units);
}

} // namespace pm
