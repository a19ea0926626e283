#pragma once

#include "base/allocator.h"
#include "codecs/freq_trie.h"
#include <cstdint>

namespace pm {

struct DecodedBytes {
    Block<unsigned char> data; // one byte at least behind the last
    std::uint32_t size = 0;
};

// Follows the bits from `root`, which is no leaf. A symbol is stored when the bit behind its code is about
// to be read, so the last one never is; a code that the bits leave unfinished is no error. `expected` is how
// many symbols there may be; no harm is done if it is wrong. Raises number 90 where a bit leads to no node,
// unless it is the last, and 55 (u"output", u"temp").
DecodedBytes decode_bits(const TrieNode* root, const BitString& bits, std::uint64_t expected = 0);

} // namespace pm
