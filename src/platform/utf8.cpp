#include "platform/utf8.h"

#include <algorithm>
#include <array>

namespace pm {

namespace {

constexpr char16_t replacement = u'\uFFFD';
constexpr unsigned escaped_byte = 0xDC00; // plus the byte

constexpr bool is_surrogate(unsigned unit) {
    return (unit & 0xF800) == 0xD800;
}
constexpr bool is_high_surrogate(unsigned unit) {
    return (unit & 0xFC00) == 0xD800;
}
constexpr bool is_low_surrogate(unsigned unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// What a lead byte says of its character.
struct Lead {
    unsigned char length = 0; // 0: no lead byte
    unsigned char lowest_second = 0x80;
    unsigned char highest_second = 0xBF;
};

// RFC 3629, section 4: without longer forms than needed, surrogates, and characters above U+10FFFF.
constexpr std::array<Lead, 0x100> leads = [] {
    std::array<Lead, 0x100> all{};
    const auto set_length = [&all](std::size_t first, std::size_t last, unsigned char length) {
        std::fill(all.begin() + first, all.begin() + last + 1, Lead{length});
    };
    set_length(0x00, 0x7F, 1);
    set_length(0xC2, 0xDF, 2);
    set_length(0xE0, 0xEF, 3);
    set_length(0xF0, 0xF4, 4);
    all[0xE0].lowest_second = 0xA0;
    all[0xED].highest_second = 0x9F;
    all[0xF0].lowest_second = 0x90;
    all[0xF4].highest_second = 0x8F;
    return all;
}();

constexpr unsigned code(char byte) {
    return static_cast<unsigned char>(byte);
}
constexpr bool is_trail(char byte) {
    return (code(byte) & 0xC0) == 0x80;
}
constexpr unsigned trail_bits(char byte) {
    return code(byte) & 0x3F;
}
constexpr bool may_follow(char byte, const Lead& lead) {
    return code(byte) >= lead.lowest_second && code(byte) <= lead.highest_second;
}

// How many of the bytes before `end` are a character or begin one; at least 1.
std::ptrdiff_t sequence_length(const char* at, const char* end, const Lead& lead) {
    const std::ptrdiff_t limit = std::min<std::ptrdiff_t>(end - at, lead.length);
    if (limit < 2 || !may_follow(at[1], lead)) return 1;
    std::ptrdiff_t length = 2;
    while (length < limit && is_trail(at[length])) {
        ++length;
    }
    return length;
}

char16_t unit_of_two(const char* at) {
    return static_cast<char16_t>((code(at[0]) & 0x1F) << 6 | trail_bits(at[1]));
}
char16_t unit_of_three(const char* at) {
    return static_cast<char16_t>((code(at[0]) & 0x0F) << 12 | trail_bits(at[1]) << 6 | trail_bits(at[2]));
}

// Of three or four bytes.
char16_t* put_character(char16_t* out, const char* at, std::ptrdiff_t length) {
    if (length == 3) {
        *out++ = unit_of_three(at);
        return out;
    }
    const unsigned upper = (code(at[0]) & 0x07) << 8 | trail_bits(at[1]) << 2 | trail_bits(at[2]) >> 4;
    *out++ = static_cast<char16_t>(0xD800 - 0x40 + upper);
    *out++ = static_cast<char16_t>(0xDC00 | (trail_bits(at[2]) & 0x0F) << 6 | trail_bits(at[3]));
    return out;
}

// `put_broken` gets the bytes of a broken sequence, from and to, and where to put at most as many units.
template<class PutBroken>
void decode(std::string_view narrow, std::u16string& wide, PutBroken put_broken) {
    const std::size_t start = wide.size();
    wide.resize(start + narrow.size());
    char16_t* out = wide.data() + start;
    const char* at = narrow.data();
    for (const char* const end = at + narrow.size(); at != end;) {
        const unsigned first = code(at[0]);
        if (first < 0x80) { // the common forms stand here for speed
            *out++ = static_cast<char16_t>(first);
            at += 1;
        } else if (first >= 0xE1 && first <= 0xEC && end - at > 2 && is_trail(at[1]) && is_trail(at[2])) {
            *out++ = unit_of_three(at);
            at += 3;
        } else if (first >= 0xC2 && first <= 0xDF && end - at > 1 && is_trail(at[1])) {
            *out++ = unit_of_two(at);
            at += 2;
        } else {
            const Lead& lead = leads[first];
            const std::ptrdiff_t length = sequence_length(at, end, lead);
            out = length == lead.length ? put_character(out, at, length) : put_broken(out, at, at + length);
            at += length;
        }
    }
    wide.resize(static_cast<std::size_t>(out - wide.data()));
}

constexpr char lead_byte(unsigned mark, unsigned bits) {
    return static_cast<char>(mark | bits);
}
constexpr char trail_byte(unsigned bits) {
    return static_cast<char>(0x80 | (bits & 0x3F));
}

// `unpaired` gives the byte for a surrogate that stands alone.
template<class Unpaired>
void encode(std::u16string_view wide, std::string& narrow, Unpaired unpaired) {
    const std::size_t start = narrow.size();
    narrow.resize(start + 3 * wide.size());
    char* out = narrow.data() + start;
    const char16_t* at = wide.data();
    for (const char16_t* const end = at + wide.size(); at != end;) {
        const unsigned unit = *at++;
        if (unit < 0x80) {
            *out++ = static_cast<char>(unit);
        } else if (unit < 0x800) {
            *out++ = lead_byte(0xC0, unit >> 6);
            *out++ = trail_byte(unit);
        } else if (!is_surrogate(unit)) {
            *out++ = lead_byte(0xE0, unit >> 12);
            *out++ = trail_byte(unit >> 6);
            *out++ = trail_byte(unit);
        } else if (is_high_surrogate(unit) && at != end && is_low_surrogate(*at)) {
            const unsigned character = 0x10000 + ((unit & 0x3FF) << 10) + (*at++ & 0x3FFU);
            *out++ = lead_byte(0xF0, character >> 18);
            *out++ = trail_byte(character >> 12);
            *out++ = trail_byte(character >> 6);
            *out++ = trail_byte(character);
        } else {
            *out++ = unpaired(unit);
        }
    }
    narrow.resize(static_cast<std::size_t>(out - narrow.data()));
}

} // namespace

void decode_utf8(std::string_view narrow, std::u16string& wide) {
    decode(narrow, wide, [](char16_t* out, const char*, const char*) {
        *out++ = replacement;
        return out;
    });
}

void encode_utf8(std::u16string_view wide, std::string& narrow) {
    encode(wide, narrow, [](unsigned) { return '?'; });
}

void decode_name(std::string_view narrow, std::u16string& wide) {
    decode(narrow, wide, [](char16_t* out, const char* at, const char* end) {
        return std::transform(at, end, out,
                              [](char byte) { return static_cast<char16_t>(escaped_byte + code(byte)); });
    });
}

void encode_name(std::u16string_view wide, std::string& narrow) {
    encode(wide, narrow, [](unsigned unit) {
        const bool is_byte = unit >= escaped_byte + 0x80 && unit <= escaped_byte + 0xFF;
        return is_byte ? static_cast<char>(unit - escaped_byte) : '?';
    });
}

} // namespace pm
