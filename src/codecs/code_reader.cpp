#include "codecs/code_reader.h"

#include "base/big_endian.h"
#include "codecs/codec_failure.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <pm/error_number.h>

namespace pm {

namespace {

// The symbols whose codes begin some bits that lie ahead: two, one, or none if the first code is longer than
// the bits or leads to no node.
struct Step {
    std::array<unsigned char, 2> symbols{};
    unsigned char count = 0;
    unsigned char length = 0; // of the codes together
};

class StepTable {
public:
    static constexpr std::uint32_t index_bits = 12;

    explicit StepTable(const TrieNode& root) {
        enter(&root, 0, 0);
        pair_up();
    }

    // By the top bits of the word.
    const Step& operator[](std::uint64_t ahead) const { return m_steps[ahead >> (64 - index_bits)]; }

private:
    static constexpr std::size_t size = std::size_t{1} << index_bits;

    void enter(const TrieNode* node, std::size_t code, std::uint32_t length) {
        if (node == nullptr) return;
        if (node->is_leaf()) {
            const std::size_t reach = size >> length;
            const Step step{{node->symbol}, 1, static_cast<unsigned char>(length)};
            std::fill_n(m_steps.begin() + static_cast<std::ptrdiff_t>(code * reach), reach, step);
        } else if (length < index_bits) {
            enter(node->left, 2 * code, length + 1);
            enter(node->right, 2 * code + 1, length + 1);
        }
    }

    // A second code that fits behind the first.
    void pair_up() {
        std::array<Step, size> singles = m_steps;
        for (std::size_t at = 0; at < size; ++at) {
            const Step& first = singles[at];
            if (first.count == 0) continue;
            const Step& second = singles[(at << first.length) % size];
            if (second.count == 0 || first.length + second.length > index_bits) continue;
            m_steps[at] = {{first.symbols[0], second.symbols[0]},
                           2,
                           static_cast<unsigned char>(first.length + second.length)};
        }
    }

    std::array<Step, size> m_steps{};
};

// Decoded bytes as they come; room for some more always follows them.
class OutputBuffer {
public:
    static constexpr std::size_t room = 8;

    explicit OutputBuffer(std::size_t expected)
        : m_capacity(std::max(expected, first_capacity) + room),
          m_data(checked(allocate_block<unsigned char>(m_capacity), u"output")) {}

    void put(unsigned char byte) {
        m_data[m_size++] = byte;
        keep_room();
    }
    // Writes into the room: keep_room() is due when it may be used up.
    void put(const Step& step) {
        std::memcpy(m_data.get() + m_size, step.symbols.data(), step.symbols.size());
        m_size += step.count;
    }
    void keep_room() {
        if (m_size + room > m_capacity) grow();
    }
    DecodedBytes take() { return {std::move(m_data), static_cast<std::uint32_t>(m_size)}; }

private:
    static constexpr std::size_t first_capacity = 100;

    void grow() {
        auto grown = checked(allocate_block<unsigned char>(m_capacity * 2), u"temp");
        std::copy_n(m_data.get(), m_size, grown.get());
        m_data = std::move(grown);
        m_capacity *= 2;
    }

    std::size_t m_capacity;
    Block<unsigned char> m_data;
    std::size_t m_size = 0;
};

class CodeReader {
public:
    CodeReader(const TrieNode* root, const BitString& bits, std::uint64_t expected)
        : m_root(root), m_bits(bits), m_out(std::min<std::uint64_t>(expected, bits.length())) {}

    DecodedBytes read() {
        // A table costs as much as some thousand bits.
        if (m_root != nullptr && m_bits.length() > least_for_table) read_by_table(StepTable(*m_root));
        while (read_symbol()) {
        }
        return m_out.take();
    }

private:
    static constexpr std::uint32_t least_for_table = 10'000;

    // Stops where fewer bits are left than a word takes.
    void read_by_table(const StepTable& steps) {
        while (m_bits.length() - m_position > 64) {
            // At least 57 bits, which no four steps use up.
            std::uint64_t ahead = load_u64_from_top(m_bits.data() + m_position / 8) << m_position % 8;
            std::uint32_t taken = 0;
            bool stuck = false;
            for (int i = 0; i < 4 && !stuck; ++i) {
                const Step& step = steps[ahead];
                m_out.put(step);
                taken += step.length;
                ahead <<= step.length;
                stuck = step.count == 0;
            }
            m_position += taken;
            m_out.keep_room();
            if (stuck) read_symbol();
        }
    }

    // Bit by bit. False at the end of the bits.
    bool read_symbol() {
        const TrieNode* node = m_root;
        while (m_position < m_bits.length()) {
            if (node == nullptr) throw_codec_failure(PM_ERR_NO_HUFFMAN_SYMBOL);
            if (node->is_leaf()) {
                m_out.put(node->symbol);
                return true;
            }
            node = m_bits[m_position++] ? node->right : node->left;
        }
        return false;
    }

    const TrieNode* m_root;
    const BitString& m_bits;
    OutputBuffer m_out;
    std::uint32_t m_position = 0;
};

} // namespace

DecodedBytes decode_bits(const TrieNode* root, const BitString& bits, std::uint64_t expected) {
    return CodeReader(root, bits, expected).read();
}

} // namespace pm
