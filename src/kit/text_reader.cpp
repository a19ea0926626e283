#include "text_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <pm/detail/utf.h>
#include <pm/text.h>

namespace pm::kit {

namespace {

constexpr std::string_view hex_digits = "0123456789ABCDEF";

struct Escape {
    char letter;
    char16_t unit;
};

constexpr Escape escapes[] = {{'"', u'"'},  {'\\', u'\\'}, {'/', u'/'},  {'b', u'\b'},
                              {'f', u'\f'}, {'n', u'\n'},  {'r', u'\r'}, {'t', u'\t'}};

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// -1 for what is none.
int digit_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

void TextReader::fail_at(std::size_t position, const std::string& message) const {
    throw Error(message, m_line, position + 1);
}

void TextReader::require_utf8() const {
    const std::string sound = to_utf8(to_utf16(m_text));
    if (sound == m_text) return;
    const auto differs = std::ranges::mismatch(m_text, sound).in1;
    fail_at(static_cast<std::size_t>(differs - m_text.begin()), "this isn't UTF-8");
}

void TextReader::skip_blanks() {
    while (!at_end() && is_blank(m_text[m_at])) {
        ++m_at;
    }
}

std::string_view TextReader::take_word() {
    const std::size_t begin = m_at;
    while (!at_end() && !is_blank(m_text[m_at])) {
        ++m_at;
    }
    return m_text.substr(begin, m_at - begin);
}

void TextReader::require_end() {
    skip_blanks();
    if (!at_end()) fail("something stands behind the end of what belongs here");
}

std::string TextReader::take_quoted() {
    const std::size_t begin = m_at++;
    std::u16string text;
    for (;;) {
        const std::size_t stop = std::min(m_text.find_first_of("\"\\", m_at), m_text.size());
        text += to_utf16(m_text.substr(m_at, stop - m_at));
        m_at = stop;
        if (at_end()) fail_at(begin, "the text has no closing quote");
        if (m_text[m_at++] == '"') return to_utf8(text);
        take_escape(text);
    }
}

void TextReader::take_escape(std::u16string& out) {
    const char letter = peek();
    if (letter == 'u') {
        ++m_at;
        out += take_hex_unit();
        return;
    }
    const auto* const found = std::ranges::find(escapes, letter, &Escape::letter);
    if (found == std::ranges::end(escapes)) fail_at(m_at - 1, "a backslash is followed by nothing it may be");
    ++m_at;
    out += found->unit;
}

char16_t TextReader::take_hex_unit() {
    constexpr std::size_t length = 4;
    unsigned unit = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const int digit = digit_value(peek());
        if (digit < 0) fail("\\u asks for four hexadecimal digits");
        unit = unit << 4 | static_cast<unsigned>(digit);
        ++m_at;
    }
    return static_cast<char16_t>(unit);
}

std::string hex_text(const Bytes& bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::byte byte : bytes) {
        text += hex_digits[std::to_integer<unsigned>(byte) >> 4];
        text += hex_digits[std::to_integer<unsigned>(byte) & 15];
    }
    return text;
}

std::optional<Bytes> parse_hex(std::string_view digits) {
    if (digits.size() % 2 != 0) return std::nullopt;
    Bytes bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = digit_value(digits[i]);
        const int low = digit_value(digits[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes.push_back(static_cast<std::byte>(high << 4 | low));
    }
    return bytes;
}

std::string double_text(double number) {
    std::string text = fmt::format("{}", number);
    if (std::isfinite(number) && text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

} // namespace pm::kit
