#pragma once

#include <optional>
#include <pm/kit/export.h>
#include <pm/tree.h>
#include <string>
#include <string_view>
#include <vector>

// Patterns of paths.
//
//   \media\copies      what has this path, property or node
//   \media\            the node of this path, not a property
//   \media\size\*\name "*" within a name stands for any characters, none too, and never for a backslash
//   \**\name           "**" as a whole name stands for any number of names, none too
//   \media\**          at the end: all that is below, at least one name
//   \a[*]b             "[*]" is an asterisk and "[[]" a bracket; any other bracket stands for itself
//
// The first backslash may be missing, and several in a row count as one. Case counts.
//
//     for (const pm::kit::Match& match : pm::kit::find_all(tree, pm::kit::Pattern("\\**\\name"))) {
//         if (match.property) std::cout << match.path << '\n';
//     }
namespace pm::kit {

class PM_KIT_API Pattern {
public:
    // Throws Error for a text that holds a zero.
    explicit Pattern(std::string_view text);

    // Whether it has no "*": then it stands for one path, which path() gives.
    [[nodiscard]] bool is_literal() const noexcept { return m_literal; }
    // Of a literal pattern: the path, with its asterisks as they are.
    [[nodiscard]] const std::string& path() const noexcept { return m_path; }
    // Whether it ends in a backslash, so that only nodes match. That of the root does.
    [[nodiscard]] bool only_nodes() const noexcept { return m_only_nodes; }
    // A path as difference.h has them.
    [[nodiscard]] bool matches(std::string_view path) const;

private:
    friend class PatternWalk;
    struct Component {
        bool any_depth = false;            // "**"
        std::vector<std::u16string> parts; // what stands between the asterisks
    };
    std::vector<Component> m_components;
    std::string m_path;
    bool m_literal = true;
    bool m_only_nodes = false;
};

// A node, or a property of it. Its handles are as those of node.h: valid until what they stand for is
// deleted.
struct Match {
    std::string path = {}; // as difference.h has them
    Node node = {};        // that of the property, or the one that matched
    std::optional<Property> property = {};
};

// All that matches, none included, in the order of the tree: a node, its properties, its children with what
// is below them.
[[nodiscard]] PM_KIT_API std::vector<Match> find_all(const Node& root, const Pattern& pattern);
[[nodiscard]] PM_KIT_API std::vector<Match> find_all(const Tree& tree, const Pattern& pattern);

// The path as a pattern that matches nothing else.
[[nodiscard]] PM_KIT_API std::string escaped(std::string_view path);
// A path as a user writes it, as this header has them: one backslash in front of each name. A backslash at
// the end stays.
[[nodiscard]] PM_KIT_API std::string full_path(std::string_view path);

} // namespace pm::kit
