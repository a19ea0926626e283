#include "codecs/inflate_reader.h"

#include "codecs/codec_failure.h"
#include <pm/error_number.h>

namespace pm {

InflateReader::InflateReader(std::span<const unsigned char> stream, std::uint64_t length)
    : m_stream(stream), m_length(length) {
    if (inflateInit(&m_state) != Z_OK) throw_codec_failure(PM_ERR_INFLATE_START);
    rewind();
}

InflateReader::~InflateReader() {
    inflateEnd(&m_state);
}

void InflateReader::rewind() {
    inflateReset(&m_state);
    m_state.next_in = const_cast<unsigned char*>(m_stream.data()); // zlib doesn't write there
    m_state.avail_in = static_cast<uInt>(m_stream.size());
    m_read = 0;
    m_ended = false;
}

std::size_t InflateReader::read(std::span<char> out) {
    m_state.next_out = reinterpret_cast<unsigned char*>(out.data());
    m_state.avail_out = static_cast<uInt>(out.size());
    while (m_state.avail_out > 0 && !m_ended) {
        const int result = inflate(&m_state, Z_NO_FLUSH);
        m_ended = result == Z_STREAM_END;
        if (!m_ended && result != Z_OK) throw_codec_failure(PM_ERR_INFLATE);
    }
    const std::size_t given = out.size() - m_state.avail_out;
    m_read += given;
    if (m_read > m_length) throw_codec_failure(PM_ERR_INFLATE);
    return given;
}

} // namespace pm
