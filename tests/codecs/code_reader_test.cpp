#include "codecs/code_reader.h"
#include "codecs/codec_run.h"
#include "codecs/deep_tree.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"

namespace pm::test {
namespace {

BitString bits_of(std::string_view text) {
    BitString bits;
    for (const char bit : text) {
        bits.append(bit == '1');
    }
    return bits;
}

TEST(DecodeBitsTest, WalkThatReachesNoNodeIsNumber90) {
    TrieNode a{'a', 1};
    const TrieNode root{0, 1, &a, nullptr};
    expect_thrown<PM_Severe>([&] { decode_bits(&root, bits_of("010")); }, PM_ERR_NO_HUFFMAN_SYMBOL, u"", u"");
    expect_thrown<PM_Severe>([&] { decode_bits(&root, bits_of("10")); }, PM_ERR_NO_HUFFMAN_SYMBOL, u"", u"");
}

TEST(DecodeBitsTest, LastBitMayLeadToNoNode) {
    TrieNode a{'a', 1};
    const TrieNode root{0, 1, &a, nullptr};
    const DecodedBytes decoded = decode_bits(&root, bits_of("01"));
    EXPECT_EQ(1U, decoded.size);
    EXPECT_EQ('a', decoded.data[0]);
}

TEST(DecodeBitsTest, MissingRootIsNumber90) {
    expect_thrown<PM_Severe>([] { decode_bits(nullptr, bits_of("0")); }, PM_ERR_NO_HUFFMAN_SYMBOL, u"", u"");
}

TEST(DecodeBitsTest, NoBitsGiveNoBytes) {
    EXPECT_EQ(0U, decode_bits(nullptr, BitString()).size);
}

std::string text_of(const DecodedBytes& decoded) {
    return {reinterpret_cast<const char*>(decoded.data.get()), decoded.size};
}

// More bits than are worth a table.
constexpr std::size_t many = 30'000;

std::string repeat(std::string_view text, std::size_t times) {
    std::string all;
    for (std::size_t i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

std::string deep_bits(const std::string& data) {
    std::string bits;
    for (const char symbol : data) {
        bits += DeepTree::code(static_cast<unsigned char>(symbol));
    }
    return bits;
}

TEST(DecodeBitsTest, CodesOfEveryLengthAreRead) {
    const DeepTree tree;
    const std::string data = random_bytes(3000);
    EXPECT_TRUE(data == text_of(decode_bits(&tree.root(), bits_of(deep_bits(data) + "1"))));
}

TEST(DecodeBitsTest, LongBitsMayEndAnywhereInACode) {
    const DeepTree tree;
    const std::string data = random_bytes(300);
    const std::string ahead = deep_bits(data);
    const std::string bits = ahead + DeepTree::code(0xFF);
    ASSERT_LT(many, bits.size());
    for (std::size_t kept = ahead.size() + 1; kept <= bits.size(); ++kept) {
        const DecodedBytes decoded = decode_bits(&tree.root(), bits_of(bits.substr(0, kept)));
        ASSERT_TRUE(data == text_of(decoded)) << kept;
    }
    EXPECT_TRUE(data.substr(0, 299) == text_of(decode_bits(&tree.root(), bits_of(ahead))));
}

TEST(DecodeBitsTest, WalkThatReachesNoNodeFarBehindIsNumber90) {
    TrieNode a{'a', 1};
    const TrieNode root{0, 1, &a, nullptr};
    const std::string good(many, '0');
    expect_thrown<PM_Severe>([&] { decode_bits(&root, bits_of(good + "10")); }, PM_ERR_NO_HUFFMAN_SYMBOL, u"",
                             u"");
    expect_thrown<PM_Severe>([&] { decode_bits(&root, bits_of(good + "1" + good)); },
                             PM_ERR_NO_HUFFMAN_SYMBOL, u"", u"");
    EXPECT_EQ(std::string(many, 'a'), text_of(decode_bits(&root, bits_of(good + "1"))));
}

TEST(DecodeBitsTest, ExpectedNumberOfSymbolsChangesNothing) {
    TrieNode a{'a', 1};
    TrieNode b{'b', 1};
    const TrieNode root{0, 1, &a, &b};
    const std::string expected = repeat("ab", many);
    const BitString bits = bits_of(repeat("01", many) + "1");
    for (const std::uint64_t symbols : {std::uint64_t{0}, std::uint64_t{98}, std::uint64_t{many},
                                        std::uint64_t{2 * many}, ~std::uint64_t{0}}) {
        EXPECT_TRUE(expected == text_of(decode_bits(&root, bits, symbols))) << symbols;
    }
}

TEST(DecodeBitsTest, OutputThatCannotGrowIsNumber55) {
    TrieNode a{'a', 1};
    TrieNode b{'b', 1};
    const TrieNode root{0, 1, &a, &b};
    const BitString bits = bits_of(std::string(300, '0'));
    const int places = fail_each_allocation([&](int place) {
        const char16_t* name = place == 0 ? u"output" : u"temp";
        if (place < 3) {
            expect_thrown<PM_Memory_Exception>([&] { decode_bits(&root, bits); }, PM_ERR_NO_MEMORY, name,
                                               name);
        } else {
            EXPECT_EQ(299U, decode_bits(&root, bits).size);
        }
    });
    EXPECT_EQ(3, places);
}

} // namespace
} // namespace pm::test
