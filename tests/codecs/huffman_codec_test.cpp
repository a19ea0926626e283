#include "codecs/code_packer.h"
#include "codecs/codec_failures.h"
#include "codecs/huffman_block.h"
#include "codecs/reference_huffman.h"
#include "support/exceptions.h"
#include <gmock/gmock.h>
#include <limits>
#include <random>

namespace pm::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t bit_count_offset = 1035;
constexpr std::size_t bits_offset = 1039;

CodecRun encode(std::string_view data) {
    return run_codec(&PM_Huffman_Codec::encode, data);
}
// The decoder gets no size: it must not need one.
CodecRun decode(const std::string& block) {
    return run_codec(&PM_Huffman_Codec::decode, as_bytes(block), 0);
}

std::string reference_block(std::string_view data) {
    return ReferenceHuffman(ReferenceHuffman::count(data)).block(data);
}

std::string without_last(std::string data) {
    data.pop_back();
    return data;
}

std::string with_bit_count(std::string block, std::uint32_t bits) {
    return block.replace(bit_count_offset, 4, word(bits));
}

std::string block_of(const ReferenceHuffman::Counts& counts, std::uint32_t bit_count,
                     const std::string& bits) {
    std::string block = "pmhuffcodec";
    for (const std::uint32_t count : counts) {
        block += word(count);
    }
    return block + word(bit_count) + bits;
}

// --- blocks

TEST(HuffmanCodecTest, BlockOfMississippiByteForByte) {
    std::string table(1024, '\0');
    table[std::size_t{4} * 'i'] = 4;
    table[std::size_t{4} * 's'] = 4;
    table[std::size_t{4} * 'p'] = 2;
    table[std::size_t{4} * 'm'] = 1;
    const std::string expected = "pmhuffcodec" + table + word(21) + "\x8F\x7A\xD0";
    ASSERT_EQ(1042U, expected.size());
    const CodecRun run = encode("mississippi");
    EXPECT_EQ(expected, run.bytes());
    EXPECT_THAT(run.reports, IsEmpty());
    EXPECT_THAT(run.argument_counts, IsEmpty());
}

TEST(HuffmanCodecTest, CountersAreLittleEndianWordsInOrderOfTheirValues) {
    const std::string block = encode(std::string(0x010203, '\xFE') + '\xFF').bytes();
    EXPECT_EQ(std::string("\x03\x02\x01\x00\x01\x00\x00\x00", 8),
              block.substr(11 + std::size_t{4} * 0xFE, 8));
    EXPECT_EQ(std::string(std::size_t{4} * 0xFE, '\0'), block.substr(11, std::size_t{4} * 0xFE));
}

TEST(HuffmanCodecTest, BitCountThatIsAMultipleOfEightHasASpareZeroByte) {
    const std::string four = encode("abcd").bytes();
    EXPECT_EQ(1041U, four.size());
    EXPECT_EQ(word(8) + std::string("\x39\x00", 2), four.substr(bit_count_offset));
    const std::string eight = encode("abcdefgh").bytes();
    EXPECT_EQ(1043U, eight.size());
    EXPECT_EQ(word(24) + std::string("\x1D\xD5\x31\x00", 4), eight.substr(bit_count_offset));
}

TEST(HuffmanCodecTest, SpareByteIsIgnoredByTheDecoder) {
    std::string block = encode("abcd").bytes();
    block.back() = '\xFF';
    EXPECT_EQ("abc", decode(block).bytes());
}

TEST(HuffmanCodecTest, TwoValuesTakeOneBitEach) {
    EXPECT_EQ(word(3) + "\xC0", encode("aab").bytes().substr(bit_count_offset)); // b is 0
    EXPECT_EQ(word(3) + "\x60", encode("abb").bytes().substr(bit_count_offset)); // a is 0
    EXPECT_EQ(word(2) + "\x80", encode("ba").bytes().substr(bit_count_offset));  // a is 0
}

TEST(HuffmanCodecTest, AllValuesTakeEightBitsEach) {
    std::string all;
    for (int value = 0; value < 256; ++value) {
        all.push_back(static_cast<char>(value));
    }
    const std::string block = encode(all).bytes();
    EXPECT_EQ(2048U, word_at(block, bit_count_offset));
    EXPECT_EQ(1296U, block.size());
    EXPECT_EQ(reference_block(all), block);
    EXPECT_EQ(without_last(all), decode(block).bytes());
}

// --- there and back

