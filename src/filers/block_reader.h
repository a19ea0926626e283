#pragma once

#include <cstddef>
#include <istream>
#include <memory>
#include <string_view>

namespace pm {

// Hands the bytes of a stream out in pieces, from blocks that it reads ahead. The stream's state is kept as
// if only those pieces were read: its end is marked when a piece runs into it. A device that fails does so
// for the whole block.
class BlockReader {
public:
    static constexpr std::size_t block_size = 16384;

    // Starts at the stream's position. The stream is borrowed.
    explicit BlockReader(std::istream& stream) : m_stream(stream) {}

    // The next `count` bytes, valid until the next call. Null, with the stream's state telling why, if there
    // are fewer. Throws std::bad_alloc where a piece of more than a block can't be held.
    const char* take(std::size_t count) {
        if (static_cast<std::size_t>(m_end - m_at) < count && !fill(count)) return nullptr;
        m_at += count;
        return m_at - count;
    }
    // What take() gives without reading on.
    std::string_view at_hand() const { return {m_at, static_cast<std::size_t>(m_end - m_at)}; }

private:
    bool fill(std::size_t count);

    std::istream& m_stream;
    std::unique_ptr<char[]> m_block;
    std::size_t m_capacity = 0;
    const char* m_at = nullptr;
    const char* m_end = nullptr;
    std::ios::iostate m_end_state = std::ios::goodbit; // what the stream's state was behind the last block
};

} // namespace pm
