#include "filers/line_reader.h"

#include "codecs/inflate_reader.h"
#include "filers/pia_blocks.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

namespace {

using pm::LineReader;
using End = LineReader::End;

constexpr std::size_t block = LineReader::block_size;

class LineReading : public testing::Test {
protected:
    LineReader& over(const std::string& bytes) {
        stream.str(bytes);
        stream.clear();
        reader->attach(stream);
        return *reader;
    }

    void expect_line(const std::string& text, End end, std::size_t limit = static_cast<std::size_t>(-1)) {
        const LineReader::Line line = reader->read_line(limit);
        EXPECT_EQ(text, line.text);
        EXPECT_EQ(end, line.end);
    }

    std::istringstream stream;
    std::unique_ptr<LineReader> reader = std::make_unique<LineReader>();
};

TEST_F(LineReading, LinesEndInALineFeed) {
    over("one\n\ntwo\r\n");
    expect_line("one", End::line);
    expect_line("", End::line);
    expect_line("two\r", End::line);
    EXPECT_TRUE(stream.good());
    expect_line("", End::stream);
    EXPECT_EQ(std::ios::eofbit, stream.rdstate());
}

TEST_F(LineReading, TextBehindAStreamLeavesThatAlone) {
    over("one\n");
    expect_line("one", End::line);
    reader->attach("two\nthree");
    expect_line("two", End::line);
    expect_line("three", End::stream);
    expect_line("", End::stream);
    EXPECT_TRUE(stream.good());
}

TEST_F(LineReading, LastLineNeedsNoLineFeed) {
    over("one\ntwo");
    expect_line("one", End::line);
    EXPECT_TRUE(stream.good());
    expect_line("two", End::stream);
    EXPECT_EQ(std::ios::eofbit, stream.rdstate());
    expect_line("", End::stream);
}

TEST_F(LineReading, EmptyStreamIsAnEmptyLineAtTheEnd) {
    over("");
    expect_line("", End::stream);
    EXPECT_EQ(std::ios::eofbit, stream.rdstate());
}

TEST_F(LineReading, ZeroBytesAreOrdinary) {
    over(std::string("a\0b\n\0", 5));
    expect_line(std::string("a\0b", 3), End::line);
    expect_line(std::string(1, '\0'), End::stream);
}

TEST_F(LineReading, LineOfTheLimitAndItsLineFeedIsWhole) {
    over("abcd\nef\n");
    expect_line("abcd", End::line, 4);
    expect_line("ef", End::line, 4);
}

TEST_F(LineReading, LineBeyondTheLimitIsCut) {
    over("abcdefghi\n");
    expect_line("abcd", End::too_long, 4);
    expect_line("efgh", End::too_long, 4);
    expect_line("i", End::line, 4);
}

TEST_F(LineReading, LineOfTheLimitAtTheEndIsWhole) {
    over("abcd");
    expect_line("abcd", End::stream, 4);
}

TEST_F(LineReading, LinesOfUpToABlockAreWholeWhereverTheyLie) {
    for (const std::size_t first : {std::size_t{0}, std::size_t{1}, block / 2, block - 1}) {
        for (const std::size_t length : {std::size_t{5}, block - 2, block - 1}) {
            const std::string line(length, 'x');
            over(std::string(first, 'y') + "\n" + line + "\nnext\n");
            expect_line(std::string(first, 'y'), End::line);
            expect_line(line, End::line);
            expect_line("next", End::line);
            expect_line("", End::stream);
        }
    }
}

TEST_F(LineReading, LongerLinesComeInPiecesOfABlock) {
    for (const std::size_t length : {block, block + 1, 2 * block, 5 * block + 7}) {
        SCOPED_TRACE(length);
        over(std::string(length, 'x') + "\nnext\n");
        for (std::size_t piece = 0; piece < length / block; ++piece) {
            expect_line(std::string(block, 'x'), End::too_long);
        }
        expect_line(std::string(length % block, 'x'), End::line);
        expect_line("next", End::line);
        expect_line("", End::stream);
    }
}

TEST_F(LineReading, LongLinesMayEndTheStream) {
    for (const std::size_t length : {block - 1, block, block + 1, 2 * block}) {
        SCOPED_TRACE(length);
        over(std::string(length, 'x'));
        LineReader::Line line = reader->read_line();
        std::string joined(line.text);
        while (line.end == End::too_long) {
            line = reader->read_line();
            joined += line.text;
        }
        EXPECT_EQ(std::string(length, 'x'), joined);
        EXPECT_EQ(End::stream, line.end);
        EXPECT_EQ(std::ios::eofbit, stream.rdstate());
    }
}

TEST_F(LineReading, LinesOfMemoryAreWholeHoweverLong) {
    for (const std::size_t length : {std::size_t{1}, block - 5, block, 3 * block}) {
        const std::string line(length, 'x');
        const std::string text = "  " + line + "\nnext";
        reader->attach(text);
        reader->skip_white_space();
        expect_line(line, End::line);
        expect_line("next", End::stream);
        EXPECT_TRUE(reader->at_end());
    }
}

TEST_F(LineReading, LinesOfAZlibStreamAreRead) {
    const std::string line(3 * block / 2, 'x');
    const std::string text = "one\n" + line + "\nlast";
    const std::string packed = pm::test::deflated(text);
    pm::InflateReader source({reinterpret_cast<const unsigned char*>(packed.data()), packed.size()},
                             text.size());
    reader->attach(source);
    expect_line("one", End::line);
    expect_line(line.substr(0, block), End::too_long);
    expect_line(line.substr(block), End::line);
    expect_line("last", End::stream);
    EXPECT_TRUE(reader->at_end());
}

TEST_F(LineReading, LimitHoldsAcrossBlocks) {
    const std::string first(block - 3, 'x');
    over(first + "\nabcd\nabcde\n");
    expect_line(first, End::line);
    expect_line("abcd", End::line, 4);
    expect_line("abcd", End::too_long, 4);
    expect_line("e", End::line, 4);
}

TEST_F(LineReading, LimitAtABlocksEndSeesTheLineFeedBehind) {
    const std::string first(block - 5, 'x');
    over(first + "\nabcd\nz");
    expect_line(first, End::line);
    expect_line("abcd", End::line, 4);
    over(first + "\nabcdz");
    expect_line(first, End::line);
    expect_line("abcd", End::too_long, 4);
    expect_line("z", End::stream, 4);
}

TEST_F(LineReading, WhiteSpaceOfAllSixKindsIsSkipped) {
    over(" \t\r\v\f\n\n  a b\n");
    reader->skip_white_space();
    expect_line("a b", End::line);
}

TEST_F(LineReading, OtherControlCharactersAreNotWhiteSpace) {
    for (const char c : {'\0', '\b', '\a', '\x1C', '\x7F', '\x85', '\xA0'}) {
        over(std::string("  ") + c + "a\n");
        reader->skip_white_space();
        expect_line(std::string(1, c) + "a", End::line);
    }
}

TEST_F(LineReading, WhiteSpaceAcrossBlocksIsSkipped) {
    over(std::string(2 * block + 5, ' ') + "a\n");
    reader->skip_white_space();
    expect_line("a", End::line);
}

TEST_F(LineReading, SkippingToTheEndMarksIt) {
    over("  \n ");
    reader->skip_white_space();
    EXPECT_EQ(std::ios::eofbit, stream.rdstate());
    expect_line("", End::stream);
}

TEST_F(LineReading, EndIsKnownOnlyWhenNothingIsLeft) {
    over("a\n");
    EXPECT_FALSE(reader->at_end());
    EXPECT_TRUE(stream.good());
    expect_line("a", End::line);
    EXPECT_TRUE(reader->at_end());
    EXPECT_EQ(std::ios::eofbit, stream.rdstate());
}

TEST_F(LineReading, ReadingStartsAtTheStreamsPosition) {
    stream.str("header\nbody\n");
    stream.seekg(7);
    reader->attach(stream);
    expect_line("body", End::line);
}

TEST_F(LineReading, AttachForgetsTheOldStream) {
    over("one\ntwo\n");
    expect_line("one", End::line);
    std::istringstream other("three\n");
    reader->attach(other);
    expect_line("three", End::line);
    expect_line("", End::stream);
}

TEST_F(LineReading, FailedStreamGivesNothing) {
    stream.str("one\n");
    stream.setstate(std::ios::failbit);
    reader->attach(stream);
    reader->skip_white_space();
    expect_line("", End::stream);
    EXPECT_EQ(std::ios::failbit, stream.rdstate());
}

// Gives a few bytes and then fails.
class BreakingBuffer : public std::streambuf {
protected:
    std::streamsize xsgetn(char* out, std::streamsize) override {
        if (m_given) throw std::runtime_error("broken");
        m_given = true;
        *out = 'a';
        throw std::runtime_error("broken");
    }

private:
    bool m_given = false;
};

TEST_F(LineReading, StreamThatBreaksIsBad) {
    BreakingBuffer buffer;
    std::istream broken(&buffer);
    reader->attach(broken);
    expect_line("", End::stream);
    EXPECT_EQ(std::ios::badbit, broken.rdstate() & std::ios::badbit);
    EXPECT_TRUE(reader->at_end());
}

} // namespace
