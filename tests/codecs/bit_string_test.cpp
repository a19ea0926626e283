#include "codecs/bit_string.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace pm::test {
namespace {

void append(BitString& string, std::string_view bits) {
    for (const char bit : bits) {
        string.append(bit == '1');
    }
}

std::string text_of(const BitString& string) {
    std::string text;
    for (BitCursor cursor(string); !cursor.at_end();) {
        text.push_back(cursor.next() ? '1' : '0');
    }
    return text;
}

std::vector<unsigned> bytes_of(const BitString& string) {
    return {string.data(), string.data() + string.length() / 8 + 1};
}

using Bytes = std::vector<unsigned>;

TEST(BitStringTest, NewStringIsEmptyAndHasNoBytes) {
    const BitString string;
    EXPECT_TRUE(string.empty());
    EXPECT_EQ(0U, string.length());
    EXPECT_EQ(nullptr, string.data());
    EXPECT_TRUE(BitCursor(string).at_end());
}

TEST(BitStringTest, BitsFillBytesFromTheTop) {
    BitString string;
    append(string, "10000000"
                   "01100001"
                   "1");
    EXPECT_EQ(17U, string.length());
    EXPECT_EQ((Bytes{0x80, 0x61, 0x80}), bytes_of(string));
}

TEST(BitStringTest, WholeByteIsFollowedByAZeroByte) {
    BitString string;
    append(string, "11111111");
    EXPECT_EQ((Bytes{0xFF, 0x00}), bytes_of(string));
    append(string, "11111111");
    EXPECT_EQ((Bytes{0xFF, 0xFF, 0x00}), bytes_of(string));
}

TEST(BitStringTest, StringsAppendAtEveryOffset) {
    const std::string code = "1011001110001111000010";
    for (std::size_t ahead = 0; ahead < 17; ++ahead) {
        for (std::size_t length = 0; length <= code.size(); ++length) {
            BitString tail;
            append(tail, code.substr(0, length));
            BitString string;
            append(string, std::string(ahead, '1'));
            string.append(tail);
            EXPECT_EQ(std::string(ahead, '1') + code.substr(0, length), text_of(string));
        }
    }
}

TEST(BitStringTest, RemovedBitLeavesAZero) {
    BitString string;
    append(string, "111111111");
    string.remove_last();
    string.remove_last();
    EXPECT_EQ((Bytes{0xFE}), bytes_of(string));
    string.append(false);
    EXPECT_EQ("11111110", text_of(string));
}

TEST(BitStringTest, CopyTakesOverLongerAndShorterStrings) {
    BitString one;
    append(one, "1");
    BitString many;
    append(many, std::string(200, '1'));
    BitString target;
    for (const BitString* from : {&one, &many, &one}) {
        target.copy(*from);
        EXPECT_EQ(text_of(*from), text_of(target));
    }
    append(target, "01");
    EXPECT_EQ("101", text_of(target));
    EXPECT_EQ((Bytes{0xA0}), bytes_of(target));
}

TEST(BitStringTest, StringOfBytesHasTheGivenLength) {
    const unsigned char bytes[] = {0x8F, 0x7A, 0xD0};
    const BitString string(bytes, 21);
    EXPECT_EQ(21U, string.length());
    EXPECT_EQ("100011110111101011010", text_of(string));
}

TEST(BitStringTest, StringOfBytesThatEndsWithAByteTakesOneByteMore) {
    const unsigned char bytes[] = {0x8F, 0x7A, 0xD0};
    EXPECT_EQ((Bytes{0x8F, 0x7A, 0xD0}), bytes_of(BitString(bytes, 16)));
}

TEST(BitStringTest, GrowthWithoutMemoryIsToldAndLeavesTheString) {
    BitString string;
    append(string, "101");
    {
        const FailingAllocation failing(0);
        expect_thrown<PM_Memory_Exception>([&] { string.reserve(1000); }, PM_ERR_NO_MEMORY, u"temp", u"temp");
    }
    EXPECT_EQ("101", text_of(string));
}

TEST(BitStringTest, FirstBitWithoutMemoryIsTold) {
    BitString string;
    const FailingAllocation failing(0);
    expect_thrown<PM_Memory_Exception>([&] { string.append(true); }, PM_ERR_NO_MEMORY, u"temp", u"temp");
    EXPECT_TRUE(string.empty());
}

TEST(BitStringTest, CopyWithoutMemoryIsToldAndLeavesTheTarget) {
    BitString many;
    append(many, std::string(200, '1'));
    BitString target;
    append(target, "101");
    {
        const FailingAllocation failing(0);
        expect_thrown<PM_Memory_Exception>([&] { target.copy(many); }, PM_ERR_NO_MEMORY, u"m_data",
                                           u"m_data");
    }
    EXPECT_EQ("101", text_of(target));
}

TEST(BitStringTest, StringOfBytesWithoutMemoryIsTold) {
    const unsigned char bytes[] = {0x8F, 0x7A, 0xD0};
    const FailingAllocation failing(0);
    expect_thrown<PM_Memory_Exception>([&] { BitString(bytes, 21); }, PM_ERR_NO_MEMORY, u"m_data", u"m_data");
}

TEST(BitStringTest, MoreBitsThanALengthCanTellAreRefused) {
    BitString string;
    const std::uint64_t longest = std::numeric_limits<std::uint32_t>::max();
    expect_thrown<PM_Memory_Exception>([&] { string.reserve(longest + 1); }, PM_ERR_NO_MEMORY, u"temp",
                                       u"temp");
    static std::size_t asked = 0;
    set_allocation_filter([](std::size_t size) {
        asked = size;
        return true;
    });
    expect_thrown<PM_Memory_Exception>([&] { string.reserve(longest); }, PM_ERR_NO_MEMORY, u"temp", u"temp");
    set_allocation_filter(nullptr);
    EXPECT_EQ(std::size_t{1} << 29, asked);
}

} // namespace
} // namespace pm::test
