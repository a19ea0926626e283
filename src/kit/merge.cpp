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

std::optional<Stored> stored_side(const std::optional<Property>& property) {
    return property ? std::optional(stored(*property)) : std::nullopt;
}

class Merger {
public:
    Merger(Merged& merged, Prefer prefer)
        : m_merged(merged), m_prefer(prefer), m_builder(merged.tree.object()) {}

    void merge(const Node& base, const Node& first, const Node& second) {
        merge_nodes({base, first, second}, m_builder.root());
    }

private:
    void merge_nodes(const Sides<Node>& sides, const PM_Node& to) {
        const Sides<Node> sound{sides.base.value_or(empty()), sides.first.value_or(empty()),
                                sides.second.value_or(empty())};
        merge_properties(sound, to);
        merge_children(sound, to);
    }

    void merge_properties(const Sides<Node>& sides, const PM_Node& to) {
        const auto base = by_name(sides.base->properties());
        const auto first = by_name(sides.first->properties());
        const auto second = by_name(sides.second->properties());
        for (const std::u16string_view name :
             merged_names(names_of(sides.base->properties()), names_of(sides.first->properties()),
                          names_of(sides.second->properties()))) {
            merge_property(name, {find(base, name), find(first, name), find(second, name)}, to);
        }
    }

    void merge_property(std::u16string_view name, const Sides<Property>& sides, const PM_Node& to) {
        const std::optional<Stored> base = stored_side(sides.base);
        const std::optional<Stored> first = stored_side(sides.first);
        const std::optional<Stored> second = stored_side(sides.second);
        const bool conflict = first != second && first != base && second != base;
        if (conflict) m_merged.conflicts.push_back({m_path + to_utf8(name), base, first, second});
        const std::optional<Stored>& kept =
            conflict ? (m_prefer == Prefer::first ? first : second) : (first == base ? second : first);
        if (kept) put_stored(m_builder, to, name, *kept);
    }

    void merge_children(const Sides<Node>& sides, const PM_Node& to) {
        const auto base = by_name(sides.base->children());
        const auto first = by_name(sides.first->children());
        const auto second = by_name(sides.second->children());
        for (const std::u16string_view name :
             merged_names(names_of(sides.base->children()), names_of(sides.first->children()),
                          names_of(sides.second->children()))) {
            merge_child(name, {find(base, name), find(first, name), find(second, name)}, to);
        }
    }

    // A node that a side removed goes with all that the other side left as it was.
    void merge_child(std::u16string_view name, const Sides<Node>& sides, const PM_Node& to) {
        const std::size_t length = m_path.size();
        (m_path += to_utf8(name)) += '\\';
        const bool removed = sides.base && (!sides.first || !sides.second);
        if (!removed) {
            merge_nodes(sides, m_builder.child(to, name));
        } else if (sides.first || sides.second) {
            merge_removed(name, sides, to);
        }
        m_path.resize(length);
    }

    void merge_removed(std::u16string_view name, const Sides<Node>& sides, const PM_Node& to) {
        const Node& changed = sides.first ? *sides.first : *sides.second;
        if (compare(*sides.base, changed).empty()) return;
        const PM_Node& node = m_builder.child(to, name);
        const std::size_t before = m_merged.conflicts.size();
        merge_nodes(sides, node);
        // Changed in its order or its nodes alone.
        if (m_merged.conflicts.size() == before) m_merged.conflicts.push_back({m_path, {}, {}, {}});
        const bool prefers_removal = (m_prefer == Prefer::first) == !sides.first.has_value();
        if (prefers_removal) m_builder.erase(node);
    }

    [[nodiscard]] Node empty() const { return m_empty.root(); }

    Merged& m_merged;
    Prefer m_prefer;
    TreeBuilder m_builder;
    Tree m_empty;
    std::string m_path = "\\";
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
    const std::string path = printable(conflict.path);
    if (conflict.path.ends_with('\\')) {
        return fmt::format("{}: removed on one side, changed on the other", path);
    }
    return fmt::format("{}: {} -> {} | {}", path, side_text(conflict.base), side_text(conflict.first),
                       side_text(conflict.second));
}

} // namespace pm::kit
