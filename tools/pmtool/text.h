#pragma once

#include <string>
#include <string_view>

namespace pmtool {

// What isn't valid in one form becomes U+FFFD in the other, so that results are always valid.
std::string to_utf8(std::u16string_view text);
std::u16string to_utf16(std::string_view text);

// One line for display: trailing white space is dropped, control characters are shown as \xNN.
std::string printable(std::string_view text);

// In double quotes, with quotes, backslashes and control characters escaped as in JSON.
std::string in_quotes(std::string_view text);

// ASCII only.
std::string lower_case(std::string_view text);
bool starts_with_ignoring_case(std::string_view text, std::string_view start);
std::string_view trim(std::string_view text);

// Without the line end; moves `rest` behind it.
std::string_view take_line(std::string_view& rest);

} // namespace pmtool
