#include "filers/line_reader.h"

#include <algorithm>
#include <cstring>
#include <istream>
#include <utility>

namespace pm {

namespace {

bool is_white(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace

void LineReader::attach(std::istream& stream) {
    m_stream = &stream;
    m_begin = m_end = 0;
    m_stream_ended = false;
}

// The stream's state is kept as if it were read only as far as lines were handed out: a block that runs
// into the end leaves no mark until that end is asked for.
bool LineReader::fill() {
    if (!m_stream->good()) return false;
    if (!m_stream_ended) {
        m_stream->read(m_buffer.data(), static_cast<std::streamsize>(m_buffer.size()));
        m_begin = 0;
        m_end = static_cast<std::size_t>(m_stream->gcount());
        if (m_stream->bad()) return false;
        m_stream_ended = m_stream->eof();
        m_stream->clear();
        if (m_end > 0) return true;
    }
    m_stream->setstate(std::ios::eofbit);
    return false;
}

LineReader::Line LineReader::read_line(std::size_t limit) {
    m_joined.clear();
    while (m_begin < m_end || fill()) {
        const char* const first = m_buffer.data() + m_begin;
        // One byte more than may still be taken: a line feed may stand right behind the limit.
        const std::size_t wanted = limit - m_joined.size();
        const std::size_t seen =
            std::min(m_end - m_begin, wanted == static_cast<std::size_t>(-1) ? wanted : wanted + 1);
        const auto* feed = static_cast<const char*>(std::memchr(first, '\n', seen));
        if (feed != nullptr) {
            const auto length = static_cast<std::size_t>(feed - first);
            m_begin += length + 1;
            return finish({first, length}, End::line);
        }
        if (seen > wanted) {
            m_begin += wanted;
            return finish({first, wanted}, End::too_long);
        }
        m_begin += seen;
        m_joined.append(first, seen);
    }
    return {m_joined, End::stream};
}

LineReader::Line LineReader::finish(std::string_view piece, End end) {
    if (m_joined.empty()) return {piece, end};
    m_joined += piece;
    return {m_joined, end};
}

void LineReader::skip_white_space() {
    while (m_begin < m_end || fill()) {
        const char* const last = m_buffer.data() + m_end;
        const char* const found = std::find_if_not(std::as_const(m_buffer).data() + m_begin, last, is_white);
        m_begin = static_cast<std::size_t>(found - m_buffer.data());
        if (found != last) return;
    }
}

bool LineReader::at_end() {
    return m_begin == m_end && !fill();
}

} // namespace pm
