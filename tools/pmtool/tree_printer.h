#pragma once

#include <pm/pm.h>
#include <string>

namespace pmtool {

// The subtree `path` as text for the eye: a property a line with type and value, nodes indented. False if
// there is no such node.
bool print_tree(const PM_Object& object, const std::u16string& path, int depth, std::string& out);

// The same as JSON: {"properties": [{"name", "type", "value"}...], "nodes": [{"name", "properties",
// "nodes"}...]}. Raw bytes are hexadecimal digits; numbers that JSON hasn't are strings.
bool print_json(const PM_Object& object, const std::u16string& path, int depth, std::string& out);

// "name: type = value"
std::string property_line(const std::string& name, const struct Property& property);

} // namespace pmtool
