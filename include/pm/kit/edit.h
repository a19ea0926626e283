#pragma once

#include <cstdint>
#include <optional>
#include <pm/kit/difference.h>
#include <pm/kit/export.h>
#include <pm/kit/stored.h>
#include <pm/tree.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Changes of a tree, one by one and as scripts.
//
// A script is lines of text, UTF-8:
//
//   # a comment, as every line that begins so; empty lines don't count
//   set \media\copies long 2              makes what is missing; a property that is there keeps its place
//   set \media\copies loose long 2        the same, not strict
//   set \media\empty\                     makes a node
//   set \media\size\*\name string "A0"    every property there is that matches; there must be one
//   rm \media\copies                      the property of this path, or else the node
//   rm \media\                            the node and all below it
//   mv \a\x \b\y                          a property, or else a node, gets another path
//   mv \a\ \b\c\                          a node; what is in it keeps its order
//   mv \a\x \a\x                          the same path: to the end of its node's list
//   mv \a\* \b\                           with a "*": all that match, under their names
//   cp \a\x \b\y                          as mv, the source staying
//
// Paths are patterns (pattern.h), so that an asterisk in a name is "[*]"; a target is one path, escaped the
// same way. A path with a blank, a quote in front, a "#" or what isn't printed stands in double quotes as
// JSON has it: "\\two words\\x". Values are those of value_text().
//
// mv and cp make the nodes that the target needs and take its property's or node's place only where that is
// free. A target that ends in a backslash is a node: a property goes into it under its own name.
//
// The copies of a script make 1000000 nodes and properties at most, and hold 256 MB of values together with
// what its patterns set.
namespace pm::kit {

struct Edit {
    enum class Verb { set, remove, move, copy };

    Verb verb = Verb::set;
    std::string path = {};            // a pattern
    std::string target = {};          // of move and copy; escaped as a pattern is
    std::optional<Stored> value = {}; // of set; nothing makes a node
    std::uint64_t line = 0;           // in its script, from 1; 0 without one

    bool operator==(const Edit&) const = default;
};

// Throws Error with line and column for what isn't told above.
[[nodiscard]] PM_KIT_API std::vector<Edit> parse_script(std::string_view text);
// The line of an edit, without its end.
[[nodiscard]] PM_KIT_API std::string edit_line(const Edit& edit);

// All or nothing: when it throws, the tree is as before. Throws Error, with the edit's line, for what isn't
// there, a target that is taken, a node that would go into itself, a path that can't be made (the message
// says which), and more than a script may make; want of memory passes. Handles into the tree don't survive
// it.
PM_KIT_API void apply_edits(Tree& tree, std::span<const Edit> edits);
// The tree that this makes; `tree` stays.
[[nodiscard]] PM_KIT_API Tree applied(const Tree& tree, std::span<const Edit> edits);

// One edit at once, as a script of it alone. When it throws, what was done stays.
PM_KIT_API void apply_edit(Tree& tree, const Edit& edit);

// The edits that turn the first tree of a comparison into the second, exactly: order, empty nodes, strictness
// and bytes, as far as the comparison counted them.
[[nodiscard]] PM_KIT_API std::vector<Edit> edits_of(std::span<const Difference> differences);
// The same as text for parse_script().
[[nodiscard]] PM_KIT_API std::string script(std::span<const Difference> differences);

} // namespace pm::kit
