#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pm::kit {

[[nodiscard]] constexpr bool is_digit(char c) noexcept {
    return c >= '0' && c <= '9';
}
[[nodiscard]] constexpr bool is_letter(char c) noexcept {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
[[nodiscard]] constexpr bool is_blank(char c) noexcept {
    return c == ' ' || c == '\t';
}
[[nodiscard]] constexpr bool is_white(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
[[nodiscard]] constexpr bool is_hex_digit(char c) noexcept {
    return is_digit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}
[[nodiscard]] constexpr char lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}
[[nodiscard]] bool equals_ignoring_case(std::string_view a, std::string_view b) noexcept;
[[nodiscard]] bool starts_ignoring_case(std::string_view text, std::string_view start) noexcept;
[[nodiscard]] std::string lowered(std::string_view text);
// Without the characters of `set` in front, or behind.
[[nodiscard]] std::string_view skip(std::string_view text, std::string_view set) noexcept;
[[nodiscard]] std::string_view cut_end(std::string_view text, std::string_view set) noexcept;

// How the integer at the start of a text is read.
enum class Signs { minus, both };
enum class Base { decimal, by_prefix, hexadecimal };
struct IntegerText {
    std::int32_t value = 0;
    std::size_t length = 0; // what was read of the text, white space in front included; 0 without a digit
    bool held = false;      // at an end of the range
};
[[nodiscard]] IntegerText read_integer(std::string_view text, Signs signs,
                                       Base base = Base::decimal) noexcept;

// How a decimal number is written: sign, digits with a point, exponent.
struct DecimalText {
    double value = 0;
    std::size_t length = 0; // what was read of the text; 0 if there is no number
};
// The number at the start of a text, behind white space.
[[nodiscard]] DecimalText read_decimal(std::string_view text, Signs signs) noexcept;

// What a decimal text loses when it is read: "it is beyond all numbers and reads as an infinity". Nothing if
// it reads back as it says.
[[nodiscard]] std::optional<std::string> decimal_loss(std::string_view text, double value);

// A value in exact form: a number, a blank, and its bits in parentheses.
struct ExactForm {
    std::string_view number;
    bool bits_count = false; // they are those of the number
};
[[nodiscard]] std::optional<ExactForm> exact_form(std::string_view value);

} // namespace pm::kit
