#include "filers/pia_frame.h"

#include "filers/pia_blocks.h"
#include <gtest/gtest.h>
#include <optional>
#include <span>
#include <string>

namespace {

using pm::test::Block;
using pm::test::block_of;

const std::string header = "PIAFILEVERSION_2.0,compress\r\n";

// What became of the file's bytes; nothing if the block goes beyond the file.
std::optional<std::string> bounded(std::string file, bool checked) {
    const std::span bytes(reinterpret_cast<unsigned char*>(file.data()), file.size());
    if (!pm::bound_pia_frame(bytes, checked)) return std::nullopt;
    return file;
}

class PiaFrame : public testing::TestWithParam<bool> {
protected:
    std::string file() const { return header + block.bytes(); }
    std::optional<std::string> result() const { return bounded(file(), GetParam()); }

    Block block = block_of("a=1\nb=2\n", GetParam());
};

INSTANTIATE_TEST_SUITE_P(PlainAndChecked, PiaFrame, testing::Bool());

TEST_P(PiaFrame, TrueLengthsStay) {
    EXPECT_EQ(file(), result());
}

TEST_P(PiaFrame, TrueLengthsOfAVeryDenseStreamStay) {
    block = block_of(std::string(8'000'000, 'x'), GetParam());
    EXPECT_EQ(file(), result());
}

TEST_P(PiaFrame, ShorterLengthsStay) {
    block.stream_length -= 1;
    block.length -= 1;
    EXPECT_EQ(file(), result());
}

TEST_P(PiaFrame, StreamBehindTheFilesEndIsRefused) {
    for (const std::uint32_t told : {block.stream_length + 1, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        block.stream_length = told;
        EXPECT_EQ(std::nullopt, result()) << told;
    }
}

TEST_P(PiaFrame, BytesBehindTheBlockCountAsRoom) {
    block.stream_length += 3;
    EXPECT_EQ(file() + "xyz", bounded(file() + "xyz", GetParam()));
}

TEST_P(PiaFrame, LengthBeyondWhatTheStreamCanHoldIsLowered) {
    block.length = 0xFFFFFFFF;
    const auto lowered = result();
    block.length = 1032 * block.stream_length;
    EXPECT_EQ(file(), lowered);
}

TEST_P(PiaFrame, HeaderThatEndsWithTheFileHasAnEmptyStream) {
    block.stream.clear();
    block.stream_length = 0;
    block.length = 0;
    EXPECT_EQ(file(), result());
}

TEST_P(PiaFrame, EveryCutHeaderIsRefused) {
    const std::string whole = file();
    const std::size_t header_size = GetParam() ? 23 : 19;
    for (std::size_t length = 11; length < header_size; ++length) {
        EXPECT_EQ(std::nullopt, bounded(whole.substr(0, header.size() + length), GetParam())) << length;
    }
}

TEST_P(PiaFrame, FileWithoutTagIsLeftAlone) {
    for (const std::string& text : {std::string(), header, header + "pmzlibcode", std::string(100, '\xFF')}) {
        EXPECT_EQ(text, bounded(text, GetParam()));
    }
}

TEST_P(PiaFrame, TagBehindAZeroByteIsNotSeen) {
    block.length = 0xFFFFFFFF;
    const std::string hidden = header + std::string(1, '\0') + block.bytes();
    EXPECT_EQ(hidden, bounded(hidden, GetParam()));
}

TEST_P(PiaFrame, FirstTagCounts) {
    Block second = block;
    second.length = 0xFFFFFFFF;
    const std::string both = block.bytes() + second.bytes();
    EXPECT_EQ(both, bounded(both, GetParam()));
}

} // namespace
