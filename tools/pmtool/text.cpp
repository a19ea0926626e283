#include "text.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace pmtool {

namespace {

constexpr char32_t replacement = 0xFFFD;
constexpr std::string_view white_space = " \t\r\n\v\f";

bool is_high_surrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool is_low_surrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

// The code point at `at`, which moves behind it.
char32_t next_code_point(std::u16string_view text, std::size_t& at) {
    const char32_t unit = text[at++];
    if (!is_high_surrogate(unit) && !is_low_surrogate(unit)) return unit;
    if (is_low_surrogate(unit) || at == text.size() || !is_low_surrogate(text[at])) return replacement;
    return 0x10000 + ((unit - 0xD800) << 10) + (text[at++] - 0xDC00U);
}

void append_utf8(std::string& out, char32_t code) {
    const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

struct SequenceForm {
    unsigned char mask;
    unsigned char mark;
    int tail;
    char32_t smallest;
};

constexpr SequenceForm sequence_forms[] = {
    {0x80, 0x00, 0, 0x0},
    {0xE0, 0xC0, 1, 0x80},
    {0xF0, 0xE0, 2, 0x800},
    {0xF8, 0xF0, 3, 0x10000},
};

// The code point at `at`, which moves behind it; behind one byte only if the sequence isn't valid.
char32_t next_code_point(std::string_view text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at++]);
    const auto* form = std::ranges::find_if(sequence_forms, [&](const SequenceForm& candidate) {
        return (lead & candidate.mask) == candidate.mark;
    });
    if (form == std::ranges::end(sequence_forms)) return replacement;
    char32_t code = lead & static_cast<unsigned char>(~form->mask);
    std::size_t end = at;
    for (int i = 0; i < form->tail; ++i, ++end) {
        if (end == text.size() || (static_cast<unsigned char>(text[end]) & 0xC0) != 0x80) return replacement;
        code = (code << 6) | (static_cast<unsigned char>(text[end]) & 0x3F);
    }
    if (code < form->smallest || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) return replacement;
    at = end;
    return code;
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

std::string to_utf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        append_utf8(out, next_code_point(text, at));
    }
    return out;
}

std::u16string to_utf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t code = next_code_point(text, at);
        if (code < 0x10000) {
            out += static_cast<char16_t>(code);
        } else {
            out += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            out += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        }
    }
    return out;
}

std::string printable(std::string_view text) {
    std::string out;
    text = text.substr(0, text.find_last_not_of(white_space) + 1);
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F) {
            out += fmt::format("\\x{:02X}", byte);
        } else {
            out += c;
        }
    }
    return out;
}

std::string in_quotes(std::string_view text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string lower_case(std::string_view text) {
    std::string out(text);
    std::ranges::transform(out, out.begin(), lower);
    return out;
}

bool starts_with_ignoring_case(std::string_view text, std::string_view start) {
    return text.size() >= start.size() &&
           std::ranges::equal(text.substr(0, start.size()), start, {}, lower, lower);
}

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(white_space);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(white_space) - first + 1);
}

std::string_view take_line(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return line;
}

} // namespace pmtool
