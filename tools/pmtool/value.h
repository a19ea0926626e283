#pragma once

#include <pm/pm.h>
#include <string>
#include <string_view>

namespace pmtool {

using pm::Value;

// "long", "double", "string", "bool" or "raw".
std::string_view type_name(const Value& value);
std::string type_names();

// As `get` prints it: text as it is, hexadecimal digits for raw bytes, the shortest form of a double that
// reads back to the same bits.
std::string plain_text(const Value& value);
// As `tree` prints it: texts in quotes.
std::string shown_text(const Value& value);

// The value that `text` stands for. The first form takes the type's name; Failure if there is no such type
// or the text doesn't fit it. The second takes the type from the text's form: whole number, number, true or
// false, \hexadecimal digits\, anything else a string.
Value parse_value(std::string_view text, std::string_view type);
Value parse_value(std::string_view text);

void set_property(PM_Object& object, const std::u16string& path, const Value& value);

} // namespace pmtool
