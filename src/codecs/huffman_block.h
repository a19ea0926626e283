#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pm {

inline constexpr std::string_view huffman_tag = "pmhuffcodec";

// Offsets; all words are unsigned, 32 bits, little-endian.
inline constexpr std::size_t huffman_counters = 11;
inline constexpr std::size_t huffman_bit_count = 1035;
inline constexpr std::size_t huffman_bits = 1039; // bit count / 8 + 1 bytes

// Whether decoding stays inside `block`, which holds its header and the bits it claims. The decoder knows no
// size: ask this before giving it bytes from outside.
bool huffman_block_fits(std::span<const unsigned char> block);

} // namespace pm
