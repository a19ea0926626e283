#pragma once

#include "pdt/branch.h"
#include <cstdint>
#include <string_view>
#include <vector>

namespace pm {

// The data types of custom capabilities. They differ from the numbers of PropType.
inline constexpr std::int32_t typed_string = 0;
inline constexpr std::int32_t typed_long = 1;
inline constexpr std::int32_t typed_double = 2;
inline constexpr std::int32_t typed_bool = 3; // true exactly for "Y" as first character
inline constexpr std::int32_t typed_raw = 4;

// The bytes of a raw cell: its first two characters, whatever they are, are passed over; each pair behind
// them is a byte, in uppercase hexadecimal digits, high digit first. Other characters count as 0.
std::vector<unsigned char> decode_raw_cell(std::u16string_view text);

// Writes the cell in that data type; other types write nothing.
void set_typed_value(Branch& branch, std::u16string_view item, char16_t* cell, int index, std::int32_t type);

} // namespace pm
