#include "codecs/codec_run.h"
#include <gtest/gtest.h>
#include <limits>

namespace pm::test {
namespace {

using namespace std::string_literals;

constexpr std::uint32_t largest = std::numeric_limits<std::uint32_t>::max();

std::string word(std::uint32_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(value >> shift & 0xFF);
    }
    return bytes;
}

std::string plain_block(std::uint32_t length, std::uint32_t stream_length, const std::string& stream) {
    return "pmzlibcodec" + word(length) + word(stream_length) + stream;
}

std::string huffman_block(std::uint32_t bits, std::size_t bytes) {
    return "pmhuffcodec" + std::string(1024, '\1') + word(bits) + std::string(bytes, '\0');
}

std::string encoded(CodecOperation<PM_zlib_Codec> operation, const std::string& data) {
    return run_codec(operation, data).bytes();
}

PM_Block_Frame zlib_frame(const std::string& data, bool checked = false) {
    return pm_zlib_block_frame(data.data(), data.size(), checked);
}

PM_Block_Frame huffman_frame(const std::string& data) {
    return pm_huffman_block_frame(data.data(), data.size());
}

TEST(ZlibBlockFrame, BlocksThatTheCodecMakesFit) {
    EXPECT_EQ(PM_BLOCK_FITS, zlib_frame(encoded(&PM_zlib_Codec::encode, "hello")));
    EXPECT_EQ(PM_BLOCK_FITS, zlib_frame(encoded(&PM_zlib_Codec::encodeCRC, "hello"), true));
    EXPECT_EQ(PM_BLOCK_FITS, zlib_frame(encoded(&PM_zlib_Codec::encode, "")));
    EXPECT_EQ(PM_BLOCK_FITS, zlib_frame(encoded(&PM_zlib_Codec::encode, std::string(1 << 20, 'x'))));
}

TEST(ZlibBlockFrame, TextInFrontAndBytesBehindDoNotMatter) {
    EXPECT_EQ(PM_BLOCK_FITS, zlib_frame("text ahead" + encoded(&PM_zlib_Codec::encode, "hello") + "rest"));
}

TEST(ZlibBlockFrame, EveryCutBlockIsTold) {
    for (const bool checked : {false, true}) {
        const std::string block =
            encoded(checked ? &PM_zlib_Codec::encodeCRC : &PM_zlib_Codec::encode, "hello");
        for (std::size_t kept = 0; kept < block.size(); ++kept) {
            EXPECT_EQ(kept < 11 ? PM_BLOCK_MISSING : PM_BLOCK_CUT, zlib_frame(block.substr(0, kept), checked))
                << kept;
        }
    }
}

TEST(ZlibBlockFrame, TagBehindAZeroByteIsMissing) {
    EXPECT_EQ(PM_BLOCK_MISSING, zlib_frame("\0"s + encoded(&PM_zlib_Codec::encode, "hello")));
}

TEST(ZlibBlockFrame, DataWithoutATagIsMissingWithAndWithoutAnEnd) {
    EXPECT_EQ(PM_BLOCK_MISSING, zlib_frame("no tag and no end"));
    EXPECT_EQ(PM_BLOCK_MISSING, zlib_frame("no tag but an end\0"s));
    EXPECT_EQ(PM_BLOCK_MISSING, zlib_frame(""));
}

TEST(ZlibBlockFrame, LengthIsTakenUpToWhatDeflateCanExpandTo) {
    EXPECT_EQ(PM_BLOCK_FITS, zlib_frame(plain_block(1032 * 8, 8, "12345678")));
    EXPECT_EQ(PM_BLOCK_TOO_LARGE, zlib_frame(plain_block(1032 * 8 + 1, 8, "12345678")));
    EXPECT_EQ(PM_BLOCK_TOO_LARGE, zlib_frame(plain_block(1, 0, "")));
    EXPECT_EQ(PM_BLOCK_FITS, zlib_frame(plain_block(0, 0, "")));
}

TEST(ZlibBlockFrame, LargestWordsDoNotWrap) {
    EXPECT_EQ(PM_BLOCK_CUT, zlib_frame(plain_block(5, largest, "stream")));
    EXPECT_EQ(PM_BLOCK_TOO_LARGE, zlib_frame(plain_block(largest, 6, "stream")));
}

TEST(ZlibBlockFrame, FormIsTheCallersToTell) {
    const std::string checked = encoded(&PM_zlib_Codec::encodeCRC, "hello");
    EXPECT_EQ(PM_BLOCK_FITS, zlib_frame(checked, true));
    EXPECT_EQ(PM_BLOCK_TOO_LARGE, zlib_frame(checked, false));
}

TEST(ZlibBlockFrame, NullIsNoBytes) {
    EXPECT_EQ(PM_BLOCK_MISSING, pm_zlib_block_frame(nullptr, 100, false));
    EXPECT_EQ(PM_BLOCK_MISSING, pm_huffman_block_frame(nullptr, 100));
}

TEST(ZlibBlockFrame, FitsIsTheShortAnswer) {
    const std::string block = encoded(&PM_zlib_Codec::encode, "hello");
    EXPECT_TRUE(pm_zlib_block_fits(block.data(), block.size(), false));
    EXPECT_FALSE(pm_zlib_block_fits(block.data(), block.size() - 1, false));
    EXPECT_FALSE(pm_zlib_block_fits(block.data(), block.size(), true));
}

TEST(HuffmanBlockFrame, BlocksThatTheCodecMakesFit) {
    const std::string block = run_codec(&PM_Huffman_Codec::encode, "mississippi").bytes();
    EXPECT_EQ(PM_BLOCK_FITS, huffman_frame(block));
    EXPECT_EQ(PM_BLOCK_FITS, huffman_frame(block + "rest"));
    EXPECT_TRUE(pm_huffman_block_fits(block.data(), block.size()));
}

TEST(HuffmanBlockFrame, EveryCutBlockIsTold) {
    const std::string block = run_codec(&PM_Huffman_Codec::encode, "mississippi").bytes();
    for (std::size_t kept = 0; kept < block.size(); ++kept) {
        EXPECT_EQ(kept < 11 ? PM_BLOCK_MISSING : PM_BLOCK_CUT, huffman_frame(block.substr(0, kept))) << kept;
        EXPECT_FALSE(pm_huffman_block_fits(block.data(), kept)) << kept;
    }
}

TEST(HuffmanBlockFrame, TagThatDoesNotStandAtTheStartIsMissing) {
    EXPECT_EQ(PM_BLOCK_MISSING, huffman_frame(" " + huffman_block(7, 1)));
}

TEST(HuffmanBlockFrame, BitCountDivisibleByEightAsksForTheSpareByte) {
    EXPECT_EQ(PM_BLOCK_FITS, huffman_frame(huffman_block(7, 1)));
    EXPECT_EQ(PM_BLOCK_CUT, huffman_frame(huffman_block(8, 1)));
    EXPECT_EQ(PM_BLOCK_FITS, huffman_frame(huffman_block(8, 2)));
    EXPECT_EQ(PM_BLOCK_CUT, huffman_frame(huffman_block(largest, 2)));
}

} // namespace
} // namespace pm::test
