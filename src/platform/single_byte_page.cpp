#include "platform/single_byte_page.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace pm {

namespace {

struct UpperHalf {
    unsigned number;
    std::array<char16_t, 0x80> units; // of the bytes from 0x80 on
};

constexpr UpperHalf upper_halves[] = {
#include "platform/code_page_tables.inc"
};
constexpr std::size_t page_count = std::size(upper_halves);

// From a unit to its byte: each page has the number of a block for each upper half of a unit, and the block
// has the byte for the lower half. Block 0, where no unit has a byte, is shared by all.
using Block = std::array<char, 0x100>;
using BlockNumbers = std::array<std::uint16_t, 0x100>;

constexpr Block block_without_bytes = [] {
    Block block{};
    block.fill('?');
    return block;
}();

constexpr BlockNumbers number_blocks(const UpperHalf& half, std::uint16_t& count) {
    BlockNumbers numbers{};
    numbers[0] = count++;
    for (const char16_t unit : half.units) {
        if (numbers[unit >> 8] == 0) numbers[unit >> 8] = count++;
    }
    return numbers;
}

constexpr std::size_t block_count = [] {
    std::uint16_t count = 1;
    for (const UpperHalf& half : upper_halves) {
        number_blocks(half, count);
    }
    return count;
}();

struct EncodingTables {
    std::array<BlockNumbers, page_count> numbers{};
    std::array<Block, block_count> blocks{};
};

constexpr EncodingTables encoding_tables = [] {
    EncodingTables tables;
    tables.blocks.fill(block_without_bytes);
    std::uint16_t count = 1;
    for (std::size_t page = 0; page < page_count; ++page) {
        const UpperHalf& half = upper_halves[page];
        BlockNumbers& numbers = tables.numbers[page] = number_blocks(half, count);
        for (std::size_t ascii = 0; ascii < 0x80; ++ascii) {
            tables.blocks[numbers[0]][ascii] = static_cast<char>(ascii);
        }
        for (std::size_t index = 0; index < half.units.size(); ++index) {
            const char16_t unit = half.units[index];
            tables.blocks[numbers[unit >> 8]][unit & 0xFF] = static_cast<char>(0x80 + index);
        }
    }
    return tables;
}();

class SingleBytePage final : public CodePage {
public:
    constexpr explicit SingleBytePage(std::size_t index)
        : CodePage(upper_halves[index].number), m_numbers(encoding_tables.numbers[index]) {
        for (std::size_t byte = 0; byte < 0x80; ++byte) {
            m_units[byte] = static_cast<char16_t>(byte);
            m_units[0x80 + byte] = upper_halves[index].units[byte];
        }
    }

    std::size_t character_length(const char*) const override { return 1; }

private:
    void decode_rest(std::string_view narrow, std::u16string& wide) const override {
        const std::size_t start = wide.size();
        wide.resize(start + narrow.size());
        std::transform(narrow.begin(), narrow.end(), wide.data() + start,
                       [this](char byte) { return m_units[static_cast<unsigned char>(byte)]; });
    }

    void encode_rest(std::u16string_view wide, std::string& narrow) const override {
        const std::size_t start = narrow.size();
        narrow.resize(start + wide.size());
        const BlockNumbers& numbers = m_numbers; // else loaded again for each unit
        std::transform(wide.begin(), wide.end(), narrow.data() + start, [&numbers](char16_t unit) {
            return encoding_tables.blocks[numbers[unit >> 8]][unit & 0xFF];
        });
    }

    std::array<char16_t, 0x100> m_units{};
    const BlockNumbers& m_numbers;
};

template<std::size_t... Index>
constexpr std::array<SingleBytePage, page_count> make_pages(std::index_sequence<Index...>) {
    return {SingleBytePage(Index)...};
}

constexpr std::array<SingleBytePage, page_count> pages = make_pages(std::make_index_sequence<page_count>());
static_assert(std::is_trivially_destructible_v<SingleBytePage>);

} // namespace

const CodePage* find_single_byte_page(unsigned number) {
    const auto* page =
        std::lower_bound(pages.begin(), pages.end(), number,
                         [](const CodePage& each, unsigned wanted) { return each.number() < wanted; });
    return page != pages.end() && page->number() == number ? page : nullptr;
}

} // namespace pm
