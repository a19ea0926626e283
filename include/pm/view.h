#pragma once

#include <cstddef>
#include <pm/export.h>
#include <pm/object.h>

// Nodes and properties as they are stored, for what walks trees without a copy of each value: tree.h, and
// whoever has a node or property from PM_Iterator::currentNode() and currentProp().
//
// A PM_Node or PM_Property stays the same one until it is deleted, whatever else of the tree changes. What a
// view holds is valid until the tree changes.

struct PM_Property_View {
    const char16_t* name;    // zero-terminated
    PropType type;           // of what was written last
    bool strict;             // whether only this type may be read and written
    const void* data;        // the value's bytes; null if there are none
    std::size_t size;        // in bytes, terminator of a text included
    const PM_Property* next; // the next property of its node, or null
};

struct PM_Node_View {
    const char16_t* name;  // zero-terminated; "Root" at the root
    const PM_Node* parent; // null at the root
    const PM_Node* next_sibling;
    const PM_Node* first_child;
    const PM_Property* first_property;
};

PM_API PM_Property_View pm_view(const PM_Property& property) noexcept;
PM_API PM_Node_View pm_view(const PM_Node& node) noexcept;

// The property that PM_Object::GetProperty() reads with this path and index, of whatever type, or null.
// Raises what that raises for a path that is too long.
PM_API const PM_Property* pm_find_property(const PM_Object& object, const char16_t* path, int index = -1);
// The node of that path, or null; the root for a path without components. "*" is ordinary.
PM_API const PM_Node* pm_find_node(const PM_Object& object, const char16_t* path);
