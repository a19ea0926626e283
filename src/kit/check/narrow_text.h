#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace pm::kit {

// Whether every byte is part of a sequence of UTF-8.
[[nodiscard]] bool is_utf8(std::string_view bytes) noexcept;
[[nodiscard]] bool is_ascii(std::string_view bytes) noexcept;

// What a person may see of a text: control characters as "\x09", at most some forty characters.
[[nodiscard]] std::string readable(std::string_view utf8);
// The same in double quotes.
[[nodiscard]] std::string in_quotes(std::string_view utf8);

// A code page as the library reads it, which must be the system's own at the time. It asks the library's
// public interface alone: narrow text goes through a load.
class NarrowText {
public:
    explicit NarrowText(unsigned code_page);

    [[nodiscard]] unsigned code_page() const { return m_code_page; }
    [[nodiscard]] bool is_unicode() const { return m_code_page == 65001; }
    [[nodiscard]] bool has_double_bytes() const { return m_double; }
    // Bytes without a line feed and zero.
    [[nodiscard]] std::u16string decode(std::string_view bytes) const;
    // Whether a byte of a single-byte code page has no character of its own.
    [[nodiscard]] bool is_undefined(unsigned char byte) const;
    // The text with the second byte of each double one replaced by `trail`, so that what is of ASCII in it is
    // ASCII.
    [[nodiscard]] std::string masked(std::string_view bytes) const;
    static constexpr char trail = '\x80';

private:
    [[nodiscard]] bool is_lead(unsigned char byte) const;

    unsigned m_code_page;
    bool m_double;
    std::array<char16_t, 128> m_high{}; // of a single-byte code page
};

} // namespace pm::kit
