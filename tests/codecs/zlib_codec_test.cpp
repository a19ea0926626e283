#include "codecs/codec_failures.h"
#include "codecs/zlib_block.h"
#include "codecs/zlib_faults.h"
#include "support/allocation_failures.h"
#include "support/system.h"
#include "support/temp_folder.h"
#include <array>
#include <gmock/gmock.h>
#include <limits>
#include <pm_test_paths.h>
#include <zlib.h>

namespace pm::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t largest = std::numeric_limits<std::uint32_t>::max();
const std::string tag = "pmzlibcodec";

CodecRun encode(std::string_view data) {
    return run_codec(&PM_zlib_Codec::encode, data);
}
CodecRun encode_crc(std::string_view data) {
    return run_codec(&PM_zlib_Codec::encodeCRC, data);
}
// The decoders get no size: they must not need one.
CodecRun decode(const std::string& block) {
    return run_codec(&PM_zlib_Codec::decode, as_bytes(block), 0);
}
CodecRun decode_crc(const std::string& block) {
    return run_codec(&PM_zlib_Codec::decodeCRC, as_bytes(block), 0);
}

// A zlib stream made without the codec.
std::string zlib_stream(std::string_view data, int level = 9, int window_bits = 15,
                        int strategy = Z_DEFAULT_STRATEGY) {
    z_stream state{};
    deflateInit2(&state, level, Z_DEFLATED, window_bits, 8, strategy);
    std::string out(deflateBound(&state, static_cast<uLong>(data.size())), '\0');
    state.next_in = const_cast<unsigned char*>(as_bytes(data));
    state.avail_in = static_cast<uInt>(data.size());
    state.next_out = reinterpret_cast<unsigned char*>(out.data());
    state.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(Z_STREAM_END, deflate(&state, Z_FINISH));
    out.resize(state.total_out);
    deflateEnd(&state);
    return out;
}

std::string plain_block(std::uint32_t length, const std::string& stream) {
    return tag + word(length) + word(static_cast<std::uint32_t>(stream.size())) + stream;
}

std::string checked_block(std::uint32_t checksum, std::uint32_t length, const std::string& stream) {
    return tag + word(checksum) + word(length) + word(static_cast<std::uint32_t>(stream.size())) + stream;
}

std::uint32_t adler(std::string_view bytes) {
    return static_cast<std::uint32_t>(adler32(1, as_bytes(bytes), static_cast<uInt>(bytes.size())));
}

std::string prose(std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += "user_scale=" + std::to_string(text.size() % 977) + "\n";
    }
    text.resize(size);
    return text;
}

class ZlibCodecTest : public testing::Test {
protected:
    ~ZlibCodecTest() override {
        set_zlib_faults({});
        EXPECT_EQ(0, live_zlib_streams());
    }
};

// --- blocks

TEST_F(ZlibCodecTest, PlainBlockIsTagLengthsAndStream) {
    const std::string data = prose(3000);
    EXPECT_EQ(plain_block(3000, zlib_stream(data)), encode(data).bytes());
}

TEST_F(ZlibCodecTest, CheckedBlockHasTheAdler32OfItsStream) {
    const std::string data = prose(3000);
    const std::string stream = zlib_stream(data);
    EXPECT_EQ(checked_block(adler(stream), 3000, stream), encode_crc(data).bytes());
}

TEST_F(ZlibCodecTest, PlainBlockOfHelloByteForByte) {
    EXPECT_EQ(std::string("pmzlibcodec"
                          "\x05\x00\x00\x00"
                          "\x0D\x00\x00\x00"
                          "\x78\xDA\xCB\x48\xCD\xC9\xC9\x07\x00\x06\x2C\x02\x15",
                          32),
              encode("hello").bytes());
}

TEST_F(ZlibCodecTest, CheckedBlockOfHelloByteForByte) {
    EXPECT_EQ(std::string("pmzlibcodec"
                          "\x15\x05\xC1\x2F"
                          "\x05\x00\x00\x00"
                          "\x0D\x00\x00\x00"
                          "\x78\xDA\xCB\x48\xCD\xC9\xC9\x07\x00\x06\x2C\x02\x15",
                          36),
              encode_crc("hello").bytes());
}

TEST_F(ZlibCodecTest, ChecksumIsAdler32ForEveryLength) {
    for (const std::size_t size : {0U, 1U, 5551U, 5552U, 5553U, 11105U, 200000U}) {
        const std::string bytes = random_bytes(size);
        EXPECT_EQ(adler(bytes), zlib_checksum({as_bytes(bytes), bytes.size()})) << size;
        const std::string ones(size, '\xFF');
        EXPECT_EQ(adler(ones), zlib_checksum({as_bytes(ones), ones.size()})) << size;
    }
}

