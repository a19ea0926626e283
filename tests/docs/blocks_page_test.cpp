#include "docs/outcome.h"
#include "docs/page.h"

#include "codecs/codec_run.h"
#include "support/tree_dump.h"
#include <charconv>
#include <gmock/gmock.h>
#include <sstream>

namespace {

using namespace pm::test;
using testing::ElementsAre;
using testing::Key;

std::string result_of(const CodecRun& run, const std::string& start) {
    if (run.ok && run.out_size == 0) return start + "no bytes";
    if (run.ok) return start + '`' + shown_bytes(run.bytes()) + '`';
    return "fails with " + std::to_string(run.reports.at(0).number);
}

// What stops a reader in front of the decoder; empty for what the decoder may see.
std::string frame_trouble(PM_Block_Frame frame) {
    if (frame == PM_BLOCK_CUT) return "cut";
    return frame == PM_BLOCK_TOO_LARGE ? "too large" : "";
}

std::string run_plain(const std::string& block) {
    const std::string trouble = frame_trouble(pm_zlib_block_frame(block.data(), block.size(), false));
    return trouble.empty() ? result_of(run_codec(&PM_zlib_Codec::decode, block), "gives ") : trouble;
}

std::string run_checked(const std::string& block) {
    const std::string trouble = frame_trouble(pm_zlib_block_frame(block.data(), block.size(), true));
    return trouble.empty() ? result_of(run_codec(&PM_zlib_Codec::decodeCRC, block), "gives ") : trouble;
}

std::string decode_huffman(const std::string& block, const std::string& start) {
    const std::string trouble = frame_trouble(pm_huffman_block_frame(block.data(), block.size()));
    return trouble.empty() ? result_of(run_codec(&PM_Huffman_Codec::decode, block), start) : trouble;
}

constexpr std::size_t bit_count_offset = 1035;
constexpr std::size_t codes_offset = 1039;

std::string run_data(const std::string& data) {
    const CodecRun run = run_codec(&PM_Huffman_Codec::encode, data);
    if (!run.ok) return result_of(run, "");
    const std::string block = run.bytes();
    return "B = " + std::to_string(word_at(block, bit_count_offset)) + ", codes " +
           hex_text(std::string_view(block).substr(codes_offset)) + ", " +
           decode_huffman(block, "comes back as ");
}

std::string bytes_of(const std::string& hex) {
    std::string bytes(hex.size() / 2, '\0');
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        unsigned byte = 0;
        std::from_chars(&hex[2 * at], &hex[2 * at] + 2, byte, 16);
        bytes[at] = static_cast<char>(byte);
    }
    return bytes;
}

// "text in front; a4 b1; 8; 4A00"
std::string run_huffman(const std::string& told) {
    std::istringstream parts(told);
    std::string front;
    std::string counters;
    std::string bits;
    std::string codes;
    std::getline(parts, front, ';');
    std::getline(parts, counters, ';');
    std::getline(parts, bits, ';');
    parts >> codes;
    std::uint32_t counts[256] = {};
    std::istringstream items(counters);
    for (std::string item; items >> item;) {
        counts[static_cast<unsigned char>(item[0])] = static_cast<std::uint32_t>(std::stoul(item.substr(1)));
    }
    std::string block = front + "pmhuffcodec";
    for (const std::uint32_t count : counts) {
        block += word(count);
    }
    block += word(static_cast<std::uint32_t>(std::stoul(bits))) + bytes_of(codes);
    return decode_huffman(block, "gives ");
}

PM_PAGE_ROWS(blocks, (Runs{{"plain block", run_plain},
                           {"checked block", run_checked},
                           {"data", run_data},
                           {"Huffman block", run_huffman}}));

TEST(BlocksPage, BytesAreWhatTheCodecsMakeAndRead) {
    const Page page = read_page("blocks");
    EXPECT_THAT(page.bytes, ElementsAre(Key("checked"), Key("huffman"), Key("plain")));

    const std::string& plain = page.bytes.at("plain");
    EXPECT_EQ(plain, run_codec(&PM_zlib_Codec::encode, "hello").bytes());
    EXPECT_EQ("hello", run_codec(&PM_zlib_Codec::decode, plain).bytes());

    const std::string& checked = page.bytes.at("checked");
    EXPECT_EQ(checked, run_codec(&PM_zlib_Codec::encodeCRC, "hello").bytes());
    EXPECT_EQ("hello", run_codec(&PM_zlib_Codec::decodeCRC, checked).bytes());

    const std::string& huffman = page.bytes.at("huffman");
    EXPECT_EQ(huffman, run_codec(&PM_Huffman_Codec::encode, "mississippi").bytes());
    EXPECT_EQ("mississipp", run_codec(&PM_Huffman_Codec::decode, huffman).bytes());
}

} // namespace
