#include "end_moves.h"

#include "tree_place.h"
#include <algorithm>
#include <pm/kit/pattern.h>
#include <unordered_map>

namespace pm::kit {

namespace {

constexpr std::size_t shortest_run = 64;

// The path of an edit that moves to the end; nothing for another one.
std::optional<std::u16string> path_of(const Edit& edit) {
    if (edit.verb != Edit::Verb::move || edit.path != edit.target) return std::nullopt;
    const Pattern pattern(edit.path);
    return pattern.is_literal() ? std::optional(to_utf16(pattern.path())) : std::nullopt;
}

// A run of moves within one node.
class Run {
public:
    Run(Tree& tree, std::u16string_view first)
        : m_builder(tree.object()), m_parent_path(split_path(first).parent),
          m_parent(node_at(m_builder, m_parent_path)), m_nodes(is_node_path(first)) {}

    // Takes the next move, if it belongs to the run and what it moves is there.
    bool take(std::u16string_view path) {
        SplitPath split = split_path(path);
        if (m_parent == nullptr || is_node_path(path) != m_nodes || split.name.empty() ||
            split.parent != m_parent_path || !has(split.name)) {
            return false;
        }
        m_moved[std::move(split.name)] = ++m_count;
        return true;
    }

    [[nodiscard]] std::size_t count() const { return m_count; }
    void run() {
        if (m_nodes) {
            reorder_nodes();
        } else {
            reorder_properties();
        }
    }

private:
    struct Held {
        std::u16string name;
        Stored value = {};
    };

    [[nodiscard]] bool has(std::u16string_view name) const {
        if (m_nodes) return m_builder.find_child(*m_parent, name) != nullptr;
        return m_builder.find_property(*m_parent, name) != nullptr;
    }

    // What isn't moved, then what is by its last move.
    void sort(std::vector<Held>& list) const {
        const auto place = [this](const Held& held) {
            const auto moved = m_moved.find(held.name);
            return moved != m_moved.end() ? moved->second : 0;
        };
        std::ranges::stable_sort(list, {}, place);
    }

    // The first of a list is taken out without a walk.
    void reorder_properties() {
        std::vector<Held> list;
        for (const Property property : Node(*m_parent).properties()) {
            list.push_back({std::u16string(property.name16()), stored(property)});
        }
        for (const Held& held : list) {
            m_builder.erase_property(*m_parent, held.name);
        }
        sort(list);
        for (const Held& held : list) {
            put_stored(m_builder, *m_parent, held.name, held.value);
        }
    }

    void reorder_nodes() {
        Tree aside;
        const TreeBuilder held_nodes(aside.object());
        std::vector<Held> list;
        for (const Node child : Node(*m_parent).children()) {
            list.push_back({std::u16string(child.name16())});
            copy_node(child, held_nodes, held_nodes.child(held_nodes.root(), child.name16()));
        }
        for (const Held& held : list) {
            m_builder.erase(*m_builder.find_child(*m_parent, held.name));
        }
        sort(list);
        for (const Held& held : list) {
            copy_node(Node(*held_nodes.find_child(held_nodes.root(), held.name)), m_builder,
                      m_builder.child(*m_parent, held.name));
        }
    }

    TreeBuilder m_builder;
    std::u16string m_parent_path;
    const PM_Node* m_parent;
    bool m_nodes;
    std::unordered_map<std::u16string, std::size_t> m_moved; // to the number of the last move, from 1
    std::size_t m_count = 0;
};

} // namespace

std::size_t do_end_moves(Tree& tree, std::span<const Edit> edits) {
    const std::optional<std::u16string> first = edits.empty() ? std::nullopt : path_of(edits.front());
    if (!first) return 0;
    Run run(tree, *first);
    for (const Edit& edit : edits) {
        const std::optional<std::u16string> path = path_of(edit);
        if (!path || !run.take(*path)) break;
    }
    if (run.count() < shortest_run) return 0;
    run.run();
    return run.count();
}

} // namespace pm::kit
