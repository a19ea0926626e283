#include "store/armour.h"

#include "base/big_endian.h"
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
constexpr std::uint64_t blanks = 0x2020202020202020;

// The 48 bits of eight characters, given as one word less a blank each.
std::uint64_t joined(std::uint64_t units) {
    units = (units & 0x3F003F003F003F00) >> 2 | (units & 0x003F003F003F003F);
    units = (units & 0x0FFF00000FFF0000) >> 4 | (units & 0x00000FFF00000FFF);
    return units >> 32 << 24 | (units & 0xFFFFFF);
}

// The reverse, into eight characters.
void write_units(std::uint64_t bits, char* out) {
    std::uint64_t units = bits >> 24 << 32 | (bits & 0xFFFFFF);
    units = (units & 0x00FFF00000FFF000) << 4 | (units & 0x00000FFF00000FFF);
    units = (units & 0x0FC00FC00FC00FC0) << 2 | (units & 0x003F003F003F003F);
    store_u64_from_top(out, units + blanks);
}

// A double's armour is two words that overlap by two characters. The first has the first 48 bits, the last
// one the last 28, the check value and 4 bits that fill up.
constexpr std::size_t last_word = armoured_double_size - sizeof(std::uint64_t);

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

char* write_armoured_double(double value, char* out) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t bytes = __builtin_bswap64(bits);
    write_units(bytes >> 16, out);
    write_units((bytes & 0xFFFFFFF) << 20 | std::uint64_t{crc_of(bits)} << 4, out + last_word);
    return out + armoured_double_size;
}

bool read_armoured_double(const char* armour, double& out) {
    constexpr std::uint64_t beyond = 0xC0C0C0C0C0C0C0C0; // set in one too low, or too high
    const std::uint64_t first = load_u64_from_top(armour) - blanks;
    const std::uint64_t last = load_u64_from_top(armour + last_word) - blanks;
    if (((first | last) & beyond) != 0) return false;
    const std::uint64_t last_bits = joined(last);
    const std::uint64_t bits = __builtin_bswap64(joined(first) << 16 | (last_bits >> 20 & 0xFFFF));
    if ((last_bits >> 4 & 0xFFFF) != crc_of(bits)) return false;
    out = std::bit_cast<double>(bits);
    return true;
}

} // namespace pm
