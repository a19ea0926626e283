#pragma once

#include <optional>
#include <pm/kit/export.h>
#include <pm/kit/stored.h>
#include <pm/tree.h>
#include <string>
#include <vector>

// Merging two trees that come from one.
//
//     const pm::kit::Merged merged = pm::kit::merge(base, mine, yours);
//     for (const pm::kit::Conflict& conflict : merged.conflicts) {
//         std::cout << pm::kit::conflict_text(conflict) << '\n';
//     }
//
// A conflict is no failure: the merged tree is whole, and holds what one of the sides says.
namespace pm::kit {

// Both sides changed the same property, and not alike.
struct Conflict {
    // Of the property; or of a node that one side removed and the other changed in its order or its nodes
    // alone, or added with nothing in it in a node that the first removed.
    std::string path = {};
    std::optional<Stored> base = {}; // nothing where it isn't
    std::optional<Stored> first = {};
    std::optional<Stored> second = {};

    bool operator==(const Conflict&) const = default;
};

// Whose value a conflict leaves in the merged tree.
enum class Prefer { first, second };

struct Merged {
    Tree tree = {};
    // Node by node: of its properties, then of its children, each in the order that the list gets, in which
    // what one side removed comes behind what the other has.
    std::vector<Conflict> conflicts = {};
};

// What either side changed of `base` is changed, added or removed. A property that both changed otherwise, or
// one changed and the other removed, is a conflict and comes out as `prefer` says. Of a node
// that one side removed each property that the other side changed or added in it, at any depth, is a
// conflict: if `prefer` is the side that removed it, all of it goes; else it stays for these alone. A list
// whose order one side alone changed has that order; else it has the order of the first side, with what the
// second added behind. The merged tree is one of its own; the three stay as they are, and two of them may be
// the same. Takes time in proportion to the trees, and no stack however deep they are.
[[nodiscard]] PM_KIT_API Merged merge(const Tree& base, const Tree& first, const Tree& second,
                                      Prefer prefer = Prefer::first);

// One line for the eye: "\media\copies: long 1 -> long 2 | long 3", "-" where it isn't; of a node
// "\media\: removed on one side, changed on the other".
[[nodiscard]] PM_KIT_API std::string conflict_text(const Conflict& conflict);

} // namespace pm::kit
