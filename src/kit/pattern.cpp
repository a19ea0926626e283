#include "pattern_walk.h"
#include "tree_place.h"
#include <algorithm>
#include <pm/build.h>
#include <pm/kit/error.h>
#include <pm/kit/pattern.h>

namespace pm::kit {

namespace {

constexpr std::u16string_view literal_star = u"[*]";
constexpr std::u16string_view literal_bracket = u"[[]";

// The parts of a name between its asterisks, with what is escaped as it is meant.
std::vector<std::u16string> parts_of(std::u16string_view name) {
    std::vector<std::u16string> parts(1);
    while (!name.empty()) {
        const bool escape = name.starts_with(literal_star) || name.starts_with(literal_bracket);
        if (escape) {
            parts.back() += name[1];
        } else if (name.front() == u'*') {
            parts.emplace_back();
        } else {
            parts.back() += name.front();
        }
        name.remove_prefix(escape ? literal_star.size() : 1);
    }
    return parts;
}

bool matches_parts(const std::vector<std::u16string>& parts, std::u16string_view name) {
    if (parts.size() == 1) return name == parts.front();
    if (!name.starts_with(parts.front())) return false;
    name.remove_prefix(parts.front().size());
    if (!name.ends_with(parts.back())) return false;
    name.remove_suffix(parts.back().size());
    for (std::size_t i = 1; i + 1 < parts.size(); ++i) {
        const std::size_t found = name.find(parts[i]);
        if (found == std::u16string_view::npos) return false;
        name.remove_prefix(found + parts[i].size());
    }
    return true;
}

// Gathers what a pattern matches.
class Search {
public:
    // With a tree, what has a name of the pattern is looked up in it.
    Search(const Pattern& pattern, std::optional<TreeBuilder> tree)
        : m_walk(pattern), m_only_nodes(pattern.only_nodes()), m_tree(tree) {}

    std::vector<Match> run(const Node& root) {
        if (m_walk.matches()) m_found.push_back({m_path, root, std::nullopt});
        if (m_walk.may_match_below()) open(root);
        while (!m_levels.empty()) {
            step();
        }
        return std::move(m_found);
    }

private:
    // A node whose content is gone through. They are held here, as a tree may be deeper than the stack.
    struct Level {
        const PM_Node* next; // the child whose turn it is; null behind the last
        bool is_only;        // the others are left out
        std::size_t length;  // of the node's path
    };

    void open(const Node& node) {
        const std::u16string* const name = m_tree ? m_walk.only_name() : nullptr;
        if (name != nullptr) {
            const PM_Property* const property = m_tree->find_property(*node.handle(), *name);
            if (property != nullptr) take(node, Property(*property));
        } else {
            for (const Property property : node.properties()) {
                take(node, property);
            }
        }
        const PM_Node* const child =
            name != nullptr ? m_tree->find_child(*node.handle(), *name) : node.view().first_child;
        m_levels.push_back({child, name != nullptr, m_path.size()});
    }
    void step() {
        Level& level = m_levels.back();
        m_path.resize(level.length);
        if (level.next == nullptr) {
            m_levels.pop_back();
            m_walk.leave();
            return;
        }
        const Node child(*level.next);
        level.next = level.is_only ? nullptr : child.view().next_sibling;
        m_walk.enter(child.name16());
        (m_path += child.name()) += '\\';
        if (m_walk.matches()) m_found.push_back({m_path, child, std::nullopt});
        m_walk.may_match_below() ? open(child) : m_walk.leave();
    }
    void take(const Node& node, const Property& property) {
        if (m_only_nodes || !m_walk.matches_below(property.name16(), false)) return;
        m_found.push_back({m_path + property.name(), node, property});
    }

