#pragma once

#include <cstddef>
#include <cstdint>
#include <pm/value_text.h>
#include <string_view>

namespace pm {

// Units that the text of a double may take, terminator included.
inline constexpr std::size_t double_text_capacity = 64;

// The text of a double that parse_double() reads back to the same 64 bits: "2.5" for a number of at most
// four decimals, otherwise eleven digits with the exact bits behind, "0.33333333333 (55555555U3_#T@)".
// Negative zero is written as "0.0". Fills `double_text_capacity` units, with zeros behind the text, and
// gives its length.
std::size_t format_double(double value, char16_t* buffer);
// The same in ASCII, without a terminator or anything else behind, into room for `double_text_capacity`
// bytes; gives the end.
char* format_double(double value, char* out);

// Reads a double from the whole of `text`: the exact form, the short form, or whatever a scan for a number
// takes completely. A visible number that was edited voids the exact bits behind it. False, with `out`
// untouched, if the text is no number.
bool parse_double(std::u16string_view text, double& out);

// Whether format_double() surely shows a positive number by these eleven digits, so many of them behind the
// point.
[[nodiscard]] bool shows_digits(double magnitude, std::uint64_t digits, std::size_t decimals);

// What pm_hex_to_bin() makes of digits that are all ASCII and even in number; `out` may begin where they do.
// False, with nothing done, if there are others among them.
[[nodiscard]] bool hex_to_bytes(std::u16string_view digits, unsigned char* out);

} // namespace pm