TEST_F(ZlibCodecTest, EncodingTellsNoFailure) {
    const CodecRun run = encode_crc("hello");
    EXPECT_TRUE(run.ok);
    EXPECT_THAT(run.reports, IsEmpty());
    EXPECT_THAT(run.argument_counts, IsEmpty());
}

// --- there and back

TEST_F(ZlibCodecTest, BothFormsGiveBackWhatWasEncoded) {
    for (const std::size_t size : {1U, 2U, 99U, 32768U, 65537U, 1000000U}) {
        for (const std::string& data : {prose(size), random_bytes(size), std::string(size, '\0')}) {
            EXPECT_EQ(data, decode(encode(data).bytes()).bytes()) << size;
            EXPECT_EQ(data, decode_crc(encode_crc(data).bytes()).bytes()) << size;
        }
    }
}

TEST_F(ZlibCodecTest, DataOfMoreThan16MiBGoesThereAndBack) {
    const std::string data = random_bytes((1U << 24) + 5);
    const CodecRun block = encode_crc(data);
    ASSERT_TRUE(block.ok);
    EXPECT_TRUE(data == decode_crc(block.bytes()).bytes());
}

TEST_F(ZlibCodecTest, EmptyInputGivesABlockOfLengthZero) {
    const std::string empty_stream("\x78\xDA\x03\x00\x00\x00\x00\x01", 8);
    EXPECT_EQ(plain_block(0, empty_stream), encode("").bytes());
    EXPECT_EQ(checked_block(adler(empty_stream), 0, empty_stream), encode_crc("").bytes());
}

TEST_F(ZlibCodecTest, NullInputOfNoBytesEncodesAsEmpty) {
    const CodecRun run = run_codec(&PM_zlib_Codec::encode, nullptr, 0);
    EXPECT_EQ(encode("").bytes(), run.bytes());
}

TEST_F(ZlibCodecTest, EmptyBlockDecodesToOneZeroByteOfLengthZero) {
    const CodecRun run = decode(encode("").bytes());
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(0U, run.out_size);
    EXPECT_EQ(0, run.out.get()[0]);
}

TEST_F(ZlibCodecTest, DecodedDataIsFollowedByAZeroByte) {
    const CodecRun plain = decode(encode("hello").bytes());
    ASSERT_TRUE(plain.ok);
    EXPECT_STREQ("hello", reinterpret_cast<const char*>(plain.out.get()));
    const CodecRun checked = decode_crc(encode_crc("hello").bytes());
    ASSERT_TRUE(checked.ok);
    EXPECT_STREQ("hello", reinterpret_cast<const char*>(checked.out.get()));
}

TEST_F(ZlibCodecTest, OneCodecServesSeveralCalls) {
    const std::string block = encode("hello").bytes();
    PM_zlib_Codec codec(as_bytes(block), 0, nullptr);
    for (int i = 0; i < 2; ++i) {
        unsigned char* out = nullptr;
        std::uint32_t size = 0;
        ASSERT_TRUE(codec.decode(out, size));
        const std::unique_ptr<unsigned char, BlockReleaser> owned(out);
        EXPECT_EQ(5U, size);
    }
}

// --- blocks of others

TEST_F(ZlibCodecTest, StreamsOfEveryLevelAndStrategyDecode) {
    const std::string data = prose(50000);
    for (int level = 0; level <= 9; ++level) {
        for (const int strategy : {Z_DEFAULT_STRATEGY, Z_FILTERED, Z_HUFFMAN_ONLY, Z_RLE, Z_FIXED}) {
            const std::string stream = zlib_stream(data, level, 15, strategy);
            EXPECT_EQ(data, decode(plain_block(50000, stream)).bytes()) << level << ' ' << strategy;
            EXPECT_EQ(data, decode_crc(checked_block(0, 50000, stream)).bytes()) << level << ' ' << strategy;
        }
    }
}

TEST_F(ZlibCodecTest, StreamsOfSmallerWindowsDecode) {
    const std::string data = prose(50000);
    for (int window_bits = 9; window_bits <= 15; ++window_bits) {
        EXPECT_EQ(data, decode(plain_block(50000, zlib_stream(data, 6, window_bits))).bytes()) << window_bits;
    }
}

TEST_F(ZlibCodecTest, RawAndGzipStreamsAreRefused) {
    for (const int window_bits : {-15, 15 + 16}) {
        expect_failure(decode(plain_block(5, zlib_stream("hello", 9, window_bits))), PM_ERR_INFLATE);
    }
}

