#pragma once

#include "base/allocator.h"
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pm {

// Armoured text: 4 characters from " " to "_", of 6 bits each, for 3 bytes; a check value of 2 bytes, the
// high one first, stands behind the bytes.
inline constexpr std::size_t armour_group_units = 4;
inline constexpr std::size_t armour_group_bytes = 3;
inline constexpr std::size_t armour_check_size = 2;

constexpr bool is_armour(char16_t unit) {
    return unit >= u' ' && unit <= u'_';
}

// The bytes of a group; characters that a cut one lacks count as zero bits.
void decode_armour_group(std::u16string_view text, std::uint8_t* bytes);
// CRC-16 of polynomial 0xA001, reflected.
std::uint16_t armour_check(std::span<const std::uint8_t> bytes);

// The 64 bits of a double, least significant byte first, with their check value.
inline constexpr std::size_t armoured_double_size = 14;
// The allocation filter is asked for the block that armouring and disarming are told to take, though none is
// needed.
inline bool armour_is_refused() {
    constexpr std::size_t told_size = 32;
    return refused(told_size);
}
// Gives the end.
char* write_armoured_double(double value, char* out);
// False, with `out` untouched, if the characters are none of an armour or the check value differs.
[[nodiscard]] bool read_armoured_double(const char* armour, double& out);

} // namespace pm