TEST(HuffmanCodecTest, LastByteIsLost) {
    const CodecRun run = decode(encode("mississippi").bytes());
    EXPECT_EQ("mississipp", run.bytes());
    EXPECT_EQ(10U, run.out_size);
    EXPECT_THAT(run.reports, IsEmpty());
    EXPECT_EQ("a", decode(encode("ab").bytes()).bytes());
}

TEST(HuffmanCodecTest, OutputsAroundTheRoomOfTheBufferComeBack) {
    for (const std::size_t size : {99U, 100U, 101U, 102U, 199U, 200U, 201U, 202U, 401U, 5000U}) {
        const std::string data = random_bytes(size, 7);
        EXPECT_EQ(without_last(data), decode(encode(data).bytes()).bytes()) << size;
    }
}

void expect_agreement(const std::string& data) {
    const std::string block = encode(data).bytes();
    ASSERT_TRUE(block == reference_block(data));
    EXPECT_TRUE(ReferenceHuffman::decode(block) == data);
    const CodecRun run = decode(block);
    ASSERT_TRUE(run.ok);
    EXPECT_TRUE(run.bytes() == without_last(data));
}

TEST(HuffmanCodecTest, AgreesWithTheReferenceOnEvenDistributions) {
    for (const unsigned values : {2U, 3U, 4U, 5U, 16U, 17U, 100U, 255U, 256U}) {
        for (std::uint32_t seed = 0; seed < 5; ++seed) {
            SCOPED_TRACE(values);
            expect_agreement(random_bytes(3000 + seed, values, seed));
        }
    }
}

TEST(HuffmanCodecTest, AgreesWithTheReferenceOnSkewedDistributions) {
    for (const unsigned shift : {0U, 8U, 16U, 24U}) {
        std::string data = random_bytes(20000, 256, shift);
        for (char& c : data) {
            c = static_cast<char>(static_cast<unsigned char>(c) & static_cast<unsigned char>(-c));
        }
        expect_agreement(data + "tail");
    }
}

TEST(HuffmanCodecTest, AgreesWithTheReferenceOnDoublingCountsUpTo2To20) {
    std::string data;
    for (unsigned i = 0; i <= 20; ++i) {
        data += std::string(std::size_t{1} << i, static_cast<char>(200 - i));
    }
    expect_agreement(data);
}

TEST(HuffmanCodecTest, AgreesWithTheReferenceOnCountsOfFibonacci) {
    std::string data;
    std::size_t count = 1;
    std::size_t next = 1;
    for (char value = 'a'; value <= 'z'; ++value) {
        data += std::string(count, value);
        next += std::exchange(count, next);
    }
    expect_agreement(data);
}

TEST(HuffmanCodecTest, AgreesWithTheReferenceOnShortData) {
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        expect_agreement("ab" + random_bytes(seed % 40, 2 + seed % 250, seed));
    }
}

TEST(HuffmanCodecTest, AgreesWithTheReferenceOnDataOfFourMegabytes) {
    std::string data = random_bytes(std::size_t{4} << 20, 16);
    // The sum of four is nearer to a bell, so that codes differ in length.
    for (std::size_t i = 0; i + 4 < data.size(); ++i) {
        data[i] = static_cast<char>(data[i] + data[i + 1] + data[i + 2] + data[i + 3]);
    }
    expect_agreement(data);
}

// Symbols whose frequencies fall by a random share from each to the next, in random places.
TEST(HuffmanCodecTest, AgreesWithTheReferenceOnRandomFallingDistributions) {
    std::mt19937 random(19);
    for (int run = 0; run < 100; ++run) {
        const std::size_t size = std::size_t{2} << random() % 14;
        std::geometric_distribution<int> rank(0.02 + 0.9 * static_cast<double>(random() % 1000) / 1000);
        const auto offset = static_cast<int>(random() % 256);
        std::string data = "ab";
        while (data.size() < size) {
            data.push_back(static_cast<char>(offset + rank(random) * 37));
        }
        SCOPED_TRACE(run);
        expect_agreement(data);
    }
}

// Tables that need not be those of the data: weights may wrap, codes grow long.
TEST(HuffmanCodecTest, DecodesByRandomTablesAsTheReference) {
    std::mt19937 random(91);
    for (int run = 0; run < 100; ++run) {
        const auto values = 2 + random() % 255;
        const auto steepness = random() % 40;
        ReferenceHuffman::Counts counts{};
        for (std::size_t value = 0; value < values; ++value) {
            counts[value] = 1 + static_cast<std::uint32_t>(random() >> random() % (steepness + 1) % 32);
        }
        const std::string data = random_bytes(1 + random() % 9000, static_cast<unsigned>(values),
                                              static_cast<std::uint32_t>(random()));
        SCOPED_TRACE(run);
        const CodecRun decoded = decode(ReferenceHuffman(counts).block(data));
        ASSERT_TRUE(decoded.ok);
        EXPECT_TRUE(without_last(data) == decoded.bytes());
    }
}

