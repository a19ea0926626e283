#pragma once

#include <pm/pm.h>
#include <string>

namespace pmtool {

// A node as text for the eye: a property a line with type and value, nodes indented, `depth` levels down, 0
// for all.
std::string tree_text(const pm::Node& node, int depth);

// The same as JSON: {"properties": [{"name", "type", "value"}...], "nodes": [{"name", "properties",
// "nodes"}...]}. Raw bytes are hexadecimal digits; numbers that JSON hasn't are strings.
std::string tree_json(const pm::Node& node, int depth);

// "name: type = value"
std::string property_line(const pm::Property& property);

} // namespace pmtool
