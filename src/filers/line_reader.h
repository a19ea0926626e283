#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace pm {

// Reads a stream in blocks and hands it out line by line. The stream's position runs ahead of what was handed
// out, its state doesn't: end of file is marked when a line runs into it.
class LineReader {
public:
    // Starts at the stream's position. The stream is borrowed.
    void attach(std::istream& stream);

    enum class End {
        line,    // the line was ended by a line feed
        stream,  // the stream ended behind the line
        too_long // `limit` bytes were read and the line goes on
    };
    struct Line {
        std::string_view text; // without its line feed; valid until the next call
        End end = End::stream;
    };

    // The next line, of at most `limit` bytes; a line of exactly that many and its line feed is whole.
    Line read_line(std::size_t limit = static_cast<std::size_t>(-1));
    // Passes over blanks, tabs, carriage returns, vertical tabs, form feeds and line feeds.
    void skip_white_space();
    // Whether nothing more is to be had, because the stream ended or failed.
    bool at_end();

private:
    bool fill();
    Line finish(std::string_view piece, End end);

    std::istream* m_stream = nullptr;
    std::array<char, 16384> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    bool m_stream_ended = false; // the block at hand is the last one
    std::string m_joined;        // a line that lies in more than one block
};

} // namespace pm
