// First byte: whether a unit of the text has one byte (even) or two. The rest: a text that may be armoured
// bytes, hexadecimal digits or a compound text.

#include "fuzz_support.h"
#include "wide_text.h"
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <pm/exception.h>
#include <pm/value_text.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using pm::fuzz::require;

// The check value, bit by bit.
unsigned check_value(const Bytes& bytes) {
    unsigned value = 0xC0C1; // as of the byte 1 and nothing in front
    for (const unsigned byte : bytes) {
        value ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            value = value % 2 != 0 ? value >> 1 ^ 0xA001 : value >> 1;
        }
    }
    return value;
}

// What the armoured text holds, the check value behind it, by the shortest way: six bits a character.
std::optional<Bytes> armoured_bytes(std::u16string_view text) {
    if (text.size() < 3 || text.size() % 4 == 1) return std::nullopt;
    Bytes bytes;
    unsigned bits = 0;
    int held = 0;
    for (const char16_t unit : text) {
        if (unit < 32 || unit > 95) return std::nullopt;
        bits = bits << 6 | (unit - 32U);
        held += 6;
        if (held < 8) continue;
        held -= 8;
        bytes.push_back(static_cast<unsigned char>(bits >> held));
    }
    const unsigned check = unsigned{bytes[bytes.size() - 2]} << 8 | bytes[bytes.size() - 1];
    bytes.erase(bytes.end() - 2, bytes.end());
    if (check != check_value(bytes)) return std::nullopt;
    return bytes;
}

void require_armour_agrees(const char16_t* text) {
    char* out = nullptr;
    unsigned size = 0;
    const int done = stringtobinary(text, &out, &size);
    const std::unique_ptr<char, decltype(&std::free)> owned(out, &std::free);
    const std::optional<Bytes> expected = armoured_bytes(text);
    require((done == 1) == expected.has_value());
    if (!expected) return;
    require(size == expected->size() && (size == 0 || std::memcmp(out, expected->data(), size) == 0));
}

void require_digits_read_back(const std::uint8_t* data, std::size_t size) {
    std::string digits(2 * size + 1, '?');
    const int count = static_cast<int>(size);
    require(pm_bin_to_hex(data, digits.data(), count) == (size > 0));
    if (size == 0) return;
    require(digits.size() == std::strlen(digits.c_str()) + 1);
    Bytes back(size);
    require(pm_hex_to_bin(digits.c_str(), back.data()));
    require(std::equal(back.begin(), back.end(), data));
}

// Any digits decode, to half as many bytes.
void decode_any(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const std::size_t length = std::strlen(text.c_str());
    Bytes out(length / 2);
    Bytes none(1);
    require(pm_hex_to_bin(text.c_str(), out.empty() ? none.data() : out.data()) ==
            (length > 0 && length % 2 == 0));
}

// What a compound text gives makes that text again.
void take_apart(const char16_t* text) {
    ZT_String a;
    ZT_String b;
    try {
        if (!extract_compound_str_ex(text, a, b)) return;
    } catch (const ZT_Exception& e) {
        require(e.m_number == 55);
        return;
    }
    ZT_String whole;
    require(build_compound_str_ex(a.text(), b.text(), whole));
    ZT_String c;
    ZT_String d;
    require(extract_compound_str_ex(whole.text(), c, d));
    require(std::u16string_view(a.text()) == c.text() && std::u16string_view(b.text()) == d.text());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::u16string text = pm::fuzz::wide_text(data + 1, size - 1, data[0] % 2 != 0);
    require_armour_agrees(text.c_str());
    require_digits_read_back(data + 1, size - 1);
    decode_any(data + 1, size - 1);
    take_apart(text.c_str());
    return 0;
}
