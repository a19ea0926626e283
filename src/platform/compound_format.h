#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace pm::compound {

// The layout of compound files. Numbers are little-endian.

inline constexpr std::array<unsigned char, 8> signature{0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
inline constexpr std::size_t largest_file = 0x7FFFFFFF;

// Offsets in the header.
inline constexpr std::size_t header_size = 512;
inline constexpr std::size_t minor_version_at = 24;
inline constexpr std::size_t version_at = 26;
inline constexpr std::size_t byte_order_at = 28;
inline constexpr std::size_t sector_shift_at = 30;
inline constexpr std::size_t mini_shift_at = 32;
inline constexpr std::size_t fat_count_at = 44;
inline constexpr std::size_t directory_start_at = 48;
inline constexpr std::size_t mini_cutoff_at = 56;
inline constexpr std::size_t mini_fat_start_at = 60;
inline constexpr std::size_t mini_fat_count_at = 64;
inline constexpr std::size_t difat_start_at = 68;
inline constexpr std::size_t difat_count_at = 72;
inline constexpr std::size_t difat_at = 76;
inline constexpr std::size_t difat_in_header = 109;

inline constexpr std::uint16_t little_endian = 0xFFFE;
inline constexpr std::uint16_t minor_version = 0x3E;
inline constexpr std::uint16_t small_version = 3; // of files of small sectors
inline constexpr unsigned small_shift = 9;        // of files of version 3
inline constexpr unsigned large_shift = 12;       // of version 4
inline constexpr unsigned mini_shift = 6;
inline constexpr std::uint32_t mini_cutoff = 4096; // a stream below it lies in the mini stream

// In place of a successor in the allocation table.
inline constexpr std::uint32_t difat_sector = 0xFFFFFFFC; // part of the list of the table's sectors
inline constexpr std::uint32_t fat_sector = 0xFFFFFFFD;   // part of the table
inline constexpr std::uint32_t end_of_chain = 0xFFFFFFFE;
inline constexpr std::uint32_t free_sector = 0xFFFFFFFF;

// Offsets in a directory entry.
inline constexpr std::size_t entry_size = 128;
inline constexpr std::size_t name_size_at = 64; // in bytes, with the terminator
inline constexpr std::size_t type_at = 66;
inline constexpr std::size_t colour_at = 67;
inline constexpr std::size_t left_at = 68;
inline constexpr std::size_t right_at = 72;
inline constexpr std::size_t child_at = 76;
inline constexpr std::size_t class_and_state_at = 80;
inline constexpr std::size_t start_at = 116;
inline constexpr std::size_t size_at = 120;

inline constexpr std::size_t name_room = 64;
inline constexpr std::uint32_t no_entry = 0xFFFFFFFF;

inline constexpr std::uint8_t storage_entry = 1;
inline constexpr std::uint8_t stream_entry = 2;
inline constexpr std::uint8_t root_entry = 5;
inline constexpr std::byte red{0};
inline constexpr std::byte black{1};

// `at` and what stands there are within `bytes`.
inline std::uint16_t get16(std::span<const std::byte> bytes, std::size_t at) {
    return static_cast<std::uint16_t>(std::to_integer<unsigned>(bytes[at]) |
                                      std::to_integer<unsigned>(bytes[at + 1]) << 8);
}
inline std::uint32_t get32(std::span<const std::byte> bytes, std::size_t at) {
    return get16(bytes, at) | static_cast<std::uint32_t>(get16(bytes, at + 2)) << 16;
}
inline void put16(std::span<std::byte> bytes, std::size_t at, std::uint16_t value) {
    bytes[at] = std::byte(value & 0xFF);
    bytes[at + 1] = std::byte(value >> 8);
}
inline void put32(std::span<std::byte> bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t place = 0; place < 4; ++place) {
        bytes[at + place] = std::byte(value >> (8 * place));
    }
}

} // namespace pm::compound
