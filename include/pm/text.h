#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// Text of programs, UTF-8, and text of the library, UTF-16 in name only: unpaired surrogates pass.
//
// UTF-8 here is the generalised one: an unpaired surrogate is the three bytes that its number gives
// (U+D800 is ED A0 80), so that every wide text comes back as it was: to_utf16(to_utf8(x)) == x. All
// functions may throw std::bad_alloc and nothing else.

namespace pm {

namespace detail {

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
    for (const char byte : bytes)
        *out++ = static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(byte));
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

} // namespace detail

// A text that a caller gives, of either width, not owned. Null counts as empty. A view may hold zero units;
// what a function makes of them it tells itself.
class TextView {
public:
    constexpr TextView() noexcept : TextView(std::string_view()) {}
    constexpr TextView(const char* utf8) noexcept
        : TextView(utf8 != nullptr ? std::string_view(utf8) : std::string_view()) {
        m_may_hold_zero = false;
    }
    constexpr TextView(const char16_t* wide) noexcept
        : TextView(wide != nullptr ? std::u16string_view(wide) : std::u16string_view(u"")) {
        m_may_hold_zero = false;
        m_is_terminated = true;
    }
    constexpr TextView(std::string_view utf8) noexcept : m_utf8(utf8.data()), m_size(utf8.size()) {}
    constexpr TextView(std::u16string_view wide) noexcept
        : m_wide(wide.data()), m_size(wide.size()), m_is_wide(true) {}
    constexpr TextView(const std::string& utf8) noexcept : TextView(std::string_view(utf8)) {}
    constexpr TextView(const std::u16string& wide) noexcept : TextView(std::u16string_view(wide)) {
        m_is_terminated = true;
    }

    // Which of the two it is: the other is empty.
    constexpr bool is_wide() const noexcept { return m_is_wide; }
    constexpr std::string_view utf8() const noexcept {
        return m_is_wide ? std::string_view() : std::string_view(m_utf8, m_size);
    }
    constexpr std::u16string_view wide() const noexcept {
        return m_is_wide ? std::u16string_view(m_wide, m_size) : std::u16string_view();
    }
    // In bytes or units, by is_wide(). As UTF-16 a text never takes more units than this.
    constexpr std::size_t size() const noexcept { return m_size; }
    // A wide text whose end is known to be marked by a zero, so that it can be handed on as it is.
    constexpr bool is_terminated() const noexcept { return m_is_terminated; }
    constexpr bool holds_zero() const noexcept {
        if (!m_may_hold_zero) return false;
        return m_is_wide ? wide().find(u'\0') != std::u16string_view::npos
                         : utf8().find('\0') != std::string_view::npos;
    }

private:
    union {
        const char* m_utf8;
        const char16_t* m_wide;
    };
    std::size_t m_size;
    bool m_is_wide = false;
    bool m_is_terminated = false;
    bool m_may_hold_zero = true;
};

// What isn't UTF-8 becomes U+FFFD, one for each broken sequence.
[[nodiscard]] inline std::u16string to_utf16(std::string_view utf8) {
    std::u16string wide(utf8.size(), u'\0');
    wide.resize(detail::decode_utf8(utf8, detail::Malformed::replace, wide.data()));
    return wide;
}

// Never loses anything.
[[nodiscard]] inline std::string to_utf8(std::u16string_view wide) {
    std::string utf8(wide.size(), '\0');
    std::size_t at = 0;
    for (; at < wide.size() && wide[at] < 0x80; ++at)
        utf8[at] = static_cast<char>(wide[at]);
    if (at == wide.size()) return utf8;
    utf8.resize(at);
    while (at < wide.size())
        detail::append_utf8(detail::next_code_point(wide, at), utf8);
    return utf8;
}

// The name of a file as the library takes it, from the bytes that the system gives: UTF-8, each byte that
// isn't part of it as the lone unit U+DC80 to U+DCFF that stands for it. So every name can be given.
[[nodiscard]] inline std::u16string file_name_to_utf16(std::string_view bytes) {
    std::u16string wide(bytes.size(), u'\0');
    wide.resize(detail::decode_utf8(bytes, detail::Malformed::escape, wide.data()));
    return wide;
}

// The way back, for a name in a report or an exception: the bytes that the system knows the file by.
[[nodiscard]] inline std::string file_name_to_utf8(std::u16string_view wide) {
    std::string bytes;
    bytes.reserve(wide.size());
    for (std::size_t at = 0; at < wide.size();) {
        const char32_t code_point = detail::next_code_point(wide, at);
        if (code_point >= 0xDC80 && code_point <= 0xDCFF) {
            bytes += static_cast<char>(code_point & 0xFF);
        } else {
            detail::append_utf8(code_point, bytes);
        }
    }
    return bytes;
}

} // namespace pm
