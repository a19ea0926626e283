#pragma once

#include <array>
#include <cstddef>
#include <iosfwd>
#include <string_view>

namespace pm {

class InflateReader;

// Hands text out line by line, from a stream that it reads in blocks, a zlib stream or memory. A stream's
// position runs ahead of what was handed out, its state doesn't: end of file is marked when a line runs into
// it.
class LineReader {
public:
    static constexpr std::size_t block_size = 65536;

    // Starts at the stream's position. What is attached is borrowed.
    void attach(std::istream& stream);
    void attach(InflateReader& source);
    void attach(std::string_view text);

    enum class End {
        line,    // the line was ended by a line feed
        stream,  // the stream ended behind the line
        too_long // `limit` bytes, or a whole block, were read and the line goes on
    };
    struct Line {
        std::string_view text; // without its line feed; valid until the next call
        End end = End::stream;
    };

    // The next line, of at most `limit` bytes; a line of exactly that many and its line feed is whole.
    Line read_line(std::size_t limit = static_cast<std::size_t>(-1));
    // Passes over blanks, tabs, carriage returns, vertical tabs, form feeds and line feeds.
    void skip_white_space();
    // The lines at hand that are whole, line feeds included; so many bytes behind them can be read. More
    // lines may be had with read_line().
    static constexpr std::size_t margin = 16;
    std::string_view whole_lines() const {
        return {m_at, m_at < m_whole_end ? static_cast<std::size_t>(m_whole_end - m_at) : 0};
    }
    // Goes on at a place in the whole lines.
    void go_on_at(const char* place) { m_at = place; }
    // Whether nothing more is to be had, because the stream ended or failed.
    bool at_end();

private:
    void start(std::istream* stream, InflateReader* source);
    bool full() const { return !m_last_block && static_cast<std::size_t>(m_end - m_at) == block_size; }
    bool fill();
    void find_whole_lines(const char* last);
    std::size_t read_block(char* to, std::size_t size);
    Line take(std::size_t length, std::size_t skipped, End end);

    std::istream* m_stream = nullptr;
    InflateReader* m_source = nullptr;
    const char* m_at = nullptr; // in m_buffer, or in a text in memory
    const char* m_end = nullptr;
    const char* m_whole_end = nullptr; // behind the last line feed in front of which lines are whole
    bool m_last_block = false;         // nothing is to be had behind the block at hand
    std::array<char, block_size + margin> m_buffer;
};

} // namespace pm
