#include "codecs/bit_string.h"

#include "codecs/codec_failure.h"
#include <algorithm>
#include <limits>

namespace pm {

namespace {

constexpr std::uint64_t longest = std::numeric_limits<std::uint32_t>::max();

constexpr std::uint32_t bytes_for(std::uint64_t bits) {
    return static_cast<std::uint32_t>(bits / 8 + 1);
}

} // namespace

BitString::BitString(const unsigned char* bytes, std::uint32_t length)
    : m_data(checked(allocate_block<unsigned char>(bytes_for(length)), u"m_data")),
      m_capacity(bytes_for(length)), m_length(length) {
    std::copy_n(bytes, m_capacity, m_data.get());
}

void BitString::copy(const BitString& other) {
    if (m_capacity < other.m_capacity) {
        m_data = checked(allocate_block<unsigned char>(other.m_capacity), u"m_data");
        m_capacity = other.m_capacity;
    }
    std::copy_n(other.m_data.get(), other.m_capacity, m_data.get());
    std::fill_n(m_data.get() + other.m_capacity, m_capacity - other.m_capacity,
                static_cast<unsigned char>(0));
    m_length = other.m_length;
}

void BitString::append(bool bit) {
    reserve(std::uint64_t{m_length} + 1);
    put_byte(bit ? 0x80 : 0, 1);
}

void BitString::append(const BitString& other) {
    reserve(std::uint64_t{m_length} + other.m_length);
    for (std::uint32_t done = 0; done < other.m_length; done += 8) {
        put_byte(other.m_data[done / 8], std::min<std::uint32_t>(8, other.m_length - done));
    }
}

void BitString::remove_last() {
    --m_length;
    m_data[m_length / 8] &= static_cast<unsigned char>(~mask(m_length));
}

void BitString::reserve(std::uint64_t bits) {
    if (bits > longest) throw_codec_memory(u"temp");
    if (bytes_for(bits) <= m_capacity) return;
    const std::uint32_t capacity = std::max(bytes_for(bits), std::min(m_capacity * 2, bytes_for(longest)));
    Block<unsigned char> grown(static_cast<unsigned char*>(allocate_zeroed(capacity)));
    grown = checked(std::move(grown), u"temp");
    std::copy_n(m_data.get(), m_capacity, grown.get());
    m_data = std::move(grown);
    m_capacity = capacity;
}

// The first `bits` bits of a byte whose other bits are zero; there is room.
void BitString::put_byte(unsigned byte, unsigned bits) {
    const std::uint32_t at = m_length / 8;
    const unsigned used = m_length % 8;
    m_data[at] |= static_cast<unsigned char>(byte >> used);
    if (used + bits > 8) m_data[at + 1] |= static_cast<unsigned char>(byte << (8 - used));
    m_length += bits;
}

} // namespace pm