TEST(HuffmanCodecTest, TableThatMissesTheLastSymbolGivesTheOthers) {
    ReferenceHuffman::Counts counts = ReferenceHuffman::count("mississippi");
    const ReferenceHuffman reference(counts);
    const std::string bits = reference.block("mississi").substr(bits_offset);
    EXPECT_EQ("mississ", decode(block_of(counts, 14, bits)).bytes());
}

TEST(HuffmanCodecTest, TableAloneDecidesTheTree) {
    ReferenceHuffman::Counts counts{};
    for (std::size_t i = 0; i < 47; ++i) {
        counts[i] = i < 2 ? 1 : counts[i - 1] + counts[i - 2];
    }
    counts[200] = counts[201] = 0xFFFFFFFF;
    const ReferenceHuffman reference(counts);
    std::string data;
    for (std::size_t i = 0; i < 47; ++i) {
        data.push_back(static_cast<char>(i));
    }
    EXPECT_EQ(without_last(data), decode(reference.block(data)).bytes());
}

// --- bit counts

TEST(HuffmanCodecTest, BitsThatStopInsideACodeAreNoError) {
    const std::string block = encode("mississippi").bytes();
    // Codes end behind bits 3, 4, 6, 8, 9, 11, 13, 14, 17, 20 and 21.
    const std::pair<std::uint32_t, const char*> rows[] = {
        {20, "mississip"}, {19, "mississip"}, {18, "mississip"}, {17, "mississi"}, {16, "mississi"},
        {4, "m"},          {3, ""},           {2, ""},           {1, ""},
    };
    for (const auto& [bits, expected] : rows) {
        const CodecRun run = decode(with_bit_count(block, bits));
        EXPECT_TRUE(run.ok) << bits;
        EXPECT_EQ(expected, run.bytes()) << bits;
        EXPECT_THAT(run.reports, IsEmpty()) << bits;
    }
}

TEST(HuffmanCodecTest, NoBitsGiveABlockOfNoBytes) {
    const CodecRun run = decode(with_bit_count(encode("mississippi").bytes(), 0));
    EXPECT_TRUE(run.ok);
    EXPECT_EQ(0U, run.out_size);
    EXPECT_NE(nullptr, run.out);
}

TEST(HuffmanCodecTest, BitCountIsTakenFromTheBlockAlone) {
    const std::string block = encode("mississippi").bytes() + std::string(100, '\0');
    EXPECT_EQ("mississippi" + std::string(13, 'i'), decode(with_bit_count(block, 35)).bytes());
}

// --- refused blocks and data

TEST(HuffmanCodecTest, BlockWithoutTagIsNumber92) {
    for (const char* data : {"", "p", "pmhuffcode", "Pmhuffcodec", "pmzlibcodec"}) {
        expect_failure(decode(data), PM_ERR_NO_BLOCK);
    }
}

TEST(HuffmanCodecTest, NullBlockIsNumber92) {
    expect_failure(run_codec(&PM_Huffman_Codec::decode, nullptr, 0), PM_ERR_NO_BLOCK);
}

TEST(HuffmanCodecTest, BlockWithTheTagAtOffset1IsNumber92) {
    expect_failure(decode(" " + encode("mississippi").bytes()), PM_ERR_NO_BLOCK);
}

TEST(HuffmanCodecTest, DataOfFewerThanTwoValuesIsNumber92) {
    expect_failure(encode(""), PM_ERR_NO_BLOCK);
    expect_failure(encode("a"), PM_ERR_NO_BLOCK);
    expect_failure(encode(std::string(1000, '\0')), PM_ERR_NO_BLOCK);
    expect_failure(run_codec(&PM_Huffman_Codec::encode, nullptr, 0), PM_ERR_NO_BLOCK);
}

TEST(HuffmanCodecTest, BlockWhoseTableHasFewerThanTwoValuesIsNumber92) {
    ReferenceHuffman::Counts counts{};
    for (const std::uint32_t bits : {0U, 1U, 8U}) {
        counts['a'] = 0;
        expect_failure(decode(block_of(counts, bits, std::string(2, '\0'))), PM_ERR_NO_BLOCK);
        counts['a'] = 5;
        expect_failure(decode(block_of(counts, bits, std::string(2, '\0'))), PM_ERR_NO_BLOCK);
    }
}

