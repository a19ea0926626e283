#include "base/little_endian.h"
#include "codecs/codec_failure.h"
#include "codecs/huffman_block.h"
#include <algorithm>
#include <cstring>
#include <limits>
#include <pm/codec.h>
#include <pm/error_number.h>

namespace pm {

namespace {

constexpr std::uint32_t first_capacity = 100;

// Decoded bytes as they come; room for one more always follows them.
class OutputBuffer {
public:
    OutputBuffer() : m_data(checked(allocate_block<unsigned char>(first_capacity), u"output")) {}

    void put(unsigned char byte) {
        m_data[m_size++] = byte;
        if (m_size == m_capacity) grow();
    }
    DecodedBytes take() { return {std::move(m_data), static_cast<std::uint32_t>(m_size)}; }

private:
    void grow() {
        auto grown = checked(allocate_block<unsigned char>(m_capacity * 2), u"temp");
        std::copy_n(m_data.get(), m_size, grown.get());
        m_data = std::move(grown);
        m_capacity *= 2;
    }

    Block<unsigned char> m_data;
    std::size_t m_capacity = first_capacity;
    std::size_t m_size = 0;
};

// A tree of fewer than two leaves has no codes.
void check_counters(Counters counters) {
    const auto absent = std::count(counters.begin(), counters.end(), 0U);
    if (symbol_count - static_cast<std::size_t>(absent) < 2) throw_codec_failure(PM_ERR_NO_BLOCK);
}

void check_tag(const unsigned char* block) {
    // As text: reads no further than the first difference.
    const char* text = reinterpret_cast<const char*>(block);
    if (text == nullptr || std::strncmp(text, huffman_tag.data(), huffman_tag.size()) != 0) {
        throw_codec_failure(PM_ERR_NO_BLOCK);
    }
}

void write_block(unsigned char* out, Counters counters, const BitString& bits) {
    std::copy(huffman_tag.begin(), huffman_tag.end(), out);
    for (std::size_t value = 0; value < symbol_count; ++value) {
        store_u32(out + huffman_counters + 4 * value, counters[value]);
    }
    store_u32(out + huffman_bit_count, bits.length());
    std::copy_n(bits.data(), bits.length() / 8 + 1, out + huffman_bits);
}

} // namespace

bool huffman_block_fits(std::span<const unsigned char> block) {
    return block.size() > huffman_bits &&
           block.size() - huffman_bits > load_u32(block.data() + huffman_bit_count) / 8;
}

std::uint32_t count_code_bits(Counters counters, const CodeTable& codes) {
    std::uint64_t bits = 0;
    for (std::size_t value = 0; value < symbol_count; ++value) {
        bits += std::uint64_t{counters[value]} * codes[value].length();
    }
    if (bits > std::numeric_limits<std::uint32_t>::max()) throw_codec_memory(u"temp");
    return static_cast<std::uint32_t>(bits);
}

DecodedBytes decode_bits(const TrieNode* root, const BitString& bits) {
    OutputBuffer out;
    BitCursor cursor(bits);
    const TrieNode* node = root;
    while (!cursor.at_end()) {
        if (node == nullptr) throw_codec_failure(PM_ERR_NO_HUFFMAN_SYMBOL);
        if (node->is_leaf()) {
            out.put(node->symbol);
            node = root;
        } else {
            node = cursor.next() ? node->right : node->left;
        }
    }
    return out.take();
}

} // namespace pm

PM_Huffman_Codec::PM_Huffman_Codec(const unsigned char* data, std::uint32_t size,
                                   ZT_Error_Handler* handler) noexcept
    : m_input(data), m_input_size(size), m_handler(handler) {}

PM_Huffman_Codec::~PM_Huffman_Codec() {
    release_tables();
}

bool PM_Huffman_Codec::encode(unsigned char*& out, std::uint32_t& out_size) {
    return pm::run_guarded(m_handler, [&] { encode_block(out, out_size); });
}

bool PM_Huffman_Codec::decode(unsigned char*& out, std::uint32_t& out_size) {
    return pm::run_guarded(m_handler, [&] { decode_block(out, out_size); });
}

void PM_Huffman_Codec::encode_block(unsigned char*& out, std::uint32_t& out_size) {
    make_counters();
    for (const unsigned char byte : std::span(m_input, m_input_size)) {
        ++m_freq_table[byte];
    }
    make_trie();

    const pm::Counters counters(m_freq_table, pm::symbol_count);
    const pm::CodeTable& codes = m_freq_trie->make_codes();
    pm::BitString bits;
    bits.reserve(pm::count_code_bits(counters, codes));
    for (const unsigned char byte : std::span(m_input, m_input_size)) {
        bits.append(codes[byte]);
    }

    const auto size = static_cast<std::uint32_t>(pm::huffman_bits + bits.length() / 8 + 1);
    auto block = pm::checked(pm::allocate_block<unsigned char>(size), u"output");
    pm::write_block(block.get(), counters, bits);
    out = block.release();
    out_size = size;
}

void PM_Huffman_Codec::decode_block(unsigned char*& out, std::uint32_t& out_size) {
    pm::check_tag(m_input);
    make_counters();
    for (std::size_t value = 0; value < pm::symbol_count; ++value) {
        m_freq_table[value] = pm::load_u32(m_input + pm::huffman_counters + 4 * value);
    }
    const pm::BitString bits(m_input + pm::huffman_bits, pm::load_u32(m_input + pm::huffman_bit_count));
    make_trie();

    pm::DecodedBytes decoded = pm::decode_bits(m_freq_trie->root(), bits);
    out = decoded.data.release();
    out_size = decoded.size;
}

void PM_Huffman_Codec::make_counters() {
    release_tables();
    m_freq_table = static_cast<std::uint32_t*>(pm::allocate_zeroed(pm::symbol_count * sizeof(std::uint32_t)));
    if (m_freq_table == nullptr) pm::throw_codec_memory(u"m_freq_table");
}

void PM_Huffman_Codec::make_trie() {
    const pm::Counters counters(m_freq_table, pm::symbol_count);
    pm::check_counters(counters);
    m_freq_trie = new pm::FreqTrie(counters);
    if (m_freq_trie == nullptr) pm::throw_codec_memory(u"m_freq_trie");
}

void PM_Huffman_Codec::release_tables() noexcept {
    pm::release(m_freq_table);
    delete m_freq_trie;
    m_freq_table = nullptr;
    m_freq_trie = nullptr;
}
