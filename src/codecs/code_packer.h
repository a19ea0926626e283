#pragma once

#include "codecs/freq_trie.h"
#include <array>
#include <cstdint>
#include <span>

namespace pm {

// The number of bits that data with these counters takes. Number 55 (u"temp") for more than a block can hold.
std::uint32_t count_code_bits(Counters counters, const CodeTable& codes);

// Writes the codes of symbols one behind the other.
class CodePacker {
public:
    // Whole words are written: so many bytes behind the last code may be touched.
    static constexpr std::size_t slack = 8;

    explicit CodePacker(const CodeTable& codes);

    // The codes of `data` to `out`, first bit in the top bit of the first byte. The byte behind the last
    // whole one is written too; its unused bits are zero.
    void pack(std::span<const unsigned char> data, unsigned char* out) const;

private:
    // A code as a number, its last bit in the lowest.
    struct Code {
        std::uint64_t bits = 0; // 0 if there are more than fit
        std::uint32_t length = 0;
    };
    class Output;

    Output put(Output output, unsigned char symbol) const;

    const CodeTable& m_long_codes;
    std::array<Code, symbol_count> m_codes;
};

} // namespace pm
