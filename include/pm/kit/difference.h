#pragma once

#include <optional>
#include <pm/kit/export.h>
#include <pm/kit/stored.h>
#include <pm/tree.h>
#include <string>
#include <string_view>
#include <vector>

// Paths of the kit: "\" in front of each name, the root is "\". The path of a node ends in a backslash, that
// of a property doesn't, so that the two are told apart where they have the same name. Names are UTF-8 as
// text.h has it.
//
//     for (const pm::kit::Difference& difference : pm::kit::compare(before, after)) {
//         std::cout << pm::kit::difference_text(difference) << '\n';
//     }
//
// What comes out is the caller's own and holds no handles: the trees may change or die afterwards.
namespace pm::kit {

enum class Change {
    added,      // only the second tree has it
    removed,    // only the first one has it
    type,       // another type; the bytes are looked at no further
    value,      // other bytes
    strictness, // nothing but Stored::strict
    order       // a node's properties, or its children, stand in another order
};

// "added", "removed", "type", "value", "strictness", "order".
[[nodiscard]] PM_KIT_API std::string_view change_name(Change change) noexcept;

struct Difference {
    Change change = Change::value;
    std::string path = {}; // of order the node
    // The property's value on either side; nothing for nodes, and where it isn't.
    std::optional<Stored> before = {};
    std::optional<Stored> after = {};
    // Of order: what has to go to the end of its list, one after the other, to have the second tree's order
    // once the other differences are made up for. All are properties or all are nodes.
    std::vector<std::string> moved = {};

    bool operator==(const Difference&) const = default;
};

struct CompareOptions {
    // Two doubles that differ by no more are the same. With 0 their bits count, so that -0.0 isn't 0.0 and a
    // NaN is itself.
    double tolerance = 0;
    std::vector<std::string> exclude = {}; // patterns (pattern.h); what matches counts on neither side
    bool order = true;
    bool strictness = true;
};

// What turns the first tree into the second, in the order of the second, by nodes: what a node lost, then
// what its properties and children are now, then their order. A node that was added or removed comes before
// all that is in it, each node and property for itself. Takes time in proportion to both trees. Throws Error
// for a pattern that isn't one.
[[nodiscard]] PM_KIT_API std::vector<Difference> compare(const Node& first, const Node& second,
                                                         const CompareOptions& options = {});
[[nodiscard]] PM_KIT_API std::vector<Difference> compare(const Tree& first, const Tree& second,
                                                         const CompareOptions& options = {});

// The same of what has this path (pattern.h: full_path()) alone: the property and the node, of a path that
// ends in a backslash the node. The paths are whole ones, and so are those that the patterns match. Nothing
// if neither tree has either; what one has alone is added or removed itself.
[[nodiscard]] PM_KIT_API std::optional<std::vector<Difference>>
compare_at(const Tree& first, const Tree& second, std::string_view path, const CompareOptions& options = {});

// Whether two trees are the same in all: names, types, strictness, bytes, order.
[[nodiscard]] PM_KIT_API bool identical(const Node& first, const Node& second);
[[nodiscard]] PM_KIT_API bool identical(const Tree& first, const Tree& second);

// One line for the eye: "+ \media\copies: long 2", "- ...", "~ \a: long 1 -> long 2", "order of \media\".
[[nodiscard]] PM_KIT_API std::string difference_text(const Difference& difference);

} // namespace pm::kit
