#include "text_reader.h"
#include "tree_place.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/kit/difference.h>
#include <pm/kit/merge.h>
#include <unordered_map>
#include <unordered_set>

namespace pm::kit {

namespace {

template<class Handle>
using ByName = std::unordered_map<std::u16string_view, Handle>;

template<class Range>
auto by_name(const Range& range) {
    using Handle = std::decay_t<decltype(*range.begin())>;
    ByName<Handle> handles;
    for (const Handle handle : range) {
        handles.emplace(handle.name16(), handle);
    }
    return handles;
}

template<class Handle>
std::optional<Handle> find(const ByName<Handle>& handles, std::u16string_view name) {
    const auto found = handles.find(name);
    return found != handles.end() ? std::optional(found->second) : std::nullopt;
}

using Names = std::vector<std::u16string_view>;

template<class Range>
Names names_of(const Range& range) {
    Names names;
    for (const auto handle : range) {
        names.push_back(handle.name16());
    }
    return names;
}

// Whether what both have stands in the same order.
bool same_order(const Names& a, const Names& b) {
    const std::unordered_set<std::u16string_view> in_a(a.begin(), a.end());
    const std::unordered_set<std::u16string_view> in_b(b.begin(), b.end());
    const auto common = [](const Names& names, const auto& other) {
        Names found;
        std::ranges::copy_if(names, std::back_inserter(found),
                             [&](auto name) { return other.contains(name); });
        return found;
    };
    return common(a, in_b) == common(b, in_a);
}

// What one list of names puts in front, and what the others have beside it.
Names joined(const Names& leader, const Names& second, const Names& third) {
    Names all = leader;
    std::unordered_set<std::u16string_view> known(leader.begin(), leader.end());
    for (const Names* names : {&second, &third}) {
        std::ranges::copy_if(*names, std::back_inserter(all),
                             [&](auto name) { return known.insert(name).second; });
    }
    return all;
}

// All names of a list in the order that it gets.
Names merged_names(const Names& base, const Names& first, const Names& second) {
    const bool second_alone = same_order(base, first) && !same_order(base, second);
    return second_alone ? joined(second, first, base) : joined(first, second, base);
}

// The three sides of a property, or of a node.
template<class Handle>
struct Sides {
    std::optional<Handle> base;
    std::optional<Handle> first;
    std::optional<Handle> second;
};

// The three sides of a list, and all its names in the order that it gets.
template<class Handle>
struct Lists {
    template<class Range>
    Lists(const Range& of_base, const Range& of_first, const Range& of_second)
        : base(by_name(of_base)), first(by_name(of_first)), second(by_name(of_second)),
          names(merged_names(names_of(of_base), names_of(of_first), names_of(of_second))) {}

    [[nodiscard]] Sides<Handle> sides_of(std::u16string_view name) const {
        return {find(base, name), find(first, name), find(second, name)};
    }

    ByName<Handle> base;
    ByName<Handle> first;
    ByName<Handle> second;
    Names names;
};

std::optional<Stored> stored_side(const std::optional<Property>& property) {
    return property ? std::optional(stored(*property)) : std::nullopt;
}

class Merger {
public:
    Merger(Merged& merged, Prefer prefer)
        : m_merged(merged), m_prefer(prefer), m_builder(merged.tree.object()) {}

    void merge(const Node& base, const Node& first, const Node& second) {
        open({base, first, second}, m_builder.root(), m_path.size());
        while (!m_levels.empty()) {
            Level& level = m_levels.back();
            if (level.next < level.children.names.size()) {
                const std::u16string_view name = level.children.names[level.next++];
                merge_child(name, level.children.sides_of(name), *level.to);
            } else {
                close();
            }
        }
    }

private:
    // What has to be done with a node that one side removed, or that the other added in such a one, once it
    // is merged.
    struct Removal {
        std::size_t conflicts; // that there were before
        bool preferred;
    };

