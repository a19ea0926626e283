#include "store/armour.h"

#include <array>
#include <bit>

namespace pm {

namespace {

constexpr std::array<std::uint16_t, 256> make_crc_table() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        unsigned crc = byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
        }
        table[byte] = static_cast<std::uint16_t>(crc);
    }
    return table;
}

constexpr std::array<std::uint16_t, 256> crc_table = make_crc_table();
constexpr unsigned first_crc = crc_table[1];

unsigned crc_of(std::uint64_t bits) {
    unsigned crc = first_crc;
    for (unsigned byte = 0; byte < sizeof bits; ++byte) {
        crc = (crc >> 8) ^ crc_table[(crc ^ (bits >> 8 * byte)) & 0xFF];
    }
    return crc;
}

constexpr unsigned bits_a_unit = 6;

// The bits of so many characters.
template<std::size_t count>
std::uint64_t joined(const char* armour) {
    std::uint64_t bits = 0;
    for (std::size_t unit = 0; unit < count; ++unit) {
        bits = bits << bits_a_unit | static_cast<unsigned>(armour[unit] - ' ');
    }
    return bits;
}

} // namespace

std::uint16_t armour_check(std::span<const std::uint8_t> bytes) {
    unsigned crc = first_crc;
    for (const std::uint8_t byte : bytes) {
        crc = (crc >> 8) ^ crc_table[(crc ^ byte) & 0xFF];
    }
    return static_cast<std::uint16_t>(crc);
}

void decode_armour_group(std::u16string_view text, std::uint8_t* bytes) {
    unsigned bits = 0;
    for (std::size_t unit = 0; unit < armour_group_units; ++unit) {
        bits = bits << bits_a_unit | (unit < text.size() ? text[unit] - u' ' : 0U);
    }
    for (std::size_t byte = 0; byte < armour_group_bytes; ++byte) {
        bytes[byte] = static_cast<std::uint8_t>(bits >> (16 - 8 * byte));
    }
}

// Ten characters have the first 60 bits, four have the last 4 with the check value and 4 that fill up.
constexpr std::size_t first_units = 10;
constexpr std::size_t last_units = 4;
static_assert(first_units + last_units == armoured_double_size);

char* write_armoured_double(double value, char* out) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t first = __builtin_bswap64(bits);
    const std::uint64_t last = (first & 0xF) << 20 | std::uint64_t{crc_of(bits)} << 4;
    for (std::size_t unit = 0; unit < first_units; ++unit) {
        *out++ = static_cast<char>(' ' + (first >> (58 - bits_a_unit * unit) & 0x3F));
    }
    for (std::size_t unit = 0; unit < last_units; ++unit) {
        *out++ = static_cast<char>(' ' + (last >> (18 - bits_a_unit * unit) & 0x3F));
    }
    return out;
}

bool read_armoured_double(const char* armour, double& out) {
    bool sound = true;
    for (std::size_t unit = 0; unit < armoured_double_size; ++unit) {
        sound &= static_cast<unsigned char>(armour[unit] - ' ') < 64;
    }
    if (!sound) return false;
    const std::uint64_t last = joined<last_units>(armour + first_units);
    const std::uint64_t bits = __builtin_bswap64(joined<first_units>(armour) << 4 | last >> 20);
    if ((last >> 4 & 0xFFFF) != crc_of(bits)) return false;
    out = std::bit_cast<double>(bits);
    return true;
}

} // namespace pm
