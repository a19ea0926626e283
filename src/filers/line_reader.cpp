#include "filers/line_reader.h"

#include "codecs/inflate_reader.h"
#include <algorithm>
#include <cstring>
#include <istream>

namespace pm {

namespace {

bool is_white(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace

void LineReader::attach(std::istream& stream) {
    start(&stream, nullptr);
}

void LineReader::attach(InflateReader& source) {
    start(nullptr, &source);
}

void LineReader::attach(std::string_view text) {
    start(nullptr, nullptr);
    m_at = text.data();
    m_end = text.data() + text.size();
    m_last_block = true;
    find_whole_lines(m_end - std::min(text.size(), margin));
}

void LineReader::start(std::istream* stream, InflateReader* source) {
    m_stream = stream;
    m_source = source;
    m_at = m_end = m_whole_end = m_buffer.data();
    m_last_block = false;
}

// Reads more behind what is left, which moves to the front.
bool LineReader::fill() {
    if (m_stream != nullptr && !m_stream->good()) return false;
    if (!m_last_block) {
        const auto left = static_cast<std::size_t>(m_end - m_at);
        std::memmove(m_buffer.data(), m_at, left);
        const std::size_t given = read_block(m_buffer.data() + left, block_size - left);
        m_at = m_buffer.data();
        m_end = m_at + left + given;
        std::memset(m_buffer.data() + left + given, 0, margin);
        find_whole_lines(m_end);
        if (given > 0) return true;
    }
    // The stream's state is kept as if it were read only as far as lines were handed out: a block that runs
    // into the end leaves no mark until that end is asked for.
    if (m_stream != nullptr && m_stream->good()) m_stream->setstate(std::ios::eofbit);
    return false;
}

// Those that end in front of `last`.
void LineReader::find_whole_lines(const char* last) {
    while (last != m_at && last[-1] != '\n') {
        --last;
    }
    m_whole_end = last;
}

std::size_t LineReader::read_block(char* to, std::size_t size) {
    if (m_stream == nullptr) {
        const std::size_t given = m_source->read({to, size});
        m_last_block = given < size;
        return given;
    }
    m_stream->read(to, static_cast<std::streamsize>(size));
    if (m_stream->bad()) return 0;
    m_last_block = m_stream->eof();
    m_stream->clear();
    return static_cast<std::size_t>(m_stream->gcount());
}

LineReader::Line LineReader::read_line(std::size_t limit) {
    for (std::size_t seen = 0;;) {
        const auto left = static_cast<std::size_t>(m_end - m_at);
        // One byte more than may be taken: a line feed may stand right behind the limit.
        const std::size_t wanted = limit < left ? limit + 1 : left;
        const void* const feed = wanted > seen ? std::memchr(m_at + seen, '\n', wanted - seen) : nullptr;
        if (feed != nullptr) {
            const auto length = static_cast<std::size_t>(static_cast<const char*>(feed) - m_at);
            return take(length, 1, End::line);
        }
        if (wanted > limit) return take(limit, 0, End::too_long);
        if (full()) return take(left, 0, End::too_long);
        seen = wanted;
        if (!fill()) return take(static_cast<std::size_t>(m_end - m_at), 0, End::stream);
    }
}

LineReader::Line LineReader::take(std::size_t length, std::size_t skipped, End end) {
    const std::string_view text(m_at, length);
    m_at += length + skipped;
    return {text, end};
}

void LineReader::skip_white_space() {
    while (m_at < m_end || fill()) {
        const char* at = m_at;
        const char* const end = m_end;
        while (at != end && *at == ' ') {
            ++at;
        }
        while (at != end && is_white(*at)) {
            ++at;
        }
        m_at = at;
        if (at != end) return;
    }
}

bool LineReader::at_end() {
    return m_at == m_end && !fill();
}

} // namespace pm