TEST_F(ZlibCodecTest, BytesBehindTheStreamAreIgnored) {
    const std::string stream = zlib_stream("hello");
    EXPECT_EQ("hello", decode(plain_block(5, stream + "rest")).bytes());
    EXPECT_EQ("hello", decode(plain_block(5, stream) + "rest").bytes());
}

TEST_F(ZlibCodecTest, BodyOfASampleFileDecodes) {
    const std::string file = TempFolder::read_file(PM_SAMPLES "/plotter-compressed.pia");
    const CodecRun run = decode_crc(file);
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(2656U, run.out_size);
    EXPECT_EQ(0U, run.bytes().find("name=\"DX-4200 in the drawing office"));
    EXPECT_TRUE(run.bytes().ends_with(std::string(" }\n}\n\0", 6)));
}

// --- finding the tag

TEST_F(ZlibCodecTest, TextAheadOfTheTagIsSkipped) {
    const std::string ahead = "PIAFILEVERSION_2.0,DX,compress\r\npmzlib pmzlibcode ppmzlib";
    EXPECT_EQ("hello", decode(ahead + encode("hello").bytes()).bytes());
    EXPECT_EQ("hello", decode_crc(ahead + encode_crc("hello").bytes()).bytes());
}

TEST_F(ZlibCodecTest, FirstOfTwoTagsCounts) {
    EXPECT_EQ("first", decode(encode("first").bytes() + encode("second").bytes()).bytes());
}

TEST_F(ZlibCodecTest, ZeroByteAheadHidesTheTag) {
    const std::string zero(1, '\0');
    expect_failure(decode(zero + encode("hello").bytes()), PM_ERR_NO_BLOCK);
    expect_failure(decode_crc("text" + zero + encode_crc("hello").bytes()), PM_ERR_NO_BLOCK);
}

TEST_F(ZlibCodecTest, DataWithoutTagIsNumber92) {
    for (const char* data : {"", "p", "pmzlibcode", "Pmzlibcodec", "pmhuffcodec", "no block"}) {
        expect_failure(decode(data), PM_ERR_NO_BLOCK);
        expect_failure(decode_crc(data), PM_ERR_NO_BLOCK);
    }
}

TEST_F(ZlibCodecTest, NullDataIsNumber92) {
    expect_failure(run_codec(&PM_zlib_Codec::decode, nullptr, 0), PM_ERR_NO_BLOCK);
    expect_failure(run_codec(&PM_zlib_Codec::decodeCRC, nullptr, 0), PM_ERR_NO_BLOCK);
}

// --- lengths and checksum of a block

TEST_F(ZlibCodecTest, StreamShorterThanTheStoredLengthSucceedsWithTheStoredLength) {
    const std::string stream = zlib_stream("hello");
    const std::string expected = "hello" + std::string(15, '\0');
    const CodecRun plain = decode(plain_block(20, stream));
    EXPECT_EQ(expected, plain.bytes());
    EXPECT_EQ(0, plain.out.get()[20]);
    EXPECT_EQ(expected, decode_crc(checked_block(0, 20, stream)).bytes());
}

TEST_F(ZlibCodecTest, StreamLongerThanTheStoredLengthIsNumber97) {
    const std::string stream = zlib_stream("hello");
    for (const std::uint32_t length : {0U, 1U, 4U}) {
        expect_failure(decode(plain_block(length, stream)), PM_ERR_INFLATE);
        expect_failure(decode_crc(checked_block(adler(stream), length, stream)), PM_ERR_INFLATE);
    }
}

TEST_F(ZlibCodecTest, ClaimOf256MiBCostsNoTimeToSpeakOf) {
    constexpr std::uint32_t length = 1U << 28;
    const CodecRun run = decode(plain_block(length, zlib_stream("hello")));
    ASSERT_TRUE(run.ok);
    EXPECT_EQ(length, run.out_size);
    EXPECT_EQ(0, run.out.get()[length - 1]);
    EXPECT_EQ(0, run.out.get()[length]);
}

TEST_F(ZlibCodecTest, LargestStoredLengthAsksForOneByteMore) {
    static std::size_t asked = 0;
    set_allocation_filter([](std::size_t size) {
        asked = size;
        return true;
    });
    const CodecRun run = decode(plain_block(largest, zlib_stream("hello")));
    set_allocation_filter(nullptr);
    expect_failure(run, PM_ERR_NO_MEMORY, u"output");
    EXPECT_EQ(std::size_t{1} << 32, asked);
}

