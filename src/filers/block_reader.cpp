#include "filers/block_reader.h"

#include <algorithm>
#include <cstring>

namespace pm {

// Reads more behind what is left, which moves to the front.
bool BlockReader::fill(std::size_t count) {
    const auto left = static_cast<std::size_t>(m_end - m_at);
    if (m_end_state == std::ios::goodbit && m_stream.good()) {
        const std::size_t capacity = std::max({count, m_capacity, block_size});
        std::unique_ptr<char[]> larger(capacity > m_capacity ? new char[capacity] : nullptr);
        char* const block = larger ? larger.get() : m_block.get();
        if (left != 0) std::memmove(block, m_at, left);
        if (larger) m_block = std::move(larger);
        m_capacity = capacity;
        m_stream.read(block + left, static_cast<std::streamsize>(capacity - left));
        m_at = block;
        m_end = block + left + m_stream.gcount();
        m_end_state = m_stream.rdstate();
        if (m_end_state != std::ios::goodbit) m_stream.clear();
    }
    if (static_cast<std::size_t>(m_end - m_at) >= count) return true;
    m_stream.setstate(m_end_state);
    return false;
}

} // namespace pm
