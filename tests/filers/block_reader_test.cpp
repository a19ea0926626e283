#include "filers/block_reader.h"

#include "support/failing_buffer.h"
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

using pm::BlockReader;

std::string taken(BlockReader& reader, std::size_t count) {
    const char* const bytes = reader.take(count);
    return bytes != nullptr ? std::string(bytes, count) : "nothing";
}

std::string numbers(std::size_t size) {
    std::string text;
    for (int number = 0; text.size() < size; ++number)
        text += std::to_string(number) + ' ';
    text.resize(size);
    return text;
}

TEST(BlockReader, PiecesFollowEachOther) {
    std::istringstream stream("abcdef");
    BlockReader reader(stream);
    EXPECT_EQ("ab", taken(reader, 2));
    EXPECT_EQ("", taken(reader, 0));
    EXPECT_EQ("cdef", taken(reader, 4));
}

TEST(BlockReader, StartsAtTheStreamsPosition) {
    std::istringstream stream("abcdef");
    stream.seekg(2);
    BlockReader reader(stream);
    EXPECT_EQ("cd", taken(reader, 2));
}

TEST(BlockReader, PieceMayLieInTwoBlocks) {
    const std::string text = numbers(3 * BlockReader::block_size);
    std::istringstream stream(text);
    BlockReader reader(stream);
    for (std::size_t at = 0; at + 1000 <= text.size(); at += 1000)
        ASSERT_EQ(text.substr(at, 1000), taken(reader, 1000));
}

TEST(BlockReader, PieceMayBeLargerThanABlock) {
    const std::string text = numbers(4 * BlockReader::block_size);
    std::istringstream stream(text);
    BlockReader reader(stream);
    EXPECT_EQ(text.substr(0, 10), taken(reader, 10));
    EXPECT_EQ(text.substr(10, 3 * BlockReader::block_size), taken(reader, 3 * BlockReader::block_size));
    EXPECT_EQ(text.substr(10 + 3 * BlockReader::block_size, 7), taken(reader, 7));
}

TEST(BlockReader, WhatIsAtHandNeedsNoReading) {
    std::istringstream stream("abcdef");
    BlockReader reader(stream);
    EXPECT_EQ("", reader.at_hand());
    EXPECT_EQ("ab", taken(reader, 2));
    EXPECT_EQ("cdef", reader.at_hand());
}

TEST(BlockReader, EndIsMarkedOnlyWhenAPieceRunsIntoIt) {
    std::istringstream stream("abc");
    BlockReader reader(stream);
    EXPECT_EQ("abc", taken(reader, 3));
    EXPECT_TRUE(stream.good());
    EXPECT_EQ("nothing", taken(reader, 1));
    EXPECT_EQ(std::ios::eofbit | std::ios::failbit, stream.rdstate());
}

TEST(BlockReader, PieceBeyondTheEndLeavesWhatThereIs) {
    std::istringstream stream("abc");
    BlockReader reader(stream);
    EXPECT_EQ("nothing", taken(reader, 4));
    EXPECT_EQ("abc", taken(reader, 3));
}

TEST(BlockReader, FailureOfTheDeviceIsMarked) {
    pm::test::FailingBuffer buffer("abc");
    std::istream stream(&buffer);
    BlockReader reader(stream);
    EXPECT_EQ("nothing", taken(reader, 3));
    EXPECT_EQ(std::ios::badbit, stream.rdstate());
    EXPECT_EQ("nothing", taken(reader, 3));
}

} // namespace
