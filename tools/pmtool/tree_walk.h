#pragma once

#include "value.h"
#include <optional>
#include <pm/pm.h>
#include <string>

namespace pmtool {

// Hears of a subtree in its own order: a node's properties, then its children.
class TreeVisitor {
public:
    virtual ~TreeVisitor() = default;
    virtual void on_property(const Property& property) = 0;
    virtual void on_enter(const std::u16string& node) = 0;
    virtual void on_leave() = 0;
};

// Walks the node `path`, "\" for the root, down `depth` levels, 0 for all. False, with nothing heard of, if
// there is no such node.
bool walk_tree(const PM_Object& object, const std::u16string& path, int depth, TreeVisitor& visitor);

bool node_exists(const PM_Object& object, const std::u16string& path);
std::optional<Property> find_property(const PM_Object& object, const std::u16string& path);

// Paths as a user writes them, with or without a leading backslash, become "\a\b"; the root is "\".
std::u16string full_path(std::u16string_view path);
std::u16string join_path(const std::u16string& node, std::u16string_view name);

} // namespace pmtool
