#include "base/little_endian.h"
#include "codecs/code_packer.h"
#include "codecs/code_reader.h"
#include "codecs/codec_failure.h"
#include "codecs/huffman_block.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <pm/codec.h>
#include <pm/error_number.h>

namespace pm {

namespace {

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

void write_header(unsigned char* out, Counters counters, std::uint32_t bits) {
    std::copy(huffman_tag.begin(), huffman_tag.end(), out);
    for (std::size_t value = 0; value < symbol_count; ++value) {
        store_u32(out + huffman_counters + 4 * value, counters[value]);
    }
    store_u32(out + huffman_bit_count, bits);
}

// In turns into several tables: a counter that was just written can't be read again at once.
void count_bytes(std::span<const unsigned char> data, std::uint32_t* counters) {
    std::array<std::array<std::uint32_t, symbol_count>, 4> turns{};
    std::size_t i = 0;
    for (; i + turns.size() <= data.size(); i += turns.size()) {
        for (std::size_t turn = 0; turn < turns.size(); ++turn) {
            ++turns[turn][data[i + turn]];
        }
    }
    for (; i < data.size(); ++i) {
        ++turns[0][data[i]];
    }
    for (std::size_t value = 0; value < symbol_count; ++value) {
        for (const auto& turn : turns) {
            counters[value] += turn[value];
        }
    }
}

} // namespace

bool huffman_block_fits(std::span<const unsigned char> block) {
    return block.size() > huffman_bits &&
           block.size() - huffman_bits > load_u32(block.data() + huffman_bit_count) / 8;
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
    const std::span data(m_input, m_input != nullptr ? m_input_size : 0);
    pm::count_bytes(data, m_freq_table);
    make_trie();

    const pm::Counters counters(m_freq_table, pm::symbol_count);
    const pm::CodeTable& codes = m_freq_trie->make_codes();
    const std::uint32_t bits = pm::count_code_bits(counters, codes);
    const auto size = static_cast<std::uint32_t>(pm::huffman_bits + bits / 8 + 1);
    auto block =
        pm::checked(pm::allocate_block<unsigned char>(std::size_t{size} + pm::CodePacker::slack), u"output");
    pm::write_header(block.get(), counters, bits);
    pm::CodePacker(codes).pack(data, block.get() + pm::huffman_bits);
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

    const std::span counters(m_freq_table, pm::symbol_count);
    const auto symbols = std::accumulate(counters.begin(), counters.end(), std::uint64_t{0});
    pm::DecodedBytes decoded = pm::decode_bits(m_freq_trie->root(), bits, symbols);
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
