#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <zlib.h>

namespace pm {

// Expands a zlib stream (RFC 1950) in pieces, so that what it expands to is never held whole.
class InflateReader {
public:
    // `stream` is borrowed. It may expand to `length` bytes at most. Number 96 if zlib can't start.
    InflateReader(std::span<const unsigned char> stream, std::uint64_t length);
    ~InflateReader();
    InflateReader(const InflateReader&) = delete;
    InflateReader& operator=(const InflateReader&) = delete;

    // The next bytes; fewer than there is room for at the end only, and none behind it. Number 97 for a
    // stream that is damaged, cut, or expands to more than its length.
    std::size_t read(std::span<char> out);
    // Back to the start.
    void rewind();

private:
    std::span<const unsigned char> m_stream;
    std::uint64_t m_length;
    std::uint64_t m_read = 0;
    bool m_ended = false;
    z_stream m_state{};
};

} // namespace pm