TEST(HuffmanCodecTest, WithoutAHandlerAFailureIsOnlyFalse) {
    unsigned char* out = nullptr;
    std::uint32_t size = 0;
    PM_Huffman_Codec codec(as_bytes("aaa"), 3, nullptr);
    EXPECT_FALSE(codec.encode(out, size));
    EXPECT_FALSE(codec.decode(out, size));
}

TEST(HuffmanCodecTest, SecondCallOfACodecGivesTheSame) {
    const std::string data = "mississippi";
    PM_Huffman_Codec codec(as_bytes(data), 11, nullptr);
    for (int i = 0; i < 2; ++i) {
        unsigned char* out = nullptr;
        std::uint32_t size = 0;
        ASSERT_TRUE(codec.encode(out, size));
        const std::unique_ptr<unsigned char, BlockReleaser> owned(out);
        EXPECT_EQ(1042U, size);
        EXPECT_EQ(0xD0, out[1041]);
    }
}

// --- failures of memory

TEST(HuffmanCodecTest, EncoderTellsTheAllocationThatFailed) {
    EXPECT_THAT(failed_allocations(&PM_Huffman_Codec::encode, "ab"),
                ElementsAre(u"m_freq_table", u"m_freq_trie", u"temp", u"m_data", u"m_data", u"output"));
}

TEST(HuffmanCodecTest, DecoderTellsTheAllocationThatFailed) {
    EXPECT_THAT(failed_allocations(&PM_Huffman_Codec::decode, encode("ab").bytes()),
                ElementsAre(u"m_freq_table", u"m_data", u"m_freq_trie", u"output"));
    EXPECT_THAT(failed_allocations(&PM_Huffman_Codec::decode, encode(random_bytes(300, 2)).bytes()),
                ElementsAre(u"m_freq_table", u"m_data", u"m_freq_trie", u"output"));
}

TEST(HuffmanCodecTest, DecoderTellsTheOutputThatGrowsBeyondWhatTheTableCounts) {
    ReferenceHuffman::Counts counts{};
    counts['a'] = counts['b'] = 1;
    EXPECT_THAT(failed_allocations(&PM_Huffman_Codec::decode, block_of(counts, 300, std::string(38, '\0'))),
                ElementsAre(u"m_freq_table", u"m_data", u"m_freq_trie", u"output", u"temp", u"temp"));
}

// --- limits of a block

TEST(HuffmanBlockTest, MoreCodeBitsThanTheBlockCanTellAreRefused) {
    ReferenceHuffman::Counts counts{};
    counts['a'] = 0x7FFFFFFF;
    counts['b'] = 0x80000000;
    FreqTrie trie{Counters(counts)};
    const CodeTable& codes = trie.make_codes();
    EXPECT_EQ(0xFFFFFFFF, count_code_bits(Counters(counts), codes));
    counts['a'] = 0x80000000;
    expect_thrown<PM_Memory_Exception>([&] { count_code_bits(Counters(counts), codes); }, PM_ERR_NO_MEMORY,
                                       u"temp", u"temp");
}

bool fits(const std::string& block) {
    return huffman_block_fits({as_bytes(block), block.size()});
}

TEST(HuffmanBlockTest, WholeBlocksFit) {
    EXPECT_TRUE(fits(encode("mississippi").bytes()));
    EXPECT_TRUE(fits(encode("abcd").bytes()));
    EXPECT_TRUE(fits(encode("abcd").bytes() + "rest"));
}

TEST(HuffmanBlockTest, CutBlocksDoNotFit) {
    for (const char* data : {"mississippi", "abcd"}) {
        const std::string block = encode(data).bytes();
        for (std::size_t kept = 0; kept < block.size(); ++kept) {
            EXPECT_FALSE(fits(block.substr(0, kept))) << kept;
        }
    }
}

TEST(HuffmanBlockTest, BlockWithoutBitsTakesOneByteBehindItsHeader) {
    const std::string header = with_bit_count(encode("abcd").bytes(), 0).substr(0, bits_offset);
    EXPECT_FALSE(fits(header));
    EXPECT_TRUE(fits(header + "x"));
}

TEST(HuffmanBlockTest, LargestBitCountDoesNotFit) {
    EXPECT_FALSE(fits(with_bit_count(encode("abcd").bytes(), std::numeric_limits<std::uint32_t>::max())));
}

} // namespace
} // namespace pm::test
