#include <pm/kit/encoding.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

namespace pm::kit {

namespace {

// What code page 1252 has for the bytes 80 to 9F; the others stand for themselves.
constexpr std::array<char16_t, 32> upper_controls = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

// The byte that a unit was read from; 0 for one that code page 1252 hasn't.
unsigned char byte_of(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit < 0x100)) return static_cast<unsigned char>(unit);
    const auto* found = std::ranges::find(upper_controls, unit);
    return found != upper_controls.end() ? static_cast<unsigned char>(0x80 + (found - upper_controls.begin()))
                                         : 0;
}

// How many bytes a sequence that begins so has; 0 for a byte that begins none.
std::size_t sequence_length(unsigned char lead) {
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    return lead >= 0xF0 && lead < 0xF5 ? 4 : 0;
}

bool is_sequence(std::u16string_view text, std::size_t at, std::size_t length) {
    if (length == 0 || at + length > text.size()) return false;
    return std::ranges::all_of(text.substr(at + 1, length - 1), [](char16_t unit) {
        const unsigned char byte = byte_of(unit);
        return byte >= 0x80 && byte < 0xC0;
    });
}

class Count {
public:
    void add(std::u16string_view text) {
        for (std::size_t at = 0; at < text.size();) {
            if (text[at] < 0x80) {
                ++at;
                continue;
            }
            const std::size_t length = sequence_length(byte_of(text[at]));
            const bool is_utf8 = is_sequence(text, at, length);
            (is_utf8 ? m_utf8 : m_other) = true;
            at += is_utf8 ? length : 1;
        }
    }

    void add_bytes(std::span<const std::byte> bytes) {
        std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
        std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
        add(text);
    }

    TextEncoding encoding() const {
        if (m_utf8) return m_other ? TextEncoding::mixed : TextEncoding::utf8;
        return m_other ? TextEncoding::other : TextEncoding::ascii;
    }

private:
    bool m_utf8 = false;
    bool m_other = false;
};

} // namespace

TextEncoding text_encoding(const Tree& tree) {
    Count count;
    for (const auto& [node, depth] : tree.walk()) {
        count.add(node.name16());
        for (const Property property : node.properties()) {
            count.add(property.name16());
            if (property.type() == PROP_STRING && !property.bytes().empty()) {
                count.add_bytes(property.bytes());
            }
        }
    }
    return count.encoding();
}

} // namespace pm::kit