TEST_F(ZlibCodecTest, CutStreamIsNumber97) {
    const std::string stream = zlib_stream(prose(500));
    for (std::size_t kept = 0; kept < stream.size(); ++kept) {
        expect_failure(decode(plain_block(500, stream.substr(0, kept))), PM_ERR_INFLATE);
    }
}

TEST_F(ZlibCodecTest, BrokenStreamIsNumber97) {
    std::string stream = zlib_stream("hello");
    stream.back() ^= 1; // its own checksum
    expect_failure(decode(plain_block(5, stream)), PM_ERR_INFLATE);
    expect_failure(decode_crc(checked_block(adler(stream), 5, stream)), PM_ERR_INFLATE);
    expect_failure(decode(plain_block(5, "no zlib stream at all")), PM_ERR_INFLATE);
}

TEST_F(ZlibCodecTest, WrongChecksumWordIsNoError) {
    std::string block = encode_crc("hello").bytes();
    block[checksum_offset] ^= 1;
    const CodecRun run = decode_crc(block);
    EXPECT_EQ("hello", run.bytes());
    EXPECT_THAT(run.reports, IsEmpty());
}

// The length of the stream is read from the stream's own first bytes, 0xC8CBDA78: far too long, so more
// bytes follow than this block has; the stream is broken before any of them is read.
TEST_F(ZlibCodecTest, PlainBlockReadAsCheckedIsNumber97) {
    const std::string block = encode("hello").bytes();
    ASSERT_EQ(13U, word_at(block, 15));
    expect_failure(decode_crc(block), PM_ERR_INFLATE);
}

TEST_F(ZlibCodecTest, PlainBlockReadAsCheckedWithoutMemoryIsNumber55) {
    const FailingAllocation failing(0);
    expect_failure(decode_crc(plain_block(5, zlib_stream("hello"))), PM_ERR_NO_MEMORY, u"output");
}

// Checksum taken as length (made small here), length taken as the stream's.
TEST_F(ZlibCodecTest, CheckedBlockReadAsPlainIsNumber97) {
    const std::string stream = zlib_stream("hello");
    expect_failure(decode(checked_block(100, 5, stream)), PM_ERR_INFLATE);
}

TEST_F(ZlibCodecTest, CheckedBlockReadAsPlainWithoutMemoryIsNumber55) {
    const std::string block = encode_crc("hello").bytes();
    const FailingAllocation failing(0);
    expect_failure(decode(block), PM_ERR_NO_MEMORY, u"output");
}

// --- failures of memory

TEST_F(ZlibCodecTest, EncodersTellTheAllocationThatFailed) {
    EXPECT_THAT(failed_allocations(&PM_zlib_Codec::encode, "hello"), ElementsAre(u"zout", u"output"));
    EXPECT_THAT(failed_allocations(&PM_zlib_Codec::encodeCRC, "hello"), ElementsAre(u"zout", u"output"));
}

TEST_F(ZlibCodecTest, DecodersTellTheAllocationThatFailed) {
    EXPECT_THAT(failed_allocations(&PM_zlib_Codec::decode, encode("hello").bytes()), ElementsAre(u"output"));
    EXPECT_THAT(failed_allocations(&PM_zlib_Codec::decodeCRC, encode_crc("hello").bytes()),
                ElementsAre(u"output"));
}

// --- failures of zlib

TEST_F(ZlibCodecTest, DeflateThatCannotStartIsNumber93) {
    set_zlib_faults({.deflate_start = true});
    expect_failure(encode("hello"), PM_ERR_DEFLATE_START);
    expect_failure(encode_crc("hello"), PM_ERR_DEFLATE_START);
}

TEST_F(ZlibCodecTest, DeflateThatCannotBeEndedIsNumber95) {
    set_zlib_faults({.deflate_end = true});
    expect_failure(encode("hello"), PM_ERR_DEFLATE_END);
    expect_failure(encode_crc("hello"), PM_ERR_DEFLATE_END);
}

TEST_F(ZlibCodecTest, InflateThatCannotStartIsNumber96) {
    const std::string plain = encode("hello").bytes();
    const std::string checked = encode_crc("hello").bytes();
    set_zlib_faults({.inflate_start = true});
    expect_failure(decode(plain), PM_ERR_INFLATE_START);
    expect_failure(decode_crc(checked), PM_ERR_INFLATE_START);
}

TEST_F(ZlibCodecTest, InflateThatCannotBeEndedIsNumber98) {
    const std::string plain = encode("hello").bytes();
    const std::string checked = encode_crc("hello").bytes();
    set_zlib_faults({.inflate_end = true});
    expect_failure(decode(plain), PM_ERR_INFLATE_END);
    expect_failure(decode_crc(checked), PM_ERR_INFLATE_END);
}

