#include "check/narrow_text.h"

#include "string_stream.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/pm.h>
#include <sstream>

namespace pm::kit {

namespace {

constexpr std::size_t shown_most = 40; // characters

bool is_continuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

// Through the load of a text; the quote at its end keeps blanks from being cut.
std::u16string decode_piece(std::string_view bytes) {
    std::stringstream stream;
    stream << "PIAFILEVERSION_2.0\na=\"" << bytes << "\"\n";
    require_memory(stream);
    Tree tree;
    tree.load(stream);
    std::u16string text = tree.get<std::u16string>("a").value_or(u"\"");
    if (text.ends_with(u'"')) text.pop_back();
    return text;
}

std::u16string widened(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

} // namespace

bool is_utf8(std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const detail::Sequence sequence = detail::read_sequence(bytes, false);
        if (!sequence.good) return false;
        bytes.remove_prefix(sequence.length);
    }
    return true;
}

bool is_ascii(std::string_view bytes) noexcept {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string readable(std::string_view utf8) {
    std::string out;
    std::size_t characters = 0;
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (!is_continuation(c) && characters++ == shown_most) return out + "...";
        if (byte < 0x20 || byte == 0x7F) {
            out += fmt::format("\\x{:02X}", byte);
        } else {
            out += c;
        }
    }
    return out;
}

std::string in_quotes(std::string_view utf8) {
    return '"' + readable(utf8) + '"';
}

NarrowText::NarrowText(unsigned code_page)
    : m_code_page(code_page),
      m_double(code_page == 932 || code_page == 936 || code_page == 949 || code_page == 950) {
    if (m_double || is_unicode()) return;
    std::string high;
    for (int byte = 0x80; byte < 0x100; ++byte) {
        high += static_cast<char>(byte);
    }
    const std::u16string wide = decode_piece(high);
    std::copy_n(wide.begin(), std::min(wide.size(), m_high.size()), m_high.begin());
}

std::u16string NarrowText::decode(std::string_view bytes) const {
    if (is_unicode()) return to_utf16(bytes);
    if (m_double) return decode_piece(bytes);
    std::u16string wide = widened(bytes);
    for (char16_t& unit : wide) {
        const auto byte = static_cast<unsigned char>(unit);
        unit = byte < 0x80 ? byte : m_high[byte - 0x80U];
    }
    return wide;
}

bool NarrowText::is_undefined(unsigned char byte) const {
    if (byte < 0x80 || m_double || is_unicode()) return false;
    const char16_t unit = m_high[byte - 0x80U];
    const bool windows = m_code_page == 874 || (m_code_page >= 1250 && m_code_page <= 1258);
    return unit == 0xFFFD || (unit >= 0xE000 && unit <= 0xF8FF) || (windows && unit == byte && byte < 0xA0);
}

bool NarrowText::is_lead(unsigned char byte) const {
    if (m_code_page == 932) return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    return byte >= 0x81 && byte <= 0xFE;
}

std::string NarrowText::masked(std::string_view bytes) const {
    std::string out(bytes);
    if (!m_double) return out;
    for (std::size_t at = 0; at + 1 < out.size(); ++at) {
        if (!is_lead(static_cast<unsigned char>(out[at]))) continue;
        const char second = out[at + 1];
        if (second != '\n' && second != '\0') out[++at] = trail;
    }
    return out;
}

} // namespace pm::kit
