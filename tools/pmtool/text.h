#pragma once

#include <string>
#include <string_view>

namespace pmtool {

// As UTF-8 that is always valid: an unpaired surrogate is shown as U+FFFD.
std::string shown(std::u16string_view text);

// One line for display: trailing white space is dropped, the rest as kit::printable_text() has it.
std::string printable(std::string_view text);

// The same line by line, with what ends the lines.
std::string printable_lines(std::string_view text);

// A line on standard error, behind the program's name. A file's name can't make it more than that; of one
// that no screen would hold the middle is left out.
void complain(std::string_view line);

// To standard error, as it is. What that doesn't take can't be told anywhere else, and ends no work.
void print_error(std::string_view text);

// In double quotes, with quotes, backslashes and control characters escaped as in JSON.
std::string in_quotes(std::string_view text);

// ASCII only.
std::string lower_case(std::string_view text);
std::string_view trim(std::string_view text);

// Without the line end; moves `rest` behind it.
std::string_view take_line(std::string_view& rest);

} // namespace pmtool