TEST_F(ZlibCodecTest, WithoutAHandlerAFailureIsOnlyFalse) {
    unsigned char* out = nullptr;
    std::uint32_t size = 0;
    PM_zlib_Codec codec(as_bytes("no block"), 0, nullptr);
    EXPECT_FALSE(codec.decode(out, size));
    EXPECT_FALSE(codec.decodeCRC(out, size));
    set_zlib_faults({.deflate_start = true});
    EXPECT_FALSE(codec.encode(out, size));
    EXPECT_FALSE(codec.encodeCRC(out, size));
}

// --- room for the stream

struct Bound {
    std::uint32_t size;
    std::uint32_t bound;
};

// The input isn't read before its working buffer is there, so its size can be any.
constexpr Bound bounds[] = {
    {0, 13},
    {1, 14},
    {8, 22},
    {88, 110},
    {100, 123},
    {1000, 1113},
    {65536, 72102},
    {16777204, 18454938}, // 2^24 with the 12: exact arithmetic would give 1 less
    {16777205, 18454938}, // 2^24 + 1 is no float
    {16777206, 18454940},
    {16777207, 18454942},
    {16777216, 18454952},
    {20000000, 22000014},
    {2147483648, 2362232064},
    {3904515711, 0}, // 2^32 as a float
    {4000000000, 105032704},
    {4026531840, 134217728},
    {4294967283, 429496832},
    {4294967284, 0}, // the 12 wraps
    {4294967295, 12},
};

TEST_F(ZlibCodecTest, BoundIsSinglePrecisionAndWrapsAt32Bits) {
    for (const Bound& row : bounds) {
        const FailingAllocation failing(0);
        const CodecRun run = run_codec(&PM_zlib_Codec::encode, as_bytes(""), row.size);
        expect_failure(run, PM_ERR_NO_MEMORY, u"zout");
        EXPECT_EQ(row.bound, run.out_size) << row.size;
    }
}

TEST_F(ZlibCodecTest, WorkingBufferHasTheSizeOfTheBound) {
    static std::vector<std::size_t> asked;
    asked.clear();
    set_allocation_filter([](std::size_t size) {
        asked.push_back(size);
        return false;
    });
    const CodecRun run = encode("hello");
    set_allocation_filter(nullptr);
    EXPECT_THAT(asked, ElementsAre(18U, 32U));
}

TEST_F(ZlibCodecTest, StreamThatDoesNotFitTheBoundIsNumber94) {
    const ZeroPages pages(std::size_t{1} << 32);
    for (const auto operation : {&PM_zlib_Codec::encode, &PM_zlib_Codec::encodeCRC}) {
        const CodecRun wrapped = run_codec(operation, pages.data(), largest);
        expect_failure(wrapped, PM_ERR_DEFLATE);
        EXPECT_EQ(12U, wrapped.out_size);
        const CodecRun none = run_codec(operation, pages.data(), largest - 11);
        expect_failure(none, PM_ERR_DEFLATE);
        EXPECT_EQ(0U, none.out_size);
    }
}

// --- whether a block stays inside its bytes

bool fits(const std::string& data, const ZlibLayout& layout) {
    return zlib_block_fits({as_bytes(data), data.size()}, layout);
}

TEST(ZlibBlockTest, WholeBlocksFit) {
    EXPECT_TRUE(fits("text ahead" + encode("hello").bytes(), plain_layout));
    EXPECT_TRUE(fits("text ahead" + encode_crc("hello").bytes() + "rest", checked_layout));
    EXPECT_TRUE(fits(plain_block(5, ""), plain_layout));
}

TEST(ZlibBlockTest, CutBlocksDoNotFit) {
    const std::string plain = encode("hello").bytes();
    const std::string checked = encode_crc("hello").bytes();
    for (std::size_t kept = 0; kept < plain.size(); ++kept) {
        EXPECT_FALSE(fits(plain.substr(0, kept), plain_layout)) << kept;
    }
    for (std::size_t kept = 0; kept < checked.size(); ++kept) {
        EXPECT_FALSE(fits(checked.substr(0, kept), checked_layout)) << kept;
    }
}

TEST(ZlibBlockTest, LargestStreamLengthDoesNotFit) {
    EXPECT_FALSE(fits(tag + word(5) + word(largest) + "stream", plain_layout));
}

TEST(ZlibBlockTest, TextWithAnEndAndNoTagFits) {
    EXPECT_TRUE(fits(std::string(1, '\0') + tag, plain_layout));
    EXPECT_FALSE(fits("no tag and no end", plain_layout));
}

} // namespace
} // namespace pm::test
