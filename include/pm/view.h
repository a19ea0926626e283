#pragma once

#include <cstddef>
#include <pm/export.h>
#include <pm/object.h>

// Nodes and properties as they are stored, for what walks trees without a copy of each value: node.h stands
// on it, and so may whoever has a node or property from PM_Iterator::currentNode() and currentProp():
//
//     const PM_Property_View property = pm_view(*walk->currentProp());
//     if (property.type == PROP_DOUBLE) std::memcpy(&number, property.data, sizeof number);
//
// A PM_Node or PM_Property stays the same one until it is deleted, whatever else of the tree changes. What a
// view holds is valid until the tree changes.

// `data` holds `size` bytes as PropType tells them; a text of PROP_STRING is wide, unless it was set from
// narrow bytes, and has no terminator if it was cut to the 4097 units that a property takes.
struct PM_Property_View {
    const char16_t* name;    // zero-terminated
    PropType type;           // of what was written last
    bool strict;             // whether only this type may be read and written
    const void* data;        // the value's bytes; null if there are none
    std::size_t size;        // in bytes, terminator of a text included
    const PM_Property* next; // the next property of its node, or null
};

// Null means that there is none.
struct PM_Node_View {
    const char16_t* name;  // zero-terminated; "Root" at the root
    const PM_Node* parent; // null at the root
    const PM_Node* next_sibling;
    const PM_Node* first_child;
    const PM_Property* first_property;
};

// Neither allocates nor changes anything.
PM_API PM_Property_View pm_view(const PM_Property& property) noexcept;
PM_API PM_Node_View pm_view(const PM_Node& node) noexcept;

// Number 50 (PM_Severe) out of both for an object without a tree. pm::property_at() and pm::node_exists() of
// inspect.h ask the same and throw nothing.

// The property that PM_Object::GetProperty() reads with this path and index, of whatever type, or null.
// Number 51 (PM_Warning) with the path as given for a resolved path of more than 1023 units, place
// "pm_find_property()", and for one of more than 256 known components, place "PM_Path::PM_Path()".
PM_API const PM_Property* pm_find_property(const PM_Object& object, const char16_t* path, int index = -1);
// The node of that path, or null; the root for a path without components. "*" is ordinary, and there is no
// limit to the length of the path, only to its components.
PM_API const PM_Node* pm_find_node(const PM_Object& object, const char16_t* path);