    PatternWalk m_walk;
    bool m_only_nodes;
    std::optional<TreeBuilder> m_tree;
    std::vector<Match> m_found;
    std::string m_path = "\\"; // of the node it stands on
    std::vector<Level> m_levels;
};

} // namespace

Pattern::Pattern(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) throw Error("a path can't hold a zero");
    const std::u16string wide = to_utf16(text);
    m_only_nodes = is_node_path(wide);
    std::u16string path;
    for_each_name(wide, [&](std::u16string_view name) {
        Component component;
        component.any_depth = name == u"**";
        // Several in a row say no more than one, and would all be followed.
        if (component.any_depth && !m_components.empty() && m_components.back().any_depth) return;
        if (!component.any_depth) component.parts = parts_of(name);
        m_literal = m_literal && component.parts.size() == 1;
        if (m_literal) (path += u'\\') += component.parts.front();
        m_components.push_back(std::move(component));
    });
    if (m_literal) m_path = to_utf8(path) + (m_only_nodes ? "\\" : "");
    // At the end it stands for one name at least.
    if (!m_components.empty() && m_components.back().any_depth) {
        m_components.push_back({false, {u"", u""}});
    }
}

bool Pattern::matches(std::string_view path) const {
    const std::u16string wide = to_utf16(path);
    if (m_only_nodes && !is_node_path(wide)) return false;
    PatternWalk walk(*this);
    for_each_name(wide, [&](std::u16string_view name) { walk.enter(name); });
    return walk.matches();
}

PatternWalk::PatternWalk(const Pattern& pattern) : m_pattern(&pattern) {
    States start;
    add(start, 0);
    m_states.push_back(std::move(start));
}

// What is added rises, so that it is there already unless it is behind the last.
void PatternWalk::add(States& states, std::size_t used) const {
    const auto& components = m_pattern->m_components;
    if (states.empty() || states.back() < used) states.push_back(used);
    const bool may_be_none = used < components.size() && components[used].any_depth;
    if (may_be_none && states.back() == used) states.push_back(used + 1);
}

PatternWalk::States PatternWalk::after(std::u16string_view name) const {
    const auto& components = m_pattern->m_components;
    States next;
    for (const std::size_t used : m_states.back()) {
        if (used == components.size()) continue;
        if (components[used].any_depth) {
            add(next, used);
        } else if (matches_parts(components[used].parts, name)) {
            add(next, used + 1);
        }
    }
    return next;
}

bool PatternWalk::is_whole(const States& states) const {
    return !states.empty() && states.back() == m_pattern->m_components.size();
}

bool PatternWalk::matches() const {
    return is_whole(m_states.back());
}

bool PatternWalk::matches_below(std::u16string_view name, bool node) const {
    if (m_pattern->only_nodes() && !node) return false;
    return is_whole(after(name));
}

bool PatternWalk::may_match_below() const {
    return !m_states.back().empty() && m_states.back().front() < m_pattern->m_components.size();
}

const std::u16string* PatternWalk::only_name() const {
    if (m_states.back().size() != 1 || !may_match_below()) return nullptr;
    const auto& parts = m_pattern->m_components[m_states.back().front()].parts;
    return parts.size() == 1 ? &parts.front() : nullptr;
}

void PatternWalk::enter(std::u16string_view name) {
    m_states.push_back(after(name));
}

std::vector<Match> find_all(const Node& root, const Pattern& pattern) {
    return Search(pattern, std::nullopt).run(root);
}

std::vector<Match> find_all(const Tree& tree, const Pattern& pattern) {
    // A builder that only looks things up changes nothing.
    return Search(pattern, TreeBuilder(const_cast<PM_Object&>(tree.object()))).run(tree.root());
}

std::string escaped(std::string_view path) {
    std::string text;
    text.reserve(path.size());
    for (const char c : path) {
        if (c == '*' || c == '[') {
            ((text += '[') += c) += ']';
        } else {
            text += c;
        }
    }
    return text;
}

std::string full_path(std::string_view path) {
    std::string full;
    for (std::string_view rest = path; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\\'), rest.size());
        if (end > 0) (full += '\\') += rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    if (path.empty() || path.back() == '\\') full += '\\';
    return full;
}

} // namespace pm::kit
