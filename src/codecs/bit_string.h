#pragma once

#include "base/allocator.h"
#include <cstdint>

namespace pm {

// A growable string of bits, at most 2^32 - 1. Bit i is the bit 0x80 >> (i mod 8) of byte i / 8; bits behind
// the end are zero, and one byte at least stands behind the last full one, once there is a byte at all.
// Without memory it raises number 55: u"temp" where it grows, u"m_data" where it is made from bits at hand;
// the string is then as it was.
class BitString {
public:
    BitString() = default;
    // Copies length / 8 + 1 bytes; bits of the last one that are behind the end are kept, but read by nobody.
    BitString(const unsigned char* bytes, std::uint32_t length);
    BitString(BitString&&) noexcept = default;
    BitString& operator=(BitString&&) noexcept = default;
    BitString(const BitString&) = delete;
    BitString& operator=(const BitString&) = delete;

    void copy(const BitString& other);
    void append(bool bit);
    void append(const BitString& other);
    void remove_last();
    // Makes room for that many bits in all.
    void reserve(std::uint64_t bits);

    bool empty() const { return m_length == 0; }
    std::uint32_t length() const { return m_length; }
    bool operator[](std::uint32_t i) const { return (m_data[i / 8] & mask(i)) != 0; }
    // length() / 8 + 1 bytes; null while nothing was ever put in.
    const unsigned char* data() const { return m_data.get(); }

private:
    static unsigned mask(std::uint32_t i) { return 0x80U >> i % 8; }
    void put_byte(unsigned byte, unsigned bits);

    Block<unsigned char> m_data;
    std::uint32_t m_capacity = 0; // bytes
    std::uint32_t m_length = 0;   // bits
};

// Reads a string from its start. Must not be asked for a bit at the end.
class BitCursor {
public:
    explicit BitCursor(const BitString& string) : m_string(string) {}
    bool at_end() const { return m_position == m_string.length(); }
    bool next() { return m_string[m_position++]; }

private:
    const BitString& m_string;
    std::uint32_t m_position = 0;
};

} // namespace pm
