#include "end_moves.h"
#include "text_reader.h"
#include "tree_place.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/kit/edit.h>
#include <pm/kit/error.h>
#include <pm/kit/pattern.h>

namespace pm::kit {

namespace {

// The end of a way down: a node, or a property of it. Paths are without escapes.
struct Place {
    SplitPath path;
    bool is_node;
};

Place place_of(std::string_view path) {
    const std::u16string wide = to_utf16(path);
    return {split_path(wide), is_node_path(wide)};
}

std::size_t size_of(const Stored& value) {
    return value.bytes ? value.bytes->size() : 0;
}

// Whether one path lies in the node of the other.
bool is_below(const std::string& path, const std::string& node) {
    return !node.empty() && path.starts_with(node);
}

// A few lines of a script can ask for more than any machine has. What copies and patterns may still make.
class Allowance {
public:
    // False if there isn't so much left.
    [[nodiscard]] bool take(std::size_t items, std::size_t bytes) {
        if (items > m_items || bytes > m_bytes) return false;
        m_items -= items;
        m_bytes -= bytes;
        return true;
    }

private:
    std::size_t m_items = 1'000'000; // nodes and properties
    std::size_t m_bytes = 256 << 20; // of values
};

// Changes one tree, one edit after the other.
class Editor {
public:
    Editor(Tree& tree, const Edit& edit, Allowance& allowance)
        : m_tree(tree), m_builder(tree.object()), m_edit(edit), m_allowance(allowance) {}

    void run() {
        const Pattern pattern(m_edit.path);
        switch (m_edit.verb) {
        case Edit::Verb::set:
            return pattern.is_literal() ? set(pattern.path()) : set_matches(pattern);
        case Edit::Verb::remove:
            return pattern.is_literal() ? remove(pattern.path()) : remove_matches(pattern);
        default:
            return pattern.is_literal() ? transfer(pattern.path()) : transfer_matches(pattern);
        }
    }

private:
    [[noreturn]] void fail(std::string_view path, std::string_view message) const {
        throw Error(fmt::format("{}: {}", printable_text(path), message), m_edit.line);
    }

    void charge(std::size_t items, std::size_t bytes) const {
        if (m_allowance.take(items, bytes)) return;
        fail(m_edit.path,
             "copies and patterns of a script make no more than 1000000 nodes and properties, and "
             "256 MB of values");
    }
    void charge_node(const PM_Node& node) const {
        for (const auto& [each, level] : Node(node).walk()) {
            charge(1, 0);
            for (const Property property : each.properties()) {
                charge(1, property.bytes().size());
            }
        }
    }

    void set(const std::string& path) {
        const Place place = place_of(path);
        if (place.is_node && m_edit.value) fail(path, "this is the path of a node, which has no value");
        if (!place.is_node && !m_edit.value) fail(path, "a property needs a type and a value");
        if (place.is_node) {
            make_nodes(m_builder, to_utf16(path));
        } else {
            put_stored(m_builder, make_nodes(m_builder, place.path.parent), place.path.name, *m_edit.value);
        }
    }

    void set_matches(const Pattern& pattern) {
        if (!m_edit.value) fail(m_edit.path, "a node that is made has one path, without asterisks");
        bool found = false;
        for (const Match& match : matches(pattern)) {
            if (!match.property) continue;
            found = true;
            charge(0, size_of(*m_edit.value));
            put_stored(m_builder, *match.node.handle(), std::u16string(match.property->name16()),
                       *m_edit.value);
        }
        if (!found) fail(m_edit.path, "no property matches");
    }

    void remove(const std::string& path) {
        const Place place = place_of(path);
        const PM_Node* const parent = node_at(m_builder, place.path.parent);
        if (place.path.name.empty()) fail(path, "the root stays");
        if (parent != nullptr && !place.is_node && m_builder.erase_property(*parent, place.path.name)) return;
        const PM_Node* const node =
            parent != nullptr ? m_builder.find_child(*parent, place.path.name) : nullptr;
        if (node == nullptr) {
            fail(path, place.is_node ? "there is no such node" : "there is no such property or node");
        }
        m_builder.erase(*node);
    }

    // From the front on, where a list is left without a walk.
    void remove_matches(const Pattern& pattern) {
        std::string removed; // the last node, whose content went with it
        for (const Match& match : matches(pattern)) {
            if (is_below(match.path, removed)) continue;
            if (match.property) {
                m_builder.erase_property(*match.node.handle(), std::u16string(match.property->name16()));
            } else if (!match.node.is_root()) {
                m_builder.erase(*match.node.handle());
                removed = match.path;
            }
        }
    }

    [[nodiscard]] std::vector<Match> matches(const Pattern& pattern) const {
        std::vector<Match> found = find_all(m_tree, pattern);
        if (found.empty()) fail(m_edit.path, "nothing matches");
        return found;
    }

    // mv and cp.
    void transfer(const std::string& path) {
        const Place source = place_of(path);
        const Place target = place_of(target_path());
        const PM_Property* const property = source.is_node ? nullptr : property_at(m_builder, source.path);
        if (property != nullptr) {
            const std::u16string name = target.is_node ? source.path.name : target.path.name;
            transfer_property(path, *property, node_path(target), name);
            return;
        }
        const PM_Node* const node = node_at(m_builder, to_utf16(path));
        if (node == nullptr) {
            fail(path, source.is_node ? "there is no such node" : "there is no such property or node");
        }
        transfer_node(path, *node, target.path);
    }

