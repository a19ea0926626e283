#include "codecs/freq_trie.h"
#include "codecs/reference_huffman.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include <map>
#include <string_view>

namespace pm::test {
namespace {

using Codes = std::map<char, std::string>;
using Counts = ReferenceHuffman::Counts;

std::string text_of(const BitString& string) {
    std::string text;
    for (BitCursor cursor(string); !cursor.at_end();) {
        text.push_back(cursor.next() ? '1' : '0');
    }
    return text;
}

Codes codes_of(const Counts& counts) {
    FreqTrie trie{Counters(counts)};
    const CodeTable& table = trie.make_codes();
    Codes codes;
    for (std::size_t value = 0; value < table.size(); ++value) {
        if (!table[value].empty()) codes[static_cast<char>(value)] = text_of(table[value]);
    }
    return codes;
}

Codes codes_of(std::string_view data) {
    return codes_of(ReferenceHuffman::count(data));
}

Codes reference_codes_of(const Counts& counts) {
    const ReferenceHuffman reference(counts);
    Codes codes;
    for (std::size_t value = 0; value < counts.size(); ++value) {
        if (counts[value] > 0) {
            codes[static_cast<char>(value)] = reference.code(static_cast<unsigned char>(value));
        }
    }
    return codes;
}

int count_inner(const TrieNode& node) {
    return node.is_leaf() ? 0 : 1 + count_inner(*node.left) + count_inner(*node.right);
}

TEST(FreqTrieTest, CodesOfMississippi) {
    EXPECT_EQ((Codes{{'i', "0"}, {'s', "11"}, {'p', "101"}, {'m', "100"}}), codes_of("mississippi"));
}

TEST(FreqTrieTest, CodesOfFourEqualCounters) {
    EXPECT_EQ((Codes{{'a', "00"}, {'b', "11"}, {'c', "10"}, {'d', "01"}}), codes_of("abcd"));
}

TEST(FreqTrieTest, CodesOfEightEqualCounters) {
    EXPECT_EQ((Codes{{'a', "000"},
                     {'b', "111"},
                     {'c', "011"},
                     {'d', "101"},
                     {'e', "010"},
                     {'f', "100"},
                     {'g', "110"},
                     {'h', "001"}}),
              codes_of("abcdefgh"));
}

TEST(FreqTrieTest, SmallerOfTwoCountersGetsTheZero) {
    EXPECT_EQ((Codes{{'a', "1"}, {'b', "0"}}), codes_of("aab"));
    EXPECT_EQ((Codes{{'a', "0"}, {'b', "1"}}), codes_of("abb"));
}

TEST(FreqTrieTest, LowerOfTwoValuesWithEqualCountersGetsTheZero) {
    EXPECT_EQ((Codes{{'a', "0"}, {'b', "1"}}), codes_of("ba"));
    EXPECT_EQ((Codes{{'\0', "0"}, {'\xFF', "1"}}), codes_of(std::string_view("\xFF\0", 2)));
}

TEST(FreqTrieTest, NodesHoldTheirWeights) {
    const Counts counts = ReferenceHuffman::count("mississippi");
    const FreqTrie trie{Counters(counts)};
    EXPECT_EQ(11U, trie.root()->weight);
    EXPECT_EQ(0, trie.root()->symbol);
    EXPECT_EQ('i', trie.root()->left->symbol);
    EXPECT_EQ(4U, trie.root()->left->weight);
    EXPECT_EQ(7U, trie.root()->right->weight);
}

TEST(FreqTrieTest, TreeOfAllValuesHas255InnerNodes) {
    Counts counts{};
    counts.fill(3);
    const FreqTrie trie{Counters(counts)};
    EXPECT_EQ(255, count_inner(*trie.root()));
    EXPECT_EQ(768U, trie.root()->weight);
    EXPECT_EQ(reference_codes_of(counts), codes_of(counts));
}

TEST(FreqTrieTest, CodesOfDoublingCountersGrowByOneBit) {
    Counts counts{};
    for (std::size_t i = 0; i < 32; ++i) {
        counts[i] = 1U << i;
    }
    const Codes codes = codes_of(counts);
    EXPECT_EQ("1", codes.at(31));
    EXPECT_EQ("01", codes.at(30));
    EXPECT_EQ(std::string(30, '0') + "1", codes.at(1));
    EXPECT_EQ(std::string(31, '0'), codes.at(0));
}

TEST(FreqTrieTest, WeightsWrap) {
    Counts counts{};
    counts.fill(0xFFFFFFFF);
    EXPECT_EQ(reference_codes_of(counts), codes_of(counts));
    const FreqTrie trie{Counters(counts)};
    EXPECT_EQ(0xFFFFFF00U, trie.root()->weight);
}

TEST(FreqTrieTest, CodesAreThoseOfTheReferenceForTablesOfManyKinds) {
    std::uint32_t random = 7;
    const auto next = [&random] { return (random = random * 1664525 + 1013904223) >> 8; };
    for (int round = 0; round < 500; ++round) {
        Counts counts{};
        const std::uint32_t values = 2 + next() % 255;
        const std::uint32_t range = 1U << next() % 24;
        for (std::uint32_t i = 0; i < values; ++i) {
            counts[next() % 256] = 1 + next() % range;
        }
        counts[0] = counts[1] = 1;
        EXPECT_EQ(reference_codes_of(counts), codes_of(counts)) << round;
    }
}

TEST(FreqTrieTest, SymbolWithTwoLeavesIsNumber91) {
    TrieNode a{'a', 1};
    TrieNode again{'a', 2};
    const TrieNode root{0, 3, &a, &again};
    CodeTable codes;
    expect_thrown<PM_Severe>([&] { make_codes(root, codes); }, PM_ERR_HUFFMAN_SYMBOL_TAKEN, u"", u"");
}

TEST(FreqTrieTest, MissingChildHasNoCode) {
    TrieNode a{'a', 1};
    const TrieNode root{0, 1, nullptr, &a};
    CodeTable codes;
    make_codes(root, codes);
    EXPECT_EQ("1", text_of(codes['a']));
}

TEST(FreqTrieTest, CodesWithoutMemoryAreTold) {
    std::vector<std::u16string> places;
    fail_each_allocation([&](int place) {
        CodeTable codes;
        TrieNode a{'a', 1};
        TrieNode b{'b', 1};
        const TrieNode root{0, 2, &a, &b};
        const auto e = thrown_by([&] { make_codes(root, codes); });
        ASSERT_EQ(place < 3, e.has_value());
        if (e) places.emplace_back(e->m_place);
    });
    EXPECT_EQ((std::vector<std::u16string>{u"temp", u"m_data", u"m_data"}), places);
}

// --- decoding by a tree

} // namespace
} // namespace pm::test
