#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <pm/kit/error.h>
#include <pm/tree.h>
#include <string>
#include <string_view>

// Reading and writing the words of one line: numbers, quoted texts, hexadecimal digits.
namespace pm::kit {

// Goes through one line of text. What it can't read is an Error with the line's number and the column.
class TextReader {
public:
    explicit TextReader(std::string_view text, std::uint64_t line = 0) : m_text(text), m_line(line) {}

    // Fails for what isn't UTF-8 as text.h has it, at the first of it.
    void require_utf8() const;
    // Blanks and tabs.
    void skip_blanks();
    // Nothing is left.
    [[nodiscard]] bool at_end() const { return m_at == m_text.size(); }
    [[nodiscard]] char peek() const { return at_end() ? '\0' : m_text[m_at]; }
    [[nodiscard]] std::size_t position() const { return m_at; }
    // To the next blank or the end; may be empty.
    std::string_view take_word();
    // A text in double quotes; stands on the first of them. Escapes are those of JSON, an unpaired surrogate
    // comes out as three bytes (text.h).
    std::string take_quoted();
    // Blanks, then the end.
    void require_end();

    [[noreturn]] void fail(const std::string& message) const { fail_at(m_at, message); }
    [[noreturn]] void fail_at(std::size_t position, const std::string& message) const;

private:
    char16_t take_hex_unit();
    void take_escape(std::u16string& out);

    std::string_view m_text;
    std::uint64_t m_line;
    std::size_t m_at = 0;
};

// Uppercase digits, two a byte.
std::string hex_text(const Bytes& bytes);
// Nothing for an odd number of digits or what is none; of either case.
std::optional<Bytes> parse_hex(std::string_view digits);

// The shortest text that reads back to the same number; always with a "." or an exponent, if it is finite.
std::string double_text(double number);

} // namespace pm::kit
