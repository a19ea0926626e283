#include "codecs/code_packer.h"

#include "base/big_endian.h"
#include "codecs/codec_failure.h"
#include <algorithm>
#include <limits>

namespace pm {

namespace {

// Up to seven bits wait for their byte, so that so many more fit into a word.
constexpr std::uint32_t longest_put = 56;

} // namespace

std::uint32_t count_code_bits(Counters counters, const CodeTable& codes) {
    std::uint64_t bits = 0;
    for (std::size_t value = 0; value < symbol_count; ++value) {
        bits += std::uint64_t{counters[value]} * codes[value].length();
    }
    if (bits > std::numeric_limits<std::uint32_t>::max()) throw_codec_memory(u"temp");
    return static_cast<std::uint32_t>(bits);
}

class CodePacker::Output {
public:
    explicit Output(unsigned char* out) : m_out(out) {}

    // At most 56 bits, and one at least.
    void put(std::uint64_t bits, std::uint32_t count) {
        m_used += count;
        m_word |= bits << (64 - m_used);
        store_u64_from_top(m_out, m_word);
        m_out += m_used / 8;
        m_word <<= m_used & ~7U;
        m_used %= 8;
    }
    void end() { store_u64_from_top(m_out, m_word); }

private:
    unsigned char* m_out;
    std::uint64_t m_word = 0; // bits that wait, from the top
    std::uint32_t m_used = 0;
};

CodePacker::CodePacker(const CodeTable& codes) : m_long_codes(codes) {
    for (std::size_t value = 0; value < symbol_count; ++value) {
        const BitString& code = codes[value];
        m_codes[value].length = code.length();
        if (code.length() > longest_put) continue;
        for (std::uint32_t i = 0; i < code.length(); ++i) {
            m_codes[value].bits = m_codes[value].bits << 1 | (code[i] ? 1U : 0U);
        }
    }
}

void CodePacker::pack(std::span<const unsigned char> data, unsigned char* out) const {
    Output output(out);
    std::size_t i = 0;
    for (; i + 1 < data.size(); i += 2) {
        const Code first = m_codes[data[i]];
        const Code second = m_codes[data[i + 1]];
        if (first.length + second.length <= longest_put) {
            output.put(first.bits << second.length | second.bits, first.length + second.length);
        } else {
            output = put(put(output, data[i]), data[i + 1]);
        }
    }
    if (i < data.size()) output = put(output, data[i]);
    output.end();
}

// Takes and gives the output by its value, which stays in registers where codes are short.
CodePacker::Output CodePacker::put(Output output, unsigned char symbol) const {
    const Code code = m_codes[symbol];
    if (code.length <= longest_put) {
        output.put(code.bits, code.length);
        return output;
    }
    const BitString& bits = m_long_codes[symbol];
    for (std::uint32_t i = 0; i < bits.length(); i += 8) {
        const std::uint32_t count = std::min<std::uint32_t>(8, bits.length() - i);
        output.put(bits.data()[i / 8] >> (8 - count), count);
    }
    return output;
}

} // namespace pm