    // A node that is merged, and the length of the path in front of it. A list of them takes the place of
    // calls in each other: trees may be deep, and stacks small.
    struct Level {
        Lists<Node> children;
        const PM_Node* to;
        std::size_t length;
        std::optional<Removal> removal;
        std::size_t next = 0;
    };

    void open(const Sides<Node>& sides, const PM_Node& to, std::size_t length,
              std::optional<Removal> removal = {}) {
        const Node base = sides.base.value_or(empty());
        const Node first = sides.first.value_or(empty());
        const Node second = sides.second.value_or(empty());
        const Lists<Property> properties(base.properties(), first.properties(), second.properties());
        for (const std::u16string_view name : properties.names) {
            merge_property(name, properties.sides_of(name), to, removal.has_value());
        }
        m_levels.push_back({{base.children(), first.children(), second.children()}, &to, length, removal});
    }

    void close() {
        const Level& level = m_levels.back();
        if (level.removal) close_removed(*level.removal, *level.to);
        m_path.resize(level.length);
        m_levels.pop_back();
    }

    void close_removed(const Removal& removal, const PM_Node& node) {
        // Changed in its order or its nodes alone, or added with nothing in it.
        if (m_merged.conflicts.size() == removal.conflicts) {
            m_merged.conflicts.push_back({m_path, {}, {}, {}});
        }
        if (removal.preferred) m_builder.erase(node);
    }

    // In a node that one side removed all that the other changed is a conflict, and what it added, too.
    void merge_property(std::u16string_view name, const Sides<Property>& sides, const PM_Node& to,
                        bool in_removed) {
        const std::optional<Stored> base = stored_side(sides.base);
        const std::optional<Stored> first = stored_side(sides.first);
        const std::optional<Stored> second = stored_side(sides.second);
        const bool added = !base && first != second;
        const bool conflict = (first != second && first != base && second != base) || (in_removed && added);
        if (conflict) m_merged.conflicts.push_back({m_path + to_utf8(name), base, first, second});
        const std::optional<Stored>& kept =
            conflict ? (m_prefer == Prefer::first ? first : second) : (first == base ? second : first);
        if (kept) put_stored(m_builder, to, name, *kept);
    }

    // A node that a side removed goes with all that the other side left as it was.
    void merge_child(std::u16string_view name, const Sides<Node>& sides, const PM_Node& to) {
        const std::size_t length = m_path.size();
        const bool in_removed = m_levels.back().removal.has_value();
        const bool removed = (sides.base || in_removed) && (!sides.first || !sides.second);
        if (removed && sides.base && !is_changed(sides)) return;
        (m_path += to_utf8(name)) += '\\';
        std::optional<Removal> removal;
        if (removed) {
            removal = {m_merged.conflicts.size(), (m_prefer == Prefer::first) == !sides.first.has_value()};
        }
        open(sides, m_builder.child(to, name), length, removal);
    }

    // Of a node that the base has: whether a side that still has it changed it.
    static bool is_changed(const Sides<Node>& sides) {
        const std::optional<Node>& left = sides.first ? sides.first : sides.second;
        return left && !compare(*sides.base, *left).empty();
    }

    [[nodiscard]] Node empty() const { return m_empty.root(); }

    Merged& m_merged;
    Prefer m_prefer;
    TreeBuilder m_builder;
    Tree m_empty;
    std::string m_path = "\\";
    std::vector<Level> m_levels;
};

std::string side_text(const std::optional<Stored>& stored) {
    return stored ? value_text(*stored) : "-";
}

} // namespace

Merged merge(const Tree& base, const Tree& first, const Tree& second, Prefer prefer) {
    Merged merged;
    Merger(merged, prefer).merge(base.root(), first.root(), second.root());
    return merged;
}

std::string conflict_text(const Conflict& conflict) {
    const std::string path = printable_text(conflict.path);
    if (conflict.path.ends_with('\\')) {
        return fmt::format("{}: removed on one side, changed on the other", path);
    }
    return fmt::format("{}: {} -> {} | {}", path, side_text(conflict.base), side_text(conflict.first),
                       side_text(conflict.second));
}

} // namespace pm::kit