    void transfer_matches(const Pattern& pattern) {
        const std::string into = target_path();
        const Place target = place_of(into);
        if (!target.is_node) fail(into, "what several things go to is a node; its path ends in a backslash");
        std::string moved; // the last node, whose content went with it
        for (const Match& match : matches(pattern)) {
            if (is_below(match.path, moved)) continue;
            const SplitPath source = split_path(to_utf16(match.path));
            if (match.property) {
                transfer_property(match.path, *match.property->handle(), node_path(target), source.name);
            } else {
                transfer_node(match.path, *match.node.handle(), {node_path(target), source.name});
                moved = match.path;
            }
        }
    }

    // The path of the target, or of the node around it.
    static std::u16string node_path(const Place& place) {
        if (!place.is_node) return place.path.parent;
        return place.path.name.empty() ? std::u16string() : place.path.parent + u'\\' + place.path.name;
    }

    [[nodiscard]] std::string target_path() const {
        const Pattern target(m_edit.target);
        if (!target.is_literal()) fail(m_edit.target, "a target is one path, without asterisks");
        return target.path();
    }

    void transfer_property(const std::string& path, const PM_Property& property, const std::u16string& parent,
                           const std::u16string& name) {
        const Stored value = stored(Property(property));
        const SplitPath source = split_path(to_utf16(path));
        const PM_Node& from = *node_at(m_builder, source.parent);
        const PM_Node& to = make_nodes(m_builder, parent);
        const bool same = &from == &to && source.name == name;
        const bool moves = m_edit.verb == Edit::Verb::move;
        if (m_builder.find_property(to, name) != nullptr && !(same && moves)) {
            fail(to_utf8(parent + u'\\' + name), "there is a property of this path already");
        }
        if (moves) {
            m_builder.erase_property(from, source.name);
        } else {
            charge(1, size_of(value));
        }
        put_stored(m_builder, to, name, value);
    }

    void transfer_node(const std::string& path, const PM_Node& node, const SplitPath& target) {
        if (Node(node).is_root() || target.name.empty()) fail(path, "the root stays what and where it is");
        const PM_Node& parent = make_nodes(m_builder, target.parent);
        for (const PM_Node* at = &parent; at != nullptr; at = pm_view(*at).parent) {
            if (at == &node) fail(path, "a node can't go into itself");
        }
        const bool moves = m_edit.verb == Edit::Verb::move;
        const PM_Node* const there = m_builder.find_child(parent, target.name);
        if (there != nullptr && !(there == &node && moves)) {
            fail(to_utf8(target.parent + u'\\' + target.name + u'\\'),
                 "there is a node of this path already");
        }
        if (!moves) charge_node(node);
        if (there == nullptr) {
            copy_node(Node(node), m_builder, m_builder.child(parent, target.name));
            if (moves) m_builder.erase(node);
            return;
        }
        Tree aside;
        const TreeBuilder aside_builder(aside.object());
        copy_node(Node(node), aside_builder, aside_builder.root());
        m_builder.erase(node);
        copy_node(aside.root(), m_builder, m_builder.child(parent, target.name));
    }

    Tree& m_tree;
    TreeBuilder m_builder;
    const Edit& m_edit;
    Allowance& m_allowance;
};

void apply_within(Tree& tree, const Edit& edit, Allowance& allowance) {
    try {
        Editor(tree, edit, allowance).run();
    } catch (const PM_Warning& e) {
        if (e.m_number != PM_ERR_BAD_PATH) throw;
        throw Error(fmt::format("{}: no path can be so: its names hold a zero, or are more than 256",
                                printable_text(edit.target.empty() ? edit.path : edit.target)),
                    edit.line);
    }
}

} // namespace

void apply_edit(Tree& tree, const Edit& edit) {
    Allowance allowance;
    apply_within(tree, edit, allowance);
}

Tree applied(const Tree& tree, std::span<const Edit> edits) {
    Tree result = copy(tree);
    Allowance allowance;
    while (!edits.empty()) {
        std::size_t done = do_end_moves(result, edits);
        if (done == 0) {
            apply_within(result, edits.front(), allowance);
            done = 1;
        }
        edits = edits.subspan(done);
    }
    return result;
}

void apply_edits(Tree& tree, std::span<const Edit> edits) {
    tree = applied(tree, edits);
}

std::vector<Edit> edits_of(std::span<const Difference> differences) {
    std::vector<Edit> edits;
    std::string removed; // the last node that was removed, and all in it
    for (const Difference& difference : differences) {
        const std::string path = escaped(difference.path);
        if (difference.change == Change::removed) {
            if (is_below(difference.path, removed)) continue;
            if (difference.path.ends_with('\\')) removed = difference.path;
            edits.push_back({Edit::Verb::remove, path, {}, {}, 0});
        } else if (difference.change == Change::order) {
            for (const std::string& each : difference.moved) {
                edits.push_back({Edit::Verb::move, escaped(each), escaped(each), {}, 0});
            }
        } else {
            edits.push_back({Edit::Verb::set, path, {}, difference.after, 0});
        }
    }
    return edits;
}

} // namespace pm::kit
