#pragma once

#include <pm/pm_c.h>
#include <pm/tree.h>
#include <string_view>

// Properties by paths in which "*" is an ordinary character: PM9_EXACT.
namespace pm::c {

// Null if there is no such property.
const PM_Property* find_exact(const Tree& tree, std::string_view path);

// As Tree::at(), of the value as its own type.
Value exact_value(const Tree& tree, std::string_view path);

// As Tree::set().
void set_exact(Tree& tree, std::string_view path, const Value& value, bool strict);

// As pm9_tree_erase() and pm9_tree_contains(): what there was, and what there is.
std::int32_t erase_exact(Tree& tree, std::string_view path);
std::int32_t kind_at_exact(const Tree& tree, std::string_view path);

} // namespace pm::c
