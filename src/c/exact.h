#pragma once

#include <pm/error_number.h>
#include <pm/exception.h>
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

// What stands at a path that `look` looks for: nothing for a path that nothing can have.
template<class Look>
std::int32_t unless_bad_path(Look look) {
    try {
        return look();
    } catch (const PM_Warning& e) {
        if (e.m_number != PM_ERR_BAD_PATH) throw;
        return PM9_NOTHING;
    }
}

// As pm9_tree_erase() and pm9_tree_contains(): what there was, and what there is.
std::int32_t erase_exact(Tree& tree, std::string_view path);
std::int32_t kind_at_exact(const Tree& tree, std::string_view path);

} // namespace pm::c
