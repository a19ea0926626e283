#include "codecs/code_packer.h"
#include "codecs/code_reader.h"
#include "codecs/codec_run.h"
#include "codecs/deep_tree.h"
#include <gtest/gtest.h>

namespace pm::test {
namespace {

std::string packed(const CodeTable& codes, const std::string& data, std::size_t bits) {
    std::string out(bits / 8 + 1 + CodePacker::slack, '\xEE');
    CodePacker(codes).pack({as_bytes(data), data.size()}, reinterpret_cast<unsigned char*>(out.data()));
    out.resize(bits / 8 + 1);
    return out;
}

std::string packed_by_bits(const std::string& bits) {
    std::string out(bits.size() / 8 + 1, '\0');
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (bits[i] == '1') out[i / 8] = static_cast<char>(out[i / 8] | 0x80 >> i % 8);
    }
    return out;
}

class DeepCodesTest : public testing::Test {
protected:
    DeepCodesTest() { make_codes(tree.root(), codes); }

    void expect_packed(const std::string& data) const {
        std::string bits;
        for (const char symbol : data) {
            bits += DeepTree::code(static_cast<unsigned char>(symbol));
        }
        EXPECT_TRUE(packed_by_bits(bits) == packed(codes, data, bits.size()));
    }

    DeepTree tree;
    CodeTable codes;
};

TEST_F(DeepCodesTest, CodesOfEveryLengthFollowEachOther) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; second += 5) {
            const std::string pair{static_cast<char>(first), static_cast<char>(second)};
            expect_packed(pair);
            expect_packed(pair + '\0');
        }
    }
}

TEST_F(DeepCodesTest, CodesOfEveryLengthComeInAnyOrder) {
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        expect_packed(random_bytes(1 + seed * 7, 2 + seed % 255, seed));
    }
}

TEST_F(DeepCodesTest, NoSymbolsGiveAZeroByte) {
    EXPECT_EQ(std::string(1, '\0'), packed(codes, "", 0));
}

} // namespace
} // namespace pm::test
