#pragma once

#include <pm/kit/stored.h>
#include <string>
#include <string_view>

namespace pmtool {

// "long, double, string, bool, raw"
std::string type_names();

// As `get` prints it: text as it is, hexadecimal digits for raw bytes and for what no value tells exactly.
std::string plain_text(const pm::kit::Stored& value);
// As `tree` prints it behind the type: texts in quotes.
std::string shown_text(const pm::kit::Stored& value);

// The value that `text` stands for as a type, or by its form: whole number, number, true or false,
// \hexadecimal digits\, anything else a string. Failure if there is no such type or the text doesn't fit it.
pm::kit::Stored parse_value(std::string_view text, PropType type);
pm::kit::Stored parse_value(std::string_view text);
PropType parse_type(const std::string& name);

} // namespace pmtool
