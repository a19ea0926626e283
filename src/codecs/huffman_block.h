#pragma once

#include "base/allocator.h"
#include "codecs/bit_string.h"
#include "codecs/freq_trie.h"
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

// The number of bits that data with these counters takes. Number 55 (u"temp") for more than a block can hold.
std::uint32_t count_code_bits(Counters counters, const CodeTable& codes);

struct DecodedBytes {
    Block<unsigned char> data; // one byte at least behind the last
    std::uint32_t size = 0;
};

// Follows the bits from `root`, which is no leaf. A symbol is stored when the bit behind its code is about
// to be read, so the last one never is; a code that the bits leave unfinished is no error. Raises number 90
// where a bit leads to no node, unless it is the last, and 55 (u"output", u"temp").
DecodedBytes decode_bits(const TrieNode* root, const BitString& bits);

} // namespace pm
