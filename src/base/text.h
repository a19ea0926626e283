#pragma once

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

namespace pm {

// Small text services whose rules are those of the C locale, whatever the process's locale is.

// The text as a view; null gives the empty text.
inline std::u16string_view view(const char16_t* text) {
    return text != nullptr ? std::u16string_view(text) : std::u16string_view();
}

// A null text as an empty one.
inline const char16_t* or_empty(const char16_t* text) {
    return text != nullptr ? text : u"";
}

constexpr bool is_digit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}
constexpr bool is_letter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}
constexpr bool is_blank(char16_t unit) {
    return unit == u' ' || unit == u'\t';
}
// Blank, tab, line feed, vertical tab, form feed, carriage return.
constexpr bool is_space(char16_t unit) {
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}
// Of ASCII letters; other units are as they stand.
constexpr char16_t to_lower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

// Comparison that takes ASCII letters of both cases as equal.
bool equals_ignoring_case(std::u16string_view a, std::u16string_view b);
bool starts_with_ignoring_case(std::u16string_view text, std::u16string_view start);

// `text` without the units of `set` at its start, or at its end.
std::u16string_view skip_any(std::u16string_view text, std::u16string_view set);
std::u16string_view trim_end(std::u16string_view text, std::u16string_view set);

void append_decimal(std::u16string& out, std::int64_t value);
std::u16string to_decimal(std::int64_t value);
void append_ascii(std::u16string& out, std::string_view ascii);

// The number at the start of `text`, after white space: decimal with an optional sign. Stops at the first
// unit that doesn't fit; 0 for none; held at the ends of the 32-bit range.
std::int32_t scan_long(std::u16string_view text);
// The same for a double, of any length: digits with at most one ".", and an exponent behind an "e". No other
// form is a number: "inf" and "nan" have none, "0x10" ends behind its 0. Infinite, or 0, out of range.
double scan_double(std::u16string_view text);

struct ScannedDouble {
    double value = 0;
    std::size_t length = 0; // units taken, white space included; 0 if there is no number
};
ScannedDouble scan_double_at(std::u16string_view text);

struct ScannedLong {
    std::int32_t value = 0;
    std::size_t length = 0; // as above
};
// An integer of the base: white space, an optional sign, the prefix "0x" or none for base 16, and digits.
// Base 0 is told by the number: 16 behind "0x", 8 behind "0", else 10.
ScannedLong scan_long_at(std::u16string_view text, int base);
// The bits of an unsigned hexadecimal number in these forms, held at 0xFFFFFFFF.
ScannedLong scan_hexadecimal_at(std::u16string_view text);

// With so many digits behind the point: fixed, or scientific with one digit in front and an exponent of two
// digits or more; general is so many significant digits without trailing zeros, in the shorter of both.
std::string print_double(double value, std::chars_format format, int precision);
// So many significant digits (at least 1), trailing zeros and point kept; scientific below 1e-4, and where
// the digits don't reach the point.
std::string format_significant(double value, int digits);
inline std::string format_11_digits(double value) {
    return format_significant(value, 11);
}

} // namespace pm
