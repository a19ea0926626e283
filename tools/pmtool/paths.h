#pragma once

#include <optional>
#include <pm/pm.h>
#include <string>
#include <string_view>

namespace pmtool {

// Paths as a user writes them, with or without a leading backslash, become "\a\b"; the root is "\".
std::u16string full_path(std::u16string_view path);
std::u16string join_path(const std::u16string& node, std::u16string_view name);

// What stands at a path of that form, each component as it is: a "*" stands for no index here.
std::optional<pm::Node> node_at(const PM_Object& object, const std::u16string& path);
std::optional<pm::Property> property_at(const PM_Object& object, const std::u16string& path);

} // namespace pmtool
