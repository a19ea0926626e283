#pragma once

#include <cstddef>
#include <optional>
#include <pm/detail/handle_range.h>
#include <pm/object.h>
#include <pm/text.h>
#include <pm/value.h>
#include <pm/view.h>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

// Nodes and properties as handles and ranges, over a tree that is a pm::Tree or a PM_Object.
//
//     for (auto [node, depth] : pm::root_of(object).walk()) {
//         for (auto [name, value] : node.properties()) { ... }
//         for (pm::Node child : node.children()) { ... }
//     }
//
// A handle is a pointer: cheap to copy, equal to another of the same thing. It is valid until the node or
// property is deleted or its tree dies; what else happens in the tree does it no harm, and it shows what is
// there when it is asked. A handle that was made without a tree may only be assigned to. Handles of one tree
// belong to its thread, as the tree does; they only look, build.h changes what they lead to.
//
// Names come out in UTF-8 (text.h) or, from name16(), as they are stored.
namespace pm {

// One property of a node.
class Property {
public:
    // A handle of nothing.
    Property() = default;
    // Of what an iterator or view.h gave.
    explicit Property(const PM_Property& property) noexcept : m_property(&property) {}

    // Valid as long as the property.
    [[nodiscard]] std::u16string_view name16() const noexcept { return view().name; }
    [[nodiscard]] std::string name() const { return to_utf8(name16()); }
    // What was written last.
    [[nodiscard]] PropType type() const noexcept { return view().type; }
    // Whether only this type may be read and written through PM_Object.
    [[nodiscard]] bool strict() const noexcept { return view().strict; }
    // What is stored, a text with its terminator; valid until the value changes.
    [[nodiscard]] std::span<const std::byte> bytes() const noexcept;
    // The value as its own type, nothing for PROP_NONE. A number or truth value that is stored in more bytes
    // than its type has is number 58, one without bytes 59; both with place "pm::Tree" and the property's
    // name. Only a damaged compound file holds such. Fewer bytes than the type has are its low ones.
    [[nodiscard]] Value value() const;
    // The value as a type that is known; number 54, with the property's name, for another, and the numbers of
    // value() for one that is damaged. Nothing is converted but the width of text, integers and floats.
    template<Readable T>
    [[nodiscard]] T as() const;

    // The way to view.h.
    [[nodiscard]] PM_Property_View view() const noexcept { return pm_view(*m_property); }
    [[nodiscard]] const PM_Property* handle() const noexcept { return m_property; }
    friend bool operator==(const Property&, const Property&) = default;

    // auto [name, value] = property; the name in UTF-8, the value as value() gives it. Both are copies.
    template<std::size_t Index>
    [[nodiscard]] friend auto get(const Property& property) {
        if constexpr (Index == 0) {
            return property.name();
        } else {
            return property.value();
        }
    }

private:
    const PM_Property* m_property = nullptr;
};

// Forward ranges, in the order of creation. Their iterators stay valid until what they stand on is deleted,
// also when the range itself is gone; what is made behind an iterator's place is met.
using Properties = detail::HandleRange<detail::PropertyStep, Property>;
using Children = detail::HandleRange<detail::ChildStep, Node>;
// Pairs of a node and its depth below the first one, which has 0; a node comes before its children.
using Walk = detail::HandleRange<detail::WalkStep, std::pair<Node, int>>;

// One node of a tree.
class Node {
public:
    // A handle of nothing.
    Node() = default;
    // Of what an iterator or view.h gave.
    explicit Node(const PM_Node& node) noexcept : m_node(&node) {}

    // "Root" for the root. Valid as long as the node.
    [[nodiscard]] std::u16string_view name16() const noexcept { return view().name; }
    [[nodiscard]] std::string name() const { return to_utf8(name16()); }
    // From the root: "\media\size"; "\" for the root itself.
    [[nodiscard]] std::string path() const;
    [[nodiscard]] bool is_root() const noexcept { return view().parent == nullptr; }
    // The node that holds this one; nothing for the root.
    [[nodiscard]] std::optional<Node> parent() const noexcept;

    // Its own ones, not those of nodes below it; empty ranges where there are none.
    [[nodiscard]] Properties properties() const noexcept;
    [[nodiscard]] Children children() const noexcept;
    // This node and what is below it, `levels` deep, 0 for all. Takes no stack, however deep the tree.
    [[nodiscard]] Walk walk(int levels = 0) const noexcept;

    // The way to view.h.
    [[nodiscard]] PM_Node_View view() const noexcept { return pm_view(*m_node); }
    [[nodiscard]] const PM_Node* handle() const noexcept { return m_node; }
    friend bool operator==(const Node&, const Node&) = default;

private:
    const PM_Node* m_node = nullptr;
};

// Handles into a tree that is kept as a PM_Object. A path that holds a zero is number 51 (PM_Warning, place
// "pm::Tree", detail what stands before it); beside that they raise what pm_find_node() and
// pm_find_property() raise.
[[nodiscard]] Node root_of(const PM_Object& object);
// Nothing if there is no such node; the root for a path without components.
[[nodiscard]] std::optional<Node> find_node(const PM_Object& object, const TextView& path);
// Nothing if there is no such property. The index means what it means to PM_Object::GetProperty().
[[nodiscard]] std::optional<Property> find_property(const PM_Object& object, const TextView& path,
                                                    int index = -1);

} // namespace pm

template<>
struct std::tuple_size<pm::Property> : std::integral_constant<std::size_t, 2> {};
template<>
struct std::tuple_element<0, pm::Property> {
    using type = std::string;
};
template<>
struct std::tuple_element<1, pm::Property> {
    using type = pm::Value;
};

#include <pm/detail/node.h>
