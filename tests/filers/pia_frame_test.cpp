#include "filers/pia_frame.h"

#include "filers/pia_blocks.h"
#include <gtest/gtest.h>
#include <string>

namespace {

using pm::test::Block;
using pm::test::block_of;

const std::string header = "PIAFILEVERSION_2.0,compress\r\n";

// The file's bytes, and those behind it, after its lengths were corrected.
std::string bounded(std::string file, bool checked) {
    const std::size_t size = file.size();
    file.append(pm::pia_frame_padding, '\0');
    pm::bound_pia_frame(reinterpret_cast<unsigned char*>(file.data()), size, checked);
    return file;
}

std::string padded(const std::string& file) {
    return file + std::string(pm::pia_frame_padding, '\0');
}

class PiaFrame : public testing::TestWithParam<bool> {
protected:
    Block block = block_of("a=1\nb=2\n", GetParam());

    std::string bounded_block() const { return bounded(header + block.bytes(), GetParam()); }
    std::string padded_block() const { return padded(header + block.bytes()); }
};

INSTANTIATE_TEST_SUITE_P(PlainAndChecked, PiaFrame, testing::Bool());

TEST_P(PiaFrame, TrueLengthsStay) {
    EXPECT_EQ(padded_block(), bounded_block());
}

TEST_P(PiaFrame, TrueLengthsOfAVeryDenseStreamStay) {
    block = block_of(std::string(10'000'000, 'x'), GetParam());
    EXPECT_EQ(padded_block(), bounded_block());
}

TEST_P(PiaFrame, ShorterLengthsStay) {
    block.stream_length -= 1;
    block.length -= 1;
    EXPECT_EQ(padded_block(), bounded_block());
}

TEST_P(PiaFrame, StreamBehindTheFilesEndIsCut) {
    const auto stream_length = block.stream_length;
    for (const std::uint32_t told : {stream_length + 1, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        block.stream_length = told;
        const std::string result = bounded_block();
        block.stream_length = stream_length;
        EXPECT_EQ(padded_block(), result) << told;
    }
}

TEST_P(PiaFrame, BytesBehindTheBlockCountAsRoom) {
    block.stream_length += 3;
    const std::string file = header + block.bytes() + "xyz";
    EXPECT_EQ(padded(file), bounded(file, GetParam()));
}

TEST_P(PiaFrame, LengthBeyondWhatTheStreamCanHoldIsCut) {
    block.length = 0xFFFFFFFF;
    const std::string result = bounded_block();
    block.length = 1032 * block.stream_length;
    EXPECT_EQ(padded_block(), result);
}

TEST_P(PiaFrame, HeaderThatEndsWithTheFileHasNoStream) {
    block.stream_length = 0xFFFFFFFF;
    block.length = 0xFFFFFFFF;
    block.stream.clear();
    const std::string result = bounded_block();
    block.stream_length = 0;
    block.length = 0;
    EXPECT_EQ(padded_block(), result);
}

TEST_P(PiaFrame, HeaderBeyondTheFilesEndHasNoStream) {
    block.stream.clear();
    block.length = 0xFFFFFFFF;
    block.stream_length = 0xFFFFFFFF;
    const std::string whole = header + block.bytes();
    const std::size_t lengths = whole.size() - 8;
    for (std::size_t size = lengths - (GetParam() ? 4 : 0); size < whole.size(); ++size) {
        const std::string result = bounded(whole.substr(0, size), GetParam());
        EXPECT_EQ(whole.substr(0, lengths).substr(0, size), result.substr(0, std::min(size, lengths)));
        EXPECT_EQ(std::string(8, '\0'), result.substr(lengths, 8)) << size;
    }
}

TEST_P(PiaFrame, FileWithoutTagIsLeftAlone) {
    for (const std::string& file : {std::string(), header, header + "pmzlibcode", std::string(100, '\xFF')}) {
        EXPECT_EQ(padded(file), bounded(file, GetParam()));
    }
}

TEST_P(PiaFrame, TagBehindAZeroByteIsNotSeen) {
    block.length = 0xFFFFFFFF;
    const std::string file = header + std::string(1, '\0') + block.bytes();
    EXPECT_EQ(padded(file), bounded(file, GetParam()));
}

TEST_P(PiaFrame, FirstTagCounts) {
    Block second = block;
    second.length = 0xFFFFFFFF;
    const std::string file = block.bytes() + second.bytes();
    EXPECT_EQ(padded(file), bounded(file, GetParam()));
}

} // namespace
