#include "codecs/inflate_reader.h"

#include "codecs/zlib_faults.h"
#include "support/exceptions.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <string>
#include <vector>

namespace {

using pm::InflateReader;
using pm::test::expect_thrown;

std::string deflated(const std::string& text) {
    const auto text_size = static_cast<uLong>(text.size());
    uLongf size = compressBound(text_size);
    std::string stream(size, '\0');
    EXPECT_EQ(Z_OK, compress2(reinterpret_cast<Bytef*>(stream.data()), &size,
                              reinterpret_cast<const Bytef*>(text.data()), text_size, 9));
    stream.resize(size);
    return stream;
}

std::span<const unsigned char> bytes_of(const std::string& stream) {
    return {reinterpret_cast<const unsigned char*>(stream.data()), stream.size()};
}

std::string read_all(InflateReader& reader, std::size_t piece) {
    std::string all;
    std::vector<char> buffer(piece);
    while (const std::size_t given = reader.read(buffer))
        all.append(buffer.data(), given);
    return all;
}

const std::string text = [] {
    std::string made;
    for (int i = 0; i < 20'000; ++i)
        made += std::to_string(i * 7919) + "\n";
    return made;
}();

TEST(InflateReader, PiecesOfAnySizeGiveTheText) {
    const std::string stream = deflated(text);
    for (const std::size_t piece : {std::size_t{1}, std::size_t{999}, text.size(), text.size() + 1}) {
        InflateReader reader(bytes_of(stream), text.size());
        EXPECT_EQ(text, read_all(reader, piece));
    }
}

TEST(InflateReader, EmptyTextEndsAtOnce) {
    const std::string stream = deflated("");
    InflateReader reader(bytes_of(stream), 0);
    EXPECT_EQ("", read_all(reader, 10));
}

TEST(InflateReader, RewoundReaderGivesTheTextAgain) {
    const std::string stream = deflated(text);
    InflateReader reader(bytes_of(stream), text.size());
    for (int run = 0; run < 3; ++run) {
        EXPECT_EQ(text, read_all(reader, 4096));
        reader.rewind();
    }
}

TEST(InflateReader, ShorterTextThanToldIsNoError) {
    const std::string stream = deflated("abc");
    InflateReader reader(bytes_of(stream), 100);
    EXPECT_EQ("abc", read_all(reader, 10));
}

TEST(InflateReader, LongerTextThanToldIs97) {
    const std::string stream = deflated("abcd");
    for (const std::size_t piece : {1U, 3U, 10U}) {
        InflateReader reader(bytes_of(stream), 3);
        expect_thrown<PM_Severe>([&] { read_all(reader, piece); }, PM_ERR_INFLATE, u"", u"");
    }
}

TEST(InflateReader, CutAndSpoiledStreamsAre97) {
    const std::string stream = deflated("some text, some more text");
    for (std::size_t size = 0; size < stream.size(); ++size) {
        const std::string cut = stream.substr(0, size);
        InflateReader reader(bytes_of(cut), 100);
        expect_thrown<PM_Severe>([&] { read_all(reader, 7); }, PM_ERR_INFLATE, u"", u"");
        std::string spoiled = stream;
        spoiled[size] = static_cast<char>(spoiled[size] ^ 0xFF);
        InflateReader other(bytes_of(spoiled), 100);
        expect_thrown<PM_Severe>([&] { read_all(other, 7); }, PM_ERR_INFLATE, u"", u"");
    }
}

TEST(InflateReader, BytesBehindTheStreamAreLeft) {
    const std::string stream = deflated("abc") + "more";
    InflateReader reader(bytes_of(stream), 3);
    EXPECT_EQ("abc", read_all(reader, 10));
}

TEST(InflateReader, StreamThatCannotStartIs96) {
    const std::string stream = deflated("abc");
    pm::test::ZlibFaults faults;
    faults.inflate_start = true;
    pm::test::set_zlib_faults(faults);
    const int before = pm::test::live_zlib_streams();
    expect_thrown<PM_Severe>([&] { InflateReader reader(bytes_of(stream), 3); }, PM_ERR_INFLATE_START, u"",
                             u"");
    EXPECT_EQ(before, pm::test::live_zlib_streams());
    pm::test::set_zlib_faults({});
}

TEST(InflateReader, StreamIsEndedWithTheReader) {
    const std::string stream = deflated("abc");
    const int before = pm::test::live_zlib_streams();
    {
        InflateReader reader(bytes_of(stream), 3);
        EXPECT_EQ(before + 1, pm::test::live_zlib_streams());
    }
    EXPECT_EQ(before, pm::test::live_zlib_streams());
}

} // namespace
