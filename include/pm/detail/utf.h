#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// The way between UTF-8 and UTF-16 that text.h offers.
namespace pm::detail {

// What becomes of a byte that isn't part of a sequence: U+FFFD for each broken sequence, or, in names of
// files, U+DC00 plus the byte for each of its bytes, an encoded surrogate counting as broken.
enum class Malformed { replace, escape };

struct Sequence {
    std::size_t length; // bytes; of the good beginning, at least 1, if the sequence is broken
    char32_t code_point;
    bool good;
};

inline Sequence read_sequence(std::string_view text, bool surrogates) noexcept {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) return {1, lead, true};
    if (lead < 0xC2 || lead > 0xF4) return {1, 0, false};
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    // The second byte tells overlong forms and numbers above U+10FFFF.
    unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned high = lead == 0xF4 ? 0x8F : lead == 0xED && !surrogates ? 0x9F : 0xBF;
    char32_t code_point = lead & (0xFFU >> (length + 1));
    for (std::size_t at = 1; at < length; ++at, low = 0x80, high = 0xBF) {
        if (at == text.size() || byte(at) < low || byte(at) > high) return {at, 0, false};
        code_point = code_point << 6 | (byte(at) & 0x3FU);
    }
    return {length, code_point, true};
}

inline char16_t* put_utf16(char32_t code_point, char16_t* out) noexcept {
    if (code_point < 0x10000) {
        *out++ = static_cast<char16_t>(code_point);
        return out;
    }
    *out++ = static_cast<char16_t>(0xD7C0 + (code_point >> 10));
    *out++ = static_cast<char16_t>(0xDC00 + (code_point & 0x3FF));
    return out;
}

inline char16_t* put_malformed(std::string_view bytes, Malformed malformed, char16_t* out) noexcept {
    if (malformed == Malformed::replace) {
        *out++ = u'\uFFFD';
        return out;
    }
    for (const char byte : bytes) {
        *out++ = static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(byte));
    }
    return out;
}

// Spreads eight ASCII bytes to units; false, with nothing written, if one of them is none.
inline bool widen_eight(const char* bytes, char16_t* out) noexcept {
    std::uint64_t eight = 0;
    std::memcpy(&eight, bytes, sizeof eight);
    if ((eight & 0x8080808080808080U) != 0) return false;
    const auto spread = [](std::uint64_t four) {
        four = (four | four << 16) & 0x0000FFFF0000FFFFU;
        return (four | four << 8) & 0x00FF00FF00FF00FFU;
    };
    // The low half of the number is the first half of the text on little-endian machines only.
    constexpr int first = std::endian::native == std::endian::little ? 0 : 32;
    const std::uint64_t halves[] = {spread(eight >> first & 0xFFFFFFFFU),
                                    spread(eight >> (32 - first) & 0xFFFFFFFFU)};
    std::memcpy(out, halves, sizeof halves);
    return true;
}

// Copies the ASCII bytes at the front of a text; gives their number, or less.
inline std::size_t copy_ascii(std::string_view text, char16_t* out) noexcept {
    std::size_t done = 0;
    for (; text.size() - done >= 8; done += 8) {
        if (!widen_eight(text.data() + done, out + done)) return done;
    }
    for (; done < text.size() && static_cast<unsigned char>(text[done]) < 0x80; ++done) {
        out[done] = static_cast<unsigned char>(text[done]);
    }
    return done;
}

inline std::size_t decode_sequences(std::string_view text, Malformed malformed, char16_t* out) noexcept {
    char16_t* end = out;
    while (!text.empty()) {
        const Sequence sequence = read_sequence(text, malformed == Malformed::replace);
        end = sequence.good ? put_utf16(sequence.code_point, end)
                            : put_malformed(text.substr(0, sequence.length), malformed, end);
        text.remove_prefix(sequence.length);
    }
    return static_cast<std::size_t>(end - out);
}

// Writes at most one unit for each byte; gives the number of units.
inline std::size_t decode_utf8(std::string_view text, Malformed malformed, char16_t* out) noexcept {
    const std::size_t ascii = copy_ascii(text, out);
    if (ascii == text.size()) return ascii;
    return ascii + decode_sequences(text.substr(ascii), malformed, out + ascii);
}

inline bool is_high_surrogate(char16_t unit) noexcept {
    return (unit & 0xFC00) == 0xD800;
}

inline bool is_low_surrogate(char16_t unit) noexcept {
    return (unit & 0xFC00) == 0xDC00;
}

// Reads one code point, an unpaired surrogate as itself, and moves `at` behind it.
inline char32_t next_code_point(std::u16string_view text, std::size_t& at) noexcept {
    const char16_t unit = text[at++];
    if (!is_high_surrogate(unit) || at == text.size() || !is_low_surrogate(text[at])) return unit;
    return ((unit - 0xD7C0U) << 10) + (text[at++] - 0xDC00U);
}

inline void append_utf8(char32_t code_point, std::string& out) {
    const auto tail = [&](int shift) { out += static_cast<char>(0x80 | (code_point >> shift & 0x3F)); };
    if (code_point < 0x80) {
        out += static_cast<char>(code_point);
    } else if (code_point < 0x800) {
        out += static_cast<char>(0xC0 | code_point >> 6);
        tail(0);
    } else if (code_point < 0x10000) {
        out += static_cast<char>(0xE0 | code_point >> 12);
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0 | code_point >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace pm::detail
